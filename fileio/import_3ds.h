#ifndef VESK_FILEIO_IMPORT_3DS_H
#define VESK_FILEIO_IMPORT_3DS_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* 3D Studio files: meshes, lights and dummies in their tree, where the first keys place them;
   materials, pictures, shading by smoothing groups, sides. They have Z upwards: with swap_3ds_yz they
   are turned upright, else their axes stay as they are stored. Cameras, further keys and pictures
   for other uses are counted in the import report. */
VESK_API object_t *vesk_import_3ds(const char *filename);

VESK_END_DECLS

#endif
