#include "draw/font_atlas.h"

#include <cmath>

namespace {

constexpr int first_character = 32;
constexpr int num_characters = 95;

#include "font_atlas.inc"

} // namespace

const font_atlas_t &font_atlas_for(double scale)
{
    const font_atlas_t *nearest = &font_atlases[0];
    for (const font_atlas_t &atlas : font_atlases)
        if (std::fabs(atlas.scale - scale) < std::fabs(nearest->scale - scale))
            nearest = &atlas;
    return *nearest;
}

const atlas_glyph_t &font_glyph(const font_atlas_t &atlas, atlas_font font, unsigned char code)
{
    int place = code - first_character;
    if (place < 0 || place >= num_characters)
        place = '?' - first_character;
    return atlas.glyphs[place + (font == atlas_font::bold ? num_characters : 0)];
}

int font_text_width(const font_atlas_t &atlas, atlas_font font, std::string_view text)
{
    int width = 0;
    for (const char c : text)
        width += font_glyph(atlas, font, static_cast<unsigned char>(c)).advance;
    return width;
}
