#ifndef VESK_FILEIO_IMPORT_LIGHTWAVE_H
#define VESK_FILEIO_IMPORT_LIGHTWAVE_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* Lightwave objects (.lwo): LWOB by a reader of its own, LWO2 through the Assimp library. Scenes
   (.lws): their objects, null objects and lights where their first keys place them, each below its
   parent; an object file is searched as it is named and beside the scene. */
VESK_API object_t *vesk_import_lightwave(const char *filename);

VESK_END_DECLS

#endif
