#ifndef VESK_EDIT_INSERT_VERTEX_H
#define VESK_EDIT_INSERT_VERTEX_H

#include "model/object.h"

#include <vector>

// Puts one new vertex on the edge between two vertices of an object (by their places), at a share of
// the way from a to b, into every surface that has the edge; the corners' texture coordinates lie
// between those of their neighbours. One whole-model undo, "insert vertex". In vertex mode the new
// vertex is selected. With symmetry its counterpart gets one, too. Returns how many there are; 0, and
// no change, when there is no such edge, the share is not between 0 and 1, or the object is hidden or
// locked.
int insert_vertex_at(object_t *object, int a, int b, float share);

// Where it puts them: the place that is asked for, and with symmetry its counterpart.
struct insert_place_t {
    int a, b;
    float share;
};
std::vector<insert_place_t> insert_vertex_places(object_t *object, int a, int b, float share);

// Handler of "insert_vertex_at": object id, two vertices, share. The result is the new vertex's
// place.
void command_insert_vertex_at(int count, const char *const *words);

#endif
