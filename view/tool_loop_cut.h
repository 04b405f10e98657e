#ifndef VESK_VIEW_TOOL_LOOP_CUT_H
#define VESK_VIEW_TOOL_LOOP_CUT_H

#include "view/tool.h"

// Cuts the ring of quads through the clicked edge, in any view. The cut is shown before the click;
// the wheel and the digits change how many loops it makes, a drag along the edge where they lie.
extern const tool_t loop_cut_tool;

#endif
