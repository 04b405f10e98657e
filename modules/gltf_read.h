#ifndef VESK_MODULES_GLTF_READ_H
#define VESK_MODULES_GLTF_READ_H

#include "fileio/scene_stream.h"
#include "modules/gltf_file.h"

// Reads the default scene of an opened file of version 2. Returns "", or why it was not done.
std::string gltf_read(gltf_file &file, plain_scene *scene);

#endif
