#ifndef VESK_VIEW_UV_DRAG_H
#define VESK_VIEW_UV_DRAG_H

// The mouse in the window of texture coordinates: panning, zooming, the rubber band, and drags that
// move, rotate or scale the choice.

#include "view/interaction.h"

void uv_drag_press(const pointer_event_t &event);
void uv_drag_motion(const pointer_event_t &event);
void uv_drag_release(const pointer_event_t &event);
// Whether a running drag took the key: digits, X or U, Y or V, Escape, Return and so on.
bool uv_drag_key(const char *keysym);
bool uv_drag_runs();
void uv_drag_cancel();
// After a fault: drops the drag and touches nothing.
void uv_drag_forget();

// A change of the selection ends a drag.
void uv_drag_install();

#endif
