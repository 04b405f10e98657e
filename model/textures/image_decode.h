#ifndef VESK_MODEL_TEXTURES_IMAGE_DECODE_H
#define VESK_MODEL_TEXTURES_IMAGE_DECODE_H

// The result of the built-in readers of image files, and the helpers they share. Each reader works
// on the bytes of a whole file and never reads outside them; what a header claims is believed only
// as far as the data goes, so memory is taken for pixels that are there and not for those that are
// promised.

#include <cstdint>
#include <string_view>
#include <vector>

struct decoded_image {
    int width = 0, height = 0;
    int depth = 0;                     // bytes a pixel: grey, grey and alpha, RGB, RGBA
    std::vector<unsigned char> pixels; // rows from bottom to top
};

// Sizes that an image record can hold.
constexpr bool image_size_fits(std::uint64_t width, std::uint64_t height, std::uint64_t depth)
{
    constexpr std::uint64_t most_side = 65535;       // sides are 16-bit numbers
    constexpr std::uint64_t most_bytes = 1ULL << 29; // of one image
    return width > 0 && height > 0 && width <= most_side && height <= most_side &&
           width * height * depth <= most_bytes;
}

// Unsigned numbers at a place of a file; 0 outside it.
inline unsigned image_byte(std::string_view bytes, std::size_t at)
{
    return at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0U;
}
inline unsigned image_u16_le(std::string_view bytes, std::size_t at)
{
    return image_byte(bytes, at) | image_byte(bytes, at + 1) << 8;
}
inline std::uint32_t image_u32_le(std::string_view bytes, std::size_t at)
{
    return image_u16_le(bytes, at) | image_u16_le(bytes, at + 2) << 16;
}
inline unsigned image_u16_be(std::string_view bytes, std::size_t at)
{
    return image_byte(bytes, at) << 8 | image_byte(bytes, at + 1);
}
inline std::uint32_t image_u32_be(std::string_view bytes, std::size_t at)
{
    return image_u16_be(bytes, at) << 16 | image_u16_be(bytes, at + 2);
}

#endif
