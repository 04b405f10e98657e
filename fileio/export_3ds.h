#ifndef VESK_FILEIO_EXPORT_3DS_H
#define VESK_FILEIO_EXPORT_3DS_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* Writes the world as 3D Studio file: an object for each that has polygons (several for large ones),
   cut into triangles, with materials, pictures and texture coordinates; Z upwards with swap_3ds_yz.
   Lines are left out and counted. Returns 1, or 0 after a message when it could not be written. Command
   "write_3ds". */
VESK_API int write_3ds(const char *filename);

VESK_END_DECLS

#endif
