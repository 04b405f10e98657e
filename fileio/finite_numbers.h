#ifndef VESK_FILEIO_FINITE_NUMBERS_H
#define VESK_FILEIO_FINITE_NUMBERS_H

#include "model/object.h"

// Puts 0 in place of the coordinates and texture numbers of a tree that are infinite or no numbers, the
// identity in place of such a rotation: no operation survives them. Returns how many there were.
// Readers call it before the normals are computed.
int numbers_make_finite(object_t *top);

#endif
