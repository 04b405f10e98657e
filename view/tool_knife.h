#ifndef VESK_VIEW_TOOL_KNIFE_H
#define VESK_VIEW_TOOL_KNIFE_H

#include "view/tool.h"

// Cuts polygons along a line that is clicked point by point, in any view. Points snap to vertices
// and edges; Control: to the middles of edges; Shift: to right angles. Return or a double click
// cuts, BackSpace takes the last point back, Escape drops the line.
extern const tool_t knife_tool;

#endif
