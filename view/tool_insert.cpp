#include "view/tool_insert.h"

#include "base/coor_display.h"
#include "base/echo.h"
#include "base/messages.h"
#include "base/prefs.h"
#include "base/redraw.h"
#include "edit/insert_vertex.h"
#include "edit/snap.h"
#include "edit/symmetry.h"
#include "model/flat_mesh.h"
#include "model/identity.h"
#include "view/drag_echo.h"
#include "view/interaction.h"
#include "view/pick_edge.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr float nearest_to_end = 0.001f; // a vertex at an end would be a second one there

std::vector<insert_mark_t> marks;
edge_hit_t pressed;

// Where the edge crosses the grid, along the axis on which it is longest.
float share_on_grid(const edge_hit_t &hit)
{
    int longest = 0;
    for (int axis = 1; axis < 3; ++axis) {
        if (std::fabs(axis_of(hit.to, axis) - axis_of(hit.from, axis)) >
            std::fabs(axis_of(hit.to, longest) - axis_of(hit.from, longest)))
            longest = axis;
    }
    const auto spacing = static_cast<float>(prefs.grid);
    point3_t at = point_of_edge(hit);
    snap_to_grid_float(&at, spacing, spacing, spacing);
    const float length = axis_of(hit.to, longest) - axis_of(hit.from, longest);
    return length == 0 ? hit.share : (axis_of(at, longest) - axis_of(hit.from, longest)) / length;
}

edge_hit_t edge_at(const pointer_event_t &event)
{
    const auto range =
        static_cast<int>(std::lround(prefs.pick_pixel_range * view_interface_scale()));
    edge_hit_t hit = pick_edge_at(event.view, event.x, event.y, range);
    if (hit.object == nullptr)
        return hit;
    if (qualifier_control(event.state) != 0)
        hit.share = 0.5f;
    else if (prefs.gridsnap != 0)
        hit.share = share_on_grid(hit);
    hit.share = std::clamp(hit.share, nearest_to_end, 1 - nearest_to_end);
    return hit;
}

void show(const edge_hit_t &hit)
{
    const bool was = !marks.empty();
    marks.clear();
    if (hit.object != nullptr) {
        const flat_ptr mesh = object_flat(hit.object);
        for (const auto &[a, b, share] :
             insert_vertex_places(hit.object, hit.a, hit.b, hit.share)) {
            const edge_hit_t edge = {hit.object, a, b, share, mesh->position(a), mesh->position(b)};
            marks.push_back({edge.from, edge.to, point_of_edge(edge)});
        }
        show_coors(&marks.front().at);
    }
    if (was || !marks.empty())
        redraw_all();
}

bool press(const pointer_event_t &event)
{
    pressed = edge_at(event);
    show(pressed);
    return pressed.object != nullptr;
}

// The place follows the pointer along any edge until the button is let go.
void motion(const pointer_event_t &event)
{
    pressed = edge_at(event);
    show(pressed);
}

void forget()
{
    pressed = {};
    show(pressed);
    forget_symmetric_places();
}

void release(const pointer_event_t &event)
{
    const edge_hit_t hit = edge_at(event);
    forget();
    if (hit.object == nullptr)
        return;
    step_t step(step_t::of::drag);
    const std::string id = std::to_string(object_identity(hit.object));
    if (insert_vertex_at(hit.object, hit.a, hit.b, hit.share) == 0)
        return;
    keep_step(step,
              {"insert_vertex_at", id, std::to_string(hit.a), std::to_string(hit.b),
               echo_number(hit.share)},
              "insert vertex");
}

void hover(const pointer_event_t &event) { show(edge_at(event)); }

} // namespace

const tool_t insert_tool = {.name = "insert_vertex",
                            .press = press,
                            .motion = motion,
                            .release = release,
                            .cancel = forget,
                            .pointer = cross_pointer,
                            .hover = hover,
                            .outside = forget,
                            .leave = forget};

const std::vector<insert_mark_t> &insert_marks() { return marks; }
