#ifndef VESK_MODEL_DEFERRED_RECORDS_H
#define VESK_MODEL_DEFERRED_RECORDS_H

// Records on demand: after an operation of our own that knows a whole object as a flat mesh, that is the
// truth, and the lists have their addresses only; pages of them are written when somebody walks or
// changes them. What reads the flat mesh costs no records.

#include "model/flat_mesh.h"

// Whether the records of so many are to be deferred: they are many, and it is possible here.
bool records_can_be_deferred(int num_vertices, int num_surfaces);

// The same for those that take the place of others: no plug-in is on the stack, which could hold these.
bool records_can_be_renewed(int num_vertices, int num_surfaces);

// Frees the object's lists, announced, and makes them those of a flat mesh that is complete but for its
// arrays of records, which are set: deferred where they are many and there is room for their addresses,
// else at once. The flat mesh is the object's from now on. It may lack normals: they are what new records
// have.
void object_set_whole(object_t *object, std::shared_ptr<flat_mesh> flat);

// The object's flat mesh where none of its own records was ever touched: then it is what these will say.
// Else null.
flat_ptr untouched_flat(const object_t *object);

// The records of an untouched object will be made of this flat mesh, its own from now on, which differs
// in values of these aspects alone.
void object_defer_values(object_t *object, std::shared_ptr<flat_mesh> flat, unsigned aspects);

// Its lists are those that were deferred, touched or not, in their order: object_free_deferred frees them
// and their records in one go, and announces nothing. It does nothing, and is false, for others.
bool object_is_deferred(const object_t *object);
bool object_free_deferred(object_t *object);

// For tests: the number of vertices and surfaces from which on a mesh is large; returns what it was.
int deferred_records_set_least(int least);

#endif
