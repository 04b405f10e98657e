// Every step of a drag is computed from the coordinates at the press; the release is one undo
// record.

#include "view/uv_drag.h"

#include "base/echo.h"
#include "base/messages.h"
#include "base/prefs.h"
#include "base/redraw.h"
#include "edit/document/selection.h"
#include "edit/uv/uv_replay.h"
#include "model/angle.h"
#include "view/drag_echo.h"
#include "view/interaction.h"
#include "view/number_field.h"
#include "view/uv_view.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

constexpr double angle_step = 15;
constexpr double pixels_per_zoom_step = 6;

enum class doing { NOTHING, PRESSED, BAND, MOVE, ROTATE, SCALE, PAN, ZOOM };

struct drag_t {
    doing what = doing::NOTHING;
    pointer_event_t start = {}, last = {};
    bool moved = false;
    bool held = false;    // the button is up, a number is being typed
    bool pending = false; // the model is left as it is until the end
    int handle = HANDLE_NONE;
    std::unique_ptr<step_t> step;
    std::vector<flat_uv> before;
    std::vector<char> moving;
    uv_box box;                                   // of the moving corners
    double centre_u = 0, centre_v = 0, scale = 0; // of the view, at the press
    std::string text;
};
drag_t drag;

bool changes_coordinates()
{
    return drag.what == doing::MOVE || drag.what == doing::ROTATE || drag.what == doing::SCALE;
}

std::string number_text(double number)
{
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.4f", number);
    return buffer;
}

int handle_under(int x, int y)
{
    const handle_box_t box = uv_handle_box();
    if (!box.valid)
        return HANDLE_NONE;
    const int reach =
        static_cast<int>(std::lround(prefs.handle_size * view_interface_scale())) / 2 + 2;
    for (int i = 0; i < box.num_places; ++i) {
        if (std::abs(x - box.places[i].x) <= reach && std::abs(y - box.places[i].y) <= reach)
            return box.places[i].code;
    }
    if (x < box.x0 || x > box.x1 || y < box.y0 || y > box.y1)
        return HANDLE_NONE;
    return uv_view().tool == uv_tool::ROTATE ? HANDLE_INSIDE_ROTATE : HANDLE_INSIDE_MOVE;
}

doing what_to_do(const pointer_event_t &event)
{
    const int button = event.button == 1 && qualifier_alt(event.state) != 0 ? 2 : event.button;
    if (button == 2)
        return doing::PAN;
    if (button == 3)
        return doing::ZOOM;
    if (button != 1 || uv_editor().mesh.num_surfaces() == 0)
        return button == 1 ? doing::PRESSED : doing::NOTHING;
    drag.handle = handle_under(event.x, event.y);
    if (drag.handle == HANDLE_NONE)
        return doing::BAND;
    if (drag.handle > HANDLE_INSIDE_ROTATE)
        return doing::SCALE;
    switch (uv_view().tool) {
    case uv_tool::ROTATE:
        return doing::ROTATE;
    case uv_tool::SCALE:
        return doing::SCALE;
    default:
        return doing::MOVE;
    }
}

// ---- the result of the drag ----

bool snaps(int state) { return uv_view().options.snap != (qualifier_control(state) != 0); }

// A side of the box on a whole pixel.
double snapped_by(float side, double by, double pixels)
{
    return std::round((side + by) * pixels) / pixels - side;
}

uv_matrix move_matrix(const pointer_event_t &event)
{
    double du = (event.x - drag.start.x) / uv_view().scale;
    double dv = -(event.y - drag.start.y) / uv_scale_v();
    if (snaps(event.state)) {
        const uv_pixels pixels = uv_picture_size();
        du = snapped_by(drag.box.u0, du, pixels.width);
        dv = snapped_by(drag.box.v0, dv, pixels.height);
    }
    if (uv_view().locked_axis == 0)
        dv = 0;
    if (uv_view().locked_axis == 1)
        du = 0;
    float typed = 0;
    if (number_field_value(0, &typed))
        du = double{typed};
    if (number_field_value(1, &typed))
        dv = double{typed};
    drag.text = "dU " + number_text(du) + "   dV " + number_text(dv);
    return uv_translation(du, dv);
}

uv_matrix rotate_matrix(const pointer_event_t &event)
{
    const uv_screen_point centre = uv_to_screen(drag.box.middle());
    const double before = std::atan2(centre.y - drag.start.y, drag.start.x - centre.x);
    const double now = std::atan2(centre.y - event.y, event.x - centre.x);
    double degrees = std::remainder(now - before, 2 * pi) * degrees_per_radian;
    if (qualifier_shift(event.state) != 0)
        degrees = std::round(degrees / angle_step) * angle_step;
    float typed = 0;
    if (number_field_value(0, &typed))
        degrees = double{typed};
    drag.text = "angle " + number_text(degrees);
    return uv_rotation(degrees, drag.box.middle(), uv_picture_size().aspect());
}

// Which side of one direction is dragged: -1 the lower, 1 the upper one, 0 none.
struct sides_t {
    int u, v;
};
sides_t dragged_sides()
{
    const auto side = [](int low, int high) {
        return (drag.handle & high) != 0 ? 1 : (drag.handle & low) != 0 ? -1 : 0;
    };
    return {side(HANDLE_LEFT, HANDLE_RIGHT), side(HANDLE_BOTTOM, HANDLE_TOP)};
}

bool has_handle() { return drag.handle > HANDLE_INSIDE_ROTATE; }

// By how much a dragged side changes the length; the middle stays when both sides move.
double factor_of(float low, float high, int side, double by, bool from_centre)
{
    const double size = double{high} - low;
    return side == 0 || size == 0 ? 1 : (size + by * side * (from_centre ? 2 : 1)) / size;
}

void handle_factors(const pointer_event_t &event, bool from_centre, double *su, double *sv)
{
    const sides_t sides = dragged_sides();
    double du = (event.x - drag.start.x) / uv_view().scale;
    double dv = -(event.y - drag.start.y) / uv_scale_v();
    if (uv_view().options.snap) {
        const uv_pixels pixels = uv_picture_size();
        du = snapped_by(sides.u > 0 ? drag.box.u1 : drag.box.u0, du, pixels.width);
        dv = snapped_by(sides.v > 0 ? drag.box.v1 : drag.box.v0, dv, pixels.height);
    }
    *su = factor_of(drag.box.u0, drag.box.u1, sides.u, du, from_centre);
    *sv = factor_of(drag.box.v0, drag.box.v1, sides.v, dv, from_centre);
    if (qualifier_shift(event.state) != 0) {
        const double both = std::fabs(*su - 1) >= std::fabs(*sv - 1) ? *su : *sv;
        *su = *sv = both;
    }
}

// Inside the frame: by how much farther from the middle the pointer is.
void distance_factors(const pointer_event_t &event, double *su, double *sv)
{
    const uv_screen_point centre = uv_to_screen(drag.box.middle());
    const double before = std::hypot(drag.start.x - centre.x, drag.start.y - centre.y);
    const double now = std::hypot(event.x - centre.x, event.y - centre.y);
    *su = *sv = now / std::max(before, 8.0);
}

uv_matrix scale_matrix(const pointer_event_t &event)
{
    const bool from_centre = !has_handle() || qualifier_control(event.state) != 0;
    double su = 1, sv = 1;
    if (has_handle())
        handle_factors(event, from_centre, &su, &sv);
    else
        distance_factors(event, &su, &sv);
    if (uv_view().locked_axis == 0)
        sv = 1;
    if (uv_view().locked_axis == 1)
        su = 1;
    float typed = 0;
    if (number_field_value(0, &typed)) {
        su = double{typed};
        if (uv_view().locked_axis < 0)
            sv = su; // until another one is typed
    }
    if (number_field_value(1, &typed))
        sv = double{typed};
    drag.text = "U x " + number_text(su) + "   V x " + number_text(sv);
    const sides_t sides = dragged_sides();
    flat_uv fixed = drag.box.middle();
    if (has_handle() && !from_centre) {
        fixed.u = sides.u > 0 ? drag.box.u0 : sides.u < 0 ? drag.box.u1 : fixed.u;
        fixed.v = sides.v > 0 ? drag.box.v0 : sides.v < 0 ? drag.box.v1 : fixed.v;
    }
    return uv_scaling(su, sv, fixed);
}

uv_matrix matrix_of(const pointer_event_t &event)
{
    return drag.what == doing::MOVE     ? move_matrix(event)
           : drag.what == doing::ROTATE ? rotate_matrix(event)
                                        : scale_matrix(event);
}

// ---- the course of a drag ----

void begin()
{
    drag.moved = true;
    if (!changes_coordinates())
        return;
    const uv_state &state = uv_editor();
    drag.step = std::make_unique<step_t>(step_t::of::drag);
    drag.moving = uv_moving_corners(state);
    drag.box = uv_box_of(state.mesh, drag.moving);
    uv_view().lock_point = drag.box.middle();
    drag.pending = state.mesh.at.size() > many_uv_corners;
    if (!drag.pending) {
        drag.before = state.mesh.at;
        return;
    }
    uv_view().pending_corners = std::move(drag.moving);
    uv_view().pending_matrix = {};
    uv_view().pending = true;
}

void step(const pointer_event_t &event)
{
    uv_view_t &view = uv_view();
    const double dx = event.x - drag.start.x, dy = event.y - drag.start.y;
    switch (drag.what) {
    case doing::BAND:
        view.band = true;
        view.x0 = drag.start.x;
        view.y0 = drag.start.y;
        view.x1 = event.x;
        view.y1 = event.y;
        break;
    case doing::PAN:
        view.placed = true;
        view.centre_u = drag.centre_u - dx / view.scale;
        view.centre_v = drag.centre_v + dy / uv_scale_v();
        break;
    case doing::ZOOM:
        view.centre_u = drag.centre_u;
        view.centre_v = drag.centre_v;
        view.scale = drag.scale;
        uv_view_zoom(std::pow(prefs.zoom_factor_2d, -dy / pixels_per_zoom_step), drag.start.x,
                     drag.start.y);
        break;
    case doing::PRESSED:
        break;
    default:
        if (drag.pending) {
            view.pending_matrix = matrix_of(event);
            uv_view_redraw();
        } else {
            uv_preview(uv_transformed(drag.before, drag.moving, matrix_of(event)));
            redraw_all();
        }
        tcl_command("uvedit_drag \"%s\"", drag.text.c_str());
        return;
    }
    uv_view_redraw();
}

void end()
{
    const bool told = changes_coordinates() && drag.moved;
    number_field_close();
    drag = {};
    uv_view_t &view = uv_view();
    view.band = false;
    view.locked_axis = -1;
    view.pending = false;
    view.pending_corners = {};
    if (told)
        tcl_command("uvedit_drag \"\"");
    uv_view_redraw();
}

// The model as it was, then the whole change as one record.
void finish(const pointer_event_t &event)
{
    const uv_matrix m = matrix_of(event);
    const char *const kind = drag.what == doing::MOVE     ? "move"
                             : drag.what == doing::ROTATE ? "rotate"
                                                          : "scale";
    if (!drag.pending)
        uv_preview(drag.before);
    const std::unique_ptr<step_t> step = std::move(drag.step);
    end();
    std::vector<std::string> words;
    if (uv_transform_by(kind, m) > 0) {
        words = {"uv_transform", kind};
        for (const double number : {m.a, m.b, m.c, m.d, m.e, m.f})
            words.push_back(echo_number(number));
    }
    keep_step(*step, words, (std::string(kind) + " texture coordinates").c_str());
    redraw_all();
    display_status();
}

// ---- keys ----

bool take_number(const char *key)
{
    const std::vector<number_part_t> parts =
        drag.what == doing::MOVE    ? std::vector<number_part_t>{{"dU", 0}, {"dV", 1}}
        : drag.what == doing::SCALE ? std::vector<number_part_t>{{"U x", 0}, {"V x", 1}}
                                    : std::vector<number_part_t>{{"angle", 2}};
    const int first = drag.what == doing::ROTATE ? 0 : std::max(uv_view().locked_axis, 0);
    switch (number_field_key(key, parts, first)) {
    case number_key::unused:
        return false;
    case number_key::accepted:
        finish(drag.last);
        return true;
    case number_key::changed:
        break;
    }
    if (!drag.moved)
        begin();
    number_field_show(texture_coords_view, drag.last.x, drag.last.y);
    step(drag.last);
    return true;
}

bool take_axis(const char *key)
{
    if (std::strlen(key) != 1 || drag.what == doing::ROTATE)
        return false;
    const char *const at = std::strchr("xyuv", std::tolower(key[0]));
    if (at == nullptr || *at == 0)
        return false;
    const int axis = *at == 'x' || *at == 'u' ? 0 : 1;
    uv_view().locked_axis = uv_view().locked_axis == axis ? -1 : axis;
    if (number_field_is_open() && uv_view().locked_axis >= 0) {
        number_field_choose(axis);
        number_field_show(texture_coords_view, drag.last.x, drag.last.y);
    }
    if (drag.moved)
        step(drag.last);
    return true;
}

void selection_changes(const char *, void *)
{
    if (drag.what != doing::NOTHING)
        uv_drag_cancel();
}

} // namespace

void uv_drag_press(const pointer_event_t &event)
{
    if (drag.what != doing::NOTHING) {
        if (event.button == 3 && drag.start.button != 3)
            uv_drag_cancel();
        else if (event.button == 1 && drag.held)
            finish(drag.last);
        return;
    }
    drag = {};
    drag.start = drag.last = event;
    drag.what = what_to_do(event);
    drag.centre_u = uv_view().centre_u;
    drag.centre_v = uv_view().centre_v;
    drag.scale = uv_view().scale;
}

void uv_drag_motion(const pointer_event_t &event)
{
    if (drag.what == doing::NOTHING) {
        if (uv_editor_is_ready())
            win_set_handle_cursor(texture_coords_view, handle_under(event.x, event.y));
        return;
    }
    if (drag.held)
        return;
    if (!drag.moved && is_click(drag.start, event))
        return;
    if (!drag.moved)
        begin();
    drag.last = event;
    step(event);
    number_field_show(texture_coords_view, event.x, event.y);
}

void uv_drag_release(const pointer_event_t &event)
{
    if (drag.what == doing::NOTHING || drag.held || event.button != drag.start.button)
        return;
    if (number_field_is_open()) {
        drag.held = true;
        return;
    }
    if (changes_coordinates() && drag.moved) {
        finish(event);
        return;
    }
    const drag_t done = std::move(drag);
    end();
    if (done.what == doing::BAND && done.moved) {
        uv_view_take_band(done.start.x, done.start.y, event.x, event.y, event.state);
    } else if (!done.moved && event.button == 1 && done.what != doing::PAN) {
        uv_view_click(done.start.x, done.start.y, done.start.state);
    } else if (!done.moved && event.button == 3) {
        tcl_command("uvedit_menu %d %d", event.x, event.y);
    }
}

bool uv_drag_key(const char *keysym)
{
    if (drag.what == doing::NOTHING)
        return false;
    if (std::strcmp(keysym, "Escape") == 0) {
        uv_drag_cancel();
        return true;
    }
    return changes_coordinates() && (take_number(keysym) || take_axis(keysym));
}

bool uv_drag_runs() { return drag.what != doing::NOTHING; }

void uv_drag_cancel()
{
    if (drag.what == doing::NOTHING)
        return;
    const bool changed = changes_coordinates() && drag.moved;
    drag_t done = std::move(drag);
    end();
    if (changed) {
        if (!done.pending)
            uv_preview(done.before);
        done.step.reset();
    } else {
        uv_view().centre_u = done.centre_u;
        uv_view().centre_v = done.centre_v;
        uv_view().scale = done.scale;
    }
    redraw_all();
    display_status();
}

void uv_drag_forget()
{
    drag = {};
    uv_view().band = false;
    uv_view().locked_axis = -1;
    uv_view().pending = false;
}

void uv_drag_install() { vesk_add_selection_changed_callback(selection_changes, nullptr); }
