#ifndef VESK_EDIT_UV_UV_PROJECT_H
#define VESK_EDIT_UV_UV_PROJECT_H

#include "edit/uv/uv_mesh.h"

#include <string_view>

// Texture coordinates from positions.

enum class uv_projection { PLANAR_X, PLANAR_Y, PLANAR_Z, BOX, CYLINDER, SPHERE };

// planar_x, planar_y, planar_z, box, cylinder, sphere; false for another name.
bool uv_projection_of(std::string_view name, uv_projection *projection);

// The length that one picture width stands for: a unit of the model, the whole of it with its
// proportions, or its own extent in each direction.
enum class uv_extent { UNITS = 0, PROPORTIONS = 1, SQUARE = 2 };

// New coordinates of these surfaces, the others' are those of the mesh.
//   planar    along an axis: u to the right and v upwards as in the front (z), side (x) and plan (y)
//             view
//   box       each surface along the axis that its normal is nearest to
//   cylinder  about the vertical axis through the middle: u once round, v the height; surfaces that
//             face along the axis are projected along it
//   sphere    about the middle, as surfaces_calc_texture_coors_bound does, poles in the middle of
//             their surfaces
// Not UNITS: sides of the box and ends of the cylinder lie side by side in the unit square.
//   aspect    width of the picture by its height
std::vector<flat_uv> uv_project(const uv_mesh &mesh, const std::vector<int> &surfaces,
                                uv_projection projection, uv_extent extent, double aspect);

// Words: the projection's name, the extent (1 when left out). Undo record "project texture
// coordinates".
void command_uv_project(int count, const char *const *words);

#endif
