#ifndef VESK_EDIT_DOCUMENT_GEOMETRY_IMAGE_H
#define VESK_EDIT_DOCUMENT_GEOMETRY_IMAGE_H

// Writing the geometry of an image into a live object.

#include "model/flat_mesh.h"

// Makes the object's vertices and surfaces those of the image and sets its flat mesh. Where the
// lists are known to be the image's, values are written; else the holders of references are
// notified that all vertices and surfaces are gone, though their records are used again. Returns
// whether they stayed.
bool object_write_geometry(object_t *object, const flat_mesh &image);

#endif
