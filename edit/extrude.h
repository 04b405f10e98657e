#ifndef VESK_EDIT_EXTRUDE_H
#define VESK_EDIT_EXTRUDE_H

#include "base/types.h"
#include "model/object.h"

VESK_BEGIN_DECLS

/* Sweeps the selected whole surfaces by `offset`: walls of quads on the outer edges of the selected
   region, in as many steps as the preference extrude_num says (below 1: one), with extrude_cap_end
   a moved copy of each surface, with extrude_delete_original the surfaces and the vertices that
   only they used are removed. extrude_flip_cap turns walls and copies round. Vertices that already
   stand where a new one would are used. A message box and no change: nothing is selected; the
   selected surfaces have no outer edge. Computes the normals of the objects touched; opens no undo,
   draws nothing. The user may cancel. Returns 1, or 0 when nothing changed. */
VESK_API int extrude_selected_diff(const point3_t *offset);

/* The same by `end` minus `start`; announces itself on the message line. */
VESK_API int extrude_selected(const point3_t *start, const point3_t *end);

/* Extrudes one surface of the world by minus `offset` in `steps` steps: a copy of its outline for
   each, joined by link surfaces. Each copy is turned by the angles `degrees` (about x, y and z, one
   after the other; null for none), all by the same. A polygon stays and gets its last copy as an
   end cap; a line is removed and freed. Steps below 1 do nothing. Returns the owning object, or
   null when there is none. Records no undo, computes no normals. */
VESK_API object_t *extrude_surface(surface_t *surface, const point3_t *offset, int steps,
                                   const point3_t *degrees);

/* A new surface like `surface`, each corner on the vertex of `object` that stands at the corner's
   place plus `offset`; where there is none a new one is appended. `flip` reverses it. The caller
   owns it. */
VESK_API surface_t *surface_clone_translate(object_t *object, const surface_t *surface,
                                            const point3_t *offset, int flip);

VESK_END_DECLS

#ifdef VESK_INTERNAL
// What becomes of the originals and which way walls and caps face: as the extrude preferences say;
// or so that the body goes on facing outwards, inwards and outwards alike. Surfaces of a larger
// body are raised or sunk, and the originals go. A sheet of its own becomes a closed body.
enum class extrude_sides { by_preferences, automatic };

// For the interface: extrudes the selected whole surfaces with one whole-model undo, "extrude", and
// selects the new surfaces at the end (the walls where there are none). False when nothing changed:
// it has said why and opened no undo.
bool extrude_and_select(const point3_t &offset, extrude_sides sides);

// Where the selected whole surfaces face on the whole, of length 1; false and 0 0 0 when their
// directions cancel out.
bool selected_surfaces_normal(point3_t *normal);

// Command "extrude": the selected whole surfaces by a vector, as the preferences say; what is
// selected stays. One whole-model undo, "extrude".
void command_extrude(float dx, float dy, float dz);
// Commands "extrude_select" and "extrude_normal": extrude_and_select by a vector, and by a distance
// along selected_surfaces_normal; the first word is 1 for automatic.
void command_extrude_select(int count, const char *const *words);
void command_extrude_normal(int count, const char *const *words);
#endif

#endif
