#ifndef VESK_EDIT_MESH_ELEMENT_GRAPH_H
#define VESK_EDIT_MESH_ELEMENT_GRAPH_H

// Elements of one object and the knots at which they touch: two elements with a common knot are
// neighbours. A knot may have any number of elements, so that a hub of a million surfaces costs no
// more than its corners. What one mode's elements need is a graph; the rules are for all.

#include "edit/mesh/edge_table.h"
#include "model/flat_mesh.h"

#include <span>
#include <vector>

struct element_graph {
    std::vector<int> begin = {0}; // of each element's knots, and one more
    std::vector<int> knots;
    int num_knots = 0;

    [[nodiscard]] int size() const { return static_cast<int>(begin.size()) - 1; }
    [[nodiscard]] std::span<const int> of(int element) const
    {
        return {knots.data() + begin[element], knots.data() + begin[element + 1]};
    }
};

// Surfaces and edges touch at vertices; vertices along edges.
element_graph graph_of_surfaces(const flat_mesh &mesh);
element_graph graph_of_edges(const edge_table &edges, int num_vertices);
element_graph graph_of_vertices(const flat_mesh &mesh);

// One flag an element.
using element_flags = std::vector<char>;

// The chosen ones with all their neighbours; without those that have a neighbour that is not chosen;
// with all that hang together with them.
element_flags grown(const element_graph &graph, const element_flags &chosen);
element_flags shrunk(const element_graph &graph, const element_flags &chosen);
element_flags linked(const element_graph &graph, const element_flags &chosen);

#endif
