#ifndef VESK_FILEIO_IMPORT_ASSIMP_H
#define VESK_FILEIO_IMPORT_ASSIMP_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* Quake models through the Assimp library (see vesk_assimp_import): the first frame. */
VESK_API object_t *vesk_import_md2(const char *filename);

VESK_END_DECLS

#endif
