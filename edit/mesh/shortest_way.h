#ifndef VESK_EDIT_MESH_SHORTEST_WAY_H
#define VESK_EDIT_MESH_SHORTEST_WAY_H

// Shortest ways over an object's polygons, by length in space. n log n.

#include "edit/mesh/edge_topology.h"

#include <vector>

// The vertices of the shortest way along edges, both ends included; empty when there is none.
std::vector<int> shortest_way_of_vertices(const edge_topology &topology, int from, int to);
// The surfaces of the shortest way from middle to middle across common edges.
std::vector<int> shortest_way_of_surfaces(const edge_topology &topology, int from, int to);

#endif
