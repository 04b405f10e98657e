#ifndef VESK_FILEIO_EXPORT_VRML2_H
#define VESK_FILEIO_EXPORT_VRML2_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* Writes the world as VRML 2.0, with normals and textures as vrml_output_normals and
   vrml_output_textures say. Lights come first, wherever they are in the tree. The second form wraps
   each top-level object in a PROTO of its name. Returns 1, or 0 after a console line when the file
   could not be written; the former file is then as it was. Commands of the same names. */
VESK_API int write_vrml2(const char *filename);
VESK_API int write_vrml2_proto(const char *filename);

/* The palette index that all surfaces of an object (without its children) use; -1 when they use
   several, or there are none. */
VESK_API int object_surfaces_find_same_material(const object_t *object);

VESK_END_DECLS

#endif
