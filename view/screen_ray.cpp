#include "view/screen_ray.h"

#include "model/each.h"
#include "model/vector.h"
#include "view/projector.h"

#include <algorithm>
#include <cmath>

namespace {

// Half the height of the 3D view at depth 1 (parallel: at any) over half its pixels.
double eye_units_per_pixel(const projection_t &projection)
{
    int geometry[4] = {};
    win_get_geom(VIEW_XYZ, geometry);
    return 2 * projection.half_height / std::max(geometry[3], 1);
}

screen_ray_t ray_of_camera(double x, double y)
{
    double m[16]; // column by column: scale times rotation, then the shift
    camera_modelview(m);
    const point3_t zero = {0, 0, 0};
    const projection_t projection = camera_projection(zero, zero);
    int geometry[4] = {};
    win_get_geom(VIEW_XYZ, geometry);
    const double units = eye_units_per_pixel(projection);
    const double right = (x - geometry[2] / 2.0) * units, up = (geometry[3] / 2.0 - y) * units;
    double from[3] = {0, 0, 0}, to[3] = {right, up, -1};
    if (!projection.perspective) {
        from[0] = right;
        from[1] = up;
        to[0] = to[1] = 0;
    }
    const double square = m[0] * m[0] + m[1] * m[1] + m[2] * m[2];
    screen_ray_t ray;
    for (int axis = 0; axis < 3; ++axis) {
        ray.origin[axis] = ray.direction[axis] = 0;
        for (int row = 0; row < 3; ++row) {
            ray.origin[axis] += m[axis * 4 + row] * (from[row] - m[12 + row]) / square;
            ray.direction[axis] += m[axis * 4 + row] * to[row] / square;
        }
    }
    return ray;
}

} // namespace

screen_ray_t screen_ray(int view, double x, double y)
{
    if (!is_orthographic(view))
        return ray_of_camera(x, y);
    const VESKView &record = *vesk_get_view(view);
    const view_axes_t axes = view_axes[view];
    screen_ray_t ray = {{0, 0, 0}, {0, 0, 0}};
    const auto set = [&](int axis, double pixel) {
        ray.origin[axis] = (pixel - record.centre[axis] - record.pan[axis]) /
                           (double{record.scale} * axis_sign[axis]);
    };
    set(axes.horizontal, x);
    set(axes.vertical, y);
    // The viewer stands at +z, -x, +y.
    ray.direction[axes.depth] = view == VIEW_ZY ? 1 : -1;
    return ray;
}

bool ray_meets_plane(const screen_ray_t &ray, const point3_t &on_plane, const point3_t &normal,
                     point3_t *at)
{
    const double n[3] = {normal.x, normal.y, normal.z};
    const double p[3] = {on_plane.x, on_plane.y, on_plane.z};
    double towards = 0, away = 0, length = 0;
    for (int axis = 0; axis < 3; ++axis) {
        towards += n[axis] * ray.direction[axis];
        away += n[axis] * (p[axis] - ray.origin[axis]);
        length += ray.direction[axis] * ray.direction[axis];
    }
    if (std::fabs(towards) < 1e-9 * std::sqrt(length))
        return false;
    const double t = away / towards;
    for (int axis = 0; axis < 3; ++axis)
        axis_of(*at, axis) = static_cast<float>(ray.origin[axis] + ray.direction[axis] * t);
    return true;
}

bool ray_meets_surface(const screen_ray_t &ray, const surface_t *surface, point3_t *at)
{
    for (const svertex *corner : each<svertex>(surface->refs)) {
        if (corner->vertex != nullptr)
            return ray_meets_plane(ray, corner->vertex->position, surface->normal, at);
    }
    return false;
}

double units_per_pixel_at(int view, double depth)
{
    if (std::isinf(depth))
        return 0;
    if (is_orthographic(view))
        return 1 / std::fabs(static_cast<double>(vesk_get_view(view)->scale));
    double m[16];
    camera_modelview(m);
    const point3_t zero = {0, 0, 0};
    const projection_t projection = camera_projection(zero, zero);
    return eye_units_per_pixel(projection) * (projection.perspective ? depth : 1);
}
