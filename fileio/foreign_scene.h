#ifndef VESK_FILEIO_FOREIGN_SCENE_H
#define VESK_FILEIO_FOREIGN_SCENE_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* Files of formats that the Assimp library knows. It works in a process of its own with limits on
   time and memory, so that a damaged file costs a message and not the session; events are let in
   meanwhile, and the command "cancel" ends it. */

/* Reads a file by the library's reader for a file suffix ("3ds", without the dot) and no other.
   Returns a new, free-standing tree in world coordinates, Y upwards: objects for the file's nodes,
   polygons kept, materials in the palette, textures searched beside the file; a world when the
   file's nodes stand beside each other. Pictures within the file are written beside it when the
   user says so. Null when it cannot be read, after a message box with the file's name and the
   reason, or when it was cancelled. */
VESK_API object_t *vesk_assimp_import(const char *filename, const char *suffix);

VESK_END_DECLS

#ifdef VESK_INTERNAL
#include <string>
struct plain_scene;
/* The same tree of a scene that was decoded; `filename` says where its textures are searched. */
object_t *object_of_scene(const plain_scene &scene, const std::string &filename);
#endif

#endif
