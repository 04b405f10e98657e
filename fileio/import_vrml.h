#ifndef VESK_FILEIO_IMPORT_VRML_H
#define VESK_FILEIO_IMPORT_VRML_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* VRML worlds of both versions, also packed by gzip: groups and separators become groups, or the
   objects whose shapes they hold, with their names, materials, texture coordinates and textures;
   lights become light objects. Nodes that have no place in a scene here are counted by name in the
   import report. */
VESK_API object_t *vesk_import_vrml(const char *filename);

VESK_END_DECLS

#endif
