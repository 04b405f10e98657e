#ifndef VESK_EDIT_UV_UV_MEASURE_H
#define VESK_EDIT_UV_UV_MEASURE_H

#include "edit/uv/uv_mesh.h"

// How the picture is distorted on each surface, and which surfaces lie on each other in it.

struct uv_stretch {
    float area = 0;  // the share of the picture by that of the model, 1 when it is even; 0 for none
    float angle = 1; // longest by shortest stretch of a direction, 1 when shapes are kept
    bool flipped = false; // mirrored, or against most others
};

// One a surface. Each is cut into triangles from its first corner; areas are summed, shapes
// weighted by area. Linear.
//   aspect  width of the picture by its height
std::vector<uv_stretch> uv_measure_stretch(const uv_mesh &mesh, double aspect);

// 1 for every surface whose inside lies on that of another one (its own overhang does not count).
// n log n for surfaces that do not lie on each other many times over at several sizes.
std::vector<char> uv_find_overlaps(const uv_mesh &mesh);

// A triangle of the picture in anticlockwise order, and whether two of them share more than a line.
struct uv_triangle {
    flat_uv p[3];
};
bool uv_triangles_overlap(const uv_triangle &a, const uv_triangle &b);

// Queries: "surfaces 12 area_least 0.5 ..." of the choice, and the overlapping surfaces.
void command_uv_stretch();
void command_uv_overlaps();

#endif
