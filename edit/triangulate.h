#ifndef VESK_EDIT_TRIANGULATE_H
#define VESK_EDIT_TRIANGULATE_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* Copies material, shading, sides, type and normal; no corners. */
VESK_API void surface_copy_properties(surface_t *to, const surface_t *from);

/* A new list of new triangle surfaces that cover the polygon, with its properties and its corners'
   texture coordinates; the caller owns both. The surface stays as it is. Null: fewer than 4
   corners, or an outline that cannot be cut (reported on the console when the tessellator refused).
   */
VESK_API listitem *surface_get_triangulations(const surface_t *surface);

/* Replaces the surface by its triangles, appended to the object; returns them as a new list, the
   caller frees its nodes. Null: nothing changed. */
VESK_API listitem *surface_triangulate(object_t *object, surface_t *surface);

/* The same for every polygon of more than 3 corners of the object and its descendants. */
VESK_API listitem *object_triangulate_surfaces(object_t *object);

/* Command "surface_triangulate": the selected whole surfaces and all polygons of the selected
   objects; the triangles are selected afterwards. One whole-model undo, "triangluate". A box counts
   the surfaces that were left as they were. */
VESK_API void selected_surface_triangulate(void);

VESK_END_DECLS

#endif
