#ifndef VESK_EDIT_AXIS_PIVOT_H
#define VESK_EDIT_AXIS_PIVOT_H

// The axes and pivots that commands name by a word.

#include "model/vec3d.h"

#include <optional>

// An axis of unit length: x, y, z (or 0, 1, 2); "normal": the mean normal of what is selected;
// "picked": that of "pick_axis"; "last": the one used last; or its numbers with commas between them.
// Nothing, with a message that begins with `what`, when the word names none.
std::optional<vec3d> axis_of_word(const char *what, const char *word);
// A point: "selection", the middle of the box; "origin"; "picked": that of "pick_pivot"; or its
// numbers with commas between them.
std::optional<vec3d> pivot_of_word(const char *what, const char *word);

// Commands "pick_axis": the direction of the selected edge or from the first to the second of two
// selected vertices, else the mean normal of the selection; "pick_pivot": the middle of the
// selection. "get_picked" answers both as six numbers.
void command_pick_axis();
void command_pick_pivot();
void command_get_picked();

#endif
