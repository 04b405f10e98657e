#ifndef VESK_FILEIO_EXPORT_POV_H
#define VESK_FILEIO_EXPORT_POV_H

#include "fileio/export_scene.h"

// Scenes of the POV renderer, version 3.5: a camera, lights, and a union for each object with its
// meshes and children. The world's right-handed axes are kept: the camera's right vector points
// backwards (pov_right_aspect is negative).
extern const export_format pov_format;

#endif
