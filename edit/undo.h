#ifndef VESK_EDIT_UNDO_H
#define VESK_EDIT_UNDO_H

#include "app/types.h"
#include "model/object.h"

VESK_BEGIN_DECLS

/* An edit opens a record (new_undo), fills it with what reversing it needs (set_undo_...), then
   makes its change. "undo" reverses the newest record and drops it. At most undo_levels records are
   kept; with undo_levels 0 nothing is recorded. */

/* Kinds of records. */
enum { UNDO_SELECTION = 4, UNDO_MOVE = 8, UNDO_SCALE = 0x40000 };

/* Opens a record with a copy of the description; the oldest goes when there are too many. */
VESK_API void new_undo(int kind, const char *description);

/* The vector of the newest record: the translation (kind 8) or the factors (kind 0x40000) that
   reverse the change. */
VESK_API void set_undo_vert(float x, float y, float z);

/* Puts the selection into the newest record. With `take` the lists are moved there and the live
   selection is empty afterwards (also when undo is off), else they are copied. The select mode is
   noted. */
VESK_API void set_undo_selection(listitem *vertices, listitem *surfaces, listitem *objects,
                                 int take);

/* Reverses the newest record and drops it. Command "undo". */
VESK_API void UNDO(void);

/* Drops every record. */
VESK_API void clear_all_undos(void);

VESK_END_DECLS

#ifdef __cplusplus
// Linked as the script variable undo_count.
int *undo_count_address();
// Label of the newest record, null for none.
const char *undo_label();
#endif

#endif
