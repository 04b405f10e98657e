#ifndef VESK_EDIT_DUPLICATE_H
#define VESK_EDIT_DUPLICATE_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* Command "duplicate": copies of the selection, which are selected. Object modes: each object's
   copy stands beside it; else the whole surfaces, with vertices of their own, in the same object.
   With the preference shift_duplicated the copies are moved by one step of the grid on each axis.
   Undo "duplicate". */
VESK_API void duplicate_selected(void);

VESK_END_DECLS

#ifdef VESK_INTERNAL
#include "model/child_changes.h"
#include "model/object.h"

#include <vector>

// Puts copies into the scene as one step of that name, and selects them.
void commit_copies(const char *what, const std::vector<object_t *> &copies, child_changes &changes);

// Command "clone_selection": the same in place. The result lists the new objects' identities, or
// the places of the new surfaces in their objects.
void command_clone_selection();
// Command "duplicate_along": a distance, then the axis (edit/axis_pivot.h; the mean normal). The copies
// lie that far away, whatever the preference says. Undo "duplicate".
void command_duplicate_along(int count, const char *const *words);
#endif

#endif
