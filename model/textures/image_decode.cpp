#include "model/textures/image_decode.h"

#include "base/atomic_file.h"
#include "base/messages.h"
#include "model/alloc.h"

#include <cstring>
#include <string>

namespace {

constexpr std::uint64_t most_side = 65535;       // sides are 16-bit numbers
constexpr std::uint64_t most_bytes = 1ULL << 29; // of one image

using decode_t = bool (*)(std::string_view, const char *, decoded_image *);

// The record of decoded pixels; null without memory.
VESKImage *make_image(const char *filename, const decoded_image &decoded)
{
    auto *data =
        static_cast<unsigned char *>(myalloc(static_cast<std::uint32_t>(decoded.pixels.size())));
    VESKImage *image = data != nullptr ? new_veskimage(filename) : nullptr;
    if (image == nullptr) {
        myfree(data);
        return nullptr;
    }
    std::memcpy(data, decoded.pixels.data(), decoded.pixels.size());
    vesk_image_set_dim(image, decoded.width, decoded.height, decoded.depth);
    vesk_image_set_data(image, data);
    return image;
}

struct messages_t {
    const char *cannot_open;
    const char *no_memory;
};

VESKImage *load_by(decode_t decode, const char *filename, const messages_t &texts)
{
    std::string bytes;
    if (!read_whole_file(filename, &bytes)) {
        debugf("%s", texts.cannot_open);
        return nullptr;
    }
    decoded_image decoded;
    if (!decode(bytes, filename, &decoded))
        return nullptr;
    VESKImage *image = make_image(filename, decoded);
    if (image == nullptr)
        debugf("%s", texts.no_memory);
    return image;
}

} // namespace

bool image_size_fits(std::uint64_t width, std::uint64_t height, std::uint64_t depth)
{
    return width > 0 && height > 0 && width <= most_side && height <= most_side &&
           width * height * depth <= most_bytes;
}

VESKImage *load_gif(const char *filename)
{
    VESKImage *image = load_by(decode_gif, filename,
                               {"divepic_read_gif: error reading magic number\n",
                                "gif_ReadImage: Not enough memory to create Dive pic\n"});
    if (image == nullptr)
        debugf("gif load failed - %s\n", filename);
    return image;
}

VESKImage *load_sgi(const char *filename)
{
    return load_by(decode_sgi, filename, {"error opening rgb file\n", "Out of memory!\n"});
}

VESKImage *load_bmp(const char *filename)
{
    return load_by(decode_bmp, filename,
                   {"error opening bitmap file\n", "bitmap file: out of memory\n"});
}
