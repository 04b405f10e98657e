#ifndef VESK_FILEIO_EXPORT_RIB_H
#define VESK_FILEIO_EXPORT_RIB_H

#include "fileio/export_scene.h"

// RenderMan interface bytestream: with a camera and a world round it (output_rib_header), or only
// the objects, for inclusion in another file.
extern const export_format rib_format;

#endif
