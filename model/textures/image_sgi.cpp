// SGI images, stored verbatim or run-length encoded, 8 or 16 bits a value, 1 to 4 channels: grey,
// grey and alpha, RGB, RGBA. Rows run from bottom to top in the file, too.
#include "model/textures/image_sgi.h"

#include "base/messages.h"

namespace {

constexpr std::size_t header_size = 512;
constexpr unsigned magic = 474;

struct sgi_header {
    bool encoded;
    unsigned value_bytes; // 1 or 2
    unsigned width, height, channels;
};

bool read_header(std::string_view bytes, sgi_header *header)
{
    if (bytes.size() < header_size || image_u16_be(bytes, 0) != magic)
        return false;
    const unsigned storage = image_byte(bytes, 2);
    const unsigned dimensions = image_u16_be(bytes, 4);
    *header = {storage == 1, image_byte(bytes, 3), image_u16_be(bytes, 6),
               dimensions > 1 ? image_u16_be(bytes, 8) : 1,
               dimensions > 2 ? image_u16_be(bytes, 10) : 1};
    const bool plain_colours = image_u32_be(bytes, 104) == 0;
    return storage <= 1 && dimensions >= 1 && dimensions <= 3 && plain_colours &&
           (header->value_bytes == 1 || header->value_bytes == 2) && header->channels >= 1 &&
           header->channels <= 4 &&
           image_size_fits(header->width, header->height, header->channels);
}

// A value of 8 or 16 bits as a byte.
unsigned char value_at(std::string_view bytes, std::size_t at, unsigned value_bytes)
{
    if (value_bytes == 1)
        return static_cast<unsigned char>(image_byte(bytes, at));
    return static_cast<unsigned char>((image_u16_be(bytes, at) + 128) / 257);
}

// Appends a row of `width` values; false when the data does not give as many.
bool decode_row(std::string_view row, const sgi_header &header, std::vector<unsigned char> *out)
{
    const std::size_t size = header.value_bytes;
    std::size_t left = header.width;
    std::size_t at = 0;
    while (left > 0 && at + size <= row.size()) {
        const unsigned head = image_byte(row, at + size - 1);
        const std::size_t count = head & 0x7F;
        at += size;
        if (count == 0)
            return false;
        const std::size_t take = count < left ? count : left;
        const bool literal = (head & 0x80) != 0;
        if (row.size() - at < (literal ? count : 1) * size)
            return false;
        for (std::size_t i = 0; i < take; ++i)
            out->push_back(value_at(row, at + (literal ? i * size : 0), header.value_bytes));
        at += (literal ? count : 1) * size;
        left -= take;
    }
    return left == 0;
}

// The values of all channels, one channel after another.
bool decode_rows(std::string_view bytes, const sgi_header &header, std::vector<unsigned char> *out)
{
    const std::size_t rows = std::size_t{header.height} * header.channels;
    const std::size_t table = header_size;
    if ((bytes.size() - table) / 8 < rows)
        return false;
    for (std::size_t row = 0; row < rows; ++row) {
        const std::size_t start = image_u32_be(bytes, table + 4 * row);
        const std::size_t length = image_u32_be(bytes, table + 4 * (rows + row));
        if (start > bytes.size() || !decode_row(bytes.substr(start, length), header, out))
            return false;
    }
    return true;
}

bool copy_rows(std::string_view bytes, const sgi_header &header, std::vector<unsigned char> *out)
{
    const std::size_t count = std::size_t{header.width} * header.height * header.channels;
    const std::string_view values = bytes.substr(header_size);
    if (values.size() / header.value_bytes < count)
        return false;
    out->reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        out->push_back(value_at(values, i * header.value_bytes, header.value_bytes));
    return true;
}

} // namespace

bool decode_sgi(std::string_view bytes, const char *filename, decoded_image *out)
{
    sgi_header header;
    if (!read_header(bytes, &header)) {
        debugf("%s is no SGI image that can be read\n", filename);
        return false;
    }
    std::vector<unsigned char> planes;
    if (!(header.encoded ? decode_rows(bytes, header, &planes)
                         : copy_rows(bytes, header, &planes))) {
        debugf("the data of rgb file %s ends too early\n", filename);
        return false;
    }
    *out = {static_cast<int>(header.width), static_cast<int>(header.height),
            static_cast<int>(header.channels), std::vector<unsigned char>(planes.size())};
    const std::size_t count = planes.size() / header.channels;
    for (std::size_t channel = 0; channel < header.channels; ++channel)
        for (std::size_t i = 0; i < count; ++i)
            out->pixels[i * header.channels + channel] = planes[channel * count + i];
    return true;
}
