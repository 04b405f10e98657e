#ifndef VESK_DRAW_DRAW_TEXT_GL_H
#define VESK_DRAW_DRAW_TEXT_GL_H

#include "draw/draw_device_gl.h"
#include "draw/font_atlas.h"

#include <string_view>

// Draws a text in window pixels; x, y is the start of its base line.
void draw_text(float x, float y, std::string_view text, const colour_t &colour, atlas_font font);

// The same with the middle of the letters (capital height) at x, y.
void draw_text_centred(float x, float y, std::string_view text, const colour_t &colour,
                       atlas_font font);

#endif
