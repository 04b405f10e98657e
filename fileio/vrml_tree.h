#ifndef VESK_FILEIO_VRML_TREE_H
#define VESK_FILEIO_VRML_TREE_H

// Groups of VRML nodes as objects. There a shape is a node below the group that has its name and
// its frame; here an object has all of them, so what says the same thing twice becomes one.

#include "model/object.h"

// The object that a group with all its children comes to: itself; the only child of one that says
// nothing; or, of one with a name, the only unnamed shape in it, which then has its name, address and
// children. Null for one that holds and says nothing. What is not returned is freed. `has_frame`: the
// group has a centre of its own.
object_t *vrml_joined(object_t *group, bool has_frame);

// What the children of `top` become in the scene: they stand beside each other there, as they do in
// the file. Lights without a name get one.
object_t *vrml_world(object_t *top, const char *name);

#endif
