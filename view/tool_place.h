#ifndef VESK_VIEW_TOOL_PLACE_H
#define VESK_VIEW_TOOL_PLACE_H

#include "view/tool.h"

// "place_on_surface": while the button is held the selection follows the pointer over the surfaces of
// other objects and stands on them, turned to their normal; with Shift it keeps its turn. A click
// selects.
extern const tool_t place_tool;

#endif
