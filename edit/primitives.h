#ifndef VESK_EDIT_PRIMITIVES_H
#define VESK_EDIT_PRIMITIVES_H

#include "app/types.h"
#include "model/object.h"

VESK_BEGIN_DECLS

/* Planes: 0 front (x, y; constant z), 1 side (z, y; constant x), 2 plan (x, z; constant y). Another
   plane leaves the coordinates that depend on it at zero. */

/* Appends four references with texture coordinates (0,0) (1,0) (1,1) (0,1). */
VESK_API void surface_add_quad_refs(surface_t *surface, vertex *a, vertex *b, vertex *c, vertex *d);

/* ---- fillers: geometry about the origin for an existing object, normals computed ---- */

/* A box of the given sizes. */
VESK_API void object_add_cube_view(object_t *object, float width, float height, float depth);

/* A sphere with the preference num_surface_div segments; below 3 of them it is degenerate. Its
   poles lie on the y axis. */
VESK_API void object_add_sphere_view(object_t *object, float radius);

/* A cylinder with the preference cylinder_segments segments; the flags ask for end polygons. The
   first end is at -height/2 for plane 0, at +height/2 for planes 1 and 2. */
VESK_API void object_add_cylinder_view(object_t *object, int plane, float radius, float height,
                                       int first_end, int second_end);

/* A filled ellipse of triangles about a centre vertex. */
VESK_API void object_add_disk_view(object_t *object, int plane, float radius_a, float radius_b,
                                   int segments);

/* ---- free-standing objects; the caller owns them ---- */

/* A unit cube about a point. */
VESK_API object_t *create_regular_cube(const point3_t *centre);

VESK_END_DECLS

#ifdef __cplusplus
// Handler of "new_cube": a unit cube at the origin under the world; the result is its identity.
void command_new_cube();
#endif

#endif
