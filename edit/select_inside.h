#ifndef VESK_EDIT_SELECT_INSIDE_H
#define VESK_EDIT_SELECT_INSIDE_H

// Command "select_inside": selects what lies wholly inside the selected objects, each one a solid with
// its descendants (in surface and vertex mode the objects that the selection is of): objects,
// surfaces or vertices of others, as the mode has it, as far as they are visible and unlocked. What
// was selected is no longer. Points on a surface are not inside. Refused when a solid is not closed.
void command_select_inside();

#endif
