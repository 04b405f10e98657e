#include "view/drag_resize.h"

#include "base/prefs.h"
#include "edit/snap.h"
#include "view/near_snap.h"
#include "view/number_field.h"
#include "view/views_internal.h"

namespace {

// The way of the dragged sides of the box, as distances along the view's axes.
void snap_sides(const pointer_event_t &event, const world_box_t &old, const handle_sides_t &sides,
                float *by_horizontal, float *by_vertical)
{
    const view_axes_t axes = view_axes[event.view];
    const auto spacing = static_cast<float>(prefs.grid);
    point3_t found;
    const bool near = prefs.snap_near != 0 && near_snap_at(event.view, event.x, event.y, &found);
    const auto snap = [&](int side, int axis, float *by) {
        const float from = axis_of(side > 0 ? old.max : old.min, axis);
        if (side != 0 && near) {
            *by = axis_of(found, axis) - from;
        } else if (side != 0 && prefs.gridsnap != 0) {
            point3_t p = {from + *by, 0, 0};
            snap_to_grid_float(&p, spacing, spacing, spacing);
            *by = p.x - from;
        }
    };
    snap(sides.horizontal, axes.horizontal, by_horizontal);
    snap(sides.vertical, axes.vertical, by_vertical);
}

// Typed sizes: the side that stays for the mouse stays for them.
void apply_typed_sizes(const handle_sides_t &sides, int view, bool from_centre,
                       const world_box_t &old, world_box_t *box)
{
    const view_axes_t axes = view_axes[view];
    for (int axis = 0; axis < 3; ++axis) {
        float size = 0;
        if (!number_field_value(axis, &size)) {
            continue;
        }
        const int side = from_centre               ? 0
                         : axis == axes.horizontal ? sides.horizontal
                         : axis == axes.vertical   ? sides.vertical
                                                   : 0;
        const float low = axis_of(old.min, axis), high = axis_of(old.max, axis);
        const float middle = (low + high) / 2;
        axis_of(box->min, axis) = side > 0 ? low : side < 0 ? high - size : middle - size / 2;
        axis_of(box->max, axis) = axis_of(box->min, axis) + size;
    }
}

} // namespace

world_box_t drag_resized_box(const pointer_event_t &event, const world_box_t &old, int handle,
                             int axis, const point3_t &by)
{
    const view_axes_t axes = view_axes[event.view];
    const handle_sides_t sides = handle_sides(event.view, handle);
    float by_horizontal = axis_of(by, axes.horizontal), by_vertical = axis_of(by, axes.vertical);
    snap_sides(event, old, sides, &by_horizontal, &by_vertical);
    const bool from_centre = qualifier_control(event.state) != 0;
    world_box_t box = resized_box(event.view, old, handle, by_horizontal, by_vertical, from_centre,
                                  qualifier_shift(event.state) != 0);
    for (int other = 0; other < 3; ++other) {
        if (axis >= 0 && other != axis) {
            axis_of(box.min, other) = axis_of(old.min, other);
            axis_of(box.max, other) = axis_of(old.max, other);
        }
    }
    apply_typed_sizes(sides, event.view, from_centre, old, &box);
    return box;
}
