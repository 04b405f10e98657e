#ifndef VESK_EDIT_PATH_PLACES_H
#define VESK_EDIT_PATH_PLACES_H

// The remembered path: its points, and how what follows it is turned.

#include "edit/mesh/affine.h"

#include <vector>

// Of the path of "define_extrude_path", without points at the place of the one before; fewer than two
// when there is no usable path.
std::vector<point3_t> path_points();

// Of each point: the bisector of the segments beside it, at the ends the segment's direction.
std::vector<vec3d> path_directions(const std::vector<point3_t> &points);

// The smallest rotation that turns one direction into another, both of unit length.
affine_t smallest_turn(const vec3d &from, const vec3d &to);

#endif
