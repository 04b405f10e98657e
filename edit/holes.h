#ifndef VESK_EDIT_HOLES_H
#define VESK_EDIT_HOLES_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* Holes one polygon: a ring of four-sided surfaces joins its outline to a copy of the outline
   scaled by `factor` about the centroid; the polygon itself is removed and freed.
   object    owns `surface`, and then the new vertices and surfaces.
   factor    0 collapses the copy onto the centroid, 1 keeps its size; above 1 the ring lies
             outside and its sides are reversed so that they face as the polygon did.
   no_inner  1 leaves the hole open, 0 closes it with an inner polygon.
   Returns the inner polygon, or null: with `no_inner`, or when `surface` is no polygon or has
   fewer than 3 corners (it is then left as it is). Records no undo, recomputes no normals,
   redraws nothing. */
VESK_API surface_t *surface_make_hole(object_t *object, surface_t *surface, float factor,
                                      int no_inner);

/* The same, without inner polygon, for every surface of the object and its descendants. */
VESK_API void object_make_holes(object_t *object, float factor);

/* Command "surface_make_hole": holes the selected whole surfaces and every surface of the selected
   objects, children included, by the preference hole_percent (percent). One whole-model undo,
   "make hole". Nothing selected: a status line, no undo. A negative percentage: a message box and
   no change, though the undo record is already open. */
VESK_API void selected_surfaces_make_hole(void);

/* Bevels one surface: a smaller copy of its outline, each corner moved by the preference bevel_size
   along its bisector and along the surface's stored normal, joined to the old outline by slanted
   sides; the surface itself is removed and freed. Returns the raised copy. Any type or size. */
VESK_API surface_t *surface_bevel(object_t *object, surface_t *surface);

/* Bevels every surface of the object and its descendants and recomputes the normals; returns how
   many there were. */
VESK_API int object_bevel(object_t *object);

/* Command "surface_bevel": the selected whole surfaces and all surfaces of the selected objects.
   Undo "bevel". */
VESK_API void selected_surfaces_bevel(void);

/* Adds the offset to every vertex of the surface, once for each reference. Marks nothing. */
VESK_API void surface_translate_vertices(surface_t *surface, const point3_t *offset);

VESK_END_DECLS

#ifdef VESK_INTERNAL
// Commands "hole_select" and "bevel_select" of the interface: the same, and the new surfaces are
// selected afterwards (of a bevel the raised copies), or the objects that were. A refusal opens no
// undo.
void command_hole_select();
void command_bevel_select();
#endif

#endif
