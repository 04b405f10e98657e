#ifndef VESK_EDIT_OBJECT_PLACE_H
#define VESK_EDIT_OBJECT_PLACE_H

// Handler of "objects_place": IDS PARENT BEFORE makes these objects, in this order, children of the
// parent, in front of its child BEFORE (0: at the end). World positions stay. One undo record,
// "move in the tree". An object that the parent is or lies below stays where it is; the result is how
// many objects were placed.
void command_objects_place(int count, const char *const *words);

#endif
