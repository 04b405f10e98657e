#include "view/tool_create.h"

#include "app/coor_display.h"
#include "app/messages.h"
#include "app/prefs.h"
#include "edit/create.h"
#include "edit/journal.h"
#include "edit/modes.h"
#include "edit/snap.h"
#include "model/bounds.h"
#include "model/lights.h"
#include "model/normals.h"
#include "view/interaction.h"
#include "view/overlay.h"
#include "view/projection.h"
#include "view/redraw.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

constexpr int click_slack = 3;
constexpr double double_click_seconds = 0.4;

struct corners_t {
    point3_t c1, c2; // equal when the drag did not move
};

struct outline_tool_t {
    int mode;
    const char *name;
    const char *label;
    int type;
    size_t fewest, most; // points
};
const outline_tool_t outline_tools[] = {
    {DRAW_POLYGON, "polygon", "add polygon", SURFACE_POLYGON, 3, 1000000},
    {DRAW_POLYLINE, "polyline", "add polyline", SURFACE_LINE, 2, 1000000},
    {DRAW_LINE, "line", "add line", SURFACE_LINE, 2, 2},
};

const outline_tool_t *outline_tool()
{
    for (const outline_tool_t &row : outline_tools) {
        if (row.mode == draw_mode()) {
            return &row;
        }
    }
    return nullptr;
}

// ---- state ----

struct create_t {
    bool dragging = false;
    pointer_event_t start = {};
    int view = VIEW_NONE; // of a half-drawn outline
    std::vector<point3_t> points;
    double last_click = -1;
    int last_x = 0, last_y = 0;
};
create_t state;

point3_t point_at(const pointer_event_t &event)
{
    point3_t p = {0, 0, 0};
    mouse_to_point(event.x, event.y, event.view, &p);
    snap_to_grid(&p);
    return p;
}

// The kind of the present draw mode; null when it is no box tool.
const create_kind_t *box_tool() { return create_kind(mode_to_string(draw_mode())); }

// A drag is no command: the history's step is taken here.
void link_drawn(object_t *object, const char *label)
{
    if (object == nullptr) {
        return;
    }
    journal_begin();
    link_created(object, label, draw_mode() == DRAW_SPHERE);
    journal_step(label);
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
    if (std::abs(event.x - state.start.x) <= click_slack &&
        std::abs(event.y - state.start.y) <= click_slack) {
        c.c2 = c.c1;
        return c;
    }
    float da = axis_of(c.c2, axes.horizontal) - axis_of(c.c1, axes.horizontal);
    float db = axis_of(c.c2, axes.vertical) - axis_of(c.c1, axes.vertical);
    if (qualifier_shift(event.state) != 0) {
        keep_square(&da, &db);
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
        axis_of(c.c1, axes.depth) -= (a + b) / 4;
        axis_of(c.c2, axes.depth) += (a + b) / 4;
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
    overlay().preview.clear();
    redraw_all();
}

void end_outline(const outline_tool_t &tool)
{
    const std::vector<point3_t> points = state.points;
    drop_outline();
    if (points.size() < tool.fewest) {
        display_message("%s - at least %d points are needed", tool.name,
                        static_cast<int>(tool.fewest));
        return;
    }
    object_t *object = new_object(OBJECT_POLY);
    object_set_name(object, tool.name);
    surface_t *surface = new_surface();
    surface_set_type(surface, tool.type);
    for (const point3_t &p : points) {
        surface_add_vertex(surface, object_add_new_vertex(object, p.x, p.y, p.z), 0, 0);
    }
    object_add_surface(object, surface);
    object_calc_normals_force(object);
    object_calculate_centre(object);
    link_drawn(object, tool.label);
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
    const bool twice = event.seconds - state.last_click < double_click_seconds &&
                       std::abs(event.x - state.last_x) <= click_slack &&
                       std::abs(event.y - state.last_y) <= click_slack;
    state.last_click = event.seconds;
    state.last_x = event.x;
    state.last_y = event.y;
    return twice;
}

void outline_click(const outline_tool_t &tool, const pointer_event_t &event)
{
    if (state.view != VIEW_NONE && state.view != event.view) {
        return; // an outline lies in the view where it began
    }
    const bool twice = is_double_click(event);
    if (is_on_first_point(event) || (twice && !state.points.empty())) {
        end_outline(tool);
        return;
    }
    state.view = event.view;
    state.points.push_back(point_at(event));
    if (state.points.size() >= tool.most) {
        end_outline(tool);
        return;
    }
    preview_outline(nullptr);
    redraw_all();
}

void light_click(const pointer_event_t &event)
{
    object_t *light = new_light();
    const point3_t p = point_at(event);
    vesk_object_set_centre(light, p.x, p.y, p.z);
    link_drawn(light, "add light");
    register_light(light);
}

} // namespace

bool create_press(const pointer_event_t &event)
{
    if (!is_orthographic(event.view)) {
        return false;
    }
    const bool wanted =
        box_tool() != nullptr || outline_tool() != nullptr || draw_mode() == DRAW_LIGHT;
    state.dragging = wanted;
    state.start = event;
    return wanted;
}

void create_motion(const pointer_event_t &event)
{
    const create_kind_t *tool = box_tool();
    if (tool == nullptr) {
        create_hover(event);
        return;
    }
    const corners_t c = corners_of(event, tool->solid);
    preview_box(c);
    const point3_t at = point_at(event);
    show_coors_and_dim(&at, &c.c1, &c.c2);
    redraw_all();
}

void create_release(const pointer_event_t &event)
{
    state.dragging = false;
    overlay().preview.clear();
    if (const create_kind_t *tool = box_tool()) {
        const corners_t c = corners_of(event, tool->solid);
        link_drawn(tool->make(event.view, c.c1, c.c2), tool->label);
    } else if (const outline_tool_t *outline = outline_tool()) {
        outline_click(*outline, event);
    } else {
        light_click(event);
    }
}

void create_cancel()
{
    state.dragging = false;
    drop_outline();
}

void create_hover(const pointer_event_t &event)
{
    if (!is_orthographic(event.view)) {
        return;
    }
    const point3_t p = point_at(event);
    if (state.points.empty()) {
        show_coors(&p);
        return;
    }
    show_coors_and_len(&p, &state.points.back(), &p);
    preview_outline(&p);
    redraw_all();
}

bool create_key(const char *key)
{
    const outline_tool_t *tool = outline_tool();
    if (tool == nullptr || state.points.empty()) {
        return false;
    }
    if (std::strcmp(key, "Return") == 0 || std::strcmp(key, "KP_Enter") == 0) {
        end_outline(*tool);
    } else if (std::strcmp(key, "BackSpace") == 0) {
        state.points.pop_back();
        if (state.points.empty()) {
            drop_outline();
        } else {
            preview_outline(nullptr);
            redraw_all();
        }
    } else if (std::strcmp(key, "Escape") == 0) {
        drop_outline();
    } else {
        return false;
    }
    return true;
}

bool create_is_half_drawn() { return !state.points.empty(); }

void tool_create_reset_for_test() { state = {}; }
