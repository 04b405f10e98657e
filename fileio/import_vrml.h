#ifndef VESK_FILEIO_IMPORT_VRML_H
#define VESK_FILEIO_IMPORT_VRML_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* VRML 1.0 worlds: separators become groups, shapes objects named by DEF, with their materials,
   texture coordinates and textures; lights become light objects. Nodes that have no place in a
   scene here (cameras, texts, points, inlined files) are counted on the status line. */
VESK_API object_t *vesk_import_vrml(const char *filename);

VESK_END_DECLS

#endif
