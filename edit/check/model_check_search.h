#ifndef VESK_EDIT_CHECK_MODEL_CHECK_SEARCH_H
#define VESK_EDIT_CHECK_MODEL_CHECK_SEARCH_H

// The searches of the model check on plain arrays.

#include "edit/mesh/edge_table.h"

#include <functional>
#include <utility>
#include <vector>

// For each point the first one at exactly its place (itself when it is that); minus zero is zero,
// and a point that is no number is at no other's place.
std::vector<int> first_at_place(const std::vector<point3_t> &points);

// For each surface the first of its type's kind (polygon or line) with the same corners in the same
// or the opposite order, from whichever corner on.
std::vector<int> first_of_same_corners(const flat_mesh &mesh);

struct polygon_shape {
    double double_area = 0; // length of the area vector, twice the area
    double longest_side = 0;
    double extent = 0;       // of the box's diagonal
    double out_of_plane = 0; // largest distance from the plane through the middle
};
polygon_shape shape_of(const flat_mesh &mesh, int surface);

// A vertex of an open edge on the inside of another open edge.
struct t_vertex {
    int vertex;
    int edge;
};
std::vector<t_vertex> mesh_t_vertices(const flat_mesh &mesh, const edge_table &edges);

// Pairs of polygons that go through each other, the lower place first; in order. What rounding alone
// may bring about does not count. Ends with the first thousand, so that a model in which everything
// crosses everything is answered as soon as any other. `go_on` is asked now and then; once it is false the
// search ends, with what was found.
std::vector<std::pair<int, int>> crossing_surfaces(const flat_ptr &mesh,
                                                   const std::function<bool()> &go_on);

#endif
