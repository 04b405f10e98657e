#ifndef VESK_VIEW_TOOL_SLICE_H
#define VESK_VIEW_TOOL_SLICE_H

#include "view/tool.h"

// Cuts the selection by the plane that stands on a line drawn across a view and looks into it: in
// the 3D view through the eye. Shift: steps of 15 degrees. The front lies to the left of the line;
// what is kept is an option.
extern const tool_t slice_tool;

#endif
