#include "view/tool_transform.h"

#include "base/coor_display.h"
#include "base/echo.h"
#include "base/messages.h"
#include "base/prefs.h"
#include "base/redraw.h"
#include "edit/axis_pivot.h"
#include "edit/document/edit_support.h"
#include "edit/document/modes.h"
#include "edit/document/selection_internal.h"
#include "edit/drag_transform.h"
#include "edit/extrude.h"
#include "edit/snap.h"
#include "edit/soft_selection.h"
#include "model/angle.h"
#include "model/change_marks.h"
#include "model/vector.h"
#include "view/camera_eye.h"
#include "view/drag_echo.h"
#include "view/drag_offset.h"
#include "view/drag_resize.h"
#include "view/extrude_preview.h"
#include "view/handles.h"
#include "view/highlight.h"
#include "view/interaction.h"
#include "view/near_snap.h"
#include "view/number_field.h"
#include "view/overlay.h"
#include "view/projection.h"
#include "view/tool_select.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstring>
#include <memory>
#include <optional>
#include <utility>

namespace {

constexpr float angle_step = 15.0f;

enum class doing { NOTHING, BAND, MOVE, ROTATE, RESIZE, EXTRUDE };

struct state_t {
    doing what = doing::NOTHING;
    pointer_event_t start = {};
    bool moved = false;
    int handle = 0;
    int axis = -1;            // locked to
    point3_t way = {0, 0, 0}; // locked to another direction, of length 1; 0: none
    world_box_t box = {};
    point3_t centre = {0, 0, 0};
    point3_t grabbed = {0, 0, 0}; // vertex nearest to the press: near snap brings it to another
    std::unique_ptr<step_t> step;
    std::unique_ptr<drag_transform_t> transform;
    std::unique_ptr<extrude_preview_t> extrusion;
    pointer_event_t last = {};
};
state_t tool;

extrude_sides extrusion_sides = extrude_sides::automatic;

doing what_beside(int view) { return is_orthographic(view) ? doing::BAND : doing::NOTHING; }

doing what_on_selection(int view)
{
    if (draw_mode() == DRAW_EXTRUDE)
        return extrude_has_surfaces() ? doing::EXTRUDE : what_beside(view);
    return draw_mode() == DRAW_ROTATE && is_orthographic(view) ? doing::ROTATE : doing::MOVE;
}

// Shift adds by a rubber band unless it begins on a selected part: the rest of the selection's box
// is as good as empty then.
bool begins_on_selection(const pointer_event_t &event, int handle)
{
    return (handle != HANDLE_NONE && qualifier_shift(event.state) == 0) ||
           pointer_is_on_selection(event.view, event.x, event.y);
}

// A load selects what came. Nobody has chosen it, so that a drag over it is meant for the view.
struct loaded_t {
    unsigned selection = ~0u;
    std::uint64_t model = 0;
};
loaded_t loaded;

bool is_just_loaded()
{
    return loaded.selection == selection_change_count() && loaded.model == model_change_count();
}

doing what_to_do(const pointer_event_t &event, int handle)
{
    if (event.view == VIEW_XYZ && vesk_person_is_walk_vehicle() != 0) {
        return doing::NOTHING; // the left button walks
    }
    if (handle > HANDLE_INSIDE_ROTATE)
        return doing::RESIZE;
    if (!is_just_loaded() && begins_on_selection(event, handle)) {
        return what_on_selection(event.view);
    }
    return what_beside(event.view);
}

// The direction that the drag keeps to: one that was chosen; else an extrusion follows the surfaces'
// normal where that can be seen, unless an axis is chosen or Shift held. Of length 0: none.
point3_t way_of(const pointer_event_t &event)
{
    if (point_length(tool.way) > 0)
        return tool.way;
    const bool by_normal = tool.extrusion != nullptr && tool.axis < 0 &&
                           qualifier_shift(event.state) == 0 &&
                           direction_is_seen(event.view, tool.centre, tool.extrusion->normal());
    return by_normal ? tool.extrusion->normal() : point3_t{0, 0, 0};
}

bool keeps_to_way(const pointer_event_t &event) { return point_length(way_of(event)) > 0; }

// The world offset of the drag so far.
point3_t offset_of(const pointer_event_t &event)
{
    const int dx = event.x - tool.start.x;
    const int dy = event.y - tool.start.y;
    if (keeps_to_way(event))
        return direction_is_seen(event.view, tool.centre, way_of(event))
                   ? offset_along(event.view, tool.centre, way_of(event), dx, dy)
                   : point3_t{0, 0, 0};
    if (event.view == VIEW_XYZ)
        return screen_offset_3d(tool.centre, dx, dy);
    point3_t offset = {0, 0, 0};
    const view_axes_t axes = view_axes[event.view];
    const auto unit = static_cast<float>(pixels_to_distance(1, event.view));
    axis_of(offset, axes.horizontal) = static_cast<float>(dx) * unit * axis_sign[axes.horizontal];
    axis_of(offset, axes.vertical) = static_cast<float>(dy) * unit * axis_sign[axes.vertical];
    return offset;
}

void lock_to_axis(point3_t *offset)
{
    for (int axis = 0; axis < 3; ++axis) {
        if (tool.axis >= 0 && axis != tool.axis)
            axis_of(*offset, axis) = 0;
    }
}

// ---- snapping ----

bool snaps_to_grid(int state) { return (prefs.gridsnap != 0) != (qualifier_control(state) != 0); }

void snap_offset(const pointer_event_t &event, point3_t *offset)
{
    const bool near = prefs.snap_near != 0 && snap_near_from(tool.grabbed, event.view, offset);
    if (!near && snaps_to_grid(event.state))
        snap_to_grid_from(tool.box.min, offset);
    lock_to_axis(offset);
    if (keeps_to_way(event))
        *offset = point_scale(way_of(event), static_cast<float>(point_dot(*offset, way_of(event))));
}

// The vertex that moves and lies nearest to the press.
point3_t nearest_moving(const pointer_event_t &event)
{
    point3_t nearest = tool.centre;
    double smallest = -1;
    tool.transform->each_start([&](const point3_t &p) {
        double x = 0, y = 0;
        if (!window_position(event.view, p, &x, &y))
            return;
        const double distance = std::hypot(x - event.x, y - event.y);
        if (smallest < 0 || distance < smallest) {
            smallest = distance;
            nearest = p;
        }
    });
    return nearest;
}

// ---- the result of the drag ----

void apply_typed(point3_t *numbers)
{
    for (int axis = 0; axis < 3; ++axis) {
        number_field_value(axis, &axis_of(*numbers, axis));
    }
}

drag_change_t move_change(const pointer_event_t &event)
{
    drag_change_t change;
    change.kind = drag_change_t::MOVE;
    change.offset = offset_of(event);
    lock_to_axis(&change.offset);
    snap_offset(event, &change.offset);
    float distance = 0;
    if (!keeps_to_way(event))
        apply_typed(&change.offset);
    else if (number_field_value(0, &distance))
        change.offset = point_scale(way_of(event), distance);
    return change;
}

// The sign that a view gives an angle about its axis.
float rotation_sign(int view) { return view == VIEW_ZY ? 1.0f : -1.0f; }

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
    change.own_centres = prefs.rotate_about_object_centre != 0;
    change.degrees = static_cast<float>(std::remainder(now - before, 2 * pi) * degrees_per_radian);
    if (qualifier_shift(event.state) != 0)
        change.degrees = std::round(change.degrees / angle_step) * angle_step;
    float typed = 0;
    if (number_field_value(0, &typed))
        change.degrees = typed * rotation_sign(event.view);
    return change;
}

drag_change_t resize_change(const pointer_event_t &event)
{
    const world_box_t box =
        drag_resized_box(event, tool.box, tool.handle, tool.axis, offset_of(event));
    drag_change_t change;
    change.kind = drag_change_t::RESIZE;
    change.from_min = tool.box.min;
    change.from_max = tool.box.max;
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

bool is_nothing(const drag_change_t &change)
{
    switch (change.kind) {
    case drag_change_t::MOVE:
        return point_equal(change.offset, {0, 0, 0});
    case drag_change_t::RESIZE:
        return point_equal(change.from_min, change.to_min) &&
               point_equal(change.from_max, change.to_max);
    default:
        return change.degrees == 0;
    }
}

// ---- showing it ----

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

void show_pending(const drag_change_t &change)
{
    overlay_t &shown = overlay();
    shown.moving = true;
    shown.pending = !tool.transform->is_live() && !tool.transform->turns_own(change);
    if (shown.pending)
        drag_matrix(change, shown.pending_matrix);
}

void note_motion_everywhere(double seconds)
{
    for (int view = 0; view < num_views; ++view) {
        view_note_motion(view, seconds);
    }
}

void step(const pointer_event_t &event)
{
    if (tool.what == doing::BAND) {
        show_band(tool.start, event);
        return;
    }
    const drag_change_t change = change_of(event);
    show(change);
    if (tool.what == doing::EXTRUDE) {
        tool.extrusion->outline_at(change.offset, &overlay().preview);
    } else {
        tool.transform->step(change);
        show_pending(change);
    }
    note_motion_everywhere(event.seconds);
    redraw_all();
}

void drop()
{
    const int band_view = overlay().band_view;
    number_field_close();
    near_snap_end();
    overlay() = {};
    tool = {};
    if (band_view != VIEW_NONE)
        redraw(band_view);
}

// Its normal is asked for before anything has moved.
void begin_extrusion()
{
    if (tool.what == doing::EXTRUDE && tool.extrusion == nullptr)
        tool.extrusion = std::make_unique<extrude_preview_t>();
}

// The first motion, or the first digit.
void begin_change()
{
    if (tool.moved)
        return;
    tool.moved = true;
    if (tool.what == doing::BAND)
        return;
    tool.step = std::make_unique<step_t>(step_t::of::drag);
    tool.transform = std::make_unique<drag_transform_t>();
    tool.grabbed = nearest_moving(tool.start);
    begin_extrusion();
    if (prefs.snap_near != 0) {
        near_snap_begin(tool.what == doing::EXTRUDE ? std::vector<vertex *>()
                                                    : tool.transform->moving());
    }
}

// ---- the end of a drag ----

void finish_change(const pointer_event_t &event)
{
    const drag_change_t change = change_of(event);
    // Calls from here on may announce changes: the drag must be forgotten by then.
    const bool extrudes = tool.what == doing::EXTRUDE;
    const std::unique_ptr<step_t> step = std::move(tool.step);
    const std::unique_ptr<drag_transform_t> transform = std::move(tool.transform);
    std::vector<std::string> words;
    const std::vector<std::string> soft = soft_selection_words();
    drop();
    if (is_nothing(change)) {
        transform->take_back();
    } else if (extrudes) {
        if (extrude_and_select(change.offset, extrusion_sides))
            words = words_of_extrusion(change.offset, extrusion_sides);
    } else {
        transform->step(change);
        transform->finish();
        words = words_of_change(change, transform->turns_own(change));
        if (!soft.empty())
            echo_command(soft);
    }
    keep_step(*step, words, extrudes ? "extrude" : "drag");
    redraw_all();
    display_status();
}

// ---- numbers ----

std::vector<number_part_t> number_parts(int *first)
{
    const int view = tool.start.view;
    const bool flat = is_orthographic(view);
    *first = tool.axis >= 0 ? tool.axis : flat ? view_axes[view].horizontal : 0;
    if (tool.what == doing::ROTATE) {
        static constexpr const char *labels[] = {"rX", "rY", "rZ"};
        const int axis = view_axes[view].depth;
        *first = 0;
        return {{labels[axis], axis}};
    }
    if (tool.what == doing::RESIZE) {
        if (tool.axis < 0 && handle_sides(view, tool.handle).horizontal == 0)
            *first = view_axes[view].vertical;
        return {{"W", 0}, {"H", 1}, {"D", 2}};
    }
    if (keeps_to_way(tool.last)) {
        *first = 0;
        return {{"D", NUMBER_WITHOUT_AXIS}};
    }
    return {{"dX", 0}, {"dY", 1}, {"dZ", 2}};
}

bool take_number(const char *key)
{
    begin_extrusion();
    int first = 0;
    const std::vector<number_part_t> parts = number_parts(&first);
    switch (number_field_key(key, parts, first)) {
    case number_key::unused:
        return false;
    case number_key::accepted:
        interaction_accept();
        return true;
    case number_key::changed:
        break;
    }
    begin_change();
    number_field_show(tool.last.view, tool.last.x, tool.last.y);
    step(tool.last);
    return true;
}

// X, Y and Z lock to an axis; N, L and P to the mean normal, the axis used last, the picked one.
bool take_axis(const char *key)
{
    static constexpr const char *axes = "xyznlp";
    static constexpr const char *words[] = {"normal", "last", "picked"};
    const char *axis = std::strlen(key) == 1 ? std::strchr(axes, std::tolower(key[0])) : nullptr;
    const auto wanted = static_cast<int>(axis != nullptr ? axis - axes : 0);
    const bool moves = tool.what == doing::MOVE || tool.what == doing::EXTRUDE;
    if (axis == nullptr || tool.what == doing::ROTATE || (wanted > 2 && !moves))
        return false;
    const bool again = overlay().locked_axis == wanted;
    tool.axis = again || wanted > 2 ? -1 : wanted;
    const std::optional<vec3d> way =
        again || wanted <= 2 ? std::nullopt : axis_of_word("move", words[wanted - 3]);
    const bool had_way =
        point_length(std::exchange(tool.way, way ? to_point(*way) : point3_t{})) > 0;
    overlay().locked_axis = way ? wanted : tool.axis;
    overlay().lock_point = tool.centre;
    overlay().lock_way = tool.way;
    if (tool.what == doing::EXTRUDE || way || had_way) {
        number_field_close(); // a distance is none along an axis, nor the other way round
    } else if (number_field_is_open() && tool.axis >= 0) {
        number_field_choose(tool.axis);
        number_field_show(tool.last.view, tool.last.x, tool.last.y);
    }
    if (tool.moved)
        step(tool.last);
    return true;
}

bool press(const pointer_event_t &event)
{
    const int handle = handle_at(event.view, event.x, event.y);
    const doing what = what_to_do(event, handle);
    if (draw_mode() == DRAW_EXTRUDE && nothing_is_selected() == 0 && !extrude_has_surfaces())
        display_message("extrude - select whole surfaces first");
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

void motion(const pointer_event_t &event)
{
    if (!tool.moved && is_click(tool.start, event))
        return;
    begin_change();
    tool.last = event;
    step(event);
    number_field_show(event.view, event.x, event.y);
}

void release(const pointer_event_t &event)
{
    if (!tool.moved) {
        const pointer_event_t start = tool.start;
        drop();
        select_click(start.view, start.x, start.y, start.state, start.seconds);
        return;
    }
    if (tool.what == doing::BAND) {
        const band_t band = {tool.start.x, tool.start.y, event.x, event.y, event.x < tool.start.x};
        const int view = tool.start.view;
        drop();
        select_band(view, band, event.state);
        return;
    }
    finish_change(event);
}

void cancel()
{
    std::unique_ptr<step_t> step = std::move(tool.step);
    const std::unique_ptr<drag_transform_t> transform = std::move(tool.transform);
    drop();
    if (transform != nullptr)
        transform->take_back();
    step.reset();
    redraw_all();
    display_status();
}

bool key(const char *key)
{
    if (tool.what == doing::NOTHING || tool.what == doing::BAND)
        return false;
    return take_number(key) || take_axis(key);
}

// During a drag the wheel makes what soft selection takes along larger or smaller.
bool wheel(int direction)
{
    if (tool.transform == nullptr || tool.extrusion != nullptr || !soft_selection_acts())
        return false;
    tool.transform->take_back();
    soft_radius_step(direction);
    soft_neighbours_shown(false);
    tool.transform = std::make_unique<drag_transform_t>();
    step(tool.last);
    return true;
}

bool runs() { return tool.transform != nullptr; }

void click(const pointer_event_t &event)
{
    select_click(event.view, event.x, event.y, event.state, event.seconds);
}

void hover(const pointer_event_t &event)
{
    const int handle = handle_at(event.view, event.x, event.y);
    if (handle <= HANDLE_INSIDE_ROTATE)
        highlight_follow(event.view, event.x, event.y);
    else
        highlight_clear();
}

const char *pointer(const pointer_event_t &event)
{
    const int handle = handle_at(event.view, event.x, event.y);
    const bool flat = is_orthographic(event.view);
    if (nothing_is_selected() != 0 || (flat ? handle == HANDLE_NONE : !highlight_is_quick()))
        return nullptr;
    switch (what_to_do(event, handle)) {
    case doing::RESIZE:
        return handle_cursor(handle);
    case doing::ROTATE:
        return handle_cursor(HANDLE_INSIDE_ROTATE);
    case doing::MOVE:
        return handle_cursor(HANDLE_INSIDE_MOVE);
    case doing::EXTRUDE:
        return "based_arrow_up";
    default:
        return nullptr;
    }
}

bool wanted() { return mode_is_selectable(draw_mode()) != 0; }

} // namespace

void note_loaded_selection() { loaded = {selection_change_count(), model_change_count()}; }

void set_extrusion_sides(extrude_sides sides) { extrusion_sides = sides; }

const tool_t transform_tool = {.wanted = wanted,
                               .press = press,
                               .motion = motion,
                               .release = release,
                               .cancel = cancel,
                               .click = click,
                               .pointer = pointer,
                               .hover = hover,
                               .outside = highlight_clear,
                               .key = key,
                               .wheel = wheel,
                               .runs = runs,
                               .forget = drop};
