#ifndef VESK_MODULES_ASSIMP_READ_H
#define VESK_MODULES_ASSIMP_READ_H

#include "fileio/scene_stream.h"

// Reads a file by the library's reader for a file suffix ("3ds") and no other. Returns "", or why
// it was not done.
std::string helper_read(const char *filename, const char *suffix, plain_scene *scene);

#endif
