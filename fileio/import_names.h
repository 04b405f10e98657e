#ifndef VESK_FILEIO_IMPORT_NAMES_H
#define VESK_FILEIO_IMPORT_NAMES_H

#include "model/object.h"

// The names of a tree from another format as a line of a model file can hold them: without control
// characters, which would end it, and no longer than the line; shortened ones are a complaint of the
// report.
void names_for_model_file(object_t *top);

#endif
