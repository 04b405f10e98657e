#ifndef VESK_DRAW_FONT_ATLAS_H
#define VESK_DRAW_FONT_ATLAS_H

// The fonts of the texts inside the views, rasterised at build time for each interface scale.

#include <string_view>

struct atlas_glyph_t {
    short x, y, width, height; // in the atlas, pixels
    short left, top;           // of its bitmap from the pen; top is upwards
    short advance;
};

struct font_atlas_t {
    double scale;
    int width, height;
    const unsigned char *alpha;
    const atlas_glyph_t *glyphs; // characters 32 to 126 in the regular font, then in the bold one
};

enum class atlas_font { regular, bold };

// The atlas nearest to an interface scale.
const font_atlas_t &font_atlas_for(double scale);

// Characters that the font does not hold are shown as "?".
const atlas_glyph_t &font_glyph(const font_atlas_t &atlas, atlas_font font, unsigned char code);

int font_text_width(const font_atlas_t &atlas, atlas_font font, std::string_view text);

#endif
