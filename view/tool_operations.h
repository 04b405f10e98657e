#ifndef VESK_VIEW_TOOL_OPERATIONS_H
#define VESK_VIEW_TOOL_OPERATIONS_H

#include "view/tool.h"

#include <span>

// The tools that run an operation on the selection while the mouse drags, and what the drag changes:
// slide, edge_bevel, inset, extrude_each, extrude_normals, extrude_edges, shell. A press on
// something that is not selected selects it first. Digits type the number, Control drags the second
// one, the wheel changes segments. One undo step a drag, the command's own.
std::span<const tool_t> operation_tools();

#endif
