#ifndef VESK_EDIT_UV_UV_KEEP_H
#define VESK_EDIT_UV_UV_KEEP_H

// A switch: while vertices move, and at the end of each step of the history, the texture coordinates
// of their corners slide so that the picture stays where it is on the surfaces in whose plane they
// move. What moves as a whole (all vertices
// that hang together) takes its picture along.

#include "model/object.h"

#include <vector>

void uv_keep_set(bool on);
bool uv_keep_is_on();

// The coordinates for the present positions, computed from the present state of the history. May be
// called again and again during a drag: positions as they were give coordinates as they were. Costs
// nothing while the switch is off.
void uv_keep_follow(const std::vector<object_t *> &objects);

// Command: 1 switches it on, 0 off.
void command_uv_keep(int on);

#endif
