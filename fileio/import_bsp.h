#ifndef VESK_FILEIO_IMPORT_BSP_H
#define VESK_FILEIO_IMPORT_BSP_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* Levels of Quake 3 (IBSP version 46): polygons, meshes and curved patches, an object for each
   shader with its picture when one is found beside the file; Z upwards becomes Y upwards. */
VESK_API object_t *vesk_import_quake3bsp(const char *filename);

VESK_END_DECLS

#endif
