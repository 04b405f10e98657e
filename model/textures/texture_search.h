#ifndef VESK_MODEL_TEXTURES_TEXTURE_SEARCH_H
#define VESK_MODEL_TEXTURES_TEXTURE_SEARCH_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* The file of a texture that a model names, and the name of a texture for a file. */

/* The file that a model means by a texture name: the name itself when absolute, else beside the
   model file, there in textures/, or (Deliberate: the folder itself) the home directory's
   textures. In one buffer that each call overwrites; null when there is none. */
VESK_API const char *search_texture(const char *model_filename, const char *texture_name);

/* The name to store for a texture file in a model file: relative when the texture lies in the
   model's folder or below, else the full name. In one buffer that each call overwrites. */
VESK_API const char *search_texture_save(const char *model_filename, const char *texture_filename);

VESK_END_DECLS

#endif
