#ifndef VESK_EDIT_MESH_POINT_IN_SOLID_H
#define VESK_EDIT_MESH_POINT_IN_SOLID_H

#include "edit/mesh/solid_meshes.h"

// Whether a point lies inside any of the solids below number `parts`: one whose surface goes round
// it. Not on a surface. Exact; time goes with what lies above the point.
bool is_in_solids(const solid_meshes &solids, int parts, int point);

#endif
