#include "view/tool_measure.h"

#include "base/coor_display.h"
#include "base/echo.h"
#include "base/messages.h"
#include "base/prefs.h"
#include "base/redraw.h"
#include "edit/measure.h"
#include "edit/snap.h"
#include "view/interaction.h"
#include "view/near_snap.h"
#include "view/overlay.h"
#include "view/pick.h"
#include "view/projection.h"
#include "view/ruler.h"
#include "view/screen_ray.h"
#include "view/views_internal.h"

#include <cctype>
#include <cstring>

namespace {

struct measure_t {
    pointer_event_t start = {};
    pointer_event_t last = {};
    point3_t pressed = {0, 0, 0}; // where the press lies in the model
    bool begins = false;          // the press is the first point
    bool moved = false;
    int axis = -1; // that the line is locked to
};
measure_t state;

std::vector<point3_t> &points() { return ruler().points; }

// The points that no longer follow the pointer.
std::size_t fixed_points() { return points().size() - (ruler().following ? 1 : 0); }

bool point_in_3d(const pointer_event_t &event, point3_t *at)
{
    const screen_ray_t ray = screen_ray(event.view, event.x, event.y);
    for (const pick_hit_t &hit : pick_at(event.view, pick_kind::SURFACE, event.x, event.y, 0)) {
        if (ray_meets_surface(ray, hit.surface, at))
            return true;
    }
    if (fixed_points() == 0)
        return false;
    // In the plane of the screen through the point before.
    const point3_t towards = {static_cast<float>(ray.direction[0]),
                              static_cast<float>(ray.direction[1]),
                              static_cast<float>(ray.direction[2])};
    return ray_meets_plane(ray, points()[fixed_points() - 1], towards, at);
}

void point_in_flat_view(const pointer_event_t &event, point3_t *at)
{
    mouse_to_point(event.x, event.y, event.view, at);
    if (fixed_points() > 0) {
        const int depth = view_axes[event.view].depth;
        axis_of(*at, depth) = axis_of(points()[fixed_points() - 1], depth);
    }
    if ((prefs.gridsnap != 0) != (qualifier_control(event.state) != 0)) {
        const auto spacing = static_cast<float>(prefs.grid);
        snap_to_grid_float(at, spacing, spacing, spacing);
    }
}

// The point that the pointer means; false where there is none to begin with.
bool point_at(const pointer_event_t &event, point3_t *at)
{
    const double range = prefs.pick_pixel_range * view_interface_scale();
    if (front_vertex_at(event.view, event.x, event.y, range, at))
        return true;
    if (event.view == VIEW_XYZ)
        return point_in_3d(event, at);
    point_in_flat_view(event, at);
    return true;
}

void lock_to_axis(point3_t *at)
{
    for (int axis = 0; axis < 3; ++axis) {
        if (state.axis >= 0 && axis != state.axis && fixed_points() > 0)
            axis_of(*at, axis) = axis_of(points()[fixed_points() - 1], axis);
    }
}

void set_axis(int axis)
{
    state.axis = axis;
    overlay().locked_axis = axis;
    if (fixed_points() > 0)
        overlay().lock_point = points()[fixed_points() - 1];
}

void tell()
{
    std::string coordinates;
    for (const point3_t &p : points()) {
        for (const std::string &number : echo_point(p))
            coordinates += (coordinates.empty() ? "" : " ") + number;
    }
    echo_command({"measure_points", coordinates});
    display_message("%s", points_measures(points()).c_str());
}

void clear()
{
    ruler() = {};
    state = {};
    overlay().locked_axis = -1;
    redraw_all();
}

// Moves the free point to the pointer.
void follow(const pointer_event_t &event)
{
    point3_t at;
    state.last = event;
    if (!point_at(event, &at))
        return;
    lock_to_axis(&at);
    if (!ruler().following) {
        points().push_back(at);
        ruler().following = true;
    }
    points().back() = at;
    if (points().size() > 1)
        show_coors_and_len(&at, &points()[points().size() - 2], &at);
    redraw_all();
}

void fix()
{
    ruler().following = false;
    set_axis(-1);
    if (points().size() > 1)
        tell();
    redraw_all();
}

bool press(const pointer_event_t &event)
{
    // With two points a click is the third; a drag begins anew.
    if (fixed_points() >= 3)
        clear();
    if (!point_at(event, &state.pressed))
        return false;
    state.start = state.last = event;
    state.moved = false;
    state.begins = fixed_points() == 0;
    if (state.begins) {
        ruler() = {{state.pressed}, false};
        redraw_all();
    }
    return true;
}

void motion(const pointer_event_t &event)
{
    if (!state.moved && is_click(state.start, event))
        return;
    if (!state.moved && fixed_points() == 2)
        ruler() = {{state.pressed}, false};
    state.moved = true;
    follow(event);
}

void release(const pointer_event_t &event)
{
    if (!state.moved && state.begins)
        return; // the line follows the pointer from here
    follow(event);
    if (ruler().following)
        fix();
}

void hover(const pointer_event_t &event)
{
    if (points().empty()) {
        point3_t at;
        if (point_at(event, &at))
            show_coors(&at);
    } else if (fixed_points() == 1) {
        follow(event);
    }
}

bool key(const char *keysym)
{
    if (std::strcmp(keysym, "Escape") == 0 && !points().empty()) {
        clear();
        return true;
    }
    if (std::strlen(keysym) != 1 || fixed_points() != 1)
        return false;
    const int wanted = std::tolower(static_cast<unsigned char>(keysym[0])) - 'x';
    if (wanted < 0 || wanted > 2)
        return false;
    set_axis(wanted == state.axis ? -1 : wanted);
    follow(state.last);
    return true;
}

} // namespace

const tool_t measure_tool = {.name = "measure",
                             .press = press,
                             .motion = motion,
                             .release = release,
                             .cancel = clear,
                             .pointer = cross_pointer,
                             .hover = hover,
                             .key = key,
                             .leave = clear};
