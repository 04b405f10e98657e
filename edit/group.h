#ifndef VESK_EDIT_GROUP_H
#define VESK_EDIT_GROUP_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* Command "group": the selected objects become the children of a new group, which takes the place
   of the first of them and is selected. Object modes only. Undo "group". */
VESK_API void group_selected_objects(void);

VESK_END_DECLS

#ifdef VESK_INTERNAL

// Command "ungroup": the children of each selected group take its place and are selected. A group
// that holds geometry of its own, or nothing, is left alone. Undo "ungroup".
void command_ungroup();

// Commands "object_recentre" and "object_mincentre": the stored centre of each selected object goes
// to the middle of its box or to its lowest corner. Undo "recentre", "mincentre".
void command_object_recentre();
void command_object_mincentre();

#endif

#endif
