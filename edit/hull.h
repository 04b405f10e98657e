#ifndef VESK_EDIT_HULL_H
#define VESK_EDIT_HULL_H

// Convex hulls and Delaunay triangulations, by the Qhull library.

#include "base/types.h"

#include <memory>
#include <vector>

struct polygons_t {
    std::vector<int> offsets; // one more than polygons
    std::vector<int> corners; // places of points

    [[nodiscard]] int size() const { return static_cast<int>(offsets.size()) - 1; }
};

enum class hull_result { done, flat, failed };

// The hull of the points as polygons that face outwards; triangles whose planes lie within
// `precision` of each other become one polygon. Points that are no numbers are left out. `flat`:
// all lie in one plane, or there are fewer than four.
hull_result convex_hull(const std::vector<point3_t> &points, double precision, polygons_t *out);

// The Delaunay triangulation of the points projected along an axis (0 x, 1 y, 2 z), which the
// triangles face. Of points that fall together one is taken. `flat`: all lie on one line.
hull_result delaunay_triangulation(const std::vector<point3_t> &points, int axis, polygons_t *out);

// "convexhull": of the selected vertices, as a new object "convexhull". Undo "convex hull".
void command_convexhull();
// "delaunay": of the selected vertices, along the axis on which they extend least, as a new object
// "delaunay". Undo "delaunay".
void command_delaunay();

#endif
