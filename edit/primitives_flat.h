#ifndef VESK_EDIT_PRIMITIVES_FLAT_H
#define VESK_EDIT_PRIMITIVES_FLAT_H

#include "base/types.h"
#include "model/object.h"

VESK_BEGIN_DECLS

/* Rectangles, line grids, meshes, ellipses, arcs and disks: free-standing objects, which the caller
   owns. Planes: 0 front (x, y; constant z), 1 side (z, y; constant x), 2 plan (x, z; constant y).
   Another plane leaves the coordinates that depend on it at zero. */

/* ---- from a box given by two opposite corners, in any order. Named "rect", "grid", "mesh",
        "ellipse", "disk". ---- */

/* One four-sided polygon. */
VESK_API object_t *add_rect(int plane, const point3_t *c1, const point3_t *c2);
/* Lines: grid_object_x + 1 and grid_object_y + 1 of them; counts below 1 are 1. No normals. */
VESK_API object_t *add_grid(int plane, const point3_t *c1, const point3_t *c2);
/* meshx by meshy cells of quads, or of triangles (mesh_triangles), materials 0 and 1 in turn. */
VESK_API object_t *add_mesh(int plane, const point3_t *c1, const point3_t *c2);
/* Outline of an ellipse of ellipse_segments corners, and a filled one of disk_segments, about the
   origin: the caller moves them. Below 3 segments: 3, reported on the console. */
VESK_API object_t *add_circle(int plane, const point3_t *c1, const point3_t *c2);
VESK_API object_t *add_disk(int plane, const point3_t *c1, const point3_t *c2);

/* ---- about the origin ---- */

/* Outline of an ellipse of `segments` corners. */
VESK_API object_t *new_circle(int plane, float radius_a, float radius_b, int segments);
/* An open line along a circle, in degrees; equal angles give the whole turn. */
VESK_API object_t *new_arc(int plane, float radius, float start, float end, int segments);
VESK_API object_t *new_disk(int plane, float radius_a, float radius_b, int segments);
/* Of unit size. */
VESK_API object_t *create_regular_elipse(int plane);
VESK_API object_t *create_regular_disk(int plane);

/* Fills an existing object with an ellipse of triangles about a centre vertex; normals computed. */
VESK_API void object_add_disk_view(object_t *object, int plane, float radius_a, float radius_b,
                                   int segments);

VESK_END_DECLS

#endif
