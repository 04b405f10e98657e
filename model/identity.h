#ifndef VESK_MODEL_IDENTITY_H
#define VESK_MODEL_IDENTITY_H

// The integers by which scripts name objects: from 1 upwards, given at the first request, never
// used again, gone when the object is freed.

#include "model/object.h"

// The object's number; 0 for null.
int object_identity(const object_t *object);

// The live object of a number. None: null and the console line "no object with id %d".
object_t *object_by_identity(int id);

// Gives an object back the number it had (a restored state); null object: the number is free.
void identity_assign(int id, const object_t *object);
// The number without giving one: 0 for none.
int identity_known(const object_t *object);

#endif
