#ifndef VESK_DRAW_DRAW_ORTH_GL_H
#define VESK_DRAW_DRAW_ORTH_GL_H

#include "draw/draw_layers_gl.h"

void draw_orthographic_view(picture_t &picture);
// Over the finished picture, in window pixels.
void draw_orthographic_overlay(const picture_t &picture);

#endif
