#ifndef VESK_EDIT_SELECTION_SETS_H
#define VESK_EDIT_SELECTION_SETS_H

// Selections kept under names, in the file too: as lines at the end of the data text of every object
// that has a part in one,
//   selection-set KIND VERTICES/SURFACES PLACES NAME
// with the counts that the object had: where they are others now, the places mean other elements
// and are left out.

// Keeps the present selection under a name, in place of what the name stood for. Undo "save
// selection set".
void command_selection_set_save(const char *name);
// Makes it the selection again, in its mode.
void command_selection_set_load(const char *name);
// Undo "delete selection set".
void command_selection_set_delete(const char *name);
// The names as a list, sorted.
void command_selection_set_list();

#endif
