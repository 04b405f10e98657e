#ifndef VESK_VIEW_OVERLAY_H
#define VESK_VIEW_OVERLAY_H

#include "base/types.h"
#include "model/object.h"

#include <vector>

// The marks of a running tool over the model: written by the tools, read by the drawing.

struct overlay_segment_t {
    point3_t from, to; // world
};

struct overlay_t {
    int band_view = VIEW_NONE;              // the rubber band's view
    int x0 = 0, y0 = 0, x1 = 0, y1 = 0;     // its corners, from the press on; x1 < x0: touching
    std::vector<overlay_segment_t> preview; // of a create tool, in all views
    int locked_axis =
        -1; // 0 to 2 while a drag is locked to an axis, above 2 to the direction below
    point3_t lock_point = {0, 0, 0}, lock_way = {0, 0, 0};
    bool moving = false;      // the selection follows the mouse
    bool pending = false;     // ... by a matrix: the model is changed at the end
    float pending_matrix[16]; // column by column
};

overlay_t &overlay();

// A line across one view, in its pixels, with a mark on the side that is kept: 1 left of it, -1
// right, 0 both.
struct ruled_line_t {
    int view = VIEW_NONE;
    float x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    int kept = 0;
};

// The cut that a click or a key would make, in all views.
struct cut_marks_t {
    std::vector<point3_t> lines;  // two ends each
    std::vector<point3_t> broken; // the same, where no cut is possible
    std::vector<point3_t> points; // that were set, and the next one
    ruled_line_t ruled;

    [[nodiscard]] bool empty() const
    {
        return lines.empty() && broken.empty() && points.empty() && ruled.view == VIEW_NONE;
    }
};
const cut_marks_t &cut_marks();
// Shows others instead; redraws unless there are none, before and now.
void show_cut_marks(cut_marks_t marks);

// With symmetry the lines in the mirror of an object, too.
void add_mirrored_lines(const object_t *object, cut_marks_t *marks);

// Shows the rubber band from a press to the pointer.
struct pointer_event_t;
void show_band(const pointer_event_t &press, const pointer_event_t &event);

#endif
