#ifndef VESK_VIEW_TOOL_BAND_H
#define VESK_VIEW_TOOL_BAND_H

#include "view/tool.h"

// The next left drag in any view, the 3D view too, is a rubber band, wherever it begins; a click
// selects as always. After it the button is the draw mode's again. "set_view_tool band".
extern const tool_t band_tool;

#endif
