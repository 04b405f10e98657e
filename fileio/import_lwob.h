#ifndef VESK_FILEIO_IMPORT_LWOB_H
#define VESK_FILEIO_IMPORT_LWOB_H

#include "model/object.h"

#include <string_view>

// Reads the bytes of a Lightwave object of the older kind (FORM LWOB). Null after a message when
// there is no geometry in it.
object_t *import_lwob(const char *filename, std::string_view bytes);

#endif
