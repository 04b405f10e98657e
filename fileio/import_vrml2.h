#ifndef VESK_FILEIO_IMPORT_VRML2_H
#define VESK_FILEIO_IMPORT_VRML2_H

#include "model/object.h"

#include <string>

// A VRML 2.0 world from its text: groups and transforms become groups, or the objects whose shapes
// they hold; with materials, colours, textures, texture coordinates, lines, points, lights and
// addresses. What has no place here is counted by name in the import report. Null, told, when it
// cannot be read.
object_t *import_vrml2(const std::string &filename, std::string text);

#endif
