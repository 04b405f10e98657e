#ifndef VESK_EDIT_CHECK_MODEL_CHECK_NOTES_H
#define VESK_EDIT_CHECK_MODEL_CHECK_NOTES_H

// Open edges and doubled vertices that a model has on purpose. A sheet faces one way: its area
// vectors add up to three fifths of its area at least, and its border is no hole. A crease keeps two
// sides apart for their shading: at one place two open edges, whose surfaces meet at an angle.
// Vertices are doubled on purpose along creases, where pieces touch, and where lines end.

#include "edit/mesh/edge_table.h"

#include <vector>

struct meant_parts {
    std::vector<bool> edges;    // by place in the edge table; only open ones are looked at
    std::vector<bool> vertices; // that lie where an earlier one does
};

/* first  for each vertex the first one at its place, as first_at_place gives it. */
meant_parts find_meant_parts(const flat_mesh &mesh, const edge_table &edges,
                             const std::vector<int> &first);

#endif
