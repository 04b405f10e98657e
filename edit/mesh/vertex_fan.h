#ifndef VESK_EDIT_MESH_VERTEX_FAN_H
#define VESK_EDIT_MESH_VERTEX_FAN_H

// The polygons round a vertex in order.

#include "edit/mesh/edge_topology.h"
#include "edit/mesh/vertex_use.h"

#include <vector>

// Counter-clockwise as the polygons face: corner i lies between edge i, by which its polygon leaves
// the vertex, and edge i + 1, by which it arrives. A closed fan has as many edges as corners (edge
// n is edge 0), an open one begins and ends at a border and has one more.
struct vertex_fan {
    std::vector<int> corners;
    std::vector<int> edges;
    bool closed = false;

    [[nodiscard]] int size() const { return static_cast<int>(corners.size()); }
    [[nodiscard]] int edge(int i) const { return edges[i % static_cast<int>(edges.size())]; }
};

// False where the polygons are no single fan that faces one way: edges of more than two polygons,
// several fans, neighbours that run against each other.
bool find_vertex_fan(const edge_topology &topology, const vertex_corners &corners, int v,
                     vertex_fan *fan);

// The corner before (after) one in its polygon, wrapping.
int corner_before(const flat_mesh &mesh, int surface, int corner);
int corner_after(const flat_mesh &mesh, int surface, int corner);

// The texture coordinates that the map of the corner's own triangle has at a point.
flat_uv corner_uv_at(const flat_mesh &mesh, int surface, int corner, const point3_t &point);

#endif
