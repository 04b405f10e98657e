#ifndef VESK_VIEW_TOOLS_H
#define VESK_VIEW_TOOLS_H

#include "view/tool.h"

// The tools of the left button and which of them has it: one chosen by name, else the draw mode's.

// Gives the tools to the mouse's state machine. Once, at start.
void tools_install();

// The tool that a press would reach; null for none.
const tool_t *tool_now();

// A key that the tool takes before the views' own keys; Escape ends any drag. `keysym` as Tk names
// it. True when it was used.
bool tool_key(const char *keysym);

// Before an edit from elsewhere: a drag that changes the model is taken back first.
void tools_interrupt();

// After a fault.
void tools_forget();

// Command "set_view_tool": a name, or "none", which gives the button back to the draw mode. Tells
// the scripts ("set_view_tool_ui").
void command_set_view_tool(const char *name);

void tools_reset_for_test();

#endif
