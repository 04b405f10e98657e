#include "view/axis_cross.h"

#include "view/camera_eye.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cmath>

namespace {
constexpr double from_edges = 40;
constexpr double disc_radius = 34;
constexpr double arm_length = 24;
constexpr double positive_radius = 8;
constexpr double negative_radius = 5;
constexpr double easy_to_hit = 2; // pixels beyond the drawn end

std::array<int, 3> colours = {0xF07F76, 0x8CCB6B, 0x7CB4F5};
} // namespace

int axis_colour(int axis) { return colours[axis]; }

void set_axis_colours(int x, int y, int z) { colours = {x, y, z}; }

axis_cross_t axis_cross(double scale)
{
    int geometry[4] = {};
    win_get_geom(VIEW_XYZ, geometry);
    axis_cross_t cross = {};
    cross.centre_x = geometry[2] - from_edges * scale;
    cross.centre_y = from_edges * scale;
    cross.radius = disc_radius * scale;

    const eye_transform_t t = camera_eye_transform();
    for (int i = 0; i < 6; ++i) {
        const int axis = i / 2;
        const bool positive = i % 2 == 0;
        double eye[3];
        for (int row = 0; row < 3; ++row) {
            double sum = 0;
            for (int k = 0; k < 3; ++k)
                sum += t.axes[row * 3 + k] * t.spin[k * 3 + axis];
            eye[row] = positive ? sum : -sum;
        }
        cross.ends[i] = {axis,
                         positive,
                         cross.centre_x + eye[0] * arm_length * scale,
                         cross.centre_y - eye[1] * arm_length * scale,
                         eye[2],
                         (positive ? positive_radius : negative_radius) * scale};
    }
    std::stable_sort(cross.ends.begin(), cross.ends.end(),
                     [](const axis_end_t &a, const axis_end_t &b) { return a.depth < b.depth; });
    return cross;
}

const axis_end_t *axis_cross_hit(const axis_cross_t &cross, int x, int y)
{
    for (size_t i = cross.ends.size(); i-- > 0;) {
        const axis_end_t &end = cross.ends[i];
        if (std::hypot(x - end.x, y - end.y) <= end.radius + easy_to_hit)
            return &end;
    }
    return nullptr;
}
