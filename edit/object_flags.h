#ifndef VESK_EDIT_OBJECT_FLAGS_H
#define VESK_EDIT_OBJECT_FLAGS_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* Commands "unhide" and "unlock": everything is visible (unlocked) again. */
VESK_API void show_all(void);

VESK_END_DECLS

#ifdef VESK_INTERNAL

// Hiding and locking, by whole objects: in surface and vertex mode the owners of the selected
// elements. Hidden and locked objects leave the selection; the script variables objects_are_hidden
// and objects_are_locked tell the truth afterwards.

void command_hide_selected();
void command_hide_unselected();
void command_lock_selected();
void command_lock_unselected();
void command_unlock();

// After flags were set in another way: hidden and locked elements leave the selection, the script
// variables are set, all is drawn.
void object_flags_changed();

// By identity, with descendants.
void command_object_hide(int id);
void command_object_unhide(int id);
void command_object_lock(int id);
void command_object_unlock(int id);

#endif

#endif
