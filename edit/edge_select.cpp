#include "edit/edge_select.h"

#include "base/command_result.h"
#include "base/messages.h"
#include "edit/document/edit_support.h"
#include "edit/document/modes.h"
#include "edit/document/selection_scan.h"
#include "edit/mesh/shortest_way.h"
#include "model/angle.h"
#include "model/identity.h"
#include "model/vector.h"
#include "model/world.h"

#include <algorithm>
#include <cmath>

namespace {

// The objects that have something selected, those below selected objects too; all that can be
// selected when nothing is.
std::vector<object_t *> objects_at_hand()
{
    std::vector<object_t *> objects;
    const auto add_below = [&](object_t *top) {
        for_each_object(top, [&](object_t *object) {
            if (object->visible != 0 && object->locked == 0 && object->num_surfaces > 0)
                objects.push_back(object);
        });
    };
    if (mode_has_elements(select_mode()) && nothing_is_selected() == 0) {
        const owned_list owners(selection_get_part_selected_objects());
        return elements_of<object_t>(owners.get());
    }
    if (nothing_is_selected() != 0)
        add_below(vesk_get_world());
    for (object_t *top : selected_top_objects())
        add_below(top);
    return objects;
}

// Runs `walk` from every edge that no walk has reached.
template <class Walk>
std::vector<owned_edges> reached_from(const std::vector<owned_edges> &edges, Walk walk)
{
    std::vector<owned_edges> result;
    for (const owned_edges &owned : edges) {
        std::vector<bool> reached(owned.topology->size());
        std::vector<int> all;
        for (const int e : owned.edges) {
            if (reached[e])
                continue;
            for (const int found : walk(*owned.topology, e)) {
                if (!reached[found])
                    all.push_back(found);
                reached[found] = true;
            }
        }
        result.push_back({owned.object, owned.topology, std::move(all)});
    }
    return result;
}

// The edges of the objects at hand that `keep` names.
template <class Keep>
std::vector<owned_edges> edges_where(Keep keep)
{
    std::vector<owned_edges> result;
    for (object_t *object : objects_at_hand()) {
        owned_edges owned = {object, object_topology(object), {}};
        for (int e = 0; e < owned.topology->size(); ++e) {
            if (keep(*owned.topology, e))
                owned.edges.push_back(e);
        }
        if (!owned.edges.empty())
            result.push_back(std::move(owned));
    }
    return result;
}

void finish(const char *what, const std::vector<owned_edges> &edges, edge_change change)
{
    const int count = count_edges(edges);
    if (count == 0) {
        display_message("%s - nothing found", what);
        return;
    }
    take_edges(edges, change);
    finish_edit();
    display_message("%s - %d edges", what, count);
}

void select_walks(const char *what,
                  std::vector<owned_edges> (*walks)(const std::vector<owned_edges> &))
{
    const std::vector<owned_edges> edges = selected_edges();
    if (edges.empty()) {
        display_message("%s - nothing selected", what);
        return;
    }
    finish(what, walks(edges), edge_change::replace);
}

// One edge, by its ends' places; nothing when there is none, which the message line says.
std::vector<owned_edges> edge_named(int object_id, int a, int b)
{
    object_t *object = object_by_identity(object_id);
    if (object == nullptr)
        return {};
    topology_ptr topology = object_topology(object);
    const int count = topology->mesh().num_vertices();
    const bool inside = a >= 0 && a < count && b >= 0 && b < count;
    const int e = inside ? topology->table().find(a, b) : -1;
    if (e < 0) {
        display_message("no edge from vertex %d to vertex %d", a, b);
        return {};
    }
    return {{object, std::move(topology), {e}}};
}

void change_edge(int object_id, int a, int b, edge_change change)
{
    const std::vector<owned_edges> edge = edge_named(object_id, a, b);
    if (edge.empty())
        return;
    select_edges(edge, change);
    finish_edit();
}

// ---- the shortest way ----

struct path_end {
    object_t *object;
    int place; // of a vertex or a surface
};

std::vector<path_end> first_and_last(const listitem *list,
                                     std::vector<owned_elements> (*by_owner)(const listitem *))
{
    std::vector<path_end> ends;
    if (list == nullptr)
        return ends;
    for (void *element :
         {item_of<void>(list), item_of<void>(list_end(const_cast<listitem *>(list)))}) {
        owned_list one;
        one.add(element);
        for (const owned_elements &owned : by_owner(one.get()))
            ends.push_back({owned.object, owned.indices.front()});
    }
    return ends;
}

std::vector<path_end> ends_by_surface()
{
    return first_and_last(selection().surfaces, surfaces_by_owner);
}

// In edge mode the first end of the first edge and the last end of the last one.
std::vector<path_end> ends_by_vertex()
{
    return first_and_last(selection().vertices, vertices_by_owner);
}

void select_way_of_surfaces(const flat_mesh &mesh, const std::vector<int> &way)
{
    owned_list list;
    for (const int s : way)
        list.add(mesh.surface_record(s));
    clear_selection();
    select_surfacelist(list.get());
}

void select_way_of_vertices(object_t *object, const topology_ptr &topology,
                            const std::vector<int> &way)
{
    owned_edges edges = {object, topology, {}};
    for (std::size_t i = 0; i + 1 < way.size(); ++i)
        edges.edges.push_back(topology->table().find(way[i], way[i + 1]));
    take_edges({edges}, edge_change::replace);
}

} // namespace

void take_edges(const std::vector<owned_edges> &edges, edge_change change)
{
    if (select_mode() == SELECT_VERTEX) {
        owned_list ends;
        for (vertex *v : ends_of(edges))
            ends.add(v);
        if (change == edge_change::replace)
            clear_selection();
        change == edge_change::remove ? unselect_vertices(ends.get()) : select_vertices(ends.get());
        return;
    }
    if (select_mode() != SELECT_EDGE) {
        set_new_select_mode(SELECT_EDGE);
        change = edge_change::replace;
    }
    select_edges(edges, change);
}

std::vector<owned_edges> loops_of(const std::vector<owned_edges> &edges)
{
    return reached_from(edges, [](const edge_topology &t, int e) { return t.loop(e).edges; });
}

std::vector<owned_edges> rings_of(const std::vector<owned_edges> &edges)
{
    return reached_from(edges, [](const edge_topology &t, int e) { return t.ring(e).edges; });
}

bool loop_is_selected(const owned_edges &edge)
{
    const std::vector<owned_edges> selected = selected_edges();
    if (selected.size() != 1 || selected.front().object != edge.object)
        return false;
    std::vector<int> loop = edge.topology->loop(edge.edges.front()).edges;
    std::vector<int> now = selected.front().edges;
    std::sort(loop.begin(), loop.end());
    std::sort(now.begin(), now.end());
    return loop == now;
}

bool is_folded(const edge_topology &topology, int e, double cosine)
{
    const auto uses = topology.uses(e);
    if (uses.size() != 2)
        return false;
    const point3_t &p = topology.mesh().face_normal(uses[0].surface);
    const point3_t &q = topology.mesh().face_normal(uses[1].surface);
    // Neighbours that run against each other see the same fold from their two sides.
    const double sign = uses[0].forward == uses[1].forward ? -1 : 1;
    return sign * point_dot(p, q) < cosine * point_length(p) * point_length(q);
}

// ---- commands ----

void command_edge_select(int object_id, int a, int b)
{
    change_edge(object_id, a, b, edge_change::add);
}

void command_edge_deselect(int object_id, int a, int b)
{
    change_edge(object_id, a, b, edge_change::remove);
}

void command_get_num_edges()
{
    const int count = select_mode() == SELECT_EDGE ? count_edges(selected_edges()) : 0;
    command_result_appendf("%d", count);
}

void command_get_selected_edges()
{
    if (select_mode() != SELECT_EDGE)
        return;
    const char *before = "";
    for (const owned_edges &owned : selected_edges()) {
        const int identity = object_identity(owned.object);
        for (const int e : owned.edges) {
            const mesh_edge &edge = owned.topology->edge(e);
            command_result_appendf("%s%d %d %d", before, identity, edge.a, edge.b);
            before = " ";
        }
    }
}

void command_select_loop() { select_walks("select loop", loops_of); }

void command_select_ring() { select_walks("select ring", rings_of); }

void command_select_boundary()
{
    finish("select boundary",
           edges_where([](const edge_topology &t, int e) { return t.is_border(e); }),
           edge_change::replace);
}

void command_select_sharp(float degrees)
{
    const double flattest = std::cos(static_cast<double>(radians(degrees)));
    finish("select sharp",
           edges_where([&](const edge_topology &t, int e) { return is_folded(t, e, flattest); }),
           edge_change::replace);
}

void command_select_path()
{
    const char *const what = "select path";
    const bool surfaces = select_mode() == SELECT_SURFACE;
    const std::vector<path_end> ends = surfaces ? ends_by_surface() : ends_by_vertex();
    if (ends.size() < 2 || ends.front().object != ends.back().object) {
        display_message("%s - select two elements of one object", what);
        return;
    }
    object_t *object = ends.front().object;
    const topology_ptr topology = object_topology(object);
    const int from = ends.front().place, to = ends.back().place;
    const std::vector<int> way = surfaces ? shortest_way_of_surfaces(*topology, from, to)
                                          : shortest_way_of_vertices(*topology, from, to);
    if (way.empty()) {
        display_message("%s - no way leads from one to the other", what);
        return;
    }
    if (surfaces)
        select_way_of_surfaces(topology->mesh(), way);
    else
        select_way_of_vertices(object, topology, way);
    finish_edit();
    display_message("%s - %d %s", what, static_cast<int>(way.size()),
                    surfaces ? "surfaces" : "vertices");
}
