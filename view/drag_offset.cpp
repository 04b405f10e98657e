#include "view/drag_offset.h"

#include "base/prefs.h"
#include "edit/snap.h"
#include "model/vector.h"
#include "view/camera_eye.h"
#include "view/near_snap.h"
#include "view/projection.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cmath>

point3_t screen_offset_3d(const point3_t &at, int dx, int dy)
{
    double m[16]; // column by column: scale times rotation, then the shift
    camera_modelview(m);
    const double depth = -(m[2] * at.x + m[6] * at.y + m[10] * at.z + m[14]);
    const projection_t projection = camera_projection(at, at);
    int geometry[4] = {};
    win_get_geom(VIEW_XYZ, geometry);
    const double units = 2 * projection.half_height *
                         (projection.perspective ? std::max(depth, 1e-6) : 1.0) /
                         std::max(geometry[3], 1);
    const double square = m[0] * m[0] + m[1] * m[1] + m[2] * m[2];
    const double x = dx * units / square, y = -dy * units / square;
    return {static_cast<float>(m[0] * x + m[1] * y), static_cast<float>(m[4] * x + m[5] * y),
            static_cast<float>(m[8] * x + m[9] * y)};
}

namespace {

// Where a hundred pixels of a direction would go on the screen.
struct way_t {
    double x = 0, y = 0; // pixels; 0 0 when it cannot be told
    double units = 0;    // the length of it
};

way_t way_of(int view, const point3_t &at, const point3_t &direction)
{
    constexpr int pixels = 100;
    way_t way;
    way.units = is_orthographic(view) ? pixels_to_distance(pixels, view)
                                      : point_length(screen_offset_3d(at, pixels, 0));
    double x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    const point3_t end = point_add(at, point_scale(direction, static_cast<float>(way.units)));
    if (window_position(view, at, &x0, &y0) && window_position(view, end, &x1, &y1)) {
        way.x = x1 - x0;
        way.y = y1 - y0;
    }
    return way;
}

} // namespace

bool direction_is_seen(int view, const point3_t &at, const point3_t &direction)
{
    constexpr double shortest = 15; // of the hundred pixels
    const way_t way = way_of(view, at, direction);
    return std::hypot(way.x, way.y) >= shortest;
}

point3_t offset_along(int view, const point3_t &at, const point3_t &direction, int dx, int dy)
{
    const way_t way = way_of(view, at, direction);
    const double square = way.x * way.x + way.y * way.y;
    const double share = square > 0 ? (dx * way.x + dy * way.y) / square : 0;
    return point_scale(direction, static_cast<float>(share * way.units));
}

void snap_to_grid_from(const point3_t &from, point3_t *offset)
{
    const auto spacing = static_cast<float>(prefs.grid);
    point3_t target = point_add(from, *offset);
    snap_to_grid_float(&target, spacing, spacing, spacing);
    const point3_t snapped = point_sub(target, from);
    for (int axis = 0; axis < 3; ++axis) { // an axis that does not move is not pulled along
        if (axis_of(*offset, axis) != 0) {
            axis_of(*offset, axis) = axis_of(snapped, axis);
        }
    }
}

bool snap_near_from(const point3_t &from, int view, point3_t *offset)
{
    double x = 0, y = 0;
    point3_t found;
    if (!window_position(view, point_add(from, *offset), &x, &y) ||
        !near_snap_at(view, x, y, &found)) {
        return false;
    }
    point3_t snapped = point_sub(found, from);
    if (is_orthographic(view)) {
        const int depth = view_axes[view].depth;
        const double range = pixels_to_distance(prefs.snap_near_pixels, view);
        if (std::fabs(axis_of(snapped, depth)) > range) {
            axis_of(snapped, depth) = axis_of(*offset, depth);
        }
    }
    *offset = snapped;
    return true;
}
