#ifndef VESK_EDIT_UV_KEEP_H
#define VESK_EDIT_UV_KEEP_H

// A switch: while vertices move, the texture coordinates of their corners slide so that the picture
// stays where it is on the surfaces in whose plane they move. What moves as a whole (all vertices
// that hang together) takes its picture along.

#include "model/object.h"

#include <vector>

void uv_keep_set(bool on);
bool uv_keep_is_on();

// The coordinates for the present positions, computed from the present state of the history. May be
// called again and again during a drag: positions as they were give coordinates as they were. Costs
// nothing while the switch is off.
void uv_keep_follow(const std::vector<object_t *> &objects);

// At the end of a step, before its state is taken: the same for all objects, but not for those whose
// coordinates the step changed itself. The undo record that the step opened (the newest one, when its
// number is above `first_serial`) gets what the coordinates were.
void uv_keep_end_step(unsigned first_serial);

// Command: 1 switches it on, 0 off.
void command_uv_keep(int on);

void uv_keep_reset_for_test();

#endif
