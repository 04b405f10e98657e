#include "view/tool_slice.h"

#include "base/echo.h"
#include "base/messages.h"
#include "base/prefs.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_internal.h"
#include "edit/snap.h"
#include "edit/symmetry.h"
#include "model/angle.h"
#include "model/change_marks.h"
#include "model/flat_mesh.h"
#include "model/vec3d.h"
#include "view/camera.h"
#include "view/drag_echo.h"
#include "view/interaction.h"
#include "view/near_snap.h"
#include "view/overlay.h"
#include "view/projection.h"
#include "view/screen_ray.h"
#include "view/tool_options.h"
#include "view/views_internal.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr double angle_step = 15;
constexpr std::size_t most_shown = 200000; // surfaces: looking at more would hold the mouse up

struct place_t {
    double x, y; // pixels
};
struct plane_t {
    vec3d at, normal;
    bool valid = false;
};
struct slice_t {
    pointer_event_t start = {};
    place_t from = {0, 0};
    bool moved = false;
    // For the preview; none of too many. As long as the model is what it was.
    std::vector<owned_elements> targets;
    std::array<std::uint64_t, 3> counts = {};
};
slice_t state;

// The place that the pointer means: on a vertex, or on the grid.
place_t place_at(const pointer_event_t &event)
{
    place_t place = {static_cast<double>(event.x), static_cast<double>(event.y)};
    point3_t p;
    const double range = prefs.pick_pixel_range * view_interface_scale();
    if (prefs.snap_near != 0 && front_vertex_at(event.view, event.x, event.y, range, &p)) {
        window_position(event.view, p, &place.x, &place.y);
    } else if (is_orthographic(event.view) &&
               (prefs.gridsnap != 0) != (qualifier_control(event.state) != 0)) {
        const auto spacing = static_cast<float>(prefs.grid);
        mouse_to_point(event.x, event.y, event.view, &p);
        snap_to_grid_float(&p, spacing, spacing, spacing);
        window_position(event.view, p, &place.x, &place.y);
    }
    return place;
}

place_t end_at(const pointer_event_t &event)
{
    place_t to = place_at(event);
    if (qualifier_shift(event.state) == 0)
        return to;
    const double dx = to.x - state.from.x, dy = to.y - state.from.y;
    const double step = angle_step / degrees_per_radian;
    const double angle = std::round(std::atan2(dy, dx) / step) * step;
    const double length = std::hypot(dx, dy);
    return {state.from.x + length * std::cos(angle), state.from.y + length * std::sin(angle)};
}

vec3d vector_of(const double *v) { return {v[0], v[1], v[2]}; }

// Through the lines of sight of both ends; its front lies to the left of the line.
plane_t plane_through(int view, const place_t &from, const place_t &to)
{
    const screen_ray_t a = screen_ray(view, from.x, from.y), b = screen_ray(view, to.x, to.y);
    const screen_ray_t left = screen_ray(view, from.x + (to.y - from.y), from.y - (to.x - from.x));
    plane_t plane;
    plane.at = vector_of(a.origin);
    const vec3d into = vector_of(a.direction);
    const vec3d along = vector_of(b.origin) + vector_of(b.direction) - plane.at;
    plane.normal = cross(into, along);
    const double size = length(plane.normal);
    if (!(size > 0))
        return plane;
    plane.normal = plane.normal / size;
    if (dot(plane.normal, vector_of(left.origin) + vector_of(left.direction) - plane.at) < 0)
        plane.normal = plane.normal * -1;
    plane.valid = true;
    return plane;
}

// ---- the preview ----

// Where the sides of a polygon cross the plane, in their order along it.
void add_crossings(const flat_mesh &mesh, int surface, const plane_t &plane,
                   std::vector<point3_t> *lines)
{
    const auto corners = mesh.surface_corners(surface);
    std::vector<vec3d> found;
    const auto height = [&](int v) {
        return dot(to_vec3d(mesh.position(v)) - plane.at, plane.normal);
    };
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const int a = corners[i], b = corners[i + 1 < corners.size() ? i + 1 : 0];
        const double p = height(a), q = height(b);
        if ((p < 0) == (q < 0))
            continue;
        const vec3d from = to_vec3d(mesh.position(a)), to = to_vec3d(mesh.position(b));
        found.push_back(from + (to - from) * (p / (p - q)));
    }
    if (found.size() > 2) {
        const vec3d way = found[1] - found[0];
        std::sort(found.begin(), found.end(),
                  [&](const vec3d &a, const vec3d &b) { return dot(a, way) < dot(b, way); });
    }
    for (std::size_t i = 0; i + 1 < found.size(); i += 2) {
        lines->push_back(to_point(found[i]));
        lines->push_back(to_point(found[i + 1]));
    }
}

void show(const place_t &to)
{
    cut_marks_t marks;
    const plane_t plane = plane_through(state.start.view, state.from, to);
    const std::string &keep = tool_option("slice_keep");
    marks.ruled = {state.start.view,
                   static_cast<float>(state.from.x),
                   static_cast<float>(state.from.y),
                   static_cast<float>(to.x),
                   static_cast<float>(to.y),
                   keep == "front"  ? 1
                   : keep == "back" ? -1
                                    : 0};
    for (const owned_elements &owned : state.targets) {
        const flat_ptr mesh = object_flat(owned.object);
        for (const int s : owned.indices) {
            if (plane.valid && s < mesh->num_surfaces())
                add_crossings(*mesh, s, plane, &marks.lines);
        }
    }
    if (symmetry_acts() && !state.targets.empty())
        add_mirrored_lines(state.targets.front().object, &marks);
    show_cut_marks(std::move(marks));
}

// ---- the drag ----

void end_drag()
{
    state = {};
    show_cut_marks({});
}

bool press(const pointer_event_t &event)
{
    if (event.view == VIEW_XYZ && vesk_person_is_walk_vehicle() != 0)
        return false; // the left button walks
    state = {event, place_at(event), false, {}};
    return true;
}

void motion(const pointer_event_t &event)
{
    if (!state.moved && is_click(state.start, event))
        return;
    const std::array<std::uint64_t, 3> counts = {model_change_count(), tree_change_count(),
                                                 selection_change_count()};
    if (!state.moved || state.counts != counts) {
        state.counts = counts;
        state.targets = target_surfaces();
        if (count_elements(state.targets) > most_shown)
            state.targets.clear();
    }
    state.moved = true;
    show(end_at(event));
}

void release(const pointer_event_t &event)
{
    const place_t to = end_at(event);
    const bool moved = state.moved;
    const plane_t plane = plane_through(event.view, state.from, to);
    end_drag();
    if (!moved || !plane.valid) {
        display_message("slice - drag a line across the selection");
        return;
    }
    std::vector<std::string> words = {"slice"};
    for (const vec3d &v : {plane.at, plane.normal}) {
        for (const std::string &number : echo_point(to_point(v)))
            words.push_back(number);
    }
    words.push_back(tool_option("slice_keep"));
    words.push_back(tool_option("slice_cap"));
    run_as_step(words, "slice");
}

} // namespace

const tool_t slice_tool = {.name = "slice",
                           .press = press,
                           .motion = motion,
                           .release = release,
                           .cancel = end_drag,
                           .pointer = cross_pointer,
                           .leave = end_drag,
                           .forget = end_drag};
