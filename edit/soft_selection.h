#ifndef VESK_EDIT_SOFT_SELECTION_H
#define VESK_EDIT_SOFT_SELECTION_H

// Soft selection: moves of vertices, edges and surfaces take along what is near, less and less with
// the distance. On and off, radius, curve and way of measuring are preferences (soft_...).

#include "model/object.h"

#include <string>
#include <vector>

// Whether moves of the present selection fall off: it is on, and no objects are selected.
bool soft_selection_acts();

// A share of the move, 1 at the distance 0 and 0 at the radius, by the curve of the preferences.
float soft_share(double distance, double radius, int curve);

struct soft_vertex {
    vertex *point;
    float share; // above 0, below or equal to 1
};
// The other vertices of the objects that lie within the radius of these, in space or along the edges.
// Linear in the objects' size.
std::vector<soft_vertex> soft_neighbours(const std::vector<vertex *> &chosen,
                                         const std::vector<object_t *> &owners);
// The same of the present selection, kept until it, the model or the preferences change: for drawing.
// With `hold`, while it moves, as they were when the move began.
const std::vector<soft_vertex> &soft_neighbours_shown(bool hold);

// The command that sets soft selection as it is now, for the echo of a gesture; empty while it does
// not act.
std::vector<std::string> soft_selection_words();

// Command "soft_selection": on or off, then as far as given radius, curve (smooth, round, linear,
// sharp, even) and the way of measuring (space, surface).
void command_soft_selection(int count, const char *const *words);
// A notch of the wheel makes the radius larger or smaller by a tenth.
void soft_radius_step(int direction);

#endif
