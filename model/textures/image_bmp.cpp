// Windows bitmaps: headers of 12 (OS/2), 16, 40, 52, 56, 64, 108 and 124 bytes; 1, 2, 4, 8, 16, 24
// and 32 bits a pixel, plain, run-length encoded (4 and 8 bits) or with bit masks, bottom-up or
// top-down. The result is RGB, or RGBA when the header names an alpha mask.
#include "model/textures/image_bmp.h"

#include "base/messages.h"

#include <algorithm>
#include <array>
#include <bit>

namespace {

enum : std::uint32_t {
    BMP_RGB = 0,
    BMP_RLE8 = 1,
    BMP_RLE4 = 2,
    BMP_MASKS = 3,
    BMP_ALPHA_MASKS = 6
};

constexpr std::size_t file_header = 14;
constexpr std::size_t core_header = 12;
constexpr std::size_t info_header = 40;

struct bmp_header {
    std::size_t size; // of the header after the file header
    int width, height;
    bool top_down;
    unsigned bits;
    std::uint32_t compression;
    std::size_t palette, palette_entry, palette_count;
    std::size_t data;
    std::array<std::uint32_t, 4> masks; // red, green, blue, alpha
};

bool read_sizes(std::string_view bytes, bmp_header *h)
{
    h->size = image_u32_le(bytes, file_header);
    const bool core = h->size == core_header;
    if (bytes.size() < file_header + h->size || (!core && h->size < 16))
        return false;
    std::int64_t width = 0;
    std::int64_t height = 0;
    if (core) {
        width = image_u16_le(bytes, 18);
        height = image_u16_le(bytes, 20);
        h->bits = image_u16_le(bytes, 24);
    } else {
        width = static_cast<std::int32_t>(image_u32_le(bytes, 18));
        height = static_cast<std::int32_t>(image_u32_le(bytes, 22));
        h->bits = image_u16_le(bytes, 28);
    }
    // The 16-byte header ends here.
    h->compression = h->size >= info_header ? image_u32_le(bytes, 30) : std::uint32_t{BMP_RGB};
    h->top_down = height < 0;
    height = h->top_down ? -height : height;
    if (width <= 0 ||
        !image_size_fits(static_cast<std::uint64_t>(width), static_cast<std::uint64_t>(height), 4))
        return false;
    h->width = static_cast<int>(width);
    h->height = static_cast<int>(height);
    return true;
}

bool kind_is_known(const bmp_header &h)
{
    switch (h.compression) {
    case BMP_RGB:
        return h.bits == 1 || h.bits == 2 || h.bits == 4 || h.bits == 8 || h.bits == 16 ||
               h.bits == 24 || h.bits == 32;
    case BMP_RLE8:
        return h.bits == 8 && !h.top_down;
    case BMP_RLE4:
        return h.bits == 4 && !h.top_down;
    case BMP_MASKS: // of the 64-byte header of OS/2 it means another encoding
        return (h.bits == 16 || h.bits == 32) && h.size != 64;
    case BMP_ALPHA_MASKS:
        return h.bits == 16 || h.bits == 32;
    default:
        return false;
    }
}

void read_masks(std::string_view bytes, bmp_header *h)
{
    h->masks = h->bits == 16 ? std::array<std::uint32_t, 4>{0x7C00, 0x3E0, 0x1F, 0}
                             : std::array<std::uint32_t, 4>{0xFF0000, 0xFF00, 0xFF, 0};
    if (h->compression != BMP_MASKS && h->compression != BMP_ALPHA_MASKS)
        return;
    const bool with_alpha = h->compression == BMP_ALPHA_MASKS || h->size >= 56;
    for (std::size_t i = 0; i < (with_alpha ? 4 : 3); ++i)
        h->masks[i] = image_u32_le(bytes, file_header + info_header + 4 * i);
}

void find_palette(std::string_view bytes, bmp_header *h)
{
    h->data = image_u32_le(bytes, 10);
    h->palette = file_header + h->size;
    if (h->size == info_header && h->compression == BMP_MASKS)
        h->palette += 12;
    if (h->size == info_header && h->compression == BMP_ALPHA_MASKS)
        h->palette += 16;
    h->palette_entry = h->size == core_header ? 3 : 4;
    const std::uint32_t used = h->size >= info_header ? image_u32_le(bytes, 46) : 0;
    std::size_t count = h->bits <= 8 ? std::size_t{1} << h->bits : 0;
    if (used != 0 && used < count)
        count = used;
    // Files that name no place for the pixels have them right after the palette.
    if (h->data < h->palette || h->data > bytes.size())
        h->data = h->palette + count * h->palette_entry;
    h->palette_count = std::min(count, (h->data - h->palette) / h->palette_entry);
}

// ---- pixels ----

using rgb_t = std::array<unsigned char, 3>;

std::vector<rgb_t> read_palette(std::string_view bytes, const bmp_header &h)
{
    std::vector<rgb_t> palette(std::size_t{1} << h.bits, rgb_t{0, 0, 0});
    for (std::size_t i = 0; i < h.palette_count; ++i) {
        const std::size_t at = h.palette + i * h.palette_entry;
        palette[i] = {static_cast<unsigned char>(image_byte(bytes, at + 2)),
                      static_cast<unsigned char>(image_byte(bytes, at + 1)),
                      static_cast<unsigned char>(image_byte(bytes, at))};
    }
    return palette;
}

// The bits that a mask selects, widened to a byte.
class channel {
public:
    explicit channel(std::uint32_t mask)
        : mask_(mask), shift_(mask != 0 ? std::countr_zero(mask) : 0), most_(mask >> shift_)
    {
    }

    [[nodiscard]] unsigned char of(std::uint32_t pixel) const
    {
        if (mask_ == 0)
            return 0;
        const std::uint64_t value = (pixel & mask_) >> shift_;
        return static_cast<unsigned char>((value * 255 + most_ / 2) / most_);
    }

private:
    std::uint32_t mask_;
    int shift_;
    std::uint64_t most_;
};

std::size_t row_bytes(const bmp_header &h)
{
    return (static_cast<std::size_t>(h.width) * h.bits + 31) / 32 * 4;
}

// The bytes of a row, from the bottom of the picture.
std::string_view row_at(std::string_view bytes, const bmp_header &h, int y)
{
    const int place = h.top_down ? h.height - 1 - y : y;
    return bytes.substr(h.data + static_cast<std::size_t>(place) * row_bytes(h), row_bytes(h));
}

unsigned index_at(std::string_view row, unsigned bits, std::size_t x)
{
    const std::size_t per_byte = 8 / bits;
    const unsigned shift = static_cast<unsigned>(per_byte - 1 - x % per_byte) * bits;
    return image_byte(row, x / per_byte) >> shift & ((1U << bits) - 1);
}

void read_indexed(std::string_view bytes, const bmp_header &h, decoded_image *out)
{
    const std::vector<rgb_t> palette = read_palette(bytes, h);
    unsigned char *to = out->pixels.data();
    for (int y = 0; y < h.height; ++y) {
        const std::string_view row = row_at(bytes, h, y);
        for (int x = 0; x < h.width; ++x, to += 3)
            std::ranges::copy(palette[index_at(row, h.bits, static_cast<std::size_t>(x))], to);
    }
}

void read_true_colour(std::string_view bytes, const bmp_header &h, decoded_image *out)
{
    unsigned char *to = out->pixels.data();
    for (int y = 0; y < h.height; ++y) {
        const std::string_view row = row_at(bytes, h, y);
        for (std::size_t x = 0; x < static_cast<std::size_t>(h.width); ++x, to += 3)
            for (std::size_t i = 0; i < 3; ++i)
                to[i] = static_cast<unsigned char>(image_byte(row, 3 * x + 2 - i));
    }
}

void read_masked(std::string_view bytes, const bmp_header &h, decoded_image *out)
{
    const std::array<channel, 4> channels = {channel(h.masks[0]), channel(h.masks[1]),
                                             channel(h.masks[2]), channel(h.masks[3])};
    const auto depth = static_cast<std::size_t>(out->depth);
    unsigned char *to = out->pixels.data();
    for (int y = 0; y < h.height; ++y) {
        const std::string_view row = row_at(bytes, h, y);
        for (std::size_t x = 0; x < static_cast<std::size_t>(h.width); ++x, to += depth) {
            const std::uint32_t pixel =
                h.bits == 16 ? image_u16_le(row, 2 * x) : image_u32_le(row, 4 * x);
            for (std::size_t i = 0; i < depth; ++i)
                to[i] = channels[i].of(pixel);
        }
    }
}

// ---- runs ----

// Writes runs of indices into the picture; indices outside it are dropped.
class run_painter {
public:
    run_painter(const bmp_header &h, decoded_image *out, const std::vector<rgb_t> &palette)
        : h_(h), out_(out), palette_(palette)
    {
    }

    void put(unsigned index)
    {
        if (x_ < h_.width && y_ < h_.height) {
            const std::size_t pixel =
                static_cast<std::size_t>(y_) * static_cast<std::size_t>(h_.width) +
                static_cast<std::size_t>(x_);
            std::ranges::copy(palette_[index],
                              out_->pixels.begin() + static_cast<std::ptrdiff_t>(3 * pixel));
        }
        ++x_;
    }
    void end_line()
    {
        x_ = 0;
        ++y_;
    }
    void move(unsigned dx, unsigned dy)
    {
        x_ += static_cast<int>(dx);
        y_ += static_cast<int>(dy);
    }
    [[nodiscard]] bool full() const { return y_ >= h_.height; }

private:
    const bmp_header &h_;
    decoded_image *out_;
    const std::vector<rgb_t> &palette_;
    int x_ = 0, y_ = 0;
};

// The i-th index of a run's bytes.
unsigned run_index(std::string_view data, std::size_t at, unsigned bits, std::size_t i)
{
    if (bits == 8)
        return image_byte(data, at + i);
    const unsigned pair = image_byte(data, at + i / 2);
    return i % 2 == 0 ? pair >> 4 : pair & 0xF;
}

void read_runs(std::string_view bytes, const bmp_header &h, decoded_image *out)
{
    const std::vector<rgb_t> palette = read_palette(bytes, h);
    run_painter painter(h, out, palette);
    const std::string_view data = bytes.substr(h.data);
    std::size_t at = 0;
    while (at + 2 <= data.size() && !painter.full()) {
        const unsigned count = image_byte(data, at);
        const unsigned code = image_byte(data, at + 1);
        at += 2;
        if (count > 0) {
            for (unsigned i = 0; i < count; ++i)
                painter.put(h.bits == 8 ? code : i % 2 == 0 ? code >> 4 : code & 0xF);
        } else if (code == 0) {
            painter.end_line();
        } else if (code == 1) {
            return;
        } else if (code == 2) {
            painter.move(image_byte(data, at), image_byte(data, at + 1));
            at += 2;
        } else {
            const std::size_t size = h.bits == 8 ? code : (code + 1) / 2;
            for (unsigned i = 0; i < code && at + size <= data.size(); ++i)
                painter.put(run_index(data, at, h.bits, i));
            at += size + size % 2; // padded to words
        }
    }
}

// Runs may leave pixels out, so their file says nothing about the size: a small file is believed a
// small picture.
bool size_is_likely(std::string_view bytes, const bmp_header &h)
{
    const std::uint64_t wanted =
        static_cast<std::uint64_t>(h.width) * static_cast<std::uint64_t>(h.height);
    if (h.compression == BMP_RLE8 || h.compression == BMP_RLE4)
        return wanted <= 4096 * 1024 || wanted / 256 <= bytes.size();
    const std::uint64_t rows = static_cast<std::uint64_t>(h.height) * row_bytes(h);
    return h.data <= bytes.size() && rows <= bytes.size() - h.data;
}

} // namespace

bool decode_bmp(std::string_view bytes, const char *filename, decoded_image *out)
{
    bmp_header h = {};
    if (bytes.substr(0, 2) != "BM" || !read_sizes(bytes, &h) || !kind_is_known(h)) {
        debugf("%s is no bitmap that can be read\n", filename);
        return false;
    }
    read_masks(bytes, &h);
    find_palette(bytes, &h);
    if (!size_is_likely(bytes, h) || h.data > bytes.size()) {
        debugf("the data of bitmap %s ends too early\n", filename);
        return false;
    }
    const int depth = h.bits >= 16 && h.bits != 24 && h.masks[3] != 0 ? 4 : 3;
    *out = {h.width, h.height, depth,
            std::vector<unsigned char>(static_cast<std::size_t>(h.width) *
                                       static_cast<std::size_t>(h.height) *
                                       static_cast<std::size_t>(depth))};
    if (h.compression == BMP_RLE8 || h.compression == BMP_RLE4)
        read_runs(bytes, h, out);
    else if (h.bits <= 8)
        read_indexed(bytes, h, out);
    else if (h.bits == 24)
        read_true_colour(bytes, h, out);
    else
        read_masked(bytes, h, out);
    return true;
}
