#ifndef VESK_EDIT_MAKE_SURFACE_H
#define VESK_EDIT_MAKE_SURFACE_H

#include "model/object.h"

#include <vector>

// "createsurface" (0 polygon, 1 closed line, 2 line): vertex mode; a surface through the selected
// vertices of one object, in the order of the selection. A polygon whose outline would cross itself
// goes round the middle instead. Material and sides are a new surface's; corners take texture
// coordinates from a surface that has the vertex. Undo "create surface".
void command_createsurface(int type);

// "surface_create_object": copies of the selected whole surfaces with their vertices become a new
// object under the world, with name and texture of the first one's owner, and are selected. Undo
// "create object".
void command_surface_create_object();

// Moves the selected whole surfaces into objects of their own, one for each owner and beside it; an
// owner whose surfaces are all selected is such an object already. These objects are selected.
// Records no undo: the caller has saved the world.
std::vector<object_t *> separate_selected_surfaces();

// "surfaces_separate": that. Undo "separate".
void command_surfaces_separate();

#endif
