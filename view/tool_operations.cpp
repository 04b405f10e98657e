#include "view/tool_operations.h"

#include "base/echo.h"
#include "base/messages.h"
#include "base/prefs.h"
#include "base/redraw.h"
#include "edit/document/edge_selection.h"
#include "edit/document/edit_support.h"
#include "edit/document/modes.h"
#include "edit/document/undo_internal.h"
#include "view/camera.h"
#include "view/drag_echo.h"
#include "view/drag_offset.h"
#include "view/extrude_preview.h"
#include "view/interaction.h"
#include "view/near_snap.h"
#include "view/number_field.h"
#include "view/projector.h"
#include "view/screen_ray.h"
#include "view/tool_options.h"
#include "view/tool_select.h"
#include "view/tools.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace {

using words_t = std::vector<std::string>;

// Selections of more vertices show their result at the end of the drag only.
constexpr int live_limit = 20000;
constexpr double no_limit = std::numeric_limits<double>::infinity();

// ---- the table ----

struct numbers_t {
    float first = 0, second = 0;
    point3_t offset = {0, 0, 0};
};

// What the pointer's way on the screen means.
enum class way {
    right,  // a length: to the right it grows
    normal, // a length along the mean normal, where that can be seen
    slide,  // a share: the vertex under the pointer follows it
    offset, // a vector in the plane of the screen
};

struct operation_t {
    const char *name; // of the tool
    way how;
    double least, most;
    std::vector<number_part_t> parts; // of the number field
    const char *wheel;                // the option that it changes; null for none
    words_t (*words)(const numbers_t &);
};

words_t bevel_words(const numbers_t &n)
{
    if (select_mode() == SELECT_VERTEX)
        return {"vertex_bevel", echo_number(n.first)};
    return {"edge_bevel", echo_number(n.first), tool_option("bevel_segments"),
            tool_option("bevel_profile")};
}

words_t inset_words(const numbers_t &n)
{
    return {"inset", echo_number(n.first), echo_number(n.second), tool_option("inset_of")};
}

words_t offset_words(const numbers_t &n)
{
    words_t words = echo_point(n.offset);
    words.insert(words.begin(), "extrude_edges");
    return words;
}

words_t slide_words(const numbers_t &n) { return {"slide", echo_number(n.first)}; }
words_t each_words(const numbers_t &n) { return {"extrude_each", echo_number(n.first)}; }
words_t normals_words(const numbers_t &n) { return {"extrude_normals", echo_number(n.first)}; }

words_t shell_words(const numbers_t &n)
{
    return {"shell", echo_number(n.first), tool_option("shell_rim")};
}

const std::vector<operation_t> &operations()
{
    // clang-format off
    static const std::vector<operation_t> table = {
        {"slide", way::slide, -1, 1, {{"Share", 0}}, nullptr, slide_words},
        {"edge_bevel", way::right, 0, no_limit, {{"Width", 0}}, "bevel_segments", bevel_words},
        {"inset", way::right, 0, no_limit, {{"Width", 0}, {"Depth", 2}}, nullptr, inset_words},
        {"extrude_each", way::normal, -no_limit, no_limit, {{"Distance", 0}}, nullptr, each_words},
        {"extrude_normals", way::normal, -no_limit, no_limit, {{"Distance", 0}}, nullptr, normals_words},
        {"extrude_edges", way::offset, -no_limit, no_limit, {{"dX", 0}, {"dY", 1}, {"dZ", 2}}, nullptr, offset_words},
        {"shell", way::right, 0, no_limit, {{"Thickness", 0}}, nullptr, shell_words},
    };
    // clang-format on
    return table;
}

const operation_t *operation_now()
{
    const tool_t *tool = tool_now();
    for (const operation_t &operation : operations()) {
        if (tool != nullptr && tool->name != nullptr &&
            std::strcmp(tool->name, operation.name) == 0)
            return &operation;
    }
    return nullptr;
}

// ---- state ----

struct vector2_t {
    double x = 0, y = 0;
};

struct drag_state_t {
    const operation_t *operation = nullptr; // null: nothing is pressed
    pointer_event_t start = {}, last = {};
    bool selects = false; // what is pressed is to be selected first
    std::unique_ptr<step_t> step;
    bool live = false; // the result shows meanwhile
    bool busy = false; // the operation runs
    double unit = 0;   // length of a pixel
    point3_t centre = {0, 0, 0};
    vector2_t forth, back; // on the screen: where 1 and -1 lead
    numbers_t base, now;
    pointer_event_t turned = {}; // where Control was pressed or let go
    bool second = false;         // Control drags the second number
    int axis = -1;               // that an offset is locked to
    words_t shown;               // the words whose result shows
    bool done = false;           // the operation changed something
};
drag_state_t state;

void end_drag()
{
    number_field_close();
    state = {};
}

void run_operation(const words_t &words)
{
    const unsigned serial = undo_last_serial();
    state.busy = true;
    run_in_drag(words);
    state.busy = false;
    state.done = undo_last_serial() != serial;
}

void take_back()
{
    state.busy = true;
    state.step->take_back();
    state.busy = false;
    state.shown.clear();
}

// ---- the beginning ----

int selected_size()
{
    int vertices = 0;
    for (const owned_edges &owned : selected_edges())
        vertices += owned.object->num_vertices;
    return vertices;
}

bool on_screen(const point3_t &p, vector2_t *at)
{
    return window_position(state.start.view, p, &at->x, &at->y);
}

// Where the end of the mean normal of the selected surfaces lies from its beginning.
bool look_along_normal()
{
    const point3_t normal = extrude_preview_t().normal();
    vector2_t from, to;
    if (point_length(normal) == 0 || !on_screen(state.centre, &from) ||
        !on_screen(point_add(state.centre, normal), &to))
        return false;
    state.forth = {to.x - from.x, to.y - from.y};
    state.back = {-state.forth.x, -state.forth.y};
    // Seen from above it has no length on the screen.
    return std::hypot(state.forth.x, state.forth.y) * state.unit > 0.2;
}

vertex *nearest_selected_vertex()
{
    vertex *nearest = nullptr;
    double least = no_limit;
    for (vertex *v : each<vertex>(selection().vertices)) {
        vector2_t at;
        if (!on_screen(v->position, &at))
            continue;
        const double far = std::hypot(at.x - state.start.x, at.y - state.start.y);
        if (far < least) {
            least = far;
            nearest = v;
        }
    }
    return nearest;
}

// Tries which way the vertex at the pointer slides.
bool look_along_slide()
{
    constexpr float trial = 0.5f;
    const vertex *v = state.live ? nearest_selected_vertex() : nullptr;
    vector2_t from, to;
    if (v == nullptr || !on_screen(v->position, &from))
        return false;
    for (const bool ahead : {true, false}) {
        run_operation(state.operation->words({ahead ? trial : -trial}));
        const bool seen = on_screen(v->position, &to);
        take_back();
        if (!seen)
            return false;
        vector2_t &way = ahead ? state.forth : state.back;
        way = {(to.x - from.x) / static_cast<double>(trial),
               (to.y - from.y) / static_cast<double>(trial)};
    }
    constexpr double shortest = 5; // pixels
    return std::hypot(state.forth.x, state.forth.y) > shortest &&
           std::hypot(state.back.x, state.back.y) > shortest;
}

void begin_drag()
{
    if (state.step != nullptr)
        return;
    if (state.selects)
        select_click(state.start.view, state.start.x, state.start.y, state.start.state,
                     state.start.seconds);
    find_bounding_box();
    state.centre = selection().box_centre;
    const double depth = static_cast<double>(projector_t(state.start.view)(state.centre).depth);
    state.unit = units_per_pixel_at(state.start.view, depth);
    state.step = std::make_unique<step_t>(step_t::of::drag);
    state.live = selected_size() <= live_limit;
    state.turned = state.start;
    const way how = state.operation->how;
    const bool seen =
        how == way::normal ? look_along_normal() : how == way::slide && look_along_slide();
    if (!seen) {
        constexpr double pixels_of_share = 150;
        state.forth = {how == way::slide ? pixels_of_share : 1 / state.unit, 0};
        state.back = {-state.forth.x, 0};
    }
}

// ---- the numbers ----

// A number that a pixel more or less does not make longer than it needs to be.
float rounded(double value, double unit)
{
    if (!(unit > 0) || !std::isfinite(value))
        return 0;
    const double step = std::pow(10.0, std::floor(std::log10(unit)));
    return static_cast<float>(std::round(value / step) * step);
}

// How far along a way of the screen the pointer went; below 0 against it.
double share_of(const vector2_t &way, double dx, double dy)
{
    return (dx * way.x + dy * way.y) / (way.x * way.x + way.y * way.y);
}

float dragged_number(const pointer_event_t &event)
{
    const double dx = event.x - state.turned.x, dy = event.y - state.turned.y;
    const double ahead = share_of(state.forth, dx, dy), behind = share_of(state.back, dx, dy);
    const double value = ahead >= behind ? ahead : -behind;
    return rounded(value, 1 / std::hypot(state.forth.x, state.forth.y));
}

point3_t dragged_offset(const pointer_event_t &event)
{
    const int dx = event.x - state.start.x, dy = event.y - state.start.y;
    point3_t offset = {0, 0, 0};
    if (is_orthographic(event.view)) {
        const view_axes_t axes = view_axes[event.view];
        axis_of(offset, axes.horizontal) =
            static_cast<float>(dx * state.unit) * axis_sign[axes.horizontal];
        axis_of(offset, axes.vertical) =
            static_cast<float>(dy * state.unit) * axis_sign[axes.vertical];
    } else {
        offset = screen_offset_3d(state.centre, dx, dy);
    }
    for (int axis = 0; axis < 3; ++axis) {
        float &value = axis_of(offset, axis);
        value = state.axis >= 0 && axis != state.axis
                    ? 0
                    : rounded(static_cast<double>(value), state.unit);
        number_field_value(axis, &value);
    }
    return offset;
}

// Control changes which of the two numbers follows the pointer from here on.
void take_second(const pointer_event_t &event)
{
    const bool second = state.operation->parts.size() == 2 && qualifier_control(event.state) != 0;
    if (second == state.second)
        return;
    state.second = second;
    state.base = state.now;
    state.turned = event;
}

void take_numbers(const pointer_event_t &event)
{
    if (state.operation->how == way::offset) {
        state.now.offset = dragged_offset(event);
        return;
    }
    take_second(event);
    const float by = dragged_number(event);
    state.now = state.base;
    if (state.second)
        state.now.second += state.operation->how == way::right ? by : -by;
    else
        state.now.first += by;
    number_field_value(0, &state.now.first);
    if (state.operation->parts.size() == 2)
        number_field_value(1, &state.now.second);
    state.now.first = static_cast<float>(std::clamp(static_cast<double>(state.now.first),
                                                    state.operation->least, state.operation->most));
}

bool is_nothing()
{
    return state.now.first == 0 && state.now.second == 0 &&
           point_equal(state.now.offset, {0, 0, 0});
}

// ---- the result ----

void tell_numbers()
{
    if (!state.done && !state.shown.empty())
        return; // the operation has said why
    const bool offset = state.operation->how == way::offset;
    const float values[3] = {offset ? state.now.offset.x : state.now.first,
                             offset ? state.now.offset.y : state.now.second, state.now.offset.z};
    std::string text;
    for (std::size_t i = 0; i < state.operation->parts.size(); ++i)
        text += std::string(i == 0 ? "" : "  ") + state.operation->parts[i].label + " " +
                echo_number(values[i]);
    if (state.operation->wheel != nullptr && select_mode() != SELECT_VERTEX)
        text += "  segments " + tool_option(state.operation->wheel);
    display_message("%s", text.c_str());
}

void show_result()
{
    const words_t words = is_nothing() ? words_t() : state.operation->words(state.now);
    if (state.live && words != state.shown) {
        if (!state.shown.empty())
            take_back();
        if (!words.empty())
            run_operation(words);
        state.shown = words;
    }
    tell_numbers();
    number_field_show(state.last.view, state.last.x, state.last.y);
    for (int view = 0; view < num_views; ++view)
        view_note_motion(view, state.last.seconds);
    redraw_all();
}

bool press(const pointer_event_t &event)
{
    if (event.view == VIEW_XYZ && vesk_person_is_walk_vehicle() != 0)
        return false; // the left button walks
    const pick_hit_t hit = select_hit_at(event.view, event.x, event.y);
    if (hit.object == nullptr && event.view == VIEW_XYZ)
        return false; // turns the model
    end_drag();
    state.operation = operation_now();
    state.start = state.last = event;
    state.selects = hit.object != nullptr && !select_hit_is_selected(hit);
    return true;
}

void motion(const pointer_event_t &event)
{
    if (state.busy || (state.step == nullptr && is_click(state.start, event)))
        return;
    begin_drag();
    state.last = event;
    take_numbers(event);
    show_result();
}

void release(const pointer_event_t &event)
{
    if (state.step == nullptr) {
        const pointer_event_t start = state.start;
        end_drag();
        select_click(start.view, start.x, start.y, event.state, event.seconds);
        return;
    }
    take_numbers(event);
    show_result();
    const words_t words = is_nothing() ? words_t() : state.operation->words(state.now);
    if (!state.live && !words.empty())
        run_operation(words);
    const std::unique_ptr<step_t> step = std::move(state.step);
    const std::string label = state.operation->name;
    const bool done = state.done && !words.empty();
    end_drag();
    if (done)
        keep_step(*step, words, label.c_str());
    redraw_all();
}

void cancel()
{
    if (state.step != nullptr && !state.shown.empty())
        take_back();
    end_drag();
    redraw_all();
    display_status();
}

bool lock_axis(const char *keysym)
{
    if (state.operation->how != way::offset || std::strlen(keysym) != 1 ||
        std::strchr("xyzXYZ", keysym[0]) == nullptr)
        return false;
    const int axis = (keysym[0] | 0x20) - 'x';
    state.axis = axis == state.axis ? -1 : axis;
    number_field_choose(axis);
    return true;
}

bool key(const char *keysym)
{
    if (state.operation == nullptr || state.busy)
        return false;
    const int first =
        state.operation->how == way::offset ? std::max(state.axis, 0) : (state.second ? 1 : 0);
    const number_key used = number_field_key(keysym, state.operation->parts, first);
    if (used == number_key::unused && !lock_axis(keysym))
        return false;
    if (used == number_key::accepted) {
        interaction_accept();
        return true;
    }
    begin_drag();
    take_numbers(state.last);
    show_result();
    return true;
}

bool wheel(int direction)
{
    if (state.step == nullptr || state.busy || state.operation->wheel == nullptr)
        return false;
    tool_option_step(state.operation->wheel, direction);
    show_result();
    return true;
}

bool runs() { return state.step != nullptr && !state.busy; }

} // namespace

std::span<const tool_t> operation_tools()
{
    static const std::vector<tool_t> tools = [] {
        std::vector<tool_t> made;
        for (const operation_t &operation : operations())
            made.push_back({.name = operation.name,
                            .press = press,
                            .motion = motion,
                            .release = release,
                            .cancel = cancel,
                            .key = key,
                            .wheel = wheel,
                            .runs = runs,
                            .forget = end_drag});
        return made;
    }();
    return tools;
}
