#include "view/tool_select.h"

#include "base/echo.h"
#include "base/messages.h"
#include "base/prefs.h"
#include "base/redraw.h"
#include "edit/document/element_text.h"
#include "edit/document/modes.h"
#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "edit/edge_select.h"
#include "edit/select_more.h"
#include "model/change_marks.h"
#include "model/identity.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "view/drag_echo.h"
#include "view/handles.h"
#include "view/interaction.h"
#include "view/pick_outline.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <unordered_set>

namespace {

constexpr int same_place = 2; // pixels
constexpr double double_click_seconds = 0.4;
constexpr double cycle_seconds = 1.5; // after it a click takes the frontmost again

// The last click, for taking the next thing behind.
struct last_click_t {
    int view = VIEW_NONE, mode = -1;
    int x = 0, y = 0;
    size_t index = 0;
    double seconds = 0;
    // When it had done its work: another selection or model since, and it is forgotten.
    unsigned selection = 0;
    std::uint64_t model = 0;
};
last_click_t last_click;

pick_kind kind_of_mode()
{
    switch (select_mode()) {
    case SELECT_SURFACE:
        return pick_kind::SURFACE;
    case SELECT_VERTEX:
        return pick_kind::VERTEX;
    case SELECT_EDGE:
        return pick_kind::EDGE;
    case SELECT_LIGHT:
        return pick_kind::LIGHT;
    default:
        return pick_kind::OBJECT;
    }
}

// Hits as the select mode sees them: in tree mode ancestors instead of members, each once.
std::vector<pick_hit_t> hits_of_mode(std::vector<pick_hit_t> hits)
{
    if (select_mode() != SELECT_TREE) {
        return hits;
    }
    std::unordered_set<const object_t *> seen;
    std::vector<pick_hit_t> tops;
    for (pick_hit_t hit : hits) {
        hit.object = object_top_ancestor(hit.object);
        if (seen.insert(hit.object).second) {
            tops.push_back(hit);
        }
    }
    return tops;
}

std::vector<pick_hit_t> hits_at(int view, int x, int y)
{
    const int range =
        static_cast<int>(std::lround(prefs.pick_pixel_range * view_interface_scale()));
    return hits_of_mode(pick_at(view, kind_of_mode(), x, y, range));
}

// The edges of the hits, object by object.
std::vector<owned_edges> edges_of_hits(const std::vector<pick_hit_t> &hits)
{
    std::vector<owned_edges> edges;
    for (const pick_hit_t &hit : hits) {
        if (edges.empty() || edges.back().object != hit.object) {
            edges.push_back({hit.object, object_topology(hit.object), {}});
            std::uint32_t number = 0;
            for (vertex *v : *edges.back().topology->mesh().vertex_records)
                set_scratch(v, number++);
        }
        const int e = edges.back().topology->table().find(static_cast<int>(scratch(hit.point)),
                                                          static_cast<int>(scratch(hit.end)));
        if (e >= 0)
            edges.back().edges.push_back(e);
    }
    return edges;
}

bool is_edge_selected(const pick_hit_t &hit)
{
    const std::vector<owned_edges> picked = edges_of_hits({hit});
    for (const owned_edges &owned : selected_edges()) {
        if (owned.object == hit.object && !picked.front().edges.empty())
            return std::find(owned.edges.begin(), owned.edges.end(),
                             picked.front().edges.front()) != owned.edges.end();
    }
    return false;
}

void echo_edges(const std::vector<owned_edges> &edges, bool on, bool replace)
{
    if (replace)
        echo_command({"clear_selection"});
    for (const owned_edges &owned : edges) {
        for (const int e : owned.edges)
            echo_command({on ? "edge_select" : "edge_deselect",
                          std::to_string(object_identity(owned.object)),
                          std::to_string(owned.topology->edge(e).a),
                          std::to_string(owned.topology->edge(e).b)});
    }
}

// A second click on an edge takes its loop, and on an edge of the loop alone its ring.
bool take_walk(const pick_hit_t &hit, bool add)
{
    const std::vector<owned_edges> edge = edges_of_hits({hit});
    if (edge.empty() || edge.front().edges.empty())
        return false;
    const bool ring = loop_is_selected(edge.front());
    select_edges(ring ? rings_of(edge) : loops_of(edge),
                 add ? edge_change::add : edge_change::replace);
    echo_command({ring ? "select_ring" : "select_loop"});
    return true;
}

// The corner of the polygon that begins the side nearest to the pointer; -1 for none.
int corner_of_side_at(const flat_mesh &mesh, int surface, int view, int x, int y)
{
    const projector_t projector(view);
    float least = std::numeric_limits<float>::infinity();
    int nearest = -1;
    const auto corners = mesh.surface_corners(surface);
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const int from = corners[i], to = corners[i + 1 < corners.size() ? i + 1 : 0];
        const near_place_t place =
            near_segment(projector(mesh.position(from)), projector(mesh.position(to)),
                         projector.has_perspective(), static_cast<float>(x), static_cast<float>(y));
        if (place.pixels < least) {
            least = place.pixels;
            nearest = mesh.first_corner(surface) + static_cast<int>(i);
        }
    }
    return nearest;
}

// A second click on a quad takes the strip of quads through the side at the pointer.
bool take_strip(const pick_hit_t &hit, int view, int x, int y, bool add)
{
    const topology_ptr topology = object_topology(hit.object);
    const auto &records = *topology->mesh().surface_records;
    const auto record = std::find(records.begin(), records.end(), hit.surface);
    const auto surface = static_cast<int>(record - records.begin());
    if (record == records.end() || !topology->is_quad(surface))
        return false;
    const int corner = corner_of_side_at(topology->mesh(), surface, view, x, y);
    const int edge = corner < 0 ? -1 : topology->edge_of_corner(corner);
    if (edge < 0)
        return false;
    owned_list strip;
    for (const int quad : topology->ring_quads(topology->ring(edge)))
        strip.add(topology->mesh().surface_record(quad));
    if (!add)
        clear_selection();
    change_selection(strip.get(), true);
    echo_selection(true, !add, strip.get());
    return true;
}

bool is_selected(const pick_hit_t &hit)
{
    if (select_mode() == SELECT_EDGE)
        return is_edge_selected(hit);
    const selection_t &all = selection();
    if (hit.point != nullptr) {
        return list_index(all.vertices, hit.point) >= 0;
    }
    if (hit.surface != nullptr && select_mode() == SELECT_SURFACE) {
        return list_index(all.surfaces, hit.surface) >= 0;
    }
    return list_index(all.objects, hit.object) >= 0;
}

// Changes the selection, or makes these the selection.
void set_selected(const std::vector<pick_hit_t> &hits, bool on, bool replace)
{
    if (select_mode() == SELECT_EDGE) {
        const std::vector<owned_edges> edges = edges_of_hits(hits);
        select_edges(edges, replace ? edge_change::replace
                            : on    ? edge_change::add
                                    : edge_change::remove);
        echo_edges(edges, on, replace);
        return;
    }
    if (replace) {
        clear_selection();
    }
    owned_list list;
    for (const pick_hit_t &hit : hits) {
        if (select_mode() == SELECT_VERTEX) {
            list.add(hit.point);
        } else if (select_mode() == SELECT_SURFACE) {
            list.add(hit.surface);
        } else {
            list.add(hit.object);
        }
    }
    change_selection(list.get(), on);
    echo_selection(on, replace, list.get());
}

// A second click on a vertex takes all that hangs together with it.
void take_linked(const pick_hit_t &hit, bool add)
{
    set_selected({hit}, true, !add);
    command_select_linked();
    echo_command({"select_linked"});
}

// What a double click on an element takes beside the element; whether there is something.
bool take_more(const pick_hit_t &hit, int view, int x, int y, bool add)
{
    switch (select_mode()) {
    case SELECT_EDGE:
        return take_walk(hit, add);
    case SELECT_SURFACE:
        return take_strip(hit, view, x, y, add);
    case SELECT_VERTEX:
        take_linked(hit, add);
        return true;
    default:
        return false;
    }
}

void select_nothing()
{
    if (nothing_is_selected() == 0) {
        echo_command({"clear_selection"});
    }
    clear_selection();
}

bool is_again(int view, int x, int y, double seconds)
{
    const last_click_t &last = last_click;
    return seconds - last.seconds <= cycle_seconds && last.selection == selection_change_count() &&
           last.model == model_change_count() && last.view == view && last.mode == select_mode() &&
           std::abs(last.x - x) <= same_place && std::abs(last.y - y) <= same_place;
}

// Which of the hits a click takes.
size_t index_of_click(int view, int x, int y, double seconds, size_t count)
{
    const size_t index = is_again(view, x, y, seconds) ? (last_click.index + 1) % count : 0;
    last_click = {view, select_mode(), x, y, index, seconds, 0, 0};
    return index;
}

// The click has done its work.
void note_click()
{
    last_click.selection = selection_change_count();
    last_click.model = model_change_count();
}

// The object below the pointer itself, in object mode.
bool descend(int view, int x, int y)
{
    const int range =
        static_cast<int>(std::lround(prefs.pick_pixel_range * view_interface_scale()));
    const std::vector<pick_hit_t> members = pick_at(view, pick_kind::OBJECT, x, y, range);
    if (members.empty()) {
        return false;
    }
    set_new_select_mode(SELECT_OBJECT);
    echo_command({"set_select_mode", "object"});
    set_selected({members.front()}, true, true);
    last_click = {};
    return true;
}

// Tree mode, wholly inside: every member with geometry must be.
void keep_whole_trees(const std::vector<pick_hit_t> &members, std::vector<pick_hit_t> *tops)
{
    std::unordered_set<const object_t *> inside;
    for (const pick_hit_t &hit : members) {
        inside.insert(hit.object);
    }
    std::erase_if(*tops, [&](const pick_hit_t &top) {
        return find_object_where(top.object, [&](const object_t *object) {
                   return object->vertices != nullptr && object->visible != 0 &&
                          object->locked == 0 && !inside.contains(object);
               }) != nullptr;
    });
}

void finish()
{
    redraw_all();
    display_status();
}

} // namespace

void select_click(int view, int x, int y, int state, double seconds)
{
    const bool shift = qualifier_shift(state) != 0;
    const bool of_objects = select_mode() == SELECT_TREE || select_mode() == SELECT_OBJECT;
    const bool twice =
        is_again(view, x, y, seconds) && seconds - last_click.seconds < double_click_seconds;
    if (twice && of_objects && !shift && descend(view, x, y)) {
        finish();
        return;
    }
    const std::vector<pick_hit_t> hits = hits_at(view, x, y);
    if (twice && !hits.empty() && take_more(hits.front(), view, x, y, shift)) {
        note_click();
        finish();
        return;
    }
    if (hits.empty()) {
        last_click = {};
        // A press and release on a handle is no click on the ground behind it.
        if (!shift && handle_at(view, x, y) <= HANDLE_INSIDE_ROTATE) {
            select_nothing();
        }
        finish();
        return;
    }
    const pick_hit_t &hit = hits[index_of_click(view, x, y, seconds, hits.size())];
    set_selected({hit}, !shift || !is_selected(hit), !shift);
    note_click();
    finish();
}

void select_for_menu(int view, int x, int y)
{
    const std::vector<pick_hit_t> hits = hits_at(view, x, y);
    if (hits.empty() || std::any_of(hits.begin(), hits.end(), is_selected)) {
        return;
    }
    set_selected({hits.front()}, true, true);
    last_click = {view, select_mode(), x, y, 0, 0, 0, 0};
    finish();
}

void select_behind_at(int view, int x, int y)
{
    const std::vector<pick_hit_t> hits =
        view < 0 || view >= num_views ? std::vector<pick_hit_t>() : hits_at(view, x, y);
    if (hits.empty()) {
        display_message("select behind - nothing lies there");
        return;
    }
    const auto at = static_cast<std::size_t>(std::find_if(hits.begin(), hits.end(), is_selected) -
                                             hits.begin());
    const std::size_t index = at < hits.size() ? (at + 1) % hits.size() : 0;
    set_selected({hits[index]}, true, true);
    last_click = {view, select_mode(), x, y, index, 0, 0, 0};
    finish();
    display_message("select behind - %d of %d", static_cast<int>(index) + 1,
                    static_cast<int>(hits.size()));
}

void command_select_behind() { select_behind_at(last_click.view, last_click.x, last_click.y); }

void select_band(int view, const band_t &band, int state)
{
    const std::vector<pick_hit_t> found = pick_band(view, kind_of_mode(), band);
    std::vector<pick_hit_t> hits = hits_of_mode(found);
    if (select_mode() == SELECT_TREE && !band.touching) {
        keep_whole_trees(found, &hits);
    }
    const bool remove = qualifier_control(state) != 0;
    const bool replace = !remove && qualifier_shift(state) == 0;
    if (!hits.empty()) {
        set_selected(hits, !remove, replace);
    } else if (replace) {
        select_nothing();
    }
    finish();
}

bool pointer_is_on_selection(int view, int x, int y)
{
    const std::vector<pick_hit_t> hits = hits_at(view, x, y);
    return std::any_of(hits.begin(), hits.end(), is_selected);
}

pick_hit_t select_hit_at(int view, int x, int y)
{
    const std::vector<pick_hit_t> hits = hits_at(view, x, y);
    return hits.empty() ? pick_hit_t{} : hits.front();
}

bool select_hit_is_selected(const pick_hit_t &hit) { return is_selected(hit); }

void tool_select_reset_for_test() { last_click = {}; }
