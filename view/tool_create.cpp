#include "view/tool_create.h"

#include "base/coor_display.h"
#include "base/echo.h"
#include "base/messages.h"
#include "base/prefs.h"
#include "base/redraw.h"
#include "edit/create.h"
#include "edit/document/modes.h"
#include "edit/snap.h"
#include "model/bounds.h"
#include "model/lights.h"
#include "model/normals.h"
#include "view/drag_echo.h"
#include "view/interaction.h"
#include "view/near_snap.h"
#include "view/number_field.h"
#include "view/overlay.h"
#include "view/projection.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <vector>

namespace {

constexpr double double_click_seconds = 0.4;

struct corners_t {
    point3_t c1, c2; // equal when the drag did not move
};

// The kind of the present draw mode; null when it draws no outline.
const outline_kind_t *outline_tool() { return outline_kind(mode_to_string(draw_mode())); }

// The kind of the present draw mode; null when it is no box tool.
const create_kind_t *box_tool() { return create_kind(mode_to_string(draw_mode())); }

// ---- state ----

struct create_t {
    bool dragging = false;
    pointer_event_t start = {};
    int view = VIEW_NONE; // of a half-drawn outline
    std::vector<point3_t> points;
    pointer_event_t last_click = {VIEW_NONE, 0, 0, 0, 0, -1};
    pointer_event_t last = {}; // where the pointer was
    int axis = -1;             // to which the next edge of an outline is locked
};
create_t state;

bool snaps_to_grid(int modifiers)
{
    // Control means something else for boxes: from the centre.
    const bool toggled = outline_tool() != nullptr && qualifier_control(modifiers) != 0;
    return (prefs.gridsnap != 0) != toggled;
}

// The point under the pointer, snapped. A point of an outline takes the place of a near vertex
// whole, a corner of a box only where the view shows it.
point3_t point_at(const pointer_event_t &event)
{
    point3_t p = {0, 0, 0};
    mouse_to_point(event.x, event.y, event.view, &p);
    point3_t found;
    if (prefs.snap_near != 0 && near_snap_at(event.view, event.x, event.y, &found)) {
        if (box_tool() == nullptr) {
            return found;
        }
        const view_axes_t axes = view_axes[event.view];
        axis_of(p, axes.horizontal) = axis_of(found, axes.horizontal);
        axis_of(p, axes.vertical) = axis_of(found, axes.vertical);
    } else if (snaps_to_grid(event.state)) {
        const auto spacing = static_cast<float>(prefs.grid);
        snap_to_grid_float(&p, spacing, spacing, spacing);
    }
    return p;
}

// The next point of the outline: on the locked axis, or as typed, from the last one.
point3_t next_point(const pointer_event_t &event)
{
    point3_t p = point_at(event);
    if (state.points.empty()) {
        return p;
    }
    const point3_t &from = state.points.back();
    for (int axis = 0; axis < 3; ++axis) {
        if (state.axis >= 0 && axis != state.axis) {
            axis_of(p, axis) = axis_of(from, axis);
        }
        float typed = 0;
        if (number_field_value(axis, &typed)) {
            axis_of(p, axis) = axis_of(from, axis) + typed;
        }
    }
    return p;
}

void link_drawn(object_t *object, const char *label, const std::vector<std::string> &words)
{
    if (object == nullptr) {
        return;
    }
    step_t step(step_t::of::drag);
    link_created(object, label, draw_mode() == DRAW_SPHERE);
    keep_step(step, words, label);
}

// ---- box tools ----

void keep_square(float *da, float *db)
{
    const float side = std::max(std::fabs(*da), std::fabs(*db));
    *da = std::copysign(side, *da);
    *db = std::copysign(side, *db);
}

corners_t corners_of(const pointer_event_t &event, bool solid)
{
    const view_axes_t axes = view_axes[event.view];
    corners_t c = {point_at(state.start), point_at(event)};
    if (!number_field_is_open() && is_click(state.start, event)) {
        c.c2 = c.c1;
        return c;
    }
    float da = axis_of(c.c2, axes.horizontal) - axis_of(c.c1, axes.horizontal);
    float db = axis_of(c.c2, axes.vertical) - axis_of(c.c1, axes.vertical);
    if (qualifier_shift(event.state) != 0) {
        keep_square(&da, &db);
    }
    float typed = 0;
    if (number_field_value(axes.horizontal, &typed)) {
        da = std::copysign(typed, da);
    }
    if (number_field_value(axes.vertical, &typed)) {
        db = std::copysign(typed, db);
    }
    axis_of(c.c2, axes.horizontal) = axis_of(c.c1, axes.horizontal) + da;
    axis_of(c.c2, axes.vertical) = axis_of(c.c1, axes.vertical) + db;
    if (qualifier_control(event.state) != 0) { // from the centre
        axis_of(c.c1, axes.horizontal) -= da;
        axis_of(c.c1, axes.vertical) -= db;
    }
    if (solid) { // the mean of the other two, about the depth point
        const float a = std::fabs(axis_of(c.c2, axes.horizontal) - axis_of(c.c1, axes.horizontal));
        const float b = std::fabs(axis_of(c.c2, axes.vertical) - axis_of(c.c1, axes.vertical));
        float depth = (a + b) / 2;
        number_field_value(axes.depth, &depth);
        axis_of(c.c1, axes.depth) -= depth / 2;
        axis_of(c.c2, axes.depth) += depth / 2;
    }
    return c;
}

// The twelve edges of the box, of which a flat one shows four.
void preview_box(const corners_t &c)
{
    const point3_t ends[2] = {c.c1, c.c2};
    const auto corner = [&](int i) {
        return point3_t{ends[i & 1].x, ends[(i >> 1) & 1].y, ends[(i >> 2) & 1].z};
    };
    overlay().preview.clear();
    for (int i = 0; i < 8; ++i) {
        for (const int bit : {1, 2, 4}) {
            if ((i & bit) == 0) {
                overlay().preview.push_back({corner(i), corner(i | bit)});
            }
        }
    }
}

// ---- outlines ----

void preview_outline(const point3_t *next)
{
    auto &preview = overlay().preview;
    preview.clear();
    for (size_t i = 1; i < state.points.size(); ++i) {
        preview.push_back({state.points[i - 1], state.points[i]});
    }
    if (next == nullptr || state.points.empty()) {
        return;
    }
    preview.push_back({state.points.back(), *next});
    if (draw_mode() == DRAW_POLYGON && state.points.size() > 1) {
        preview.push_back({*next, state.points.front()});
    }
}

void drop_outline()
{
    state.points.clear();
    state.view = VIEW_NONE;
    state.axis = -1;
    overlay() = {};
    number_field_close();
    redraw_all();
}

// An axis that the next edge is locked to; -1 for none.
void lock_axis(int axis)
{
    state.axis = axis;
    overlay().locked_axis = axis;
    if (!state.points.empty()) {
        overlay().lock_point = state.points.back();
    }
}

void end_outline(const outline_kind_t &tool)
{
    const std::vector<point3_t> points = state.points;
    drop_outline();
    std::vector<std::string> words = {"create_outline", tool.name, ""};
    for (const point3_t &p : points) {
        for (const std::string &number : echo_point(p)) {
            words.back() += (words.back().empty() ? "" : " ") + number;
        }
    }
    link_drawn(new_outline(tool, points), tool.label, words);
}

bool is_on_first_point(const pointer_event_t &event)
{
    if (state.points.size() < 3) {
        return false;
    }
    int x = 0, y = 0;
    point2xy(&state.points.front(), &x, &y, event.view);
    return std::abs(x - event.x) <= prefs.pick_pixel_range &&
           std::abs(y - event.y) <= prefs.pick_pixel_range;
}

bool is_double_click(const pointer_event_t &event)
{
    const bool twice = event.seconds - state.last_click.seconds < double_click_seconds &&
                       is_click(state.last_click, event);
    state.last_click = event;
    return twice;
}

void add_point(const outline_kind_t &tool, const pointer_event_t &event)
{
    state.view = event.view;
    state.points.push_back(next_point(event));
    number_field_close();
    lock_axis(-1);
    if (state.points.size() >= tool.most) {
        end_outline(tool);
        return;
    }
    preview_outline(nullptr);
    redraw_all();
}

void outline_click(const outline_kind_t &tool, const pointer_event_t &event)
{
    if (state.view != VIEW_NONE && state.view != event.view) {
        return; // an outline lies in the view where it began
    }
    const bool twice = is_double_click(event);
    if (is_on_first_point(event) || (twice && !state.points.empty())) {
        end_outline(tool);
        return;
    }
    add_point(tool, event);
}

void light_click(const pointer_event_t &event)
{
    const point3_t p = point_at(event);
    step_t step(step_t::of::drag);
    add_light_at(p);
    std::vector<std::string> words = echo_point(p);
    words.insert(words.begin(), "create_light");
    keep_step(step, words, "add light");
}

bool wanted()
{
    return box_tool() != nullptr || outline_tool() != nullptr || draw_mode() == DRAW_LIGHT;
}

bool press(const pointer_event_t &event)
{
    state.dragging = is_orthographic(event.view);
    state.start = state.last = event;
    return state.dragging;
}

void hover(const pointer_event_t &event)
{
    if (!is_orthographic(event.view)) {
        return;
    }
    if (state.points.empty()) {
        show_point_at(event);
        return;
    }
    if (event.view != state.view) {
        return;
    }
    state.last = event;
    const point3_t p = next_point(event);
    show_coors_and_len(&p, &state.points.back(), &p);
    preview_outline(&p);
    number_field_show(event.view, event.x, event.y);
    redraw_all();
}

void motion(const pointer_event_t &event)
{
    const create_kind_t *tool = box_tool();
    if (tool == nullptr) {
        hover(event);
        return;
    }
    state.last = event;
    const corners_t c = corners_of(event, tool->solid);
    preview_box(c);
    const point3_t at = point_at(event);
    show_coors_and_dim(&at, &c.c1, &c.c2);
    number_field_show(event.view, event.x, event.y);
    redraw_all();
}

void release(const pointer_event_t &event)
{
    state.dragging = false;
    overlay().preview.clear();
    if (const create_kind_t *tool = box_tool()) {
        const corners_t c = corners_of(event, tool->solid);
        number_field_close();
        std::vector<std::string> words = {"create", tool->name, std::to_string(event.view)};
        for (const point3_t &corner : {c.c1, c.c2}) {
            for (const std::string &number : echo_point(corner)) {
                words.push_back(number);
            }
        }
        link_drawn(tool->make(event.view, c.c1, c.c2), tool->label, words);
    } else if (const outline_kind_t *outline = outline_tool()) {
        outline_click(*outline, event);
    } else {
        light_click(event);
    }
}

void cancel()
{
    state.dragging = false;
    drop_outline();
}

// ---- keys ----

void take_last_point_back()
{
    state.points.pop_back();
    lock_axis(-1);
    if (state.points.empty()) {
        drop_outline();
    } else {
        hover(state.last);
    }
}

bool outline_key(const outline_kind_t &tool, const char *key)
{
    const std::string_view name = key;
    if (name == "Return" || name == "KP_Enter") {
        end_outline(tool);
    } else if (name == "BackSpace") {
        take_last_point_back();
    } else if (name == "Escape") {
        drop_outline();
    } else if (name.size() == 1 && std::strchr("xyzXYZ", name[0]) != nullptr) {
        const int axis = (name[0] | 0x20) - 'x';
        lock_axis(axis == state.axis ? -1 : axis);
        if (number_field_is_open()) {
            number_field_choose(axis);
        }
        hover(state.last);
    } else {
        return false;
    }
    return true;
}

// A number for the box that is dragged, or for the outline's next point.
bool take_number(const create_kind_t *box, const outline_kind_t *outline, const char *key)
{
    static const std::vector<number_part_t> sizes = {{"W", 0}, {"H", 1}, {"D", 2}};
    static const std::vector<number_part_t> ways = {{"dX", 0}, {"dY", 1}, {"dZ", 2}};
    const int horizontal = view_axes[state.last.view].horizontal;
    const int first = state.axis >= 0 ? state.axis : horizontal;
    switch (number_field_key(key, box != nullptr ? sizes : ways, first)) {
    case number_key::unused:
        return false;
    case number_key::accepted:
        if (box != nullptr) {
            interaction_accept();
        } else {
            add_point(*outline, state.last);
        }
        return true;
    case number_key::changed:
        break;
    }
    number_field_show(state.last.view, state.last.x, state.last.y);
    motion(state.last);
    return true;
}

bool key(const char *key)
{
    const create_kind_t *box = state.dragging ? box_tool() : nullptr;
    const outline_kind_t *outline = state.points.empty() ? nullptr : outline_tool();
    if (box == nullptr && outline == nullptr) {
        return false;
    }
    return take_number(box, outline, key) || (outline != nullptr && outline_key(*outline, key));
}

void drop_half_drawn()
{
    if (!state.points.empty())
        cancel();
}

void forget()
{
    state = {};
    number_field_close();
}

} // namespace

void show_point_at(const pointer_event_t &event)
{
    const point3_t p = point_at(event);
    show_coors(&p);
}

const tool_t create_tool = {.wanted = wanted,
                            .press = press,
                            .motion = motion,
                            .release = release,
                            .cancel = cancel,
                            .pointer = flat_cross_pointer,
                            .hover = hover,
                            .key = key,
                            .leave = drop_half_drawn,
                            .forget = forget};
