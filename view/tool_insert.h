#ifndef VESK_VIEW_TOOL_INSERT_H
#define VESK_VIEW_TOOL_INSERT_H

#include "base/types.h"
#include "view/tool.h"

#include <vector>

// Inserts a vertex where an edge is clicked, in any view: the edge under the pointer and the place
// on it are shown. While the grid is on the place is where the edge crosses it; Control takes the
// middle.
extern const tool_t insert_tool;

// The preview: each edge that a click would cut, and the place of the new vertex. With symmetry the
// counterpart is the second.
struct insert_mark_t {
    point3_t from, to, at;
};
const std::vector<insert_mark_t> &insert_marks();

#endif
