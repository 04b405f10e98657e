#ifndef VESK_EDIT_DELETE_H
#define VESK_EDIT_DELETE_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* Removes a surface of the object and frees it; its vertices stay. Returns 1, or 0 when it is none
   of the object's. For many surfaces see surfacelist_delete_with_vertices. */
VESK_API int object_remove_surface(object_t *object, surface_t *surface);

/* Removes and frees a corner of the surface. Marks nothing: the caller knows the object. Returns 1,
   or 0 when it is none of the surface's. */
VESK_API int surface_delete_svertex(surface_t *surface, svertex *reference);

/* Removes and frees the surfaces of a list, wherever in the world they are, and the vertices whose
   last surface went with them. The list's nodes stay the caller's. */
VESK_API void surfacelist_delete_with_vertices(const listitem *surfaces);

/* Command "delete", by the select mode: the objects; the surfaces and the vertices only they used;
   the vertices with every reference to them. Undo "delete". */
VESK_API void delete_selected(void);

/* Command "removesurface": the whole surfaces are removed, their vertices stay. Undo "remove
   surface". */
VESK_API void remove_selected_surfaces(void);

VESK_END_DECLS

#ifdef VESK_INTERNAL
// delete_selected with another label: the word of its messages and of its undo.
void delete_selection(const char *label);
#endif

#endif
