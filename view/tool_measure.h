#ifndef VESK_VIEW_TOOL_MEASURE_H
#define VESK_VIEW_TOOL_MEASURE_H

#include "view/tool.h"

// Lays a ruler in any view: a drag, or a click at either end; one more click gives the angle at the
// second point, the next begins anew. Points snap to vertices within the pick range, else to the
// grid while it is on (Control toggles that); in the 3D view they lie on the face under the pointer.
// X, Y, Z lock the line to an axis. Escape takes the ruler away, as does leaving the tool. Nothing of
// the model is changed.
extern const tool_t measure_tool;

#endif
