#ifndef VESK_SHELL_POINTER_TK_H
#define VESK_SHELL_POINTER_TK_H

#include <tk.h>

// Gives the pointer a shape over a window: a Tk name, "glass" for a magnifying glass, null for the
// arrow. The arrow is set, too: without a shape of its own a view would have that of the divider
// round it.
void pointer_show_tk(Tk_Window window, const char *shape);

#endif
