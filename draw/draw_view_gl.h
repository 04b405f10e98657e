#ifndef VESK_DRAW_DRAW_VIEW_GL_H
#define VESK_DRAW_DRAW_VIEW_GL_H

// One finished picture of a view in the back buffer of the current context.

#include "base/types.h"

#include <string>
#include <vector>

// While something moves, layers that do not fit the time are left out; also of a slow picture that
// need not be `in_full` at once. `seconds` is now. False: nothing is drawn yet, for there is much to look
// at; the next call goes on.
bool draw_view(int view, int width, int height, double seconds, bool in_full);

// A part of the picture at rest: about as much as fits `slice_seconds`, all of it when it is not slow.
// True: it is finished and in the back buffer. What was drawn of a picture is given up by draw_view and
// by whatever changes the model, the selection or the size.
bool draw_view_slice(int view, int width, int height, double seconds);

// A picture of the background alone when the last picture of the view had another size, for drivers
// that learn of a new size only while they show a picture. False: the size is the same.
bool draw_view_blank(int view, int width, int height);

// Whether the last picture of the view left something out, so that it is to be drawn again at rest.
bool drawn_view_is_partial(int view);

// After a fault while drawing: bounding boxes only, until the model changes.
void draw_view_distrust(int view);

// The cost of the last picture of a view, for benchmarks: name and seconds of each layer.
struct layer_cost_t {
    std::string layer;
    double seconds;
};
std::vector<layer_cost_t> drawn_view_costs(int view);

// The layers of the last picture, as words.
std::string drawn_view_layers(int view);

VESK_BEGIN_DECLS

/* The label of a view at pixel 8, 17, in grey. */
VESK_API void draw_window_label(int view);

VESK_END_DECLS

#endif
