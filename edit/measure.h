#ifndef VESK_EDIT_MEASURE_H
#define VESK_EDIT_MEASURE_H

#include "model/vec3d.h"

#include <string>
#include <vector>

// The measures of the selection in words. Vertices: of two the distance and its parts, of three the
// angle at the second and both lengths, more the length of the way along them. Surfaces: area and
// outline. Objects: area with all below them, and the volume when their surfaces are closed (every
// edge of exactly two surfaces). Empty when nothing is selected.
std::string selection_measures();

// The same of two or three points: their distance, or the angle at the second.
std::string points_measures(const std::vector<point3_t> &points);

// The angle at a corner between the directions to a and b.
double corner_degrees(const vec3d &corner, const vec3d &a, const vec3d &b);

// Command "get_measures": the measures of the selection, as the result only.
void command_get_measures();

// Command "measure": the same in the status line and as the result.
void command_measure();

#endif
