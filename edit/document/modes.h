#ifndef VESK_EDIT_DOCUMENT_MODES_H
#define VESK_EDIT_DOCUMENT_MODES_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* Draw modes (mouse tools), as in the table that the functions below translate with. */
enum {
    DRAW_MOVE = 0,
    DRAW_ROTATE = 1,
    DRAW_EXTRUDE = 2,
    DRAW_POLYGON = 20,
    DRAW_POLYLINE = 21,
    DRAW_LINE = 22,
    DRAW_CIRCLE = 23,
    DRAW_DISK = 24,
    DRAW_RECT = 25,
    DRAW_GRID = 26,
    DRAW_MESH = 27,
    DRAW_BOX = 28,
    DRAW_CYLINDER = 29,
    DRAW_SPHERE = 30,
    DRAW_LIGHT = 31,
    DRAW_ZOOM = 32
};

/* Changes the select mode (undoable, kind 4, label "selection") and carries the selection over;
   the same mode again only calls the scripts ("set_select_mode_ui"). */
VESK_API void set_new_select_mode(int mode);

/* Changes the draw mode by its code or name and calls the scripts ("set_draw_mode_ui"); an unknown
   one is reported on the console. A half-drawn polygon or line is dropped first. */
VESK_API void set_new_draw_mode(int mode);
VESK_API void set_new_draw_mode_string(const char *name);

/* Draw mode names and codes. Unknown: a console line and null, or 999. */
VESK_API const char *mode_to_string(int mode);
VESK_API int string_to_mode(const char *name);

/* 1 for the draw modes that act on the selection, else 0. */
VESK_API int mode_is_selectable(int mode);

VESK_END_DECLS

#ifdef VESK_INTERNAL

int draw_mode();
const char *select_mode_name(int mode); // null for an unknown code

// Called whenever the draw mode is set, even to the present one.
void set_draw_mode_hook(void (*hook)());

// Drops a half-drawn object; set by the create tools.
void set_draw_cancel_hook(void (*hook)());

// Handlers of "set_select_mode" and "set_draw_mode": a name, or a code as text.
void command_set_select_mode(const char *text);
void command_set_draw_mode(const char *text);

void modes_reset_for_test();

#endif

#endif
