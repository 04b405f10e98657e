#ifndef VESK_SHELL_VIEWS_TK_H
#define VESK_SHELL_VIEWS_TK_H

#include <vector>

// The four Togl widgets: binding, events, drawing callbacks.

#include "base/types.h"

struct ui_port_t;

// The port's view functions.
void views_tk_fill_port(ui_port_t &port);

// Draws a view with all its layers, unless it moves.
void views_tk_draw_in_full(int view);

// Parts of slow pictures are drawn by timers, which all have their turn before an event has. Whether another
// window may draw in this one, and that it did.
bool views_tk_other_may_draw();
void views_tk_other_drew();

// x, y, width, height of a drawing window or of the main window; false when there is none.
bool views_tk_geometry(int view, int out[4]);

// The pixels of a view: it is drawn, then read before the swap. RGB, rows from the top.
bool views_tk_read_pixels(int view, int out_wh[2], std::vector<unsigned char> *rgb);
bool views_tk_save_picture(int view, const char *ppm_file);

VESK_BEGIN_DECLS

/* Makes the drawing window of the scripts' widget; `label` is its title. Ends the process when the
   widget is missing. */
VESK_API void make_tcl_window(int x, int y, int width, int height, const char *label, int view);

/* Binds the four drawing windows with the geometry and labels of the preferences. */
VESK_API void create_ui(void);

/* Does nothing here: the scripts make the widgets. */
VESK_API void init_ui(int argc, char **argv);

/* Makes the view's context current; set_draw_win also prepares drawing in window pixels, the origin
   at the top left corner. */
VESK_API void platform_make_window_current(int view);
VESK_API void set_draw_win(int view);

/* Draws the view of a widget (Togl's display callback) or asks for it after an X expose event. */
VESK_API void redisplay(void *togl);
VESK_API void expose(int view, void *x_event);

VESK_END_DECLS

#endif
