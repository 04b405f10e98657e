#ifndef VESK_VIEW_TOOL_ZOOM_H
#define VESK_VIEW_TOOL_ZOOM_H

#include "view/tool.h"

// The zoom tool of the flat views: a click zooms in (Shift: out), a rectangle is shown as large as it
// fits.
extern const tool_t zoom_tool;

#endif
