#ifndef VESK_EDIT_SNAP_H
#define VESK_EDIT_SNAP_H

#include "base/types.h"
#include "model/object.h"

VESK_BEGIN_DECLS

/* Moves each coordinate to the nearest multiple of its axis' spacing, halves away from zero; an axis
   whose spacing is not positive keeps its coordinate. Returns the z axis' multiple. */
VESK_API int snap_to_grid_float(point3_t *point, float gx, float gy, float gz);

/* By the preference `grid` on all axes while `gridsnap` is on, else nothing. */
VESK_API void snap_to_grid(point3_t *point);

/* The vertex of the world nearest to the point, the first of equally near ones; null when the world
   has none. Linear in the model. */
VESK_API vertex *find_nearest_vertex(const point3_t *point);

/* A new list, newest first, of the vertices of `vertices` at most `distance` from the point; the
   caller frees it. `centroid` gets their mean, 0 0 0 when there are none. */
VESK_API listitem *vertexlist_get_closest(const listitem *vertices, const point3_t *point,
                                          float distance, point3_t *centroid);

/* ---- commands: they move the selected vertices; with none they only open their undo record, of
        vertex positions ---- */

/* "snaptogrid": to the grid, whether or not `gridsnap` is on. Undo "snap to grid". */
VESK_API void selected_snap_to_grid(void);

/* "snaptogether": all to their mean. Undo "snap vertices together". */
VESK_API void selected_snap_together(void);

/* "snaptogetherdistance": by clusters. In the order of the selection each vertex that is left takes
   those left that are at most `distance` away, itself included, and all move to their mean. A
   vertex at no finite place stays. The user may cancel. Undo "snap vertices together by
   distance". */
VESK_API void selected_snap_together_distance(float distance);

VESK_END_DECLS

#ifdef VESK_INTERNAL
// Commands "weld" and "weld_distance" of the interface: the same moves, and vertices of one object
// that meet become one, so that no surface has a corner twice; surfaces without area go, with the
// vertices that only they used. The joined vertices are selected. One whole-model undo, "weld".
void command_weld();
void command_weld_distance(float distance);
#endif

#endif
