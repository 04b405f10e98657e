#ifndef VESK_VIEW_RULER_H
#define VESK_VIEW_RULER_H

#include "base/types.h"

#include <string>
#include <vector>

// The ruler over the model: a line between two points, and with a third the angle at the second.
// The measure tool and the command "measure_points" lay it; it changes nothing.

struct ruler_t {
    std::vector<point3_t> points; // none: no ruler
    bool following = false;       // the last one still follows the pointer
};
ruler_t &ruler();

// The texts at the ruler: a headline and, of a length, its parts.
std::vector<std::string> ruler_texts(const ruler_t &of);

// Command "measure_points": x y z of two or three points in one text (none: removes the ruler).
// Shows their measures, also as the result.
void command_measure_points(const char *coordinates);

#endif
