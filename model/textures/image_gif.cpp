// GIF 87a and 89a: the first image of a file, with its local or the global colour map, as RGB.
// Transparency and extension blocks are ignored.
#include "model/textures/image_gif.h"

#include "base/messages.h"

#include <algorithm>
#include <array>

namespace {

constexpr int most_codes = 4096;
constexpr int most_code_bits = 12;

using colour_map = std::vector<std::array<unsigned char, 3>>;

// The file from front to back.
class gif_stream {
public:
    explicit gif_stream(std::string_view bytes) : bytes_(bytes) {}

    bool take(std::size_t count, std::string_view *out)
    {
        if (bytes_.size() - at_ < count)
            return false;
        *out = bytes_.substr(at_, count);
        at_ += count;
        return true;
    }

    // The next byte, -1 at the end.
    int byte() { return at_ < bytes_.size() ? static_cast<unsigned char>(bytes_[at_++]) : -1; }

    // The next block of data; empty for the terminator and, with a report, at the end of the file.
    bool block(std::string_view *out)
    {
        *out = {};
        const int size = byte();
        if (size < 0) {
            debugf("gif_GetDataBlock: error in getting DataBlock size\n");
            return false;
        }
        if (!take(static_cast<std::size_t>(size), out)) {
            debugf("gif_GetDataBlock: error in reading DataBlock\n");
            return false;
        }
        return true;
    }

    void skip_blocks()
    {
        std::string_view ignored;
        while (block(&ignored) && !ignored.empty()) {
        }
    }

private:
    std::string_view bytes_;
    std::size_t at_ = 0;
};

bool read_colour_map(gif_stream &stream, int size, colour_map *map)
{
    std::string_view entries;
    if (!stream.take(3 * static_cast<std::size_t>(size), &entries)) {
        debugf("gif_ReadColorMap: bad colormap\n");
        return false;
    }
    map->clear();
    for (std::size_t i = 0; i < entries.size(); i += 3)
        map->push_back({static_cast<unsigned char>(entries[i]),
                        static_cast<unsigned char>(entries[i + 1]),
                        static_cast<unsigned char>(entries[i + 2])});
    return true;
}

// The codes of an image, from its blocks.
class code_reader {
public:
    explicit code_reader(gif_stream &stream) : stream_(stream) {}

    // -1 when the data ends.
    int next(int bits)
    {
        while (held_ < bits) {
            if (at_ == block_.size() && !next_block())
                return -1;
            word_ |= static_cast<std::uint32_t>(static_cast<unsigned char>(block_[at_++])) << held_;
            held_ += 8;
        }
        const int code = static_cast<int>(word_ & ((1U << bits) - 1));
        word_ >>= bits;
        held_ -= bits;
        return code;
    }

    // Reads up to the terminator of the blocks.
    void finish()
    {
        if (ended_)
            return;
        do {
            if (!stream_.block(&block_)) {
                debugf("gif_LWZReadBytes: missing EOD in data stream (common occurence)\n");
                break;
            }
        } while (!block_.empty());
        ended_ = true;
    }

private:
    bool next_block()
    {
        at_ = 0;
        if (ended_ || !stream_.block(&block_) || block_.empty()) {
            if (!ended_)
                debugf("gif_GetCode: ran off the end of my bits\n");
            ended_ = true;
            block_ = {};
            return false;
        }
        return true;
    }

    gif_stream &stream_;
    std::string_view block_;
    std::size_t at_ = 0;
    std::uint32_t word_ = 0;
    int held_ = 0;
    bool ended_ = false;
};

// Strings of pixels by code: the last pixel and the code of those before it.
class string_table {
public:
    explicit string_table(int first_bits) : clear_(1 << first_bits), first_bits_(first_bits)
    {
        reset();
    }

    void reset()
    {
        next_ = clear_ + 2;
        bits_ = first_bits_ + 1;
    }

    [[nodiscard]] int clear_code() const { return clear_; }
    [[nodiscard]] int end_code() const { return clear_ + 1; }
    [[nodiscard]] int bits() const { return bits_; }
    [[nodiscard]] bool knows(int code) const { return code < clear_ || is_string(code); }
    [[nodiscard]] int next_code() const { return next_; }

    void add(int prefix, unsigned char pixel)
    {
        if (next_ == most_codes)
            return;
        prefix_[next_] = static_cast<std::uint16_t>(prefix);
        pixel_[next_] = pixel;
        ++next_;
        if (next_ == 1 << bits_ && bits_ < most_code_bits)
            ++bits_;
    }

    // The pixels of a known code, the last one first.
    bool spell(int code, std::vector<unsigned char> *reversed) const
    {
        reversed->clear();
        while (is_string(code)) {
            if (reversed->size() == most_codes) {
                debugf("circular table entry BIG ERROR\n");
                return false;
            }
            reversed->push_back(pixel_[code]);
            code = prefix_[code];
        }
        reversed->push_back(static_cast<unsigned char>(code));
        return true;
    }

private:
    [[nodiscard]] bool is_string(int code) const { return code >= clear_ + 2 && code < next_; }

    int clear_;
    int first_bits_;
    int next_ = 0;
    int bits_ = 0;
    std::array<std::uint16_t, most_codes> prefix_ = {};
    std::array<unsigned char, most_codes> pixel_ = {};
};

// Appends a string and, of a code that was not known yet, its first pixel once more; never more
// than `count` in all. False, with a report, when there was more.
bool append_string(const std::vector<unsigned char> &reversed, bool first_again, std::size_t count,
                   std::vector<unsigned char> *indices)
{
    const std::size_t room = count - indices->size();
    const std::size_t size = reversed.size() + (first_again ? 1 : 0);
    indices->insert(indices->end(), reversed.rbegin(),
                    reversed.rbegin() +
                        static_cast<std::ptrdiff_t>(std::min(room, reversed.size())));
    if (first_again && room > reversed.size())
        indices->push_back(reversed.back());
    if (size > room)
        debugf("gif_ReadImage: too much input data, ignoring extra...\n");
    return size <= room;
}

// Colour indices in the order of the file, `count` of them or as many as there are.
std::vector<unsigned char> read_indices(gif_stream &stream, int first_bits, std::size_t count)
{
    std::vector<unsigned char> indices;
    std::vector<unsigned char> string;
    string_table table(first_bits);
    code_reader codes(stream);
    int previous = -1;
    while (true) {
        const int code = codes.next(table.bits());
        if (code < 0)
            return indices;
        if (code == table.end_code())
            break;
        if (code == table.clear_code()) {
            table.reset();
            previous = -1;
            continue;
        }
        const bool is_new = code == table.next_code() && previous >= 0;
        if ((!table.knows(code) && !is_new) || !table.spell(is_new ? previous : code, &string))
            return indices;
        if (previous >= 0)
            table.add(previous, string.back());
        previous = code;
        if (!append_string(string, is_new, count, &indices))
            break;
    }
    codes.finish();
    return indices;
}

// The row of the picture, from the top, that is `i`-th in an interlaced file.
std::vector<int> row_order(int height, bool interlaced)
{
    std::vector<int> rows;
    constexpr int starts[4] = {0, 4, 2, 1};
    constexpr int steps[4] = {8, 8, 4, 2};
    for (int pass = 0; pass < (interlaced ? 4 : 1); ++pass)
        for (int row = interlaced ? starts[pass] : 0; row < height;
             row += interlaced ? steps[pass] : 1)
            rows.push_back(row);
    return rows;
}

bool read_image(gif_stream &stream, int width, int height, bool interlaced, const colour_map &map,
                decoded_image *out)
{
    const int first_bits = stream.byte();
    if (first_bits < 0) {
        debugf("gif_ReadImage: EOF on image data\n");
        return false;
    }
    if (first_bits < 1 || first_bits > 8 || !image_size_fits(width, height, 3)) {
        debugf("gif_ReadImage: error reading image\n");
        return false;
    }
    const auto columns = static_cast<std::size_t>(width);
    const std::size_t count = columns * static_cast<std::size_t>(height);
    const std::vector<unsigned char> indices = read_indices(stream, first_bits, count);
    if (indices.size() < count) {
        debugf("gif_ReadImage: error reading image\n");
        return false;
    }
    *out = {width, height, 3, std::vector<unsigned char>(count * 3)};
    const std::vector<int> rows = row_order(height, interlaced);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        unsigned char *to =
            out->pixels.data() + static_cast<std::size_t>(height - 1 - rows[i]) * columns * 3;
        for (std::size_t x = 0; x < columns; ++x, to += 3) {
            const std::size_t index = indices[i * columns + x];
            if (index < map.size())
                std::copy(map[index].begin(), map[index].end(), to);
        }
    }
    return true;
}

// A file without any colour map shows shades of grey.
colour_map grey_map()
{
    colour_map map;
    for (int i = 0; i < 256; ++i) {
        const auto grey = static_cast<unsigned char>(i);
        map.push_back({grey, grey, grey});
    }
    return map;
}

bool read_header(gif_stream &stream, const char *filename, colour_map *map)
{
    std::string_view text;
    if (!stream.take(6, &text)) {
        debugf("divepic_read_gif: error reading magic number\n");
        return false;
    }
    if (text.substr(0, 3) != "GIF") {
        debugf("divepic_read_gif: not a GIF file %s\n", filename);
        return false;
    }
    if (text.substr(3) != "87a" && text.substr(3) != "89a") {
        debugf("divepic_read_gif: bad version number, not '87a' or '89a'\n");
        return false;
    }
    if (!stream.take(7, &text)) {
        debugf("divepic_read_gif: failed to read screen descriptor\n");
        return false;
    }
    const unsigned flags = image_byte(text, 4);
    *map = grey_map();
    if ((flags & 0x80) != 0 && !read_colour_map(stream, 2 << (flags & 7), map)) {
        debugf("divepic_read_gif: error reading global colormap\n");
        return false;
    }
    return true;
}

} // namespace

bool decode_gif(std::string_view bytes, const char *filename, decoded_image *out)
{
    gif_stream stream(bytes);
    colour_map map;
    if (!read_header(stream, filename, &map))
        return false;
    while (true) {
        const int kind = stream.byte();
        if (kind < 0 || kind == ';') {
            debugf("divepic_read_gif: EOF on image data\n");
            return false;
        }
        if (kind == '!') {
            if (stream.byte() < 0) {
                debugf("divepic_read_gif: EOF on extention function code\n");
                return false;
            }
            stream.skip_blocks();
            continue;
        }
        if (kind != ',') {
            debugf("divepic_read_gif: bogus character 0x%02x, ignoring\n",
                   static_cast<unsigned>(kind));
            continue;
        }
        std::string_view place;
        if (!stream.take(9, &place)) {
            debugf("divepic_read_gif: couldn't read left/top/width/height\n");
            return false;
        }
        const unsigned flags = image_byte(place, 8);
        if ((flags & 0x80) != 0 && !read_colour_map(stream, 2 << (flags & 7), &map)) {
            debugf("divepic_read_gif: error reading local colormap\n");
            return false;
        }
        return read_image(stream, static_cast<int>(image_u16_le(place, 4)),
                          static_cast<int>(image_u16_le(place, 6)), (flags & 0x40) != 0, map, out);
    }
}
