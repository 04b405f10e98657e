#ifndef VESK_MODEL_TEXTURES_TEXTURE_PREVIEW_H
#define VESK_MODEL_TEXTURES_TEXTURE_PREVIEW_H

#include "model/textures/textures.h"

#ifdef VESK_INTERNAL
#include <vector>
#endif

VESK_BEGIN_DECLS

/* Fits a texture into the Tk label or canvas of that path. A bad id or path is reported on the
   console. Command "window_draw_texture". */
VESK_API void window_draw_texture(int id, const char *window);

VESK_END_DECLS

#ifdef VESK_INTERNAL
// An image scaled to a size, as rows of RGB from the top; transparent pixels show a checkerboard.
std::vector<unsigned char> image_scaled(const VESKImage &image, int width, int height);

// The largest size of the image's proportions inside a box; at least one pixel.
void image_fit(const VESKImage &image, int box_width, int box_height, int *width, int *height);

// Makes a Tk picture of a texture, at most `size` pixels wide and high. Result: its name, or "".
void command_texture_photo(int id, int size);

// The same of a picture file that is no texture yet. Result: the picture's name, then width, height
// and depth of the file; "" for a file that is no picture, without a message.
void command_picture_photo(const char *file, int size);

// Result: one list {name file width height depth} for each texture, in order of the ids.
void command_texture_list();
#endif

#endif
