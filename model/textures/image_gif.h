#ifndef VESK_MODEL_TEXTURES_IMAGE_GIF_H
#define VESK_MODEL_TEXTURES_IMAGE_GIF_H

#include "model/textures/image_decode.h"

// False, reported with -debug, when the bytes are no such image.
bool decode_gif(std::string_view bytes, const char *filename, decoded_image *out);

#endif
