#include "view/tool_loop_cut.h"

#include "base/echo.h"
#include "base/messages.h"
#include "base/prefs.h"
#include "edit/document/selection_scan.h"
#include "edit/loop_cut.h"
#include "edit/symmetry.h"
#include "model/identity.h"
#include "model/object_tree.h"
#include "view/drag_echo.h"
#include "view/interaction.h"
#include "view/overlay.h"
#include "view/pick.h"
#include "view/pick_outline.h"
#include "view/projector.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstring>
#include <utility>

namespace {

constexpr int most_cuts = 100;

struct {
    object_t *object = nullptr; // null: no edge under the pointer
    int edge = -1;
    int cuts = 1;
    float slide = 0;
    pointer_event_t start = {};
    bool moved = false;
} state;

// Whether the edge is still there: commands run between two motions.
bool has_edge()
{
    return state.object != nullptr && object_exists(state.object) != 0 &&
           state.edge < object_topology(state.object)->size();
}

void show()
{
    cut_marks_t marks;
    if (has_edge()) {
        const edge_topology &topology = *object_topology(state.object);
        marks.lines = loop_cut_preview(
            topology, loop_seeds(topology, {state.edge}, kept_symmetric_places(state.object)),
            state.cuts, state.slide);
    }
    show_cut_marks(std::move(marks));
}

int place_of(const flat_mesh &mesh, const vertex *v)
{
    const auto at = std::find(mesh.vertex_records->begin(), mesh.vertex_records->end(), v);
    return static_cast<int>(at - mesh.vertex_records->begin());
}

// Takes the edge under the pointer; true when it is another one.
bool take_edge(const pointer_event_t &event)
{
    const auto range =
        static_cast<int>(std::lround(prefs.pick_pixel_range * view_interface_scale()));
    const std::vector<pick_hit_t> hits =
        pick_at(event.view, pick_kind::EDGE, event.x, event.y, range);
    object_t *object = hits.empty() ? nullptr : hits.front().object;
    int edge = -1;
    if (object != nullptr) {
        const topology_ptr topology = object_topology(object);
        edge = topology->table().find(place_of(topology->mesh(), hits.front().point),
                                      place_of(topology->mesh(), hits.front().end));
    }
    const bool other = object != state.object || edge != state.edge;
    state.object = edge >= 0 ? object : nullptr;
    state.edge = edge;
    return other;
}

// The pointer's place along the edge, -1 at its vertex a and 1 at b.
float slide_at(const pointer_event_t &event)
{
    const topology_ptr topology = object_topology(state.object);
    const mesh_edge &edge = topology->edge(state.edge);
    const projector_t projector(event.view);
    const screen_point_t p = projector(topology->mesh().position(edge.a));
    const screen_point_t q = projector(topology->mesh().position(edge.b));
    const float dx = q.x - p.x, dy = q.y - p.y, length = dx * dx + dy * dy;
    if (!(length > 0)) // behind the viewer, too
        return 0;
    const float share =
        ((static_cast<float>(event.x) - p.x) * dx + (static_cast<float>(event.y) - p.y) * dy) /
        length;
    return std::clamp(2 * share - 1, -1.0f, 1.0f);
}

void forget()
{
    state.object = nullptr;
    state.edge = -1;
    state.slide = 0;
    state.moved = false;
    show();
}

bool press(const pointer_event_t &event)
{
    take_edge(event);
    state.start = event;
    state.moved = false;
    show();
    return state.object != nullptr;
}

void motion(const pointer_event_t &event)
{
    if (!has_edge() || (!state.moved && is_click(state.start, event)))
        return;
    state.moved = true;
    state.slide = slide_at(event);
    show();
}

void release(const pointer_event_t &)
{
    if (!has_edge())
        return;
    const mesh_edge edge = object_topology(state.object)->edge(state.edge);
    const std::string id = std::to_string(object_identity(state.object));
    object_t *object = state.object;
    const int number = state.edge, cuts = state.cuts;
    const float slide = state.slide;
    forget();
    step_t step(step_t::of::drag);
    if (!loop_cut_at(object, number, cuts, slide)) {
        display_message("loop cut - no quads lie beside that edge");
        return;
    }
    keep_step(step,
              {"loop_cut_at", id, std::to_string(edge.a), std::to_string(edge.b),
               std::to_string(cuts), echo_number(slide)},
              "loop cut");
}

void hover(const pointer_event_t &event)
{
    if (take_edge(event))
        show();
}

void set_cuts(int cuts)
{
    state.cuts = std::clamp(cuts, 1, most_cuts);
    display_message("loop cut - %d %s", state.cuts, state.cuts == 1 ? "loop" : "loops");
    show();
}

bool wheel(int direction)
{
    if (!has_edge())
        return false;
    set_cuts(state.cuts + direction);
    return true;
}

bool key(const char *keysym)
{
    if (!has_edge() || std::strlen(keysym) != 1 ||
        std::isdigit(static_cast<unsigned char>(keysym[0])) == 0 || keysym[0] == '0')
        return false;
    set_cuts(keysym[0] - '0');
    return true;
}

void leave()
{
    forget();
    forget_symmetric_places();
}

void drop()
{
    state.object = nullptr;
    state.edge = -1;
    forget_symmetric_places();
    show_cut_marks({});
}

} // namespace

const tool_t loop_cut_tool = {.name = "loop_cut",
                              .press = press,
                              .motion = motion,
                              .release = release,
                              .cancel = forget,
                              .pointer = cross_pointer,
                              .hover = hover,
                              .outside = forget,
                              .key = key,
                              .wheel = wheel,
                              .leave = leave,
                              .forget = drop};
