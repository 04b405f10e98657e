#ifndef VESK_FILEIO_EMBEDDED_IMAGES_H
#define VESK_FILEIO_EMBEDDED_IMAGES_H

#include "base/types.h"

#include <stddef.h>

VESK_BEGIN_DECLS

/* Pictures that lie within model files: textures are read from files of their own. */

/* The folder that `count` pictures of a model file are to be written to: that of the command
   "set_images_folder", else beside the model when the user says so; without a window beside it where
   that can be written, else in the user's state folder. "" for nowhere. In one buffer that each call
   overwrites. */
VESK_API const char *vesk_embedded_images_folder(const char *model_filename, int count);

/* Writes a picture's file of `count` bytes there, by its name without folders; a number is added when
   another picture has that name. It is listed in the report. Returns its path in one buffer that each
   call overwrites, or "" after a warning when it was not written (`folder` is "", or the disk is
   full). */
VESK_API const char *vesk_embedded_image_write(const char *folder, const char *name,
                                               const void *bytes, size_t count);

VESK_END_DECLS

#ifdef VESK_INTERNAL
#include <string>
// Folder for the pictures, without asking; "" asks again.
void embedded_images_set_folder(const std::string &folder);
#endif

#endif
