#ifndef VESK_EDIT_MESH_MESH_EDGES_H
#define VESK_EDIT_MESH_MESH_EDGES_H

// The edges of some surfaces of a flat mesh: a corner starts the edge to the next corner of its
// surface, the last one the edge back to the first, which an open line does not have. Corners whose
// edges join the same two vertices, in either direction, share the edge. Linear for all but
// vertices with very many edges.

#include "model/flat_mesh.h"

#include <vector>

struct mesh_edges {
    int count = 0;
    // One for each corner of the mesh: its edge, or -1 (the end of an open line, and corners of
    // surfaces that are not in the list). Edges are numbered in the order in which the corners of
    // the surfaces, as they were given, first have them.
    std::vector<std::int32_t> of_corner;
};

// The edges of these surfaces; of all of them.
mesh_edges edges_of(const flat_mesh &mesh, const std::vector<int> &surfaces);
mesh_edges edges_of(const flat_mesh &mesh);

// The corner after `corner` in the surface, wrapping.
inline int next_corner(const flat_mesh &mesh, int surface, int corner)
{
    return corner + 1 < mesh.end_corner(surface) ? corner + 1 : mesh.first_corner(surface);
}

#endif
