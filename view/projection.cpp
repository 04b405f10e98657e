#include "view/projection.h"

#include "view/camera.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// Cut toward zero; huge values stay at the ends of the range, no number becomes 0.
int to_pixel(double value)
{
    if (std::isnan(value))
        return 0;
    return static_cast<int>(std::clamp<double>(value, std::numeric_limits<int>::min(),
                                               std::numeric_limits<int>::max()));
}

double screen_of(const VESKView &view, float coordinate, int axis)
{
    return axis_sign[axis] * view.scale * coordinate + view.centre[axis] + view.pan[axis];
}

} // namespace

void point2xy(const point3_t *point, int *out_x, int *out_y, int view)
{
    if (!is_orthographic(view))
        return;
    const VESKView &record = *vesk_get_view(view);
    const view_axes_t &axes = view_axes[view];
    *out_x = to_pixel(screen_of(record, axis_of(*point, axes.horizontal), axes.horizontal) + 0.5);
    *out_y = to_pixel(screen_of(record, axis_of(*point, axes.vertical), axes.vertical) + 0.5);
}

void point3towin(vertex *v, int view)
{
    if (!is_orthographic(view))
        return;
    int x = 0;
    int y = 0;
    point2xy(&v->position, &x, &y, view);
    v->mark[0] = static_cast<uint16_t>(std::clamp(x, -32768, 32767));
    v->mark[1] = static_cast<uint16_t>(std::clamp(y, -32768, 32767));
}

void point3dto2d(const point3_t *point, float *out_a, float *out_b, int view)
{
    if (!is_orthographic(view))
        return;
    *out_a = axis_of(*point, view_axes[view].horizontal);
    *out_b = axis_of(*point, view_axes[view].vertical);
}

void size_to_pixels(const point3_t *size, int *out_w, int *out_h, int view)
{
    if (!is_orthographic(view))
        return;
    const float scale = vesk_get_view(view)->scale;
    const view_axes_t &axes = view_axes[view];
    *out_w = to_pixel(to_pixel(axis_of(*size, axes.horizontal) * scale) + 0.5);
    *out_h = to_pixel(to_pixel(axis_of(*size, axes.vertical) * scale) + 0.5);
}

double pixels_to_distance(int pixels, int view)
{
    const VESKView *record = vesk_get_view(view);
    return record != nullptr ? static_cast<double>(pixels) / record->scale : 0.0;
}

void point2screen(const point3_t *point, point3_t *out, int view)
{
    if (!is_orthographic(view))
        return;
    const VESKView &record = *vesk_get_view(view);
    const point3_t source = *point; // `out` may be the same record
    for (int axis = 0; axis < 3; ++axis)
        axis_of(*out, axis) = axis_sign[axis] * record.scale * axis_of(source, axis) +
                              record.centre[axis] + record.pan[axis];
}

void screen2point(const point3_t *screen, point3_t *out, int view)
{
    if (!is_orthographic(view))
        return;
    const VESKView &record = *vesk_get_view(view);
    const point3_t source = *screen;
    for (int axis = 0; axis < 3; ++axis)
        axis_of(*out, axis) =
            axis_sign[axis] *
            ((axis_of(source, axis) - record.centre[axis] - record.pan[axis]) / record.scale);
}

void mouse_to_point(int x, int y, int view, point3_t *out)
{
    if (!is_orthographic(view))
        return;
    const VESKView &record = *vesk_get_view(view);
    const view_axes_t &axes = view_axes[view];
    point3_t screen;
    axis_of(screen, axes.horizontal) = static_cast<float>(x);
    axis_of(screen, axes.vertical) = static_cast<float>(y);
    axis_of(screen, axes.depth) = record.centre[axes.depth] + record.pan[axes.depth];
    screen2point(&screen, out, view);
    axis_of(*out, axes.depth) += axis_of(*vesk_get_depth_point(), axes.depth);
}
