#ifndef VESK_EDIT_SMOOTH_SUBDIVIDE_H
#define VESK_EDIT_SMOOTH_SUBDIVIDE_H

#include "edit/edge_mesh.h"

VESK_BEGIN_DECLS

/* One step of Loop's scheme on the triangulated mesh: every triangle becomes four. `factor` 0
   leaves the vertices and puts new ones on the middles of the edges, 1 gives the smooth positions,
   values between blend. Open edges, and those of more than two triangles, are curves of their own.
   Texture coordinates are interpolated within each triangle. Source: C. Loop, Smooth Subdivision
   Surfaces Based on Triangles, 1987. */
VESK_API void loop_subdivide(vesk_mesh_t *mesh, float factor);

/* One step of Doo's and Sabin's scheme: a smaller polygon in every polygon, a quad over every edge
   between two and a polygon over every vertex that is surrounded. Open borders shrink. Source: D.
   Doo, M. Sabin, Behaviour of recursive division surfaces near extraordinary points, 1978. */
VESK_API void doosabin_subdivide(vesk_mesh_t *mesh);

/* Command "surface_loop_subdivision": one step of Loop's scheme on the selected objects, factor 0
   to 1. Undo "loop subdivision". */
VESK_API void surface_loop_subdivision(float factor);

VESK_END_DECLS

#ifdef VESK_INTERNAL
// Added command "surface_doosabin": the same for Doo's and Sabin's. Undo "doo-sabin subdivision".
void command_surface_doosabin();
#endif

#endif
