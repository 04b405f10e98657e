#ifndef VESK_MODEL_NORMALS_H
#define VESK_MODEL_NORMALS_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* Unit normal from the first three corners; a surface with fewer keeps its normal, a degenerate
   one gets 0 0 0. Sets no change mark. */
VESK_API void surface_calc_normal(surface_t *surface);

/* Surface normals, then vertex normals (the sum of the normals of the surfaces around a vertex,
   divided by the root of its truncated squared length), of the object and its descendants. */
VESK_API void object_calc_normals_force(object_t *object);
/* The same while the preference recalc_normals is on. */
VESK_API void object_calc_normals(object_t *object);
/* object_calc_normals for each object of a list. */
VESK_API void objectlist_calc_normals(const listitem *objects);
/* The vertex half only, from the surface normals as they are. */
VESK_API void object_calc_vertex_normals(object_t *object);

/* Reverses the order of the corners; the stored normal stays until it is computed again. Sets no
   change mark. */
VESK_API void surface_reverse_normal(surface_t *surface);

VESK_END_DECLS

#endif
