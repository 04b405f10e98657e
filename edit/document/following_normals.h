#ifndef VESK_EDIT_DOCUMENT_FOLLOWING_NORMALS_H
#define VESK_EDIT_DOCUMENT_FOLLOWING_NORMALS_H

// Surface normals that follow from the corners are not kept in the history. Where an operation has just
// computed those of a large mesh that need not be found out by computing them again.

#include "model/flat_mesh.h"

// The surface normals of the mesh were computed from its corners.
void normals_were_computed(const flat_mesh &mesh);
// Whether that is known of them.
bool normals_are_known_to_follow(const flat_mesh &mesh);

#endif
