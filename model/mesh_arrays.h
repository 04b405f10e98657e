#ifndef VESK_MODEL_MESH_ARRAYS_H
#define VESK_MODEL_MESH_ARRAYS_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* Whole meshes in one call, for importers and exporters. */

/* Attributes of a surface; the flag word is that of vesk_surface_get_flags. */
typedef struct vesk_surface_attributes {
    int material; /* palette index */
    int flags;
} vesk_surface_attributes_t;

/* One object's own geometry (not its children's). Corners of surface i: corner_offsets[i] ..
   corner_offsets[i + 1] - 1. */
typedef struct vesk_mesh_arrays {
    int num_vertices, num_surfaces, num_corners;
    const point3_t *positions; /* one a vertex */
    const point3_t *normals;
    const point3_t *face_normals; /* one a surface */
    const vesk_surface_attributes_t *surfaces;
    const int *corner_offsets; /* num_surfaces + 1 */
    const int *corners;        /* vertex indices */
    const float *uv;           /* two a corner */
} vesk_mesh_arrays_t;

/* The object's geometry as arrays. They stay as they are until the next call of this function. */
VESK_API vesk_mesh_arrays_t vesk_object_get_mesh_arrays(object_t *object);

/* Sets the attributes of surfaces `first` .. `first + n - 1` of the object in one walk. */
VESK_API void vesk_object_set_surface_attributes(object_t *object, int first, int n,
                                                 const vesk_surface_attributes_t *attributes);

VESK_END_DECLS

#ifdef VESK_INTERNAL

// Makes these the object's own geometry, in place of what it has; normals are not read, and are those of
// new records. Corners of no vertex are left out.
void object_set_mesh(object_t *object, const vesk_mesh_arrays_t &arrays);

#endif

#endif
