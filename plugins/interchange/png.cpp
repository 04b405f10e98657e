#include "png.h"

#include "work.h"

#include <cstdint>
#include <zlib.h>

namespace {

void add_big(std::string &out, std::uint32_t value)
{
    for (int shift = 24; shift >= 0; shift -= 8)
        out += static_cast<char>(value >> shift & 0xFF);
}

void add_chunk(std::string &out, const char *kind, const std::string &content)
{
    add_big(out, static_cast<std::uint32_t>(content.size()));
    const std::string bytes = kind + content;
    out += bytes;
    add_big(out, static_cast<std::uint32_t>(crc32(0, reinterpret_cast<const Bytef *>(bytes.data()),
                                                  static_cast<uInt>(bytes.size()))));
}

// Rows from the top, each behind a 0: no filter.
std::string rows_of(const VESKImage &image)
{
    const std::size_t row = std::size_t{image.width} * image.depth;
    std::string rows;
    rows.reserve((row + 1) * image.height);
    for (std::size_t y = image.height; y-- > 0;) {
        rows += '\0';
        rows.append(reinterpret_cast<const char *>(image.data) + y * row, row);
    }
    return rows;
}

std::string png_of(const VESKImage &image)
{
    const std::string rows = rows_of(image);
    uLongf size = compressBound(static_cast<uLong>(rows.size()));
    std::string packed(size, '\0');
    if (compress(reinterpret_cast<Bytef *>(packed.data()), &size,
                 reinterpret_cast<const Bytef *>(rows.data()),
                 static_cast<uLong>(rows.size())) != Z_OK)
        return {};
    packed.resize(size);
    const char colours[] = {0, 0, 4, 2, 6}; // by depth: grey, with alpha, RGB, with alpha
    std::string head;
    add_big(head, image.width);
    add_big(head, image.height);
    head += {8, colours[image.depth], 0, 0, 0};
    std::string out = "\x89PNG\r\n\x1a\n";
    add_chunk(out, "IHDR", head);
    add_chunk(out, "IDAT", packed);
    add_chunk(out, "IEND", "");
    return out;
}

} // namespace

picture_file picture_file_of(int texture)
{
    picture_file out;
    const char *name = texture_id_to_name(texture);
    if (name != nullptr)
        read_file(name, &out.bytes);
    out.jpeg = out.bytes.compare(0, 3, "\xFF\xD8\xFF") == 0;
    if (out.jpeg || out.bytes.compare(0, 8, "\x89PNG\r\n\x1a\n") == 0)
        return out;
    const VESKImage *image = texture_id_to_image(texture);
    const bool has_pixels = image != nullptr && image->data != nullptr && image->depth >= 1 &&
                            image->depth <= 4 && image->width > 0 && image->height > 0;
    out.bytes = has_pixels ? png_of(*image) : "";
    return out;
}
