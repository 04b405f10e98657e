#ifndef VESK_FILEIO_IMPORT_NAMES_H
#define VESK_FILEIO_IMPORT_NAMES_H

#include "model/object.h"

// Names from other formats as a line of a model file can hold them: no control characters, no longer
// than the line, and in materials, whose names are written as they are, neither quotes nor
// backslashes. Goes over the tree and the palette's entries from `first_material` on.
void names_for_model_file(object_t *top, int first_material);

#endif
