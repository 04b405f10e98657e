#ifndef VESK_EDIT_SURFACE_COPY_H
#define VESK_EDIT_SURFACE_COPY_H

#include "model/object.h"

#include <vector>

// Copies of surfaces with the vertices they use: one new, free-standing object for each owner, in
// tree order, with the owner's name, texture, frame and centre. The caller owns them.
std::vector<object_t *> objects_of_surfaces(const listitem *surfaces);

#endif
