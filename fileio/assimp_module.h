#ifndef VESK_FILEIO_ASSIMP_MODULE_H
#define VESK_FILEIO_ASSIMP_MODULE_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* Reads a file by the Assimp library's reader for a file suffix ("3ds", without the dot) and no
   other. The library is opened at the first call. Returns a new, free-standing tree in world
   coordinates, Y upwards: objects for the file's nodes, polygons kept, materials in the palette,
   textures searched beside the file. Null when it cannot be read, after a message box with the file's
   name and the reader's reason. */
VESK_API object_t *vesk_assimp_import(const char *filename, const char *suffix);

VESK_END_DECLS

#endif
