#ifndef VESK_EDIT_CHECK_MODEL_CHECK_FIX_H
#define VESK_EDIT_CHECK_MODEL_CHECK_FIX_H

// The fixes of the problems that the model check finds. Records no undo, computes no normals.

#include "edit/check/model_check.h"

// Mends these problems of one object, all of one kind: a polygon closes the hole that an open edge
// is part of (not of a lone polygon), further surfaces of a crowded edge get vertices of their own,
// a vertex on an edge is put into the edge's surfaces, vertices at one place become one, doubled,
// empty surfaces and unused vertices are removed, polygons that are not flat become triangles,
// flipped ones are reversed (with `whole_object` all are made to agree with the most), a texture is
// looked for again and forgotten when it is not there. Returns how many of the named elements were
// changed.
int object_fix_problems(object_t *object, const std::vector<found_problem> &problems,
                        bool whole_object);

// Command "check_fix": one problem as "check_model" names it. Undo "fix ...".
void command_check_fix(const char *kind, int id, const char *element);
// Command "check_fix_all": all of a kind.
void command_check_fix_all(const char *kind);
// Command "check_select": selects the elements that a problem names, in the mode that shows them.
void command_check_select(const char *kind, int id, const char *element);

#endif
