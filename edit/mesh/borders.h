#ifndef VESK_EDIT_MESH_BORDERS_H
#define VESK_EDIT_MESH_BORDERS_H

// Outlines of holes, as chains of corners for the polygons that close or join them.

#include "edit/mesh/edge_topology.h"

#include <functional>
#include <vector>

struct border_corner {
    int vertex;
    flat_uv uv; // of the surface beside the hole
    int like;   // that surface
};
// In the direction of a surface that fills the hole. Of a closed one the last corner is followed by
// the first.
struct border_chain {
    std::vector<border_corner> corners;
    bool closed = false;
};

// The closed outlines of the holes that have one of the edges; others are left out.
std::vector<border_chain> holes_at(const edge_topology &topology, const std::vector<int> &edges);

// The edges in chains, as far as they are joined without branches; each edge must be one that
// `is_side(use)` has exactly one use of: the side whose surface stays. Empty when edges branch or
// an edge has no such side or several.
std::vector<border_chain> chains_of(const edge_topology &topology, const std::vector<int> &edges,
                                    const std::function<bool(const edge_use &)> &is_side);

#endif
