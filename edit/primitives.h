#ifndef VESK_EDIT_PRIMITIVES_H
#define VESK_EDIT_PRIMITIVES_H

#include "base/types.h"
#include "model/object.h"

VESK_BEGIN_DECLS

/* Boxes, spheres, cones, cylinders and the icosahedron. Planes are those of primitives_flat.h. */

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

/* ---- free-standing objects; the caller owns them ---- */

/* From a box given by two opposite corners, in any order. Named "cube", "sphere", "cone". */

/* A box that fills the box; the plane is not used. */
VESK_API object_t *add_cube(int plane, const point3_t *c1, const point3_t *c2);
/* An ellipsoid of num_surface_div segments; the plane is not used. Below 3 segments: a message box
   and null. */
VESK_API object_t *add_sphere(int plane, const point3_t *c1, const point3_t *c2);
/* A cone about its axis's middle at the origin, its base fitted to the box. */
VESK_API object_t *create_cone(int plane, const point3_t *c1, const point3_t *c2);

VESK_API object_t *new_cone(int plane, float radius_a, float radius_b, float height, int segments);
VESK_API object_t *new_cylinder(int plane);
/* An empty object of the sphere type. */
VESK_API object_t *new_sphere(void);
/* The unit icosahedron. */
VESK_API object_t *create_ico(void);

/* Of unit size about a point. */
VESK_API object_t *create_regular_cube(const point3_t *centre);
VESK_API object_t *create_regular_sphere(const point3_t *centre);

VESK_END_DECLS

#ifdef VESK_INTERNAL
// Handler of "new_cube": a unit cube at the origin under the world; the result is its identity.
void command_new_cube();
#endif

#endif
