#ifndef VESK_EDIT_DOCUMENT_EDGE_SELECTION_H
#define VESK_EDIT_DOCUMENT_EDGE_SELECTION_H

// The selected edges of edge mode. The vertex list of the selection holds their ends, so that
// everything that works on selected vertices works on edges too. Either certain edges are chosen, or
// all edges whose two ends are selected: that is what is left when other code changes the vertex
// list, and costs no list.

#include "edit/mesh/edge_topology.h"

#include <optional>
#include <vector>

struct edge_ends {
    vertex *a, *b;
    bool operator==(const edge_ends &) const = default;
};
// None: all edges whose two ends are selected.
using chosen_edges = std::optional<std::vector<edge_ends>>;

// The edges of one object by their numbers, each once.
struct owned_edges {
    object_t *object;
    topology_ptr topology;
    std::vector<int> edges;
};

enum class edge_change { replace, add, remove };

// The selected edges, object by object in tree order; ascending unless certain ones were chosen.
// In vertex mode the edges between selected vertices, in surface mode the sides of the selected
// surfaces; in the object modes all edges of the selected objects and those below them.
std::vector<owned_edges> selected_edges();
// The same of a selection that was put away in that mode.
struct saved_selection_t;
std::vector<owned_edges> edges_of_saved(const saved_selection_t &saved);
// The ends in the order of the edges, each as often as edges have it.
std::vector<vertex *> ends_of(const std::vector<owned_edges> &edges);
// The polygons all of whose sides are among the edges.
std::vector<surface_t *> surfaces_of_sides(const std::vector<owned_edges> &edges);
int count_edges(const std::vector<owned_edges> &edges);

// Edge mode only (else a console line and no change): changes which edges are selected, keeps the
// ends in step and announces it.
void select_edges(const std::vector<owned_edges> &edges, edge_change change);

// The same for edges by their ends, which become the selection.
void select_edges_by_ends(std::vector<edge_ends> edges);

// For the keepers of the selection: the chosen edges as they stand. Taking or setting them
// announces nothing and leaves the vertex list alone.
const chosen_edges &chosen_edges_now();
void chosen_edges_set(chosen_edges edges);
// The vertex list changed otherwise: the edges follow from it.
void chosen_edges_forget();
// Drops edges that have lost an end.
void chosen_edges_drop(const std::vector<vertex *> &freed);

#endif
