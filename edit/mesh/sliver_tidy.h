#ifndef VESK_EDIT_MESH_SLIVER_TIDY_H
#define VESK_EDIT_MESH_SLIVER_TIDY_H

#include "edit/mesh/solid_boolean.h"

#include <functional>

// Rounding leaves polygons without an area, and pairs of polygons back to back. A polygon without an
// area goes into the one beyond its longest side, which gets its other corners there; pairs go. No
// edge opens by it. Polygons that lose all their corners are empty afterwards. What lies beyond may be
// a polygon that stays whole: `take_whole` appends the one that has a side from one vertex to another,
// and returns false when there is none.
void tidy_slivers(std::vector<solid_result::polygon_t> &polygons,
                  const std::function<point3_t(int)> &position,
                  const std::function<bool(int from, int to)> &take_whole);

#endif
