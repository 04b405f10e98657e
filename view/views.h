#ifndef VESK_VIEW_VIEWS_H
#define VESK_VIEW_VIEWS_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* One drawing window. Screen coordinates are pixels from the top left corner; the arrays are
   indexed by world axis (x, y, z). The 3D view keeps its centre in x and y. */
typedef struct VESKView {
    int id;          /* view id it is bound to, VIEW_NONE before */
    int bound;       /* 1 once a widget is bound */
    void *togl;      /* the widget; null without a window */
    void *tk_window; /* the widget's Tk window; null without a window */
    char *name;      /* own copy of the widget's path name; "" without a window */
    float scale;     /* pixels per world unit */
    float centre[3]; /* half the window's size along the view's two screen axes */
    float pan[3];    /* pixel offset along the view's two screen axes */
} VESKView;

/* A record with the initial scale of 100, no centre and no pan. `name` is copied. */
VESK_API VESKView *new_veskview(const char *name);

/* The record of view 0 to 3, null for any other id. */
VESK_API VESKView *vesk_get_view(int view);

/* x, y, width, height in pixels: of the drawing windows 0 to 3 as last reported, of the main window
   for VIEW_MAIN. Any other id leaves `out` as it is. */
VESK_API void win_get_geom(int view, int *out);

/* Zooms in (scale_win) or out (scale_win2) about the middle of orthographic view `view` and draws it
   at once. */
VESK_API void scale_win(int view, float factor);
VESK_API void scale_win2(int view, float factor);

/* By 1.5: all three orthographic views; or view `view` alone when independent_scaling is on and
   `view` is not VIEW_NONE. */
VESK_API void zoom_in(void);
VESK_API void zoom_out(void);
VESK_API void zoom_in_win(int view);
VESK_API void zoom_out_win(int view);

/* By 1.1: a positive direction zooms in, a negative one out, 0 does nothing. The 3D view zooms only
   in spin mode. Command "zoomview". */
VESK_API void zoom_view(int view, int direction);

/* Gives all orthographic views the scale of `view`. */
VESK_API void vesk_sync_zoom(int view);

/* Moves what orthographic view `view` shows by pixels and draws it at once. */
VESK_API void move_view(int view, int dx, int dy);

/* Pans to the world origin, without a redraw. */
VESK_API void home_windows(void);

/* Scale 100 in all views; with reset_views also the pan. Both redraw. */
VESK_API void windows_reset_scale(void);
VESK_API void reset_views(void);

/* Pans the orthographic views so that `point` is in the middle of each, and redraws them. */
VESK_API void goto_point(const point3_t *point);

/* New size of a drawing window: its centre and geometry follow; redraws it. */
VESK_API void handle_resize(int view, int width, int height);

/* Whether `viewsetting` lays the view out: "all", or the view's own name. */
VESK_API int window_is_visible(int view);

/* Modifiers of an event state. */
VESK_API int qualifier_shift(int state);
VESK_API int qualifier_control(int state);
VESK_API int qualifier_alt(int state);

/* Pointer shape: by Tk cursor name (null: the view's own), for a handle code of the selection's box
   (codes without a shape change nothing), for a draw mode. */
VESK_API void win_set_cursor(int view, const char *cursor);
VESK_API void win_set_handle_cursor(int view, int handle);
VESK_API void win_set_mode_cursor(int view, int draw_mode);

VESK_END_DECLS

#endif
