#ifndef VESK_EDIT_PIECES_H
#define VESK_EDIT_PIECES_H

// Objects taken apart and put together.

#include "model/object.h"

#include <vector>

// The objects with geometry among these and their descendants, in tree order.
std::vector<object_t *> objects_with_geometry(const std::vector<object_t *> &tops);
// Moves all of it into the first of `tops`, behind its own, in the order of objects_with_geometry;
// lights below any of them become the first one's children, all else goes. Returns whether
// textures differed from the one that stays. Records no undo, computes no normals.
bool objects_merge(const std::vector<object_t *> &tops);

// "object_fragment": one object for each connected piece of a selected object, descendants
// included; surfaces that share a vertex are connected. "object_explode": one for each surface.
// The pieces of one object stand in a group of its name, in its place, its children behind them;
// vertices without a surface make a piece of their own. Objects of one piece stay as they are.
// Undo "fragment", "explode".
void command_object_fragment();
void command_object_explode();

// "object_merge": the geometry of all selected objects and their descendants goes into the first
// one, which becomes a plain object; lights below stay its children, the other objects go. No
// welding. Undo "merge".
void command_object_merge();

#endif
