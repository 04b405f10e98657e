#ifndef VESK_MODULES_ASSIMP_LOSSES_H
#define VESK_MODULES_ASSIMP_LOSSES_H

#include "modules/assimp_read.h"

struct aiScene;

// Warns of what the scene holds and the program has no place for: animations, cameras, bones, corner
// colours and the like, each kind in one line.
void tell_what_is_not_read(const aiScene &scene, plain_scene *out);

#endif
