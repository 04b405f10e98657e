#ifndef VESK_MODEL_NORMALS_INTERNAL_H
#define VESK_MODEL_NORMALS_INTERNAL_H

#include "model/flat_mesh.h"

// The normal that three or more corners give, as surface_calc_normal computes it; 0 0 0 for fewer.
point3_t normal_of_corners(const flat_mesh &mesh, int surface);

// object_calc_normals where all changes were marked: from the flat meshes of the object and its
// descendants, which have the normals afterwards. Large ones by all cores.
void object_renew_normals(object_t *object);

#endif
