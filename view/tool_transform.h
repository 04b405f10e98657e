#ifndef VESK_VIEW_TOOL_TRANSFORM_H
#define VESK_VIEW_TOOL_TRANSFORM_H

struct pointer_event_t;

// What the left button does with the selection: moving, rotating, extruding, resizing by handles;
// and the rubber bands of selecting and zooming. The model is changed by one undo record at the
// release; a cancelled drag leaves the very bits as they were.

bool transform_press(const pointer_event_t &event); // whether the tool wants the drag
void transform_motion(const pointer_event_t &event);
void transform_release(const pointer_event_t &event);
void transform_cancel();

// X, Y, Z lock an axis or free it again, digits open the number field. `key` is a keysym. True when
// it was used.
bool transform_key(const char *key);

// While the model is being changed by a drag.
bool transform_runs();
void transform_forget();

#endif
