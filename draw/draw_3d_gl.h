#ifndef VESK_DRAW_DRAW_3D_GL_H
#define VESK_DRAW_DRAW_3D_GL_H

#include "draw/draw_layers_gl.h"

void draw_3d_view(picture_t &picture);
// Over the finished picture, in window pixels.
void draw_3d_overlay(const picture_t &picture);

// Switches the scene's lights on, without any the default light and one from above, and the
// headlight; the model matrix must be current. Returns how many there are.
int draw_set_lights();

#endif
