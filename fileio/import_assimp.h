#ifndef VESK_FILEIO_IMPORT_ASSIMP_H
#define VESK_FILEIO_IMPORT_ASSIMP_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* Importers through the Assimp library; see vesk_assimp_import. 3D Studio files have Z upwards: with
   swap_3ds_yz they are turned upright, else their axes stay as they are stored. */
VESK_API object_t *vesk_import_3ds(const char *filename);
/* The first frame. */
VESK_API object_t *vesk_import_md2(const char *filename);

VESK_END_DECLS

#endif
