#ifndef VESK_DRAW_SELECTION_MARKS_H
#define VESK_DRAW_SELECTION_MARKS_H

// The selected elements of each object, as the drawing needs them: looked up once after each
// change.

#include "model/object.h"

#include <vector>

struct selected_part_t {
    bool whole = false;        // the object, or one above it
    std::vector<int> surfaces; // ascending places in the object's list
    std::vector<int> vertices;
};

// Of an object; null when nothing of it is selected.
const selected_part_t *selected_part(const object_t *object);

// Grows when the answers change.
unsigned selection_marks_generation();

#endif
