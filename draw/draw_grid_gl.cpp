#include "draw/draw_grid_gl.h"

#include "base/prefs.h"
#include "draw/draw_device_gl.h"
#include "view/axis_cross.h"
#include "view/camera_eye.h"
#include "view/camera_internal.h"
#include "view/grid.h"
#include "view/interaction.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float ground_alpha = 0.55f;
constexpr float axis_alpha = 0.85f;
constexpr double grazing_sine = 0.18; // below it the ground fades away

// Where the viewer is in the world, and where it looks: for how steeply it sees the ground.
struct viewpoint_t {
    double place[3];
    double direction[3]; // toward the viewer
};

viewpoint_t viewpoint()
{
    const eye_transform_t t = camera_eye_transform();
    const double shift[3] = {t.shift.x, t.shift.y, t.shift.z};
    const double origin[3] = {t.origin.x, t.origin.y, t.origin.z};
    viewpoint_t v = {};
    for (int k = 0; k < 3; ++k) {
        double back = 0;
        double toward = 0;
        for (int row = 0; row < 3; ++row) {
            back += t.spin[row * 3 + k] * shift[row];
            toward += t.spin[row * 3 + k] * t.axes[6 + row];
        }
        v.place[k] = origin[k] - back / t.scale;
        v.direction[k] = toward;
    }
    return v;
}

float grazing(const viewpoint_t &v, float x, float z)
{
    double sine = std::fabs(v.direction[1]);
    if (camera_is_perspective()) {
        const double dx = v.place[0] - x;
        const double dy = v.place[1];
        const double dz = v.place[2] - z;
        const double distance = std::sqrt(dx * dx + dy * dy + dz * dz);
        sine = distance > 0 ? std::fabs(dy) / distance : 1;
    }
    const double t = std::clamp(sine / grazing_sine, 0.0, 1.0);
    return static_cast<float>(t * t * (3 - 2 * t));
}

coloured_vertex_t ground_vertex(float x, float z, const colour_t &c, float alpha)
{
    const auto byte = [](float value) {
        return static_cast<std::uint8_t>(std::clamp(value, 0.0f, 1.0f) * 255.0f + 0.5f);
    };
    return {x, 0, z, {byte(c.r), byte(c.g), byte(c.b), byte(alpha)}};
}

} // namespace

void draw_line_width(float width) { draw_set_line_width(width); }

// Lines lie on whole pixels: those of odd width on a pixel's middle.
void draw_orth_grid(int view)
{
    if (!is_orthographic(view))
        return;
    const auto scale = static_cast<float>(view_interface_scale());
    for (const grid_layer_t &layer : orthographic_grid(view)) {
        const float width = std::max(1.0f, std::round(layer.width * scale));
        std::vector<vertex2_t> quads;
        for (const grid_line_t &line : layer.lines) {
            const bool upright = line.x1 == line.x2;
            const float at = std::round((upright ? line.x1 : line.y1) - width / 2 + 0.5f);
            if (upright)
                add_quad(quads, at, line.y1, at + width, line.y2);
            else
                add_quad(quads, line.x1, at, line.x2, at + width);
        }
        draw_array(GL_QUADS, quads, colour_of(layer.is_axes ? prefs.col_axis : prefs.col_grid));
    }
}

void draw_ground_grid()
{
    if (prefs.grid3d_show == 0)
        return;
    const viewpoint_t from = viewpoint();
    std::vector<coloured_vertex_t> plain;
    std::vector<coloured_vertex_t> axes;
    for (const ground_segment_t &s : ground_grid()) {
        const colour_t colour = colour_of(s.axis < 0 ? prefs.col_3dgrid : axis_colour(s.axis));
        const float strength = s.axis < 0 ? ground_alpha : axis_alpha;
        auto &out = s.axis < 0 ? plain : axes;
        out.push_back(
            ground_vertex(s.x1, s.z1, colour, s.alpha1 * strength * grazing(from, s.x1, s.z1)));
        out.push_back(
            ground_vertex(s.x2, s.z2, colour, s.alpha2 * strength * grazing(from, s.x2, s.z2)));
    }
    const auto scale = static_cast<float>(view_interface_scale());
    glShadeModel(GL_SMOOTH);
    glDepthMask(GL_FALSE);
    draw_set_line_width(static_cast<float>(prefs.grid_3d_line_width) * scale);
    draw_coloured(GL_LINES, plain);
    draw_set_line_width(1.5f * static_cast<float>(prefs.grid_3d_line_width) * scale);
    draw_coloured(GL_LINES, axes);
    glDepthMask(GL_TRUE);
}
