#ifndef VESK_VIEW_TOOL_CREATE_H
#define VESK_VIEW_TOOL_CREATE_H

#include "view/tool.h"

// The create tools (draw modes 20 to 31) in the orthographic views: box tools drag from corner to
// corner, outlines are drawn click by click, a light is one click. Every point snaps when gridsnap
// (which Control toggles for outlines) or snap_near is on. Return ends an outline, BackSpace takes
// its last point back, Escape drops it; digits open the number field (sizes of a box, the way to an
// outline's next point), X, Y, Z lock an outline's next edge to an axis. The new object is selected
// and the tool stays; one undo record each.
extern const tool_t create_tool;

// Shows the coordinates of the point under the pointer, snapped as a new point would be.
void show_point_at(const pointer_event_t &event);

#endif
