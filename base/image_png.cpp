#include "base/image_png.h"

#include <png.h>

std::string png_of_rgb(int width, int height, const unsigned char *rgb)
{
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_RGB;
    png_alloc_size_t size = 0;
    if (png_image_write_to_memory(&image, nullptr, &size, 0, rgb, 0, nullptr) == 0)
        return {};
    std::string bytes(size, '\0');
    if (png_image_write_to_memory(&image, bytes.data(), &size, 0, rgb, 0, nullptr) == 0)
        return {};
    bytes.resize(size);
    return bytes;
}
