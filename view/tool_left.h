#ifndef VESK_VIEW_TOOL_LEFT_H
#define VESK_VIEW_TOOL_LEFT_H

// What the left button does in the views, by draw mode: selecting, rubber band, moving, rotating,
// resizing by handles, creating.

// Gives the tools to the mouse's state machine. Once, at start.
void left_tool_install();

// A key that a running drag or a half-drawn outline takes before the views' own keys: X, Y, Z lock
// an axis or free it again, digits open a number field, Escape takes everything back, Return and
// BackSpace work on outlines and numbers. `key` is a keysym. True when it was used.
bool left_tool_key(const char *key);

// An edit comes from elsewhere while a drag changes the model: the drag is taken back first.
void left_tool_interrupt();

void left_tool_reset_for_test();

#endif
