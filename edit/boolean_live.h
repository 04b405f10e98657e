#ifndef VESK_EDIT_BOOLEAN_LIVE_H
#define VESK_EDIT_BOOLEAN_LIVE_H

// A boolean that is shown while its solids are moved. The model stays as it is: the result is drawn
// in the stead of the first solid, the others as outlines, until it is kept or cancelled.

#include "model/flat_mesh.h"

// Command "boolean_live": begins with the selected objects, as "boolean" takes them, and selects the
// others, to be moved; another operation while it runs shows that one instead; "off" ends it, and
// what was moved stays.
void command_boolean_live(const char *operation);
// Command "boolean_live_keep": makes the boolean, with 1 of hidden copies of the others. The moves
// since it began and the boolean become one step. Refused as "boolean" is, it goes on. The result is
// 1 or 0.
void command_boolean_live_keep(int keep_others);
// Command "boolean_live_cancel": model and selection as they were when it began.
void command_boolean_live_cancel();

// Before a picture: computes the result anew where the solids have changed, and tells about it. In a
// `quick` picture only what computes fast; false when that has to wait.
bool boolean_live_update(bool quick);

bool boolean_live_runs();
// What is drawn in the stead of an object; null for the object itself.
flat_ptr boolean_live_shown(const object_t *object);
// Whether the object is one of those that only show where they are.
bool boolean_live_is_outline(const object_t *object);

void boolean_live_reset_for_test();

#endif
