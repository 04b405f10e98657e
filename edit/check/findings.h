#ifndef VESK_EDIT_CHECK_FINDINGS_H
#define VESK_EDIT_CHECK_FINDINGS_H

// The findings of every object's geometry, kept until it changes. They are made when somebody asks,
// or ahead of that by one worker, which reads flat meshes only. The main thread's alone.

#include "edit/check/model_check.h"

// Of the object's own geometry, as mesh_find_problems tells it, the first problems_shown of each kind.
// Waits for the worker when it is at work, and throws what that has thrown. Valid until the next call.
const model_findings &findings_of(object_t *object);

// Forgets the findings that nobody asked for since the last call.
void findings_sweep();

#endif
