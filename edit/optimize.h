#ifndef VESK_EDIT_OPTIMIZE_H
#define VESK_EDIT_OPTIMIZE_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* Cleaning of imported or much edited models. None of it records undo. */

/* Makes one vertex of those of an object that lie at exactly the same place: the first one stays,
   the corners on the others are redirected to it. Then object_optimize_surface_vertices. The object
   and its descendants, each for itself. Returns the number of vertices removed, also reported on
   the console. */
VESK_API int object_optimize(object_t *object);

/* Removes the corners on a vertex that the surface has already. Returns how many pairs of corners
   were on the same vertex: three on one vertex are three. The form for one surface marks nothing:
   the caller knows the object; the other one takes the surfaces of the object itself. */
VESK_API int surface_optimize(surface_t *surface);
VESK_API int object_optimize_surface_vertices(object_t *object);

/* Command "optimize": object_optimize of the selected objects; a box shows the result. */
VESK_API void optimize_selected(void);

/* 1 when the surfaces have the same number of corners and every vertex of `a` is one of `b`. */
VESK_API int surface_compare(const surface_t *a, const surface_t *b);

/* Removes, of the object and its descendants, the surfaces that compare with an earlier one of the
   same object; then surfaces of one corner and polygons of two, with the vertices that no other
   surface has. Deletes the objects that are left without vertices and children. Returns how many
   surfaces went. */
VESK_API int object_optimize_surfaces(object_t *object);

/* Command "optimize_surfaces": the same for the selected objects; a box shows the result. */
VESK_API void selected_optimize_surfaces(void);

VESK_END_DECLS

#endif
