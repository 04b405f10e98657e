#include "view/interaction.h"

#include "base/messages.h"
#include "base/prefs.h"
#include "base/redraw.h"
#include "model/vector.h"
#include "view/axis_cross.h"
#include "view/camera_eye.h"
#include "view/draw_budget.h"
#include "view/highlight.h"
#include "view/number_field.h"
#include "view/tool.h"
#include "view/tool_select.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr float pixels_per_turn_step = 10; // of mouse_rotate_degs
constexpr float pixels_per_zoom_step = 6;
constexpr int spin_tick_msecs = 16;
constexpr double flick_window = 0.06;  // seconds between the last motion and the release
constexpr double slowest_flick = 20.0; // degrees a second
constexpr double fastest_flick = 720.0;
constexpr float look_degrees_per_pixel = 0.25f;
constexpr double seconds_of_walk_step = 0.1; // the time that walking speeds refer to

struct drag_t {
    drag_kind kind = drag_kind::none;
    int view = VIEW_NONE;
    int button = 0;
    pointer_event_t start = {};
    int last_x = 0, last_y = 0;
    bool moved = false;
    bool held = false;            // the button is up, the drag goes on
    const tool_t *tool = nullptr; // of drag_kind::tool
    pointer_event_t last = {};    // of a tool's drag
    double last_time = 0;
    double speed_x = 0, speed_y = 0; // degrees a second, while turning
    int cross_axis = 0;
    bool cross_positive = true;
    Person_t person_before = {};
    VESKView view_before = {};
};

struct interaction_t {
    drag_t drag;
    bool spinning = false;
    double spin_x = 0, spin_y = 0; // degrees a second
    double last_tick = 0;
    pointer_event_t hover = {VIEW_NONE, 0, 0,
                             0,         0, 0}; // where the pointer was last, without a drag
    double last_motion[num_views] = {-1e9, -1e9, -1e9, -1e9};
    const tool_t *(*tools)() = nullptr;
    double scale = 1.0;
    pointer_event_t pointer = {VIEW_NONE, 0, 0, 0, 0, 0};
};
interaction_t interaction;

const tool_t *tool_of_left_button()
{
    return interaction.tools == nullptr ? nullptr : interaction.tools();
}

// Alt and the left button stand for the middle one.
int meant_button(const pointer_event_t &event)
{
    return event.button == 1 && qualifier_alt(event.state) != 0 ? 2 : event.button;
}

drag_kind kind_for_flat_view(int button)
{
    if (button == 2 && prefs.middle_button_drags_view != 0)
        return drag_kind::pan;
    if (button == 3 && prefs.right_button_zooms_view != 0)
        return drag_kind::zoom;
    return drag_kind::none;
}

drag_kind kind_for_3d_view(int button)
{
    const bool walking = vesk_person_is_walk_vehicle() != 0;
    switch (button) {
    case 1:
        return walking ? drag_kind::walk : drag_kind::turn;
    case 2:
        return walking ? drag_kind::look : drag_kind::pan;
    case 3:
        return walking ? drag_kind::slide : drag_kind::zoom;
    default:
        return drag_kind::none;
    }
}

// A press on the axis cross is none of the camera's or a tool's.
bool take_axis_cross(const pointer_event_t &event, drag_t &drag)
{
    if (event.view != VIEW_XYZ || meant_button(event) != 1)
        return false;
    const axis_cross_t cross = axis_cross(interaction.scale);
    const axis_end_t *end = axis_cross_hit(cross, event.x, event.y);
    if (end == nullptr)
        return false;
    drag.kind = drag_kind::axis_cross;
    drag.cross_axis = end->axis;
    drag.cross_positive = end->positive;
    return true;
}

void pan_3d(float dx, float dy)
{
    const auto units = static_cast<float>(camera_units_per_pixel());
    point3_t &offset = get_person()->offset;
    const eye_transform_t t = camera_eye_transform();
    const auto along = [&](int row, int column) {
        return static_cast<float>(t.axes[row * 3 + column]);
    };
    offset.x += (along(0, 0) * dx - along(1, 0) * dy) * units;
    offset.y += (along(0, 1) * dx - along(1, 1) * dy) * units;
    offset.z += (along(0, 2) * dx - along(1, 2) * dy) * units;
}

void turn(drag_t &drag, const pointer_event_t &event, float dx, float dy)
{
    const float degrees = static_cast<float>(prefs.mouse_rotate_degs) / pixels_per_turn_step;
    person_add_spin_rotation(dy * degrees, dx * degrees);
    const double seconds = std::max(event.seconds - drag.last_time, 0.001);
    // A short memory: the flick is the last motion of the hand.
    drag.speed_x = 0.5 * drag.speed_x + 0.5 * dy * degrees / seconds;
    drag.speed_y = 0.5 * drag.speed_y + 0.5 * dx * degrees / seconds;
}

void zoom(int view, float dy)
{
    const float steps = -dy / pixels_per_zoom_step;
    if (view == VIEW_XYZ)
        vesk_person_scale_mult(std::pow(static_cast<float>(prefs.zoom_factor_3d), steps));
    else
        view_zoom_by(view, std::pow(static_cast<float>(prefs.zoom_factor_2d), steps));
}

void look(float dx, float dy)
{
    viewer_turn_right(dx * look_degrees_per_pixel);
    viewer_turn_down(dy * look_degrees_per_pixel);
}

void start_flick(const drag_t &drag, const pointer_event_t &event)
{
    const double speed = std::hypot(drag.speed_x, drag.speed_y);
    if (prefs.allow_3d_spin == 0 || !drag.moved || event.seconds - drag.last_time > flick_window ||
        speed < slowest_flick)
        return;
    const double limit = std::min(1.0, fastest_flick / speed);
    interaction.spinning = true;
    interaction.spin_x = drag.speed_x * limit;
    interaction.spin_y = drag.speed_y * limit;
    interaction.last_tick = event.seconds;
}

// Walking and sliding: speed by the distance from where the button went down.
void walk_tick(double steps)
{
    const drag_t &drag = interaction.drag;
    const auto dx = static_cast<float>((drag.last_x - drag.start.x) * steps);
    const auto dy = static_cast<float>((drag.last_y - drag.start.y) * steps);
    const auto move_speed = static_cast<float>(prefs.walk_move_speed);
    if (drag.kind == drag_kind::walk) {
        viewer_move_forward(-dy * move_speed);
        viewer_turn_right(dx * static_cast<float>(prefs.walk_turn_speed));
    } else {
        viewer_move_right(dx * move_speed);
        viewer_move_up(-dy * move_speed);
    }
}

bool walks_by_timer()
{
    return interaction.drag.kind == drag_kind::walk || interaction.drag.kind == drag_kind::slide;
}

void click(const drag_t &drag, const pointer_event_t &event)
{
    if (drag.button == 3)
        select_for_menu(event.view, event.x, event.y);
    if (drag.kind == drag_kind::axis_cross)
        camera_look_along(drag.cross_axis, drag.cross_positive);
    else if (drag.button == 3 && event.view == VIEW_XYZ)
        popup_3d_menu(event.x, event.y);
    else if (drag.button == 3)
        popup_view_menu(event.view, event.x, event.y);
    else if (const tool_t *tool = tool_of_left_button(); drag.button == 1 &&
                                                         drag.kind != drag_kind::pan &&
                                                         tool != nullptr && tool->click != nullptr)
        tool->click(event);
}

// The right button takes a drag back; a click ends one that goes on without a button.
void press_during_drag(const pointer_event_t &event)
{
    if (event.button == 3 && interaction.drag.button != 3)
        interaction_cancel();
    else if (event.button == 1 && interaction.drag.held)
        interaction_accept();
}

} // namespace

bool is_click(const pointer_event_t &press, const pointer_event_t &event)
{
    constexpr int slack = 3; // pixels
    return std::abs(event.x - press.x) <= slack && std::abs(event.y - press.y) <= slack;
}

void interaction_press(const pointer_event_t &event)
{
    if (event.view < 0 || event.view >= num_views)
        return;
    interaction.spinning = false;
    highlight_clear();
    if (interaction.drag.kind != drag_kind::none) {
        press_during_drag(event);
        return;
    }
    drag_t drag;
    drag.view = event.view;
    drag.button = event.button;
    drag.start = drag.last = event;
    drag.last_x = event.x;
    drag.last_y = event.y;
    drag.last_time = interaction.last_tick = event.seconds;
    drag.person_before = *get_person();
    drag.view_before = *vesk_get_view(event.view);
    const int button = meant_button(event);
    if (take_axis_cross(event, drag)) {
        interaction.drag = drag;
        return;
    }
    const tool_t *tool = button == 1 ? tool_of_left_button() : nullptr;
    if (tool != nullptr && tool->press(event)) {
        drag.kind = drag_kind::tool;
        drag.tool = tool;
    } else {
        drag.kind = event.view == VIEW_XYZ ? kind_for_3d_view(button) : kind_for_flat_view(button);
    }
    interaction.drag = drag;
}

void interaction_motion(const pointer_event_t &event)
{
    interaction.pointer = event;
    drag_t &drag = interaction.drag;
    if (drag.kind == drag_kind::none && drag.button == 0) {
        interaction.hover = event;
        interaction_show_pointer();
        const tool_t *tool = tool_of_left_button();
        if (tool != nullptr && tool->hover != nullptr)
            tool->hover(event);
    }
    if (drag.kind == drag_kind::none || event.view != drag.view)
        return;
    if (drag.kind == drag_kind::tool) {
        if (drag.held)
            return; // only typed numbers count
        drag.last = event;
        drag.tool->motion(event);
        return;
    }
    if (!drag.moved && is_click(drag.start, event))
        return;
    drag.moved = true;
    const auto dx = static_cast<float>(event.x - drag.last_x);
    const auto dy = static_cast<float>(event.y - drag.last_y);
    switch (drag.kind) {
    case drag_kind::pan:
        if (event.view == VIEW_XYZ)
            pan_3d(dx, dy);
        else
            view_pan_by(event.view, dx, dy);
        break;
    case drag_kind::zoom:
        zoom(event.view, dy);
        break;
    case drag_kind::turn:
        turn(drag, event, dx, dy);
        break;
    case drag_kind::look:
        look(dx, dy);
        break;
    default:
        break;
    }
    drag.last_x = event.x;
    drag.last_y = event.y;
    drag.last_time = event.seconds;
    view_note_motion(event.view, event.seconds);
    redraw(event.view);
}

void interaction_release(const pointer_event_t &given)
{
    const drag_t drag = interaction.drag;
    pointer_event_t event = given;
    // In another view, when the drag's own release was lost: it ends where it was seen last.
    if (drag.kind != drag_kind::none && given.view != drag.view) {
        event = drag.last;
        event.button = given.button;
        event.seconds = given.seconds;
    }
    if (drag.kind == drag_kind::none) {
        interaction.drag = {};
        // The right button opens the menu also where it does not zoom.
        if (drag.button == 3 && event.button == 3 && is_click(drag.start, event))
            click(drag, event);
        return;
    }
    if (event.button != drag.button || drag.held)
        return;
    if (drag.kind == drag_kind::tool && number_field_is_open()) {
        interaction.drag.held = true;
        return;
    }
    interaction.drag = {};
    if (drag.kind == drag_kind::tool) {
        drag.tool->release(event);
    } else {
        if (!drag.moved)
            click(drag, event);
        else if (drag.kind == drag_kind::turn)
            start_flick(drag, event);
        redraw(event.view);
    }
    interaction.hover = event;
    interaction_show_pointer();
}

void interaction_show_pointer()
{
    const pointer_event_t &at = interaction.hover;
    if (at.view == VIEW_NONE || interaction.drag.kind != drag_kind::none)
        return;
    const tool_t *tool = tool_of_left_button();
    const bool on_cross =
        at.view == VIEW_XYZ && axis_cross_hit(axis_cross(interaction.scale), at.x, at.y) != nullptr;
    const char *shape =
        tool == nullptr || tool->pointer == nullptr || on_cross ? nullptr : tool->pointer(at);
    if (shape != nullptr)
        win_set_cursor(at.view, shape);
    else
        win_set_mode_cursor(at.view, 0);
}

void interaction_leave(int)
{
    interaction.hover.view = VIEW_NONE;
    const tool_t *tool = tool_of_left_button();
    if (interaction.drag.kind == drag_kind::none && tool != nullptr && tool->outside != nullptr)
        tool->outside();
}

void interaction_wheel(int view, int direction)
{
    const tool_t *tool = tool_of_left_button();
    if (tool != nullptr && tool->wheel != nullptr && tool->wheel(direction))
        return;
    interaction.spinning = false;
    if (view != VIEW_XYZ || vesk_person_is_walk_vehicle() == 0) {
        zoom_view(view, direction);
        return;
    }
    viewer_move_forward(direction > 0 ? get_person()->move_step : -get_person()->move_step);
    redraw_3d();
}

void interaction_tick(double seconds)
{
    const double passed = std::clamp(seconds - interaction.last_tick, 0.0, 0.5);
    interaction.last_tick = seconds;
    if (interaction.spinning)
        person_add_spin_rotation(static_cast<float>(interaction.spin_x * passed),
                                 static_cast<float>(interaction.spin_y * passed));
    else if (walks_by_timer())
        walk_tick(passed / seconds_of_walk_step);
    else
        return;
    view_note_motion(VIEW_XYZ, seconds);
    redraw_3d();
}

int interaction_tick_msecs()
{
    if (interaction.spinning)
        return spin_tick_msecs;
    return walks_by_timer() ? std::clamp(prefs.ui_timer_msecs, spin_tick_msecs, 1000) : 0;
}

const pointer_event_t &interaction_pointer() { return interaction.pointer; }

drag_kind interaction_drag() { return interaction.drag.kind; }

int interaction_drag_view()
{
    return interaction.drag.kind == drag_kind::none ? VIEW_NONE : interaction.drag.view;
}

void interaction_cancel()
{
    interaction.spinning = false;
    const drag_t drag = interaction.drag;
    interaction.drag = {};
    if (drag.kind == drag_kind::none)
        return;
    if (drag.kind == drag_kind::tool) {
        drag.tool->cancel();
        return;
    }
    if (drag.view == VIEW_XYZ) {
        *get_person() = drag.person_before;
    } else {
        VESKView &view = *vesk_get_view(drag.view);
        view.scale = drag.view_before.scale;
        std::copy(drag.view_before.pan, drag.view_before.pan + 3, view.pan);
    }
    redraw(drag.view);
}

void interaction_accept()
{
    const drag_t drag = interaction.drag;
    if (drag.kind != drag_kind::tool)
        return;
    interaction.drag = {};
    drag.tool->release(drag.last);
}

void interaction_forget()
{
    interaction.drag = {};
    interaction.spinning = false;
}

void view_note_motion(int view, double seconds) { interaction.last_motion[view] = seconds; }

bool view_is_moving(int view, double seconds)
{
    return seconds - interaction.last_motion[view] < settle_after;
}

void interaction_set_tools(const tool_t *(*now)()) { interaction.tools = now; }

void view_set_interface_scale(double scale) { interaction.scale = scale; }

double view_interface_scale() { return interaction.scale; }

void interaction_reset_for_test() { interaction = {}; }
