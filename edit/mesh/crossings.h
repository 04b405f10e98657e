#ifndef VESK_EDIT_MESH_CROSSINGS_H
#define VESK_EDIT_MESH_CROSSINGS_H

// Where triangles of some solids meet, exactly: every point and every stretch that two of them share,
// but for the corners and sides that they have in common.

#include "edit/mesh/box_tree.h"
#include "edit/mesh/exact.h"

#include <functional>
#include <vector>

struct solid_triangle {
    int v[3];      // exact points, input ones; not in one line
    int corner[3]; // where their texture coordinates are
    int unit;      // the polygon that it is a part of
    int part;      // the solid
    int axis;      // in which it is seen best
    int facing;    // 1 or -1 along the axis
    rough_plane plane;
};

// A line across a triangle, a part of another one's plane.
struct meeting_t {
    int triangle;
    int from, to; // the same for a single point
    exact_plane plane;
};

// Two triangles of one solid that go through each other.
struct self_crossing_t {
    int a, b;
    double depth; // how far they do
};

struct crossings_t {
    std::vector<meeting_t> meetings;
    std::vector<std::pair<int, int>> overlapping; // in one plane, with an area in common
    std::vector<self_crossing_t> self;
};

// `go_on` is asked now and then with the share that is done, and ends the search when it is false;
// the result then is not complete.
crossings_t find_crossings(exact_points &points, const std::vector<solid_triangle> &triangles,
                           const box_tree &tree, const std::function<bool(double)> &go_on);

// Whether a comes before b: along any line, one end to the other.
bool exact_before(const exact_points &points, int a, int b);

#endif
