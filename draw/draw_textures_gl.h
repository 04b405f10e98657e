#ifndef VESK_DRAW_DRAW_TEXTURES_GL_H
#define VESK_DRAW_DRAW_TEXTURES_GL_H

// Textures in the graphics device. All views share its objects, so each image is there once.

#include "model/textures/textures.h"

// Makes a texture of the image's pixels, or makes it anew, with all smaller copies; sizes that the
// device does not take are scaled. Needs a current context. False when there are no pixels.
bool texture_upload_gl(VESKImage *image);
void texture_release_gl(VESKImage *image);

// Makes the image's texture current and switches texturing on; it is uploaded first when it is not
// there yet. False (and texturing off) without an image.
bool texture_bind(VESKImage *image);
void texture_unbind();

// Repeats and offsets of texture coordinates, in the texture matrix.
void texture_set_placement(float repeat_x, float repeat_y, float offset_x, float offset_y);
void texture_reset_placement();

// The image behind an orthographic view; the projection is that of the window's pixels.
void draw_background_image(int view, int height);

#endif
