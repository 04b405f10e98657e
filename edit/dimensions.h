#ifndef VESK_EDIT_DIMENSIONS_H
#define VESK_EDIT_DIMENSIONS_H

// Dimension lines: lengths between two vertices of an object that the views show. They are notes of
// the object (model/object_notes.h), so files keep them:
//   dimension VERTICES/SURFACES A B
// with the counts that the object had; where they are others now, the places mean other vertices and
// the line is not shown.

#include "model/object.h"

#include <vector>

struct dimension_t {
    const vertex *a, *b;
};
// Of all visible objects; valid until the model changes.
const std::vector<dimension_t> &dimensions_shown();

// Command "dimension_add": between two selected vertices of one object, or along each selected edge.
// Undo "add dimension".
void command_dimension_add();
// Command "dimension_remove": all of the objects that are selected or own what is. Undo "remove
// dimensions".
void command_dimension_remove();
// Command "get_dimensions": object id, two places and the length of each that is shown.
void command_get_dimensions();

#endif
