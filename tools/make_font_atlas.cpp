// Rasterises the fonts of the texts inside the views into alpha atlases, one for each interface
// scale, and prints them as the rows of a C++ table. Run by the build.
//   make_font_atlas regular.otf bold.otf > font_atlas.inc

#include <ft2build.h>
#include FT_FREETYPE_H

#include <cmath>
#include <cstdio>
#include <vector>

namespace {

constexpr int first_character = 32;
constexpr int last_character = 126;
constexpr int atlas_width = 256;
constexpr double scales[] = {1.0, 1.25, 1.5, 2.0, 3.0};
constexpr double regular_pixels = 12.0; // 9 points at 96 dpi
constexpr double bold_pixels = 10.0;

struct glyph_t {
    int x, y, width, height; // in the atlas
    int left, top;           // of the bitmap from the pen, top upwards
    int advance;             // pixels
};

struct atlas_t {
    std::vector<unsigned char> alpha;
    int height = 0;
    int pen_x = 1, pen_y = 1, row_height = 0;

    void place(const FT_Bitmap &bitmap, glyph_t &glyph)
    {
        const int width = static_cast<int>(bitmap.width);
        const int rows = static_cast<int>(bitmap.rows);
        if (pen_x + width + 1 > atlas_width) {
            pen_x = 1;
            pen_y += row_height + 1;
            row_height = 0;
        }
        glyph.x = pen_x;
        glyph.y = pen_y;
        glyph.width = width;
        glyph.height = rows;
        while (height < pen_y + rows + 1) {
            alpha.resize(alpha.size() + atlas_width, 0);
            ++height;
        }
        for (int y = 0; y < rows; ++y)
            for (int x = 0; x < width; ++x)
                alpha[static_cast<size_t>((pen_y + y) * atlas_width + pen_x + x)] =
                    bitmap.buffer[y * bitmap.pitch + x];
        pen_x += width + 1;
        if (rows > row_height)
            row_height = rows;
    }
};

bool add_font(FT_Library library, const char *file, double pixels, atlas_t &atlas,
              std::vector<glyph_t> &glyphs)
{
    FT_Face face = nullptr;
    if (FT_New_Face(library, file, 0, &face) != 0) {
        std::fprintf(stderr, "make_font_atlas: can't read %s\n", file);
        return false;
    }
    FT_Set_Char_Size(face, 0, static_cast<FT_F26Dot6>(std::lround(pixels * 64)), 72, 72);
    for (int code = first_character; code <= last_character; ++code) {
        if (FT_Load_Char(face, static_cast<FT_ULong>(code),
                         FT_LOAD_RENDER | FT_LOAD_TARGET_LIGHT) != 0)
            return false;
        glyph_t glyph = {};
        glyph.left = face->glyph->bitmap_left;
        glyph.top = face->glyph->bitmap_top;
        glyph.advance = static_cast<int>(std::lround(face->glyph->advance.x / 64.0));
        atlas.place(face->glyph->bitmap, glyph);
        glyphs.push_back(glyph);
    }
    FT_Done_Face(face);
    return true;
}

void print_atlas(int number, const atlas_t &atlas, const std::vector<glyph_t> &glyphs)
{
    std::printf("const unsigned char atlas_alpha_%d[] = {", number);
    for (size_t i = 0; i < atlas.alpha.size(); ++i)
        std::printf("%s%d,", i % 32 == 0 ? "\n" : "", atlas.alpha[i]);
    std::printf("\n};\nconst atlas_glyph_t atlas_glyphs_%d[] = {\n", number);
    for (const glyph_t &g : glyphs)
        std::printf("{%d, %d, %d, %d, %d, %d, %d},\n", g.x, g.y, g.width, g.height, g.left, g.top,
                    g.advance);
    std::printf("};\n");
}

} // namespace

int main(int argc, char **argv)
{
    FT_Library library = nullptr;
    if (argc != 3 || FT_Init_FreeType(&library) != 0)
        return 1;
    std::vector<int> heights;
    int number = 0;
    for (const double scale : scales) {
        atlas_t atlas;
        std::vector<glyph_t> glyphs;
        if (!add_font(library, argv[1], regular_pixels * scale, atlas, glyphs) ||
            !add_font(library, argv[2], bold_pixels * scale, atlas, glyphs))
            return 1;
        print_atlas(number++, atlas, glyphs);
        heights.push_back(atlas.height);
    }
    std::printf("const font_atlas_t font_atlases[] = {\n");
    number = 0;
    for (const double scale : scales) {
        std::printf("{%g, %d, %d, atlas_alpha_%d, atlas_glyphs_%d},\n", scale, atlas_width,
                    heights[static_cast<size_t>(number)], number, number);
        ++number;
    }
    std::printf("};\n");
    FT_Done_FreeType(library);
    return 0;
}
