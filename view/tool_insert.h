#ifndef VESK_VIEW_TOOL_INSERT_H
#define VESK_VIEW_TOOL_INSERT_H

#include "base/types.h"
#include "view/tool.h"

// Inserts a vertex where an edge is clicked, in any view: the edge under the pointer and the place
// on it are shown. While the grid is on the place is where the edge crosses it; Control takes the
// middle.
extern const tool_t insert_tool;

// The preview: the edge and the place of the new vertex.
struct insert_mark_t {
    bool shown = false;
    point3_t from = {0, 0, 0}, to = {0, 0, 0}, at = {0, 0, 0};
};
const insert_mark_t &insert_mark();

#endif
