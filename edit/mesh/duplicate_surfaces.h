#ifndef VESK_EDIT_MESH_DUPLICATE_SURFACES_H
#define VESK_EDIT_MESH_DUPLICATE_SURFACES_H

#include "model/flat_mesh.h"

// Of each surface, whether an earlier one has as many corners and no vertex that this one has not.
// Order and direction of the corners do not matter. About linear.
std::vector<bool> duplicate_surfaces(const flat_mesh &mesh);

#endif
