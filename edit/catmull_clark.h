#ifndef VESK_EDIT_CATMULL_CLARK_H
#define VESK_EDIT_CATMULL_CLARK_H

#include "model/object.h"

// Command "catmull_clark": that many steps, 1 to 8, of Catmull and Clark's scheme on the selected
// surfaces and all polygons of the selected objects: every polygon of n corners becomes n quads.
// Open borders, and edges of more than two polygons, are sharp: curves of their own, fixed where
// other than two of them meet. Along surfaces that are not selected nothing moves; these get the
// new vertices, so that no crack opens. Texture coordinates are interpolated within each polygon.
// A second word keeps more edges sharp: degrees (folded more; 180: none), or "selected": the selected
// ones, and then their objects are smoothed as wholes. A sharp edge that ends inside fades out.
// Undo "catmull-clark"; in the surface and vertex modes the new surfaces are selected. Source: E.
// Catmull, J. Clark, Recursively generated B-spline surfaces on arbitrary topological meshes, 1978.
void command_catmull_clark(int count, const char *const *words);

// The same on all polygons of one object, without record, normals, selection or redraw.
void object_catmull_clark(object_t *object, int steps);

#endif
