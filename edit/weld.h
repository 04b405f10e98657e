#ifndef VESK_EDIT_WELD_H
#define VESK_EDIT_WELD_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* Two objects, or several, put together by their selected vertices. */

/* Command "object_snap_together_by_vertices": with exactly two vertices of two objects selected the
   first one's object is moved so that they meet; else a message box. No undo. */
VESK_API void allign_objects_using_2_vert(void);

/* Each selected vertex' object is moved so that the vertex lies on the grid. Reported on the
   console and nothing moved: no vertex, or two of one object. No undo. */
VESK_API void snap_objects_using_vert(void);

/* Pairs the vertices of a list that belong to two objects: `first` gets those of the first one's
   object, in order, `paired` in the same places the nearest vertex of the other object that is not
   yet taken. New lists, the caller frees them. Returns 1; else 0, reported on the console, and no
   lists: more than two objects, or not as many vertices of each. */
VESK_API int split_list_into_two_objects(const listitem *vertices, listitem **first,
                                         listitem **paired);

/* The element of a list of vertices nearest to the point, the first of equally near ones; of a list
   of one that one. Null for none. */
VESK_API vertex *point_find_nearest(const vertex *point, const listitem *vertices);

/* The selected vertices of a second object move onto those of the first, in pairs. Undo "snap
   vertices together". A message box when they cannot be paired. */
VESK_API void snap_2_objects_vertices_together(void);

/* The same pairs become one vertex each and the two objects one: the first one's; the children of
   the second stay under its parent. Says on the console that it should not be called. No undo. */
VESK_API void glue_object_vertices(void);

/* Command "unshare_vertices": each selected vertex stays with the first of its surfaces, the others
   get copies of their own, which are selected too. Undo "Unshare vertices". */
VESK_API void selected_unshare_vertices(void);

VESK_END_DECLS

#endif
