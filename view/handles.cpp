#include "view/handles.h"

#include "base/prefs.h"
#include "edit/document/modes.h"
#include "edit/document/selection_internal.h"
#include "view/interaction.h"
#include "view/projection.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr double margin = 8; // between the true bounds and the frame
constexpr double shortest_side_with_handle = 36;

int scaled(double pixels) { return static_cast<int>(std::lround(pixels * view_interface_scale())); }

// One axis of a resize: which of its two sides is dragged, and by how much in world units.
void drag_side(float *low, float *high, bool drag_low, bool drag_high, float by, bool both)
{
    if (drag_low) {
        *low += by;
        *high -= both ? by : 0;
    } else if (drag_high) {
        *high += by;
        *low -= both ? by : 0;
    }
}

// Gives an axis the factor of the other about the side that stays (or the middle).
void scale_side(float *low, float *high, float old_low, float old_high, float factor, bool keep_low,
                bool keep_high)
{
    const float size = (old_high - old_low) * factor;
    if (keep_low) {
        *high = old_low + size;
    } else if (keep_high) {
        *low = old_high - size;
    } else {
        const float middle = (old_low + old_high) / 2;
        *low = middle - size / 2;
        *high = middle + size / 2;
    }
}

} // namespace

handle_box_t handle_box(int view)
{
    handle_box_t box;
    if (!is_orthographic(view) || selection().box_valid == 0 || nothing_is_selected() != 0) {
        return box;
    }
    int ax = 0, ay = 0, bx = 0, by = 0;
    point2xy(&selection().box_min, &ax, &ay, view);
    point2xy(&selection().box_max, &bx, &by, view);
    box.valid = true;
    box.x0 = std::min(ax, bx) - scaled(margin);
    box.y0 = std::min(ay, by) - scaled(margin);
    box.x1 = std::max(ax, bx) + scaled(margin);
    box.y1 = std::max(ay, by) + scaled(margin);
    const auto add = [&](int x, int y, int code) { box.places[box.num_places++] = {x, y, code}; };
    add(box.x0, box.y0, HANDLE_TOP | HANDLE_LEFT);
    add(box.x1, box.y0, HANDLE_TOP | HANDLE_RIGHT);
    add(box.x0, box.y1, HANDLE_BOTTOM | HANDLE_LEFT);
    add(box.x1, box.y1, HANDLE_BOTTOM | HANDLE_RIGHT);
    if (box.x1 - box.x0 >= scaled(shortest_side_with_handle)) {
        add((box.x0 + box.x1) / 2, box.y0, HANDLE_EDGE | HANDLE_TOP);
        add((box.x0 + box.x1) / 2, box.y1, HANDLE_EDGE | HANDLE_BOTTOM);
    }
    if (box.y1 - box.y0 >= scaled(shortest_side_with_handle)) {
        add(box.x0, (box.y0 + box.y1) / 2, HANDLE_EDGE | HANDLE_LEFT);
        add(box.x1, (box.y0 + box.y1) / 2, HANDLE_EDGE | HANDLE_RIGHT);
    }
    return box;
}

int handle_at(int view, int x, int y)
{
    const handle_box_t box = handle_box(view);
    if (!box.valid) {
        return HANDLE_NONE;
    }
    const int reach = scaled(prefs.handle_size) / 2 + 2;
    for (int i = 0; i < box.num_places; ++i) {
        if (std::abs(x - box.places[i].x) <= reach && std::abs(y - box.places[i].y) <= reach) {
            return box.places[i].code;
        }
    }
    if (x < box.x0 || x > box.x1 || y < box.y0 || y > box.y1) {
        return HANDLE_NONE;
    }
    return draw_mode() == DRAW_ROTATE ? HANDLE_INSIDE_ROTATE : HANDLE_INSIDE_MOVE;
}

handle_sides_t handle_sides(int view, int code)
{
    // On the screen the vertical axis grows downwards in the plan view and upwards in the others.
    const bool top_is_high = axis_sign[view_axes[view].vertical] < 0;
    const auto side = [&](int low, int high) {
        return (code & high) != 0 ? 1 : (code & low) != 0 ? -1 : 0;
    };
    return {side(HANDLE_LEFT, HANDLE_RIGHT),
            top_is_high ? side(HANDLE_BOTTOM, HANDLE_TOP) : side(HANDLE_TOP, HANDLE_BOTTOM)};
}

world_box_t resized_box(int view, const world_box_t &old_box, int code, float by_horizontal,
                        float by_vertical, bool from_centre, bool keep_shape)
{
    const view_axes_t axes = view_axes[view];
    const handle_sides_t sides = handle_sides(view, code);
    world_box_t box = old_box;
    float &left = axis_of(box.min, axes.horizontal);
    float &right = axis_of(box.max, axes.horizontal);
    float &low = axis_of(box.min, axes.vertical);
    float &high = axis_of(box.max, axes.vertical);
    const float old_left = left, old_right = right, old_low = low, old_high = high;
    drag_side(&left, &right, sides.horizontal<0, sides.horizontal> 0, by_horizontal, from_centre);
    drag_side(&low, &high, sides.vertical<0, sides.vertical> 0, by_vertical, from_centre);
    if (!keep_shape) {
        return box;
    }
    const float size_x = old_right - old_left, size_y = old_high - old_low;
    const float factor_x = size_x > 0 ? (right - left) / size_x : 1;
    const float factor_y = size_y > 0 ? (high - low) / size_y : 1;
    const bool follow_x = std::fabs(factor_x - 1) >= std::fabs(factor_y - 1);
    const float factor = follow_x ? factor_x : factor_y;
    scale_side(&left, &right, old_left, old_right, factor, !from_centre && sides.horizontal > 0,
               !from_centre && sides.horizontal < 0);
    scale_side(&low, &high, old_low, old_high, factor, !from_centre && sides.vertical > 0,
               !from_centre && sides.vertical < 0);
    float &near_side = axis_of(box.min, axes.depth);
    float &far_side = axis_of(box.max, axes.depth);
    scale_side(&near_side, &far_side, near_side, far_side, factor, false, false);
    return box;
}
