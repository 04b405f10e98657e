#include "draw/draw_overlay_gl.h"

#include "base/prefs.h"
#include "draw/draw_device_gl.h"
#include "draw/draw_marks_gl.h"
#include "draw/draw_reach_gl.h"
#include "draw/draw_text_gl.h"
#include "draw/selection_marks.h"
#include "model/each.h"
#include "model/lights.h"
#include "model/vector.h"
#include "model/world.h"
#include "view/axis_cross.h"
#include "view/camera_eye.h"
#include "view/handles.h"
#include "view/interaction.h"
#include "view/overlay.h"
#include "view/projection.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float shortest_side_with_handle = 36;
constexpr int cross_disc_colour = 0x3A3A3A;
constexpr int cross_letter_colour = 0x1B1C1E;
constexpr int light_colour = 0xE5AC4D;
constexpr float locked_light_alpha = 0.4f;
constexpr colour_t rim_colour = {0x20 / 255.0f, 0x20 / 255.0f, 0x20 / 255.0f, 0.7f};

float interface_scale() { return static_cast<float>(view_interface_scale()); }

// Across the whole view through the point where the drag began.
void draw_axis_lock(const overlay_t &tool, int view, int width, int height)
{
    const bool is_axis = tool.locked_axis <= 2;
    point3_t other = point_add(tool.lock_point, is_axis ? point3_t{0, 0, 0} : tool.lock_way);
    if (is_axis)
        axis_of(other, tool.locked_axis) += 1.0f;
    float x1 = 0, y1 = 0, x2 = 0, y2 = 0;
    if (!overlay_position(tool.lock_point, view, &x1, &y1) ||
        !overlay_position(other, view, &x2, &y2))
        return;
    const float dx = x2 - x1;
    const float dy = y2 - y1;
    const float length = std::hypot(dx, dy);
    if (length < 1.0f) // the axis points at the viewer
        return;
    const float reach = static_cast<float>(width + height) / length;
    draw_soft_line(x1 - dx * reach, y1 - dy * reach, x1 + dx * reach, y1 + dy * reach,
                   interface_scale(),
                   colour_of(is_axis ? axis_colour(tool.locked_axis) : prefs.col_box));
}

void draw_preview(const overlay_t &tool, int view)
{
    for (const overlay_segment_t &segment : tool.preview) {
        float x1 = 0, y1 = 0, x2 = 0, y2 = 0;
        if (overlay_position(segment.from, view, &x1, &y1) &&
            overlay_position(segment.to, view, &x2, &y2))
            draw_soft_line(x1, y1, x2, y2, 1.5f * interface_scale(), colour_of(prefs.col_box));
    }
}

// By `wider` pixels thicker all round.
void draw_light_shape(float x, float y, float wider, const colour_t &colour)
{
    const float s = interface_scale();
    draw_disc(x, y, (4 + wider) * s, 0, colour);
    for (int ray = 0; ray < 8; ++ray) {
        const float angle = static_cast<float>(ray) * 0.785398f;
        const float dx = std::cos(angle) * s;
        const float dy = std::sin(angle) * s;
        const float from = 6 - wider, to = 9 + wider;
        draw_soft_line(x + dx * from, y + dy * from, x + dx * to, y + dy * to,
                       (1.5f + 2 * wider) * s, colour);
    }
}

// On a dark rim, so that it shows on white.
void draw_light_icon(float x, float y, const colour_t &colour)
{
    draw_light_shape(x, y, 1, {rim_colour.r, rim_colour.g, rim_colour.b, rim_colour.a * colour.a});
    draw_light_shape(x, y, 0, colour);
}

// Darker behind, so that the cross reads as a body.
float strength_at(double depth) { return static_cast<float>(0.7 + 0.3 * (depth + 1) / 2); }

void draw_axis_end(const axis_cross_t &cross, const axis_end_t &end)
{
    constexpr const char *letters[3] = {"X", "Y", "Z"};
    const colour_t colour = colour_of(axis_colour(end.axis), strength_at(end.depth));
    const auto x = static_cast<float>(end.x);
    const auto y = static_cast<float>(end.y);
    const auto radius = static_cast<float>(end.radius);
    if (!end.positive) {
        draw_disc(x, y, radius, radius - 1.5f * interface_scale(), colour);
        return;
    }
    draw_soft_line(static_cast<float>(cross.centre_x), static_cast<float>(cross.centre_y), x, y,
                   2 * interface_scale(), colour);
    draw_disc(x, y, radius, 0, colour);
    draw_text_centred(x, y, letters[end.axis], colour_of(cross_letter_colour), atlas_font::bold);
}

} // namespace

bool overlay_position(const point3_t &point, int view, float *x, float *y)
{
    if (view == VIEW_XYZ) {
        double px = 0;
        double py = 0;
        if (!camera_project(point, &px, &py))
            return false;
        *x = static_cast<float>(px);
        *y = static_cast<float>(py);
        return true;
    }
    int px = 0;
    int py = 0;
    point2xy(&point, &px, &py, view);
    *x = static_cast<float>(px) + 0.5f;
    *y = static_cast<float>(py) + 0.5f;
    return true;
}

void draw_band(int from_x, int from_y, int to_x, int to_y)
{
    constexpr float dash = 4;
    const auto x1 = static_cast<float>(std::min(from_x, to_x));
    const auto y1 = static_cast<float>(std::min(from_y, to_y));
    const auto x2 = static_cast<float>(std::max(from_x, to_x)) + 1;
    const auto y2 = static_cast<float>(std::max(from_y, to_y)) + 1;
    const colour_t white = colour_of(prefs.col_foreground);
    std::vector<vertex2_t> inside;
    std::vector<vertex2_t> dark;
    std::vector<vertex2_t> light;
    add_quad(inside, x1, y1, x2, y2);
    add_frame(dark, x1 - 1, y1 - 1, x2 + 1, y2 + 1, 3);
    if (to_x >= from_x) {
        add_frame(light, x1, y1, x2, y2, 1);
    } else {
        for (float x = x1; x < x2; x += 2 * dash) {
            add_quad(light, x, y1, std::min(x + dash, x2), y1 + 1);
            add_quad(light, x, y2 - 1, std::min(x + dash, x2), y2);
        }
        for (float y = y1; y < y2; y += 2 * dash) {
            add_quad(light, x1, y, x1 + 1, std::min(y + dash, y2));
            add_quad(light, x2 - 1, y, x2, std::min(y + dash, y2));
        }
    }
    draw_array(GL_QUADS, inside, {white.r, white.g, white.b, 0.08f});
    draw_array(GL_QUADS, dark, {0, 0, 0, 0.55f});
    draw_array(GL_QUADS, light, white);
}

void draw_box_with_handles(const handle_box_t &box, float width, const colour_t &colour)
{
    std::vector<vertex2_t> frame;
    add_frame(frame, static_cast<float>(box.x0), static_cast<float>(box.y0),
              static_cast<float>(box.x1) + 1, static_cast<float>(box.y1) + 1, width);
    draw_array(GL_QUADS, frame, colour);
    const float size = std::round(static_cast<float>(prefs.handle_size) * interface_scale());
    const float half = std::floor(size / 2);
    std::vector<vertex2_t> rims;
    std::vector<vertex2_t> bodies;
    for (int i = 0; i < box.num_places; ++i) {
        const float x = static_cast<float>(box.places[i].x) - half;
        const float y = static_cast<float>(box.places[i].y) - half;
        add_quad(rims, x - 1, y - 1, x + size + 1, y + size + 1);
        if (prefs.handles_hollow != 0)
            add_frame(bodies, x, y, x + size, y + size, 1.5f);
        else
            add_quad(bodies, x, y, x + size, y + size);
    }
    if (prefs.handles_hollow == 0)
        draw_array(GL_QUADS, rims, rim_colour);
    draw_array(GL_QUADS, bodies, colour);
}

void draw_selection_box(int view)
{
    const handle_box_t box = handle_box(view);
    if (!box.valid)
        return;
    const float width =
        std::max(1.0f, std::round(static_cast<float>(prefs.bb_line_width) * interface_scale()));
    draw_box_with_handles(box, width, colour_of(prefs.col_box));
}

void draw_tool_overlay(int view, int width, int height)
{
    const overlay_t &tool = overlay();
    draw_reach(view, width, height);
    draw_preview(tool, view);
    if (tool.locked_axis >= 0)
        draw_axis_lock(tool, view, width, height);
    if (tool.band_view == view)
        draw_band(tool.x0, tool.y0, tool.x1, tool.y1);
    draw_tool_marks(view, width, height);
}

void draw_light_icons(int view)
{
    for (object_t *light : each<object_t>(world_lights())) {
        float x = 0;
        float y = 0;
        if (light->visible == 0 || !overlay_position(light->centre, view, &x, &y))
            continue;
        const bool selected = selected_part(light) != nullptr;
        draw_light_icon(x, y,
                        colour_of(selected ? prefs.col_selline : light_colour,
                                  light->locked != 0 ? locked_light_alpha : 1.0f));
    }
}

void draw_object_centres(int view)
{
    if (prefs.show_objectcentres == 0)
        return;
    std::vector<vertex2_t> crosses;
    const float size = static_cast<float>(prefs.object_centre_size) * interface_scale();
    for_each_object(vesk_get_world(), [&](object_t *object) {
        float x = 0;
        float y = 0;
        if (object == vesk_get_world() || object->visible == 0 ||
            !overlay_position(object->centre, view, &x, &y))
            return;
        crosses.insert(crosses.end(), {{x - size, y}, {x + size, y}, {x, y - size}, {x, y + size}});
    });
    draw_set_line_width(1.0f);
    draw_array(GL_LINES, crosses, colour_of(prefs.col_foreground));
}

void draw_axis_cross()
{
    const axis_cross_t cross = axis_cross(view_interface_scale());
    draw_disc(static_cast<float>(cross.centre_x), static_cast<float>(cross.centre_y),
              static_cast<float>(cross.radius), 0, colour_of(cross_disc_colour, 0.3f));
    for (const axis_end_t &end : cross.ends)
        draw_axis_end(cross, end);
}
