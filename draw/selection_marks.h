#ifndef VESK_DRAW_SELECTION_MARKS_H
#define VESK_DRAW_SELECTION_MARKS_H

// The selected elements of each object, as the drawing needs them: looked up once after each
// change.

#include "model/flat_mesh.h"

#include <vector>

struct selected_part_t {
    bool whole = false;        // the object, or one above it
    std::vector<int> surfaces; // ascending places in the object's list
    std::vector<int> vertices;
    std::vector<int> edges; // in edge mode: two vertices each
    // The lists that the places are of.
    flat_array<surface_t *> surface_records;
    flat_array<vertex *> vertex_records;
};

// Before a picture: follows objects that lost or got elements. What selected_part gave before is
// gone then.
void selection_marks_update();

// Of an object; null when nothing of it is selected.
const selected_part_t *selected_part(object_t *object);
// The same as of the last look at the selection.
const selected_part_t *marked_part(object_t *object);

// Grows when the answers change.
unsigned selection_marks_generation();

#endif
