// Cuts polygons of any outline into triangles, for drawing and export.
#ifndef MODEL_EAR_CUT_H
#define MODEL_EAR_CUT_H

#include "model/flat_mesh.h"

#include <vector>

// Cuts a polygon with `count` corners into count - 2 triangles (appends corner numbers, three each)
// that keep its orientation. Outlines that cross themselves are cut as well as they can be.
void cut_ears(const point3_t *corners, int count, std::vector<int> &out);

// The same of one surface with three corners or more; its corners are numbered from 0.
std::vector<int> surface_ears(const flat_mesh &flat, int surface);

#endif
