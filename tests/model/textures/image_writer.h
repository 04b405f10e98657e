#ifndef VESK_TESTS_MODEL_TEXTURES_IMAGE_WRITER_H
#define VESK_TESTS_MODEL_TEXTURES_IMAGE_WRITER_H

// Image files in every sub-format that the built-in readers know, written from one small picture.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

using rgba_t = std::array<unsigned char, 4>;

// Rows from the top.
struct picture_t {
    int width, height;
    std::vector<rgba_t> pixels;

    [[nodiscard]] const rgba_t &at(int x, int y) const
    {
        return pixels[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
    }
};

// A colourful picture with runs and single pixels, of at most `colours` colours (0: any number).
picture_t sample_picture(int width, int height, int colours);

// The colours of a picture in the order of their first use, and each pixel's place among them.
struct indexed_t {
    std::vector<rgba_t> colours;
    std::vector<unsigned char> indices;
};
indexed_t index_colours(const picture_t &picture);

struct gif_options_t {
    const char *version = "89a";
    bool interlaced = false;
    bool local_map = false;
    bool with_extensions = false;
    bool restart_often = false; // clear codes amid the data
};
std::string write_gif(const picture_t &picture, const gif_options_t &options);

struct sgi_options_t {
    bool encoded = false;
    int value_bytes = 1;
    int channels = 3;
};
std::string write_sgi(const picture_t &picture, const sgi_options_t &options);

struct bmp_options_t {
    int bits = 24;
    int header = 40;
    int compression = 0; // 1 runs of bytes, 2 runs of half bytes, 3 masks
    bool top_down = false;
    std::array<std::uint32_t, 4> masks = {};
};
std::string write_bmp(const picture_t &picture, const bmp_options_t &options);

#endif
