#include "edit/symmetry_elements.h"

#include "edit/document/edit_support.h"
#include "edit/document/modes.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo_internal.h"
#include "edit/symmetry.h"
#include "edit/transform.h"

#include <algorithm>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace {

// The places of a surface's vertices in their object, sorted.
std::vector<int> places_of(const flat_mesh &mesh, int surface)
{
    const auto corners = mesh.surface_corners(surface);
    std::vector<int> places(corners.begin(), corners.end());
    std::sort(places.begin(), places.end());
    return places;
}

} // namespace

std::vector<surface_t *> counterparts_of(const listitem *surfaces, int *without)
{
    std::vector<surface_t *> found;
    for (const owned_elements &owned : surfaces_by_owner(surfaces)) {
        const flat_ptr mesh = object_flat(owned.object);
        const std::vector<int> twins = symmetric_places(owned.object);
        std::set<std::vector<int>> wanted;
        for (const int surface : owned.indices) {
            std::vector<int> mirrored = places_of(*mesh, surface);
            for (int &v : mirrored)
                v = twins[v];
            std::sort(mirrored.begin(), mirrored.end());
            if (mirrored.empty() || mirrored.front() < 0)
                ++*without;
            else
                wanted.insert(std::move(mirrored));
        }
        for (int s = 0; s < mesh->num_surfaces() && !wanted.empty(); ++s) {
            if (wanted.erase(places_of(*mesh, s)) > 0)
                found.push_back(mesh->surface_record(s));
        }
        *without += static_cast<int>(wanted.size());
    }
    return found;
}

namespace {

void add_edges_across(element_set *set, int *without)
{
    for (const owned_edges &owned : selected_edges()) {
        const flat_mesh &mesh = owned.topology->mesh();
        const std::vector<int> twins = symmetric_places(owned.object);
        for (const int e : owned.edges) {
            const mesh_edge &edge = owned.topology->edge(e);
            const int a = twins[edge.a], b = twins[edge.b];
            const int other = a >= 0 && b >= 0 ? owned.topology->table().find(a, b) : -1;
            if (other < 0) {
                ++*without;
                continue;
            }
            const mesh_edge &there = owned.topology->edge(other);
            set->edges.push_back({mesh.vertex_record(there.a), mesh.vertex_record(there.b)});
        }
    }
}

void add_vertices_across(element_set *set, int *without)
{
    std::unordered_map<const vertex *, vertex *> twin_of;
    for (const owned_elements &owned : vertices_by_owner(selection().vertices)) {
        const flat_ptr mesh = object_flat(owned.object);
        const std::vector<int> twins = symmetric_places(owned.object);
        for (const int v : owned.indices) {
            if (twins[v] >= 0)
                twin_of[mesh->vertex_record(v)] = mesh->vertex_record(twins[v]);
            else
                ++*without;
        }
    }
    const std::vector<vertex *> vertices = elements_of<vertex>(selection().vertices);
    for (auto v = vertices.rbegin(); v != vertices.rend(); ++v) {
        if (const auto twin = twin_of.find(*v); twin != twin_of.end())
            set->vertices.push_back(twin->second);
    }
}

std::vector<object_t *> selected_owners()
{
    std::vector<vertex *> vertices = elements_of<vertex>(selection().vertices);
    const std::vector<vertex *> of_surfaces = vertices_of_selected_surfaces();
    vertices.insert(vertices.end(), of_surfaces.begin(), of_surfaces.end());
    std::vector<object_t *> owners = owners_of_vertices(vertices);
    std::erase(owners, nullptr);
    return unique_objects(owners);
}

template <class T>
bool same_set(const std::vector<T *> &a, const std::vector<T *> &b)
{
    return std::set<T *>(a.begin(), a.end()) == std::set<T *>(b.begin(), b.end());
}

std::set<std::pair<vertex *, vertex *>> as_set(const std::vector<edge_ends> &edges)
{
    std::set<std::pair<vertex *, vertex *>> all;
    for (const edge_ends &edge : edges)
        all.insert(std::minmax(edge.a, edge.b));
    return all;
}

// Takes out what its owners have no more.
element_set still_there(element_set set)
{
    std::unordered_set<const void *> records;
    for (object_t *owner : set.owners) {
        const flat_ptr mesh = object_flat(owner);
        records.insert(mesh->vertex_records->begin(), mesh->vertex_records->end());
        records.insert(mesh->surface_records->begin(), mesh->surface_records->end());
    }
    const auto is_gone = [&](const void *record) { return !records.contains(record); };
    std::erase_if(set.vertices, is_gone);
    std::erase_if(set.surfaces, is_gone);
    std::erase_if(set.edges,
                  [&](const edge_ends &edge) { return is_gone(edge.a) || is_gone(edge.b); });
    return set;
}

} // namespace

element_set elements_of_selection()
{
    element_set set;
    set.owners = selected_owners();
    if (select_mode() == SELECT_EDGE) {
        for (const owned_edges &owned : selected_edges()) {
            const flat_mesh &mesh = owned.topology->mesh();
            for (const int e : owned.edges)
                set.edges.push_back({mesh.vertex_record(owned.topology->edge(e).a),
                                     mesh.vertex_record(owned.topology->edge(e).b)});
        }
    } else if (select_mode() == SELECT_SURFACE) {
        append_elements(selection().surfaces, &set.surfaces);
    } else {
        append_elements(selection().vertices, &set.vertices);
    }
    return set;
}

element_set selected_counterparts(int *without)
{
    element_set set;
    set.owners = selected_owners();
    if (select_mode() == SELECT_EDGE)
        add_edges_across(&set, without);
    else if (select_mode() == SELECT_SURFACE)
        set.surfaces = counterparts_of(selection().surfaces, without);
    else
        add_vertices_across(&set, without);
    return set;
}

bool same_elements(const element_set &a, const element_set &b)
{
    return same_set(a.vertices, b.vertices) && same_set(a.surfaces, b.surfaces) &&
           as_set(a.edges) == as_set(b.edges);
}

void select_element_set(const element_set &wanted)
{
    element_set set = still_there(wanted);
    clear_selection();
    if (select_mode() == SELECT_EDGE) {
        select_edges_by_ends(std::move(set.edges));
    } else if (select_mode() == SELECT_SURFACE) {
        selection_add_surfaces(set.surfaces);
    } else {
        selection_add_vertices(set.vertices);
    }
    selection_changed("select");
    find_bounding_box();
}

single_record::single_record() : serial_(undo_last_serial()) {}

bool single_record::was_opened() const { return undo_last_serial() != serial_; }

single_record::~single_record() { join(); }

void single_record::join()
{
    while (undo_records().size() > 1 && undo_records()[undo_records().size() - 2]->serial > serial_)
        undo_drop_newest();
}

void single_record::take_back()
{
    join();
    if (was_opened())
        UNDO();
}

void on_both_sides(const std::function<void()> &operation)
{
    if (!symmetry_acts()) {
        operation();
        return;
    }
    int without = 0;
    const element_set others = selected_counterparts(&without);
    const bool once = same_elements(others, elements_of_selection());
    const single_record record;
    operation();
    if (once || !record.was_opened())
        return;
    if (without > 0) {
        tell_without_counterpart(without);
        return;
    }
    const element_set results = elements_of_selection();
    select_element_set(others);
    operation();
    select_element_set(results);
}
