#ifndef VESK_EDIT_COPIES_H
#define VESK_EDIT_COPIES_H

#include "edit/mesh/affine.h"
#include "model/object.h"

#include <vector>

// Copies of the selection at other places. Object modes: each object's copies follow it in its
// parent; else the whole surfaces, with vertices of their own, in the same object. The copies are
// selected; the undo record has the name of `what`. Nothing selected, more than can be had, or
// cancelled: a status line, and nothing changes.
void copy_selection(const char *what, const std::vector<affine_t> &places);

// Puts the object and its descendants to another place; a mirrored one is turned inside out again.
void object_place(object_t *object, const affine_t &place);

// Command "array": n copies, each by a further step away; with `by size` 1 the step is in sizes of the
// selection's box. Undo "array".
void command_array(int count, const char *const *words);

// Command "array_round": n copies turned about an axis through a pivot (the origin, unless said
// otherwise), the last by that many degrees; a whole turn is shared with the original. Undo "round
// array".
void command_array_round(int count, const char *const *words);

// Command "array_path": n copies along the remembered path, evenly by its length and the last at its
// end, the original standing at its beginning; with `turn along` 1 turned as the path turns. Undo
// "array along path".
void command_array_path(int n, int turn_along);

#endif
