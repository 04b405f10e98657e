#ifndef VESK_VIEW_HANDLES_H
#define VESK_VIEW_HANDLES_H

#include "base/types.h"

// The selection's box in an orthographic view and its handles, in window pixels: one description
// for drawing and for the mouse.

// Bits of a handle code; alone, 1 and 2 mean moving and rotating inside the box.
enum handle_bit {
    HANDLE_TOP = 1,
    HANDLE_BOTTOM = 2,
    HANDLE_LEFT = 4,
    HANDLE_RIGHT = 8,
    HANDLE_EDGE = 16
};
enum { HANDLE_NONE = 0, HANDLE_INSIDE_MOVE = 1, HANDLE_INSIDE_ROTATE = 2 };

struct handle_place_t {
    int x, y;
    int code;
};

struct handle_box_t {
    bool valid = false;
    int x0 = 0, y0 = 0, x1 = 0, y1 = 0; // drawn frame, outside the true bounds
    handle_place_t places[8] = {};
    int num_places = 0;
};

// Not valid in the 3D view, and when nothing with an extent is selected.
handle_box_t handle_box(int view);

// The code of the handle at a position; inside the box that of the present draw mode (moving or
// rotating), else HANDLE_NONE.
int handle_at(int view, int x, int y);

struct world_box_t {
    point3_t min, max;
};

// Which ends of the view's horizontal and vertical axis a handle drags: -1 the lower one, 1 the
// upper one, 0 none.
struct handle_sides_t {
    int horizontal, vertical;
};
handle_sides_t handle_sides(int view, int code);

// The box after the handle `code` was dragged by world distances along the view's horizontal and
// vertical axes: the opposite side stays; `from_centre` moves it the other way; `keep_shape` keeps
// the proportions.
world_box_t resized_box(int view, const world_box_t &box, int code, float by_horizontal,
                        float by_vertical, bool from_centre, bool keep_shape);

#endif
