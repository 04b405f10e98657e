#include "draw/draw_reach_gl.h"

#include "base/prefs.h"
#include "draw/draw_device_gl.h"
#include "draw/draw_overlay_gl.h"
#include "edit/document/selection_internal.h"
#include "edit/soft_selection.h"
#include "edit/symmetry.h"
#include "model/vector.h"
#include "view/camera_eye.h"
#include "view/drag_offset.h"
#include "view/interaction.h"
#include "view/overlay.h"
#include "view/projection.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int share_colours[] = {0x2F6FD0, 0x3FA7D6, 0x59CDB0, 0xA6D854, 0xF2D544, 0xF5A03C};
constexpr int num_colours = 6;
constexpr std::size_t most_marks = 20000; // of larger numbers only some are drawn
constexpr int plane_colour = 0xE06C9F;
constexpr colour_t dark = {0, 0, 0, 0.45f};

float scale() { return static_cast<float>(view_interface_scale()); }

void draw_shares(int view)
{
    const std::vector<soft_vertex> &near = soft_neighbours_shown(overlay().moving);
    const std::size_t step = near.size() / most_marks + 1;
    std::vector<vertex2_t> marks[num_colours], rims;
    const float half = 2.5f * scale();
    for (std::size_t i = 0; i < near.size(); i += step) {
        float x = 0, y = 0;
        if (!overlay_position(near[i].point->position, view, &x, &y))
            continue;
        const int colour = std::min(static_cast<int>(near[i].share * num_colours), num_colours - 1);
        add_quad(rims, x - half - 1, y - half - 1, x + half + 1, y + half + 1);
        add_quad(marks[colour], x - half, y - half, x + half, y + half);
    }
    draw_array(GL_QUADS, rims, dark);
    for (int i = 0; i < num_colours; ++i)
        draw_array(GL_QUADS, marks[i], colour_of(share_colours[i]));
}

// The radius in pixels of a view.
float radius_in(int view)
{
    const double unit = view == VIEW_XYZ ? camera_units_per_pixel() : pixels_to_distance(1, view);
    return unit > 0 ? static_cast<float>(prefs.soft_radius / unit) : 0.0f;
}

void draw_radius(int view)
{
    constexpr int steps = 96;
    float x = 0, y = 0;
    if (selection().box_valid == 0 || !overlay_position(selection().box_centre, view, &x, &y))
        return;
    const float radius = radius_in(view);
    std::vector<vertex2_t> circle;
    for (int i = 0; i < steps; ++i) {
        for (int k = 0; k < 2; ++k) {
            const float angle = 6.2831853f * static_cast<float>(i + k) / steps;
            circle.push_back({x + radius * std::cos(angle), y + radius * std::sin(angle)});
        }
    }
    draw_set_line_width(3 * scale());
    draw_array(GL_LINES, circle, dark);
    draw_set_line_width(1.5f * scale());
    draw_array(GL_LINES, circle, colour_of(share_colours[num_colours - 2]));
}

void draw_dashed(const point3_t &from, const point3_t &to, int view)
{
    constexpr int dashes = 40;
    std::vector<vertex2_t> lines;
    for (int i = 0; i < dashes; ++i) {
        vertex2_t p[2] = {};
        bool before = true;
        for (int k = 0; k < 2; ++k) {
            const float at = (static_cast<float>(i) + 0.6f * static_cast<float>(k)) / dashes;
            const point3_t place = point_add(from, point_scale(point_sub(to, from), at));
            before = overlay_position(place, view, &p[k].x, &p[k].y) && before;
        }
        if (before)
            lines.insert(lines.end(), p, p + 2);
    }
    draw_set_line_width(3 * scale());
    draw_array(GL_LINES, lines, dark);
    draw_set_line_width(1.5f * scale());
    draw_array(GL_LINES, lines, colour_of(plane_colour));
}

// Across a flat view that sees the plane from its edge.
void draw_plane_line(int view, float at, int width, int height)
{
    const int axis = symmetry_axis();
    const auto w = static_cast<float>(width), h = static_cast<float>(height);
    std::vector<vertex2_t> line;
    point3_t on = selection().box_valid != 0 ? selection().box_centre : point3_t{0, 0, 0};
    axis_of(on, axis) = at;
    float x = 0, y = 0;
    if (!overlay_position(on, view, &x, &y))
        return;
    const float dash = 8 * scale();
    if (axis == view_axes[view].horizontal) {
        for (float v = 0; v < h; v += dash)
            line.insert(line.end(), {{x, v}, {x, v + 0.6f * dash}});
    } else {
        for (float u = 0; u < w; u += dash)
            line.insert(line.end(), {{u, y}, {u + 0.6f * dash, y}});
    }
    draw_set_line_width(3 * scale());
    draw_array(GL_LINES, line, dark);
    draw_set_line_width(1.5f * scale());
    draw_array(GL_LINES, line, colour_of(plane_colour));
}

// Round what is selected, in the 3D view.
void draw_plane_frame(float at)
{
    const selection_t &all = selection();
    if (all.box_valid == 0)
        return;
    const int axis = symmetry_axis(), u = (axis + 1) % 3, v = (axis + 2) % 3;
    const float most = std::max({all.box_size.x, all.box_size.y, all.box_size.z, 1e-3f}) * 0.75f;
    const float reach = std::max(most, 2 * std::abs(axis_of(all.box_centre, axis) - at));
    point3_t corners[4];
    for (int i = 0; i < 4; ++i) {
        corners[i] = all.box_centre;
        axis_of(corners[i], axis) = at;
        axis_of(corners[i], u) += i == 1 || i == 2 ? reach : -reach;
        axis_of(corners[i], v) += i >= 2 ? reach : -reach;
    }
    for (int i = 0; i < 4; ++i)
        draw_dashed(corners[i], corners[(i + 1) % 4], VIEW_XYZ);
}

} // namespace

void draw_reach(int view, int width, int height)
{
    float at = 0;
    if (symmetry_shown(&at)) {
        if (view == VIEW_XYZ)
            draw_plane_frame(at);
        else if (view_axes[view].depth != symmetry_axis())
            draw_plane_line(view, at, width, height);
    }
    if (!soft_selection_acts())
        return;
    draw_shares(view);
    draw_radius(view);
}
