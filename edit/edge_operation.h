#ifndef VESK_EDIT_EDGE_OPERATION_H
#define VESK_EDIT_EDGE_OPERATION_H

// The frame of the operations on selected edges: compute for every object, open one undo record,
// commit, select the results.

#include "edit/document/edge_selection.h"
#include "edit/mesh/mesh_change.h"

#include <array>
#include <functional>
#include <string>
#include <vector>

// The computing half for one object.
struct edge_work {
    mesh_change &change;
    const edge_topology &topology;
    const std::vector<int> &edges;
    object_t *object;
    int changed = 0; // counts for the message
    // Results, selected afterwards: edges by the places of their ends, old or new, and vertices. In
    // surface mode the new surfaces are selected.
    std::vector<std::array<int, 2>> made_edges = {};
    std::vector<int> made_vertices = {};
    // Not empty: why nothing is changed anywhere; `faulty` edges are selected to show the place.
    std::string refusal = {};
    std::vector<int> faulty = {};

    [[nodiscard]] const flat_mesh &mesh() const { return topology.mesh(); }
};

// Runs `compute` for each object's edges, the selected ones. `counted` names what edge_work::changed counts,
// for the message line ("%s - %d %s"). Without any change: "<what> - nothing selected".
void run_edge_operation(const char *what, const char *counted,
                        const std::function<void(edge_work &)> &compute);
void run_edge_operation(const char *what, const char *counted, std::vector<owned_edges> targets,
                        const std::function<void(edge_work &)> &compute);

// For an operation that takes vertices in vertex mode: the owners of the selected ones, without any
// edges, and which of an owner's vertices are selected.
std::vector<owned_edges> owners_of_selected_vertices();
std::vector<bool> selected_vertex_marks(const flat_mesh &mesh);

#endif
