#ifndef VESK_EDIT_MESH_OUTLINE_H
#define VESK_EDIT_MESH_OUTLINE_H

// Outlines of points in space, as their best-fit plane sees them.

#include "base/types.h"
#include "model/vec3d.h"

#include <vector>

struct plane_point {
    double x, y;
};

// The plane that lies closest to all points: their mean, and two unit directions at right angles in
// which they spread most.
struct fit_plane {
    vec3d middle, along, across;
};
fit_plane best_fit_plane(const std::vector<vec3d> &points);

// The points in the plane that lies closest to all of them, their mean at 0 0; turned so that the
// outline's area is not negative.
std::vector<plane_point> in_best_fit_plane(const std::vector<point3_t> &points);

// Whether two sides of the closed outline cross, lie on one another or touch anywhere but where one
// side follows the other. n log n.
bool outline_crosses_itself(const std::vector<plane_point> &outline);

// The places of the points by their angle around 0 0; equal angles by distance.
std::vector<int> order_by_angle(const std::vector<plane_point> &points);

#endif
