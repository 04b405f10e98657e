#ifndef VESK_VIEW_TOOL_SELECT_H
#define VESK_VIEW_TOOL_SELECT_H

#include "view/pick.h"

// Selecting with the mouse, by the present select mode. Both redraw and refresh the status.

// A click: selects the element under the pointer, or nothing. Shift (in `state`)
// adds or removes it. A second click at the same place takes the next thing behind, when it comes
// within a second or so and neither selection nor model changed in between. A double click takes
// more: in the object modes the object itself, in object mode then; of an edge its loop, and of a
// selected loop its ring; of a quad the strip of quads through the side at the pointer; of a vertex
// all that is linked with it.
void select_click(int view, int x, int y, int state, double seconds);

// A click of the right button, before its menu opens: what lies there, unless it is selected already.
// Beside everything the selection stays.
void select_for_menu(int view, int x, int y);

// Selects the next element behind the selected one, of those at a place; behind the last comes the
// first.
void select_behind_at(int view, int x, int y);
// Command "select_behind": the same where something was clicked last.
void command_select_behind();

// A rubber band: replaces the selection; Shift adds, Control removes.
void select_band(int view, const band_t &band, int state);

// Whether something selected lies under the pointer.
bool pointer_is_on_selection(int view, int x, int y);

// What a first click there would take (object null: nothing), and whether it is selected.
pick_hit_t select_hit_at(int view, int x, int y);
bool select_hit_is_selected(const pick_hit_t &hit);

void tool_select_reset_for_test();

#endif
