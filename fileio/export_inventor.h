#ifndef VESK_FILEIO_EXPORT_INVENTOR_H
#define VESK_FILEIO_EXPORT_INVENTOR_H

#include "fileio/export_scene.h"

// VRML 1.0 and the ASCII form of Open Inventor 2.1, of which the former is a subset: the nodes
// written are the same in both, only the first line differs.
extern const export_format vrml1_format, inventor_format;

#endif
