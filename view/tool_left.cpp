#include "view/tool_left.h"

#include "app/coor_display.h"
#include "app/messages.h"
#include "app/prefs.h"
#include "edit/drag_transform.h"
#include "edit/journal.h"
#include "edit/modes.h"
#include "edit/selection_internal.h"
#include "edit/snap.h"
#include "model/vector.h"
#include "view/camera_internal.h"
#include "view/handles.h"
#include "view/interaction.h"
#include "view/overlay.h"
#include "view/projection.h"
#include "view/redraw.h"
#include "view/tool_create.h"
#include "view/tool_select.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

constexpr int click_slack = 3; // pixels that are still a click
constexpr float angle_step = 15.0f;
constexpr double degrees_per_radian = 57.29577951308232;

enum class doing { NOTHING, BAND, ZOOM, MOVE, ROTATE, RESIZE };

struct tool_t {
    doing what = doing::NOTHING;
    pointer_event_t start = {};
    bool moved = false;
    int handle = 0;
    int axis = -1; // locked to
    world_box_t box = {};
    point3_t centre = {0, 0, 0};
    std::unique_ptr<drag_transform_t> transform;
    pointer_event_t last = {};
};
tool_t tool;

bool acts_on_selection() { return mode_is_selectable(draw_mode()) != 0; }

bool draws_band() { return tool.what == doing::BAND || tool.what == doing::ZOOM; }

doing what_to_do(const pointer_event_t &event, int handle)
{
    if (draw_mode() == DRAW_ZOOM) {
        return is_orthographic(event.view) ? doing::ZOOM : doing::NOTHING;
    }
    if (handle > HANDLE_INSIDE_ROTATE) {
        return doing::RESIZE;
    }
    const bool on_selection =
        handle != HANDLE_NONE || pointer_is_on_selection(event.view, event.x, event.y);
    if (on_selection) {
        return draw_mode() == DRAW_ROTATE && is_orthographic(event.view) ? doing::ROTATE
                                                                         : doing::MOVE;
    }
    return is_orthographic(event.view) ? doing::BAND : doing::NOTHING;
}

// World offset of a pixel offset in the plane of the screen through `at`, in the 3D view.
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

// The world offset of a drag by (dx, dy) pixels.
point3_t offset_of(const pointer_event_t &event)
{
    const int dx = event.x - tool.start.x;
    const int dy = event.y - tool.start.y;
    point3_t offset = {0, 0, 0};
    if (event.view == VIEW_XYZ) {
        return screen_offset_3d(tool.centre, dx, dy);
    }
    const view_axes_t axes = view_axes[event.view];
    const auto unit = static_cast<float>(pixels_to_distance(1, event.view));
    axis_of(offset, axes.horizontal) = static_cast<float>(dx) * unit * axis_sign[axes.horizontal];
    axis_of(offset, axes.vertical) = static_cast<float>(dy) * unit * axis_sign[axes.vertical];
    return offset;
}

void lock_to_axis(point3_t *offset)
{
    for (int axis = 0; axis < 3; ++axis) {
        if (tool.axis >= 0 && axis != tool.axis) {
            axis_of(*offset, axis) = 0;
        }
    }
}

// Snapping: what is dragged by comes onto the grid, not the offset. Control toggles it.
bool snaps(int state) { return (prefs.gridsnap != 0) != (qualifier_control(state) != 0); }

void snap_offset(point3_t *offset)
{
    const auto spacing = static_cast<float>(prefs.grid);
    point3_t target = point_add(tool.box.min, *offset);
    snap_to_grid_float(&target, spacing, spacing, spacing);
    const point3_t snapped = point_sub(target, tool.box.min);
    for (int axis = 0; axis < 3; ++axis) { // an axis that does not move is not pulled along
        if (axis_of(*offset, axis) != 0) {
            axis_of(*offset, axis) = axis_of(snapped, axis);
        }
    }
}

drag_change_t move_change(const pointer_event_t &event)
{
    drag_change_t change;
    change.kind = drag_change_t::MOVE;
    change.offset = offset_of(event);
    lock_to_axis(&change.offset);
    if (snaps(event.state)) {
        snap_offset(&change.offset);
    }
    return change;
}

drag_change_t rotate_change(const pointer_event_t &event)
{
    int cx = 0, cy = 0;
    point2xy(&tool.centre, &cx, &cy, event.view);
    const double before = std::atan2(tool.start.y - cy, tool.start.x - cx);
    const double now = std::atan2(event.y - cy, event.x - cx);
    drag_change_t change;
    change.kind = drag_change_t::ROTATE;
    change.view = event.view;
    change.centre = tool.centre;
    change.degrees =
        static_cast<float>(std::remainder(now - before, 2 * M_PI) * degrees_per_radian);
    if (qualifier_shift(event.state) != 0) {
        change.degrees = std::round(change.degrees / angle_step) * angle_step;
    }
    return change;
}

drag_change_t resize_change(const pointer_event_t &event)
{
    drag_change_t change;
    change.kind = drag_change_t::RESIZE;
    change.from_min = tool.box.min;
    change.from_max = tool.box.max;
    const world_box_t box = resized_box(event.view, tool.box, tool.handle, event.x - tool.start.x,
                                        event.y - tool.start.y, qualifier_control(event.state) != 0,
                                        qualifier_shift(event.state) != 0);
    change.to_min = box.min;
    change.to_max = box.max;
    return change;
}

drag_change_t change_of(const pointer_event_t &event)
{
    switch (tool.what) {
    case doing::ROTATE:
        return rotate_change(event);
    case doing::RESIZE:
        return resize_change(event);
    default:
        return move_change(event);
    }
}

void show(const drag_change_t &change)
{
    switch (change.kind) {
    case drag_change_t::MOVE: {
        const point3_t now = point_add(tool.centre, change.offset);
        show_coors_and_point(&now, &change.offset);
        break;
    }
    case drag_change_t::ROTATE:
        show_angle(change.degrees);
        break;
    default:
        show_size(&change.to_max, &change.to_min);
        break;
    }
}

void step(const pointer_event_t &event)
{
    if (draws_band()) {
        overlay_t &shown = overlay();
        shown.band_view = event.view;
        shown.x0 = tool.start.x;
        shown.y0 = tool.start.y;
        shown.x1 = event.x;
        shown.y1 = event.y;
        redraw(event.view);
        return;
    }
    const drag_change_t change = change_of(event);
    tool.transform->step(change);
    show(change);
    for (int view = 0; view < num_views; ++view) {
        view_note_motion(view, event.seconds);
    }
    redraw_all();
}

void forget()
{
    const int band_view = overlay().band_view;
    overlay() = {};
    tool = {};
    if (band_view != VIEW_NONE) {
        redraw(band_view);
    }
}

// ---- the tool's functions ----

bool transform_press(const pointer_event_t &event)
{
    const int handle =
        draw_mode() == DRAW_ZOOM ? HANDLE_NONE : handle_at(event.view, event.x, event.y);
    const doing what = what_to_do(event, handle);
    if (what == doing::NOTHING) {
        return false; // the camera's
    }
    tool = {};
    tool.what = what;
    tool.start = tool.last = event;
    tool.handle = handle;
    tool.box = {selection().box_min, selection().box_max};
    tool.centre = selection().box_centre;
    return true;
}

void transform_motion(const pointer_event_t &event)
{
    if (!tool.moved && std::abs(event.x - tool.start.x) <= click_slack &&
        std::abs(event.y - tool.start.y) <= click_slack) {
        return;
    }
    if (!tool.moved && !draws_band()) {
        journal_begin();
        journal_hold(true);
        tool.transform = std::make_unique<drag_transform_t>();
    }
    tool.moved = true;
    tool.last = event;
    step(event);
}

// A click zooms in (Shift: out), a rectangle is seen as large as it fits.
void finish_zoom(const pointer_event_t &event)
{
    const pointer_event_t start = tool.start;
    const bool clicked = !tool.moved;
    forget();
    if (clicked) {
        qualifier_shift(event.state) != 0 ? zoom_out_win(start.view) : zoom_in_win(start.view);
        return;
    }
    int geometry[4] = {};
    win_get_geom(start.view, geometry);
    const auto width = static_cast<float>(std::max(std::abs(event.x - start.x), 4));
    const auto height = static_cast<float>(std::max(std::abs(event.y - start.y), 4));
    view_pan_by(start.view,
                static_cast<float>(geometry[2]) / 2 - static_cast<float>(event.x + start.x) / 2,
                static_cast<float>(geometry[3]) / 2 - static_cast<float>(event.y + start.y) / 2);
    view_zoom_by(start.view, std::min(static_cast<float>(geometry[2]) / width,
                                      static_cast<float>(geometry[3]) / height));
    redraw_orth();
}

void transform_release(const pointer_event_t &event)
{
    if (tool.what == doing::ZOOM) {
        finish_zoom(event);
        return;
    }
    if (!tool.moved) {
        const pointer_event_t start = tool.start;
        forget();
        select_click(start.view, start.x, start.y, event.state);
        return;
    }
    if (tool.what == doing::BAND) {
        const band_t band = {tool.start.x, tool.start.y, event.x, event.y, event.x < tool.start.x};
        const int view = tool.start.view;
        forget();
        select_band(view, band, event.state);
        return;
    }
    tool.transform->step(change_of(event));
    tool.transform->finish();
    forget();
    journal_hold(false);
    journal_step("drag");
    redraw_all();
    display_status();
}

void transform_cancel()
{
    if (tool.transform != nullptr) {
        tool.transform->take_back();
        journal_hold(false);
    }
    forget();
    redraw_all();
    display_status();
}

// One of the two families, by draw mode; a drag stays with the one that it began with.
bool creating = false;

bool press(const pointer_event_t &event)
{
    creating = !acts_on_selection() && draw_mode() != DRAW_ZOOM;
    return creating ? create_press(event) : transform_press(event);
}

void motion(const pointer_event_t &event) { (creating ? create_motion : transform_motion)(event); }

void release(const pointer_event_t &event)
{
    (creating ? create_release : transform_release)(event);
}

void cancel() { (creating ? create_cancel : transform_cancel)(); }

void click(const pointer_event_t &event)
{
    if (acts_on_selection()) {
        select_click(event.view, event.x, event.y, event.state);
    }
}

void hover(const pointer_event_t &event)
{
    if (acts_on_selection()) {
        win_set_handle_cursor(event.view, handle_at(event.view, event.x, event.y));
    } else {
        create_hover(event);
    }
}

const left_tool_t functions = {press, motion, release, cancel, click, hover};

void cancel_half_drawn()
{
    if (create_is_half_drawn()) {
        create_cancel();
    }
}

} // namespace

void left_tool_install()
{
    interaction_set_left_tool(&functions);
    set_draw_cancel_hook(cancel_half_drawn);
}

bool left_tool_key(const char *key)
{
    if (create_key(key)) {
        return true;
    }
    if (std::strcmp(key, "Escape") == 0 && interaction_drag() != drag_kind::none) {
        interaction_cancel();
        return true;
    }
    static constexpr const char *axes = "xyz";
    const char *axis = std::strlen(key) == 1 ? std::strchr(axes, std::tolower(key[0])) : nullptr;
    if (axis == nullptr || tool.what != doing::MOVE) {
        return false;
    }
    const auto wanted = static_cast<int>(axis - axes);
    tool.axis = tool.axis == wanted ? -1 : wanted;
    overlay().locked_axis = tool.axis;
    overlay().lock_point = tool.centre;
    if (tool.moved) {
        step(tool.last);
    }
    return true;
}

void left_tool_reset_for_test()
{
    tool = {};
    creating = false;
    overlay() = {};
    tool_create_reset_for_test();
    tool_select_reset_for_test();
}
