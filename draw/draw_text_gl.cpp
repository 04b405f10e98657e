#include "draw/draw_text_gl.h"

#include "view/interaction.h"

#include <cmath>
#include <vector>

namespace {

struct text_vertex_t {
    float x, y, u, v;
};

struct text_texture_t {
    const font_atlas_t *atlas = nullptr;
    GLuint id = 0;
};
text_texture_t current;

// One texture for all views: their contexts share it.
const font_atlas_t &bind_atlas()
{
    const font_atlas_t &atlas = font_atlas_for(view_interface_scale());
    if (current.atlas == &atlas) {
        glBindTexture(GL_TEXTURE_2D, current.id);
        return atlas;
    }
    if (current.id == 0)
        glGenTextures(1, &current.id);
    current.atlas = &atlas;
    glBindTexture(GL_TEXTURE_2D, current.id);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    // A power of two: OpenGL 1.1 takes nothing else.
    int height = 1;
    while (height < atlas.height)
        height *= 2;
    std::vector<unsigned char> padded(static_cast<size_t>(atlas.width * height), 0);
    std::copy(atlas.alpha, atlas.alpha + atlas.width * atlas.height, padded.begin());
    glTexImage2D(GL_TEXTURE_2D, 0, GL_ALPHA, atlas.width, height, 0, GL_ALPHA, GL_UNSIGNED_BYTE,
                 padded.data());
    return atlas;
}

float texture_height(const font_atlas_t &atlas)
{
    int height = 1;
    while (height < atlas.height)
        height *= 2;
    return static_cast<float>(height);
}

void add_glyph(std::vector<text_vertex_t> &out, const font_atlas_t &atlas,
               const atlas_glyph_t &glyph, float pen_x, float pen_y)
{
    const auto w = static_cast<float>(atlas.width);
    const float h = texture_height(atlas);
    const float x1 = pen_x + glyph.left;
    const float y1 = pen_y - glyph.top;
    const float x2 = x1 + glyph.width;
    const float y2 = y1 + glyph.height;
    const float u1 = static_cast<float>(glyph.x) / w;
    const float v1 = static_cast<float>(glyph.y) / h;
    const float u2 = static_cast<float>(glyph.x + glyph.width) / w;
    const float v2 = static_cast<float>(glyph.y + glyph.height) / h;
    out.insert(out.end(), {{x1, y1, u1, v1}, {x2, y1, u2, v1}, {x2, y2, u2, v2}, {x1, y2, u1, v2}});
}

} // namespace

void draw_text(float x, float y, std::string_view text, const colour_t &colour, atlas_font font)
{
    glEnable(GL_TEXTURE_2D);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    const font_atlas_t &atlas = bind_atlas();
    std::vector<text_vertex_t> quads;
    float pen = std::round(x);
    for (const char c : text) {
        const atlas_glyph_t &glyph = font_glyph(atlas, font, static_cast<unsigned char>(c));
        add_glyph(quads, atlas, glyph, pen, std::round(y));
        pen += glyph.advance;
    }
    if (!quads.empty()) {
        set_colour(colour);
        glEnableClientState(GL_VERTEX_ARRAY);
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
        glVertexPointer(2, GL_FLOAT, sizeof(text_vertex_t), &quads[0].x);
        glTexCoordPointer(2, GL_FLOAT, sizeof(text_vertex_t), &quads[0].u);
        glDrawArrays(GL_QUADS, 0, static_cast<GLsizei>(quads.size()));
        glDisableClientState(GL_TEXTURE_COORD_ARRAY);
        glDisableClientState(GL_VERTEX_ARRAY);
    }
    glDisable(GL_TEXTURE_2D);
}

void draw_text_centred(float x, float y, std::string_view text, const colour_t &colour,
                       atlas_font font)
{
    const font_atlas_t &atlas = font_atlas_for(view_interface_scale());
    const auto width = static_cast<float>(font_text_width(atlas, font, text));
    const auto capital = static_cast<float>(font_glyph(atlas, font, 'X').top);
    draw_text(x - width / 2, y + capital / 2, text, colour, font);
}
