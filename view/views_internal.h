#ifndef VESK_VIEW_VIEWS_INTERNAL_H
#define VESK_VIEW_VIEWS_INTERNAL_H

#include "model/vector.h"
#include "view/views.h"

// The screen axes of an orthographic view as indices of world axes.
struct view_axes_t {
    int horizontal, vertical, depth;
};
constexpr view_axes_t view_axes[3] = {{0, 1, 2}, {2, 1, 0}, {0, 2, 1}};

// World axes on the screen: y grows upwards, x and z to the right or downwards.
constexpr float axis_sign[3] = {1.0f, -1.0f, 1.0f};

constexpr int num_views = 4;
constexpr int orthographic_order[3] = {0, 2, 1}; // in which the views are zoomed, panned and fitted

// Per view: names of the script's array element with the widget's path and of its kind.
const char *view_short_name(int view); // "xy", "zy", "xz", "xyz"

// Sizes the four windows as the preferences say; called before any window exists.
void views_take_geometry_from_prefs();

// A new record for a view whose widget exists; the former one is freed, its scale and pan are kept.
void view_bind(int view, const char *name, void *togl, void *tk_window);

// The geometry table of a drawing window, as the toolkit reported it.
void view_set_position(int view, int x, int y);

// The Tk name of the pointer over a handle of the selection's box; null without one.
const char *handle_cursor(int handle);

// Pan and zoom without drawing, for drags: the redraw is requested once. Zooming follows
// independent_scaling.
void view_pan_by(int view, float dx, float dy);
void view_zoom_by(int view, float factor);

// The script variable that says which views are laid out, a text of the toolkit's allocator.
char **views_viewsetting();

void views_reset_for_test();

#endif
