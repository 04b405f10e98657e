#include "view/tool_knife.h"

#include "base/coor_display.h"
#include "base/echo.h"
#include "base/messages.h"
#include "base/prefs.h"
#include "edit/document/selection_internal.h"
#include "edit/knife.h"
#include "edit/mesh/knife_cut.h"
#include "model/ear_cut.h"
#include "model/object_tree.h"
#include "view/drag_echo.h"
#include "view/interaction.h"
#include "view/overlay.h"
#include "view/pick.h"
#include "view/pick_edge.h"
#include "view/screen_ray.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <utility>

namespace {

constexpr double double_click_seconds = 0.4;

// A place on the model, and the direction that right angles are measured against there.
struct place_t {
    object_t *object = nullptr; // null: none
    point3_t at = {0, 0, 0};
    vec3d along; // of the edge that it lies on; 0 elsewhere
};

// The line in hand. What the preview needs of the object is made once, at the first click.
struct knife_t {
    std::vector<place_t> places;
    flat_ptr mesh;
    unsigned selection = 0; // that was current then
    std::unique_ptr<knife_cut> cut;
    pointer_event_t last_click = {};
};
knife_t state;

// Whether the line still lies on the model: commands run between two clicks.
bool has_line()
{
    return !state.places.empty() && object_exists(state.places.front().object) != 0 &&
           object_flat(state.places.front().object) == state.mesh &&
           selection_change_count() == state.selection;
}

std::vector<point3_t> line_to(const place_t *next)
{
    std::vector<point3_t> line;
    for (const place_t &place : state.places)
        line.push_back(place.at);
    if (next != nullptr)
        line.push_back(next->at);
    return line;
}

// Draws the line, with its mirror image where they meet.
knife_lines draw_to(const place_t *next, std::string *why)
{
    knife_lines lines = symmetric_lines(state.places.front().object, line_to(next));
    state.cut->draw(lines.here, why);
    return lines;
}

void forget_line()
{
    state = {};
    show_cut_marks({});
}

// ---- the place under the pointer ----

// Before the line has begun every object may be meant, then only what it cuts.
bool accepts(const object_t *object, const point3_t &at)
{
    return state.places.empty() || (object == state.places.front().object &&
                                    state.cut->distance(at) < std::numeric_limits<double>::max());
}

vec3d unit(const vec3d &v)
{
    const double size = length(v);
    return size > 0 ? v / size : vec3d{};
}

bool vertex_at(const pointer_event_t &event, int range, place_t *place)
{
    for (const pick_hit_t &hit : pick_at(event.view, pick_kind::VERTEX, event.x, event.y, range)) {
        if (!accepts(hit.object, hit.point->position))
            continue;
        *place = {hit.object, hit.point->position, {}};
        return true;
    }
    return false;
}

// The share of an edge where the line from the last place meets it at a right angle.
float share_of_foot(const point3_t &from, const point3_t &to)
{
    const vec3d along = between(from, to);
    const double square = dot(along, along);
    const double share =
        square > 0 ? dot(between(from, state.places.back().at), along) / square : 0;
    return static_cast<float>(std::clamp(share, 0.0, 1.0));
}

bool edge_at(const pointer_event_t &event, int range, place_t *place)
{
    for (const pick_hit_t &hit : pick_at(event.view, pick_kind::EDGE, event.x, event.y, range)) {
        const point3_t from = hit.point->position, to = hit.end->position;
        float share = 0.5f;
        if (qualifier_control(event.state) == 0) {
            const bool square = qualifier_shift(event.state) != 0 && !state.places.empty();
            share = square ? share_of_foot(from, to)
                           : share_of_edge_at(event.view, from, to, event.x, event.y);
        }
        const vec3d along = between(from, to);
        const point3_t at = to_point(to_vec3d(from) + along * static_cast<double>(share));
        if (!accepts(hit.object, at))
            continue;
        *place = {hit.object, at, along};
        return true;
    }
    return false;
}

// Where the line of sight goes through the triangles of a polygon, which need not be flat.
bool ray_meets_polygon(const screen_ray_t &ray, const flat_mesh &mesh, int surface, point3_t *at,
                       vec3d *normal)
{
    const auto corners = mesh.surface_corners(surface);
    const std::vector<int> ears = surface_ears(mesh, surface);
    for (std::size_t i = 0; i + 2 < ears.size(); i += 3) {
        vec3d p[3];
        for (std::size_t k = 0; k < 3; ++k)
            p[k] = to_vec3d(mesh.position(corners[static_cast<std::size_t>(ears[i + k])]));
        *normal = cross(p[1] - p[0], p[2] - p[0]);
        if (!ray_meets_plane(ray, to_point(p[0]), to_point(unit(*normal)), at))
            continue;
        const vec3d q = to_vec3d(*at);
        const double slack = -1e-6 * dot(*normal, *normal);
        if (dot(cross(p[1] - p[0], q - p[0]), *normal) >= slack &&
            dot(cross(p[2] - p[1], q - p[1]), *normal) >= slack &&
            dot(cross(p[0] - p[2], q - p[2]), *normal) >= slack)
            return true;
    }
    return false;
}

// The place in the plane of that normal that lies at a right angle, or straight on, from the last
// edge or part of the line.
point3_t at_right_angle(const point3_t &at, const vec3d &normal)
{
    const place_t &last = state.places.back();
    vec3d along = last.along;
    if (state.places.size() > 1)
        along = between(state.places[state.places.size() - 2].at, last.at);
    const vec3d n = unit(normal);
    const vec3d u = unit(along - n * dot(along, n)), v = cross(n, u);
    if (length(u) == 0)
        return at;
    const vec3d way = between(last.at, at);
    const vec3d &direction = std::fabs(dot(way, u)) > std::fabs(dot(way, v)) ? u : v;
    return to_point(to_vec3d(last.at) + direction * dot(way, direction));
}

bool face_at(const pointer_event_t &event, place_t *place)
{
    const screen_ray_t ray = screen_ray(event.view, event.x, event.y);
    for (const pick_hit_t &hit : pick_at(event.view, pick_kind::SURFACE, event.x, event.y, 0)) {
        const flat_ptr mesh = object_flat(hit.object);
        const auto &records = *mesh->surface_records;
        const auto record = std::find(records.begin(), records.end(), hit.surface);
        point3_t at;
        vec3d normal;
        if (record == records.end() ||
            !ray_meets_polygon(ray, *mesh, static_cast<int>(record - records.begin()), &at,
                               &normal))
            continue;
        if (qualifier_shift(event.state) != 0 && !state.places.empty())
            at = at_right_angle(at, normal);
        if (!accepts(hit.object, at))
            continue;
        *place = {hit.object, at, {}};
        return true;
    }
    return false;
}

place_t place_at(const pointer_event_t &event)
{
    const auto range =
        static_cast<int>(std::lround(prefs.pick_pixel_range * view_interface_scale()));
    const bool free = (qualifier_control(event.state) | qualifier_shift(event.state)) == 0;
    place_t place;
    if (!(free && vertex_at(event, range, &place)) && !edge_at(event, range, &place))
        face_at(event, &place);
    return place;
}

// ---- showing it ----

void show(const place_t *next)
{
    cut_marks_t marks;
    marks.points = line_to(next);
    std::string why;
    if (marks.points.size() > 1) {
        const bool both = !draw_to(next, &why).across.empty();
        if (next != nullptr && !state.cut->is_drawn()) {
            marks.broken = {state.places.back().at, next->at};
            display_message("knife - %s", why.c_str());
            draw_to(nullptr, &why);
        }
        marks.lines = state.cut->edges();
        if (both)
            add_mirrored_lines(state.places.front().object, &marks);
    }
    show_cut_marks(std::move(marks));
}

void hover(const pointer_event_t &event)
{
    if (!state.places.empty() && !has_line())
        forget_line();
    const place_t place = place_at(event);
    if (place.object == nullptr) {
        show(nullptr);
        return;
    }
    if (state.places.empty())
        show_coors(&place.at);
    else
        show_coors_and_len(&place.at, &state.places.back().at, &place.at);
    show(&place);
}

// ---- the line ----

// Makes what the line needs of the object; false when nothing of it is to be cut there.
bool begin_line(const place_t &place)
{
    for (const owned_elements &owned : knife_targets()) {
        if (owned.object != place.object)
            continue;
        state.mesh = object_flat(owned.object);
        state.selection = selection_change_count();
        state.cut = std::make_unique<knife_cut>(state.mesh, owned.indices);
        return state.cut->distance(place.at) < std::numeric_limits<double>::max();
    }
    return false;
}

void cut_now()
{
    std::string why;
    const std::vector<point3_t> across = draw_to(nullptr, &why).across;
    if (!state.cut->is_drawn()) {
        display_message("knife - %s", why.c_str());
        return;
    }
    std::string coordinates;
    for (const place_t &place : state.places) {
        for (const std::string &number : echo_point(place.at))
            coordinates += (coordinates.empty() ? "" : " ") + number;
    }
    object_t *object = state.places.front().object;
    const std::unique_ptr<knife_cut> cut = std::move(state.cut);
    forget_line();
    step_t step(step_t::of::drag);
    knife_commit(object, *cut, across);
    keep_step(step, {"knife", coordinates}, "knife");
}

bool press(const pointer_event_t &event)
{
    if (!state.places.empty() && !has_line())
        forget_line();
    return place_at(event).object != nullptr;
}

void release(const pointer_event_t &event)
{
    if (!state.places.empty() && !has_line())
        forget_line();
    const bool twice = !state.places.empty() && is_click(state.last_click, event) &&
                       state.last_click.view == event.view &&
                       event.seconds - state.last_click.seconds < double_click_seconds;
    if (twice) {
        cut_now();
        return;
    }
    const place_t place = place_at(event);
    if (place.object == nullptr)
        return;
    if (state.places.empty() && !begin_line(place)) {
        forget_line();
        display_message("knife - that is not among what is selected");
        return;
    }
    state.last_click = event;
    state.places.push_back(place);
    show(nullptr);
}

bool key(const char *keysym)
{
    if (state.places.empty())
        return false;
    const std::string_view name = keysym;
    if (!has_line() || name == "Escape") {
        forget_line();
        return name == "Escape";
    }
    if (name == "BackSpace") {
        state.places.pop_back();
        state.last_click.seconds = -1;
        if (state.places.empty())
            forget_line();
        else
            show(nullptr);
        return true;
    }
    if (name != "Return" && name != "KP_Enter")
        return false;
    cut_now();
    return true;
}

void show_line() { show(nullptr); }

void drop() { state = {}; }

} // namespace

const tool_t knife_tool = {.name = "knife",
                           .press = press,
                           .motion = hover,
                           .release = release,
                           .cancel = show_line,
                           .pointer = cross_pointer,
                           .hover = hover,
                           .outside = show_line,
                           .key = key,
                           .leave = forget_line,
                           .forget = drop};
