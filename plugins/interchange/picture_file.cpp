#include "picture_file.h"

#include "work.h"

#include <png.h>

namespace {

std::string png_of(const VESKImage &image)
{
    constexpr png_uint_32 formats[] = {0, PNG_FORMAT_GRAY, PNG_FORMAT_GA, PNG_FORMAT_RGB,
                                       PNG_FORMAT_RGBA}; // by depth
    png_image picture = {};
    picture.version = PNG_IMAGE_VERSION;
    picture.width = image.width;
    picture.height = image.height;
    picture.format = formats[image.depth];
    const int row = -static_cast<int>(image.width) * image.depth; // from the bottom
    std::string bytes(PNG_IMAGE_PNG_SIZE_MAX(picture), '\0');
    png_alloc_size_t size = bytes.size();
    if (png_image_write_to_memory(&picture, bytes.data(), &size, 0, image.data, row, nullptr) == 0)
        size = 0;
    bytes.resize(size);
    return bytes;
}

} // namespace

std::string picture_bytes_of(int texture)
{
    std::string bytes;
    const char *name = texture_id_to_name(texture);
    if (name == nullptr || !read_file(name, &bytes))
        bytes.clear();
    return bytes;
}

picture_file picture_file_of(int texture)
{
    picture_file out;
    out.bytes = picture_bytes_of(texture);
    out.jpeg = out.bytes.compare(0, 3, "\xFF\xD8\xFF") == 0;
    if (out.jpeg || out.bytes.compare(0, 8, "\x89PNG\r\n\x1a\n") == 0)
        return out;
    const VESKImage *image = texture_id_to_image(texture);
    const bool has_pixels = image != nullptr && image->data != nullptr && image->depth >= 1 &&
                            image->depth <= 4 && image->width > 0 && image->height > 0;
    out.bytes = has_pixels ? png_of(*image) : "";
    return out;
}
