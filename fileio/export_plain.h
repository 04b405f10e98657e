#ifndef VESK_FILEIO_EXPORT_PLAIN_H
#define VESK_FILEIO_EXPORT_PLAIN_H

#include "fileio/export_scene.h"

// Triangle lists, and the plain scene text that docs/manual.md describes.
extern const export_format triangle_format, dive_format, dvs_format, massive_format;

#endif
