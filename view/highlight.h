#ifndef VESK_VIEW_HIGHLIGHT_H
#define VESK_VIEW_HIGHLIGHT_H

#include "base/types.h"

#include <vector>

// What a click would select, lit under the pointer: the outline of a surface or of objects, an
// edge, a vertex or a light's place. Nothing while it is selected already, or without highlight_pick.

struct lit_segment_t {
    point3_t from, to; // world
};

struct highlight_t {
    int view = VIEW_NONE;
    std::vector<lit_segment_t> segments;
    std::vector<point3_t> points;
    std::vector<point3_t> triangles; // of a surface, three corners each
};

// For the drawing of a view; null when nothing is lit in it, or the model has changed since.
const highlight_t *highlight_in(int view);

// The pointer is at a place of a view. Asks for a picture only when another thing is lit then.
void highlight_follow(int view, int x, int y);
// Whether the scene is small enough for looking what is under the pointer at every motion.
bool highlight_is_quick();
// The same where the pointer rests, in scenes that are too large for following it, too.
void highlight_at(int view, int x, int y);
void highlight_clear();

#endif
