#include "edit/document/edge_selection.h"

#include "base/messages.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_scan.h"
#include "model/owners.h"
#include "model/world.h"

#include <algorithm>
#include <numeric>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace {

chosen_edges chosen;

bool is_selectable(const object_t *object) { return object->visible != 0 && object->locked == 0; }

// The edges whose two ends are marked.
std::vector<int> edges_between(const edge_topology &topology, const std::vector<bool> &marked)
{
    std::vector<int> found;
    for (int e = 0; e < topology.size(); ++e) {
        if (marked[topology.edge(e).a] && marked[topology.edge(e).b])
            found.push_back(e);
    }
    return found;
}

std::vector<owned_edges> edges_of_vertices(const std::vector<owned_elements> &owners)
{
    std::vector<owned_edges> all;
    for (const owned_elements &owned : owners) {
        topology_ptr topology = object_topology(owned.object);
        std::vector<bool> marked(topology->mesh().num_vertices());
        for (const int v : owned.indices)
            marked[v] = true;
        std::vector<int> edges = edges_between(*topology, marked);
        if (!edges.empty())
            all.push_back({owned.object, std::move(topology), std::move(edges)});
    }
    return all;
}

// Certain edges by their numbers: vertices are numbered through all owners meanwhile.
std::vector<owned_edges> edges_of_ends(const std::vector<edge_ends> &wanted,
                                       const std::vector<owned_elements> &owners)
{
    std::vector<owned_edges> all;
    std::vector<const vertex *> records;
    std::vector<std::uint32_t> starts;
    for (const owned_elements &owned : owners) {
        all.push_back({owned.object, object_topology(owned.object), {}});
        starts.push_back(static_cast<std::uint32_t>(records.size()));
        for (vertex *v : *all.back().topology->mesh().vertex_records) {
            set_scratch(v, static_cast<std::uint32_t>(records.size()));
            records.push_back(v);
        }
    }
    const auto number_of = [&](const vertex *v) {
        const std::uint32_t number = scratch(v);
        return number < records.size() && records[number] == v ? static_cast<int>(number) : -1;
    };
    for (const edge_ends &ends : wanted) {
        const int a = number_of(ends.a), b = number_of(ends.b);
        if (a < 0 || b < 0)
            continue;
        const auto after =
            std::upper_bound(starts.begin(), starts.end(), static_cast<std::uint32_t>(a));
        const auto owner = static_cast<std::size_t>(after - starts.begin()) - 1;
        const int first = static_cast<int>(starts[owner]);
        const flat_mesh &mesh = all[owner].topology->mesh();
        if (b < first || b - first >= mesh.num_vertices())
            continue;
        const int e = all[owner].topology->table().find(a - first, b - first);
        if (e >= 0)
            all[owner].edges.push_back(e);
    }
    std::erase_if(all, [](const owned_edges &owned) { return owned.edges.empty(); });
    return all;
}

std::vector<owned_edges> sides_of(const std::vector<owned_elements> &surfaces)
{
    std::vector<owned_edges> all;
    for (const owned_elements &owned : surfaces) {
        topology_ptr topology = object_topology(owned.object);
        const flat_mesh &mesh = topology->mesh();
        std::vector<bool> taken(topology->size());
        std::vector<int> edges;
        for (const int s : owned.indices) {
            for (int c = mesh.first_corner(s); c < mesh.end_corner(s); ++c) {
                const int e = topology->edge_of_corner(c);
                if (e < 0 || taken[e])
                    continue;
                taken[e] = true;
                edges.push_back(e);
            }
        }
        if (!edges.empty())
            all.push_back({owned.object, std::move(topology), std::move(edges)});
    }
    return all;
}

std::vector<owned_edges> edges_of_list(int mode, const listitem *vertices,
                                       const chosen_edges &edges)
{
    const std::vector<owned_elements> owners = vertices_by_owner(vertices);
    return mode == SELECT_EDGE && edges ? edges_of_ends(*edges, owners) : edges_of_vertices(owners);
}

// The union or the difference of two sets of edges of one object, in the order of `old`.
std::vector<int> joined(const edge_topology &topology, const std::vector<int> &old,
                        const std::vector<int> &edges, bool add)
{
    std::vector<bool> marked(topology.size());
    for (const int e : add ? old : edges)
        marked[e] = true;
    std::vector<int> result;
    if (add)
        result = old;
    for (const int e : add ? edges : old) {
        if (!marked[e])
            result.push_back(e);
    }
    return result;
}

std::vector<owned_edges> combined(const std::vector<owned_edges> &edges, edge_change change)
{
    if (change == edge_change::replace)
        return edges;
    std::vector<owned_edges> result = selected_edges();
    std::unordered_map<const object_t *, std::size_t> places;
    for (std::size_t i = 0; i < result.size(); ++i)
        places.emplace(result[i].object, i);
    for (const owned_edges &owned : edges) {
        const auto place = places.find(owned.object);
        if (place != places.end()) {
            owned_edges &old = result[place->second];
            old.edges = joined(*old.topology, old.edges, owned.edges, change == edge_change::add);
        } else if (change == edge_change::add) {
            result.push_back(owned);
        }
    }
    return result;
}

} // namespace

const chosen_edges &chosen_edges_now() { return chosen; }

void chosen_edges_set(chosen_edges edges) { chosen = std::move(edges); }

void chosen_edges_forget() { chosen.reset(); }

void chosen_edges_drop(const std::vector<vertex *> &freed)
{
    if (!chosen || chosen->empty() || freed.empty())
        return;
    const std::unordered_set<const vertex *> gone(freed.begin(), freed.end());
    std::erase_if(*chosen, [&](const edge_ends &ends) {
        return gone.count(ends.a) != 0 || gone.count(ends.b) != 0;
    });
}

std::vector<owned_edges> selected_edges()
{
    if (!mode_has_vertices(select_mode()))
        return sides_of(target_surfaces());
    return edges_of_list(select_mode(), selection().vertices, chosen);
}

std::vector<owned_edges> edges_of_saved(const saved_selection_t &saved)
{
    return mode_has_vertices(saved.mode) ? edges_of_list(saved.mode, saved.vertices, saved.edges)
                                         : sides_of(surfaces_by_owner(saved.surfaces));
}

std::vector<vertex *> ends_of(const std::vector<owned_edges> &edges)
{
    std::vector<vertex *> ends;
    for (const owned_edges &owned : edges) {
        const flat_mesh &mesh = owned.topology->mesh();
        for (const int e : owned.edges) {
            ends.push_back(mesh.vertex_record(owned.topology->edge(e).a));
            ends.push_back(mesh.vertex_record(owned.topology->edge(e).b));
        }
    }
    return ends;
}

std::vector<surface_t *> surfaces_of_sides(const std::vector<owned_edges> &edges)
{
    std::vector<surface_t *> surfaces;
    for (const owned_edges &owned : edges) {
        const flat_mesh &mesh = owned.topology->mesh();
        std::vector<bool> marked(owned.topology->size());
        for (const int e : owned.edges)
            marked[e] = true;
        for (int s = 0; s < mesh.num_surfaces(); ++s) {
            bool whole = !mesh.surface(s).is_line() && mesh.first_corner(s) < mesh.end_corner(s);
            for (int c = mesh.first_corner(s); c < mesh.end_corner(s) && whole; ++c) {
                const int e = owned.topology->edge_of_corner(c);
                whole = e >= 0 && marked[e];
            }
            if (whole)
                surfaces.push_back(mesh.surface_record(s));
        }
    }
    return surfaces;
}

int count_edges(const std::vector<owned_edges> &edges)
{
    return std::accumulate(edges.begin(), edges.end(), 0, [](int sum, const owned_edges &owned) {
        return sum + static_cast<int>(owned.edges.size());
    });
}

void select_edges(const std::vector<owned_edges> &edges, edge_change change)
{
    std::vector<owned_edges> result = combined(edges, change);
    std::erase_if(result, [](const owned_edges &owned) { return !is_selectable(owned.object); });
    const std::vector<vertex *> vertices = ends_of(result);
    std::vector<edge_ends> ends;
    for (std::size_t i = 0; i < vertices.size(); i += 2)
        ends.push_back({vertices[i], vertices[i + 1]});
    select_edges_by_ends(std::move(ends));
}

void select_edges_by_ends(std::vector<edge_ends> edges)
{
    if (select_mode() != SELECT_EDGE) {
        console_printf("select_edges called when not in EDGE selectmode\n");
        return;
    }
    std::vector<vertex *> vertices;
    vertices.reserve(2 * edges.size());
    for (const edge_ends &ends : edges) {
        vertices.push_back(ends.a);
        vertices.push_back(ends.b);
    }
    selection_t &all = selection();
    list_free(&all.vertices);
    all.num_vertices = 0;
    selection_add_vertices(vertices);
    chosen = std::move(edges);
    find_bounding_box();
    selection_changed("select_edges");
}
