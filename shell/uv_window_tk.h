#ifndef VESK_SHELL_UV_WINDOW_TK_H
#define VESK_SHELL_UV_WINDOW_TK_H

// The Togl widget of the window of texture coordinates: bound when the scripts make it, forgotten
// when it goes.

#include <tk.h>

// Defines the script command ::vesk::uv_bind WIDGET and the sub-commands that need the widget.
void register_uv_window();

void uv_window_post_redisplay();
Tk_Window uv_window_tk(); // null while there is none

#endif
