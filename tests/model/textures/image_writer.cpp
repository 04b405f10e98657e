#include "tests/model/textures/image_writer.h"

#include <algorithm>
#include <bit>
#include <map>

namespace {

void put(std::string &out, std::uint64_t value, int bytes, bool big_end_first)
{
    for (int i = 0; i < bytes; ++i)
        out += static_cast<char>(value >> 8 * (big_end_first ? bytes - 1 - i : i));
}
void put_le(std::string &out, std::uint64_t value, int bytes) { put(out, value, bytes, false); }
void put_be(std::string &out, std::uint64_t value, int bytes) { put(out, value, bytes, true); }

// ---- GIF ----

class code_writer {
public:
    void put(int code, int bits)
    {
        word_ |= static_cast<std::uint32_t>(code) << held_;
        for (held_ += bits; held_ >= 8; held_ -= 8, word_ >>= 8)
            bytes_ += static_cast<char>(word_);
    }
    std::string finish()
    {
        if (held_ > 0)
            bytes_ += static_cast<char>(word_);
        return bytes_;
    }

private:
    std::string bytes_;
    std::uint32_t word_ = 0;
    int held_ = 0;
};

std::string compress(const std::vector<unsigned char> &indices, int first_bits, bool restart_often)
{
    const int clear = 1 << first_bits;
    code_writer out;
    std::map<std::pair<int, int>, int> strings;
    int next = clear + 2;
    int bits = first_bits + 1;
    const auto restart = [&] {
        out.put(clear, bits);
        strings.clear();
        next = clear + 2;
        bits = first_bits + 1;
    };
    restart();
    int prefix = indices[0];
    for (size_t i = 1; i < indices.size(); ++i) {
        const auto found = strings.find({prefix, indices[i]});
        if (found != strings.end()) {
            prefix = found->second;
            continue;
        }
        out.put(prefix, bits);
        if (next < 4096) {
            strings[{prefix, indices[i]}] = next;
            if (next++ == 1 << bits)
                ++bits;
        } else {
            restart();
        }
        if (restart_often && i % 37 == 0)
            restart();
        prefix = indices[i];
    }
    out.put(prefix, bits);
    out.put(clear + 1, bits);
    return out.finish();
}

std::string in_blocks(const std::string &data)
{
    std::string out;
    for (size_t at = 0; at < data.size(); at += 255) {
        const std::string block = data.substr(at, 255);
        out += static_cast<char>(block.size());
        out += block;
    }
    return out + '\0';
}

std::vector<unsigned char> in_file_order(const picture_t &picture, const indexed_t &indexed,
                                         bool interlaced)
{
    std::vector<unsigned char> out;
    constexpr int starts[4] = {0, 4, 2, 1};
    constexpr int steps[4] = {8, 8, 4, 2};
    for (int pass = 0; pass < (interlaced ? 4 : 1); ++pass)
        for (int y = interlaced ? starts[pass] : 0; y < picture.height;
             y += interlaced ? steps[pass] : 1)
            for (int x = 0; x < picture.width; ++x)
                out.push_back(indexed.indices[static_cast<size_t>(y * picture.width + x)]);
    return out;
}

// ---- runs ----

// Splits a row into runs of equal values (at least 3) and of different ones.
template <class Run, class Literal>
void split_runs(const std::vector<unsigned> &row, size_t most, Run &&run, Literal &&literal)
{
    size_t at = 0;
    while (at < row.size()) {
        const auto run_length = [&](size_t from) {
            size_t n = 1;
            while (from + n < row.size() && row[from + n] == row[from] && n < most)
                ++n;
            return n;
        };
        size_t n = run_length(at);
        if (n >= 3) {
            run(n, row[at]);
            at += n;
            continue;
        }
        for (n = 0; at + n < row.size() && n < most && run_length(at + n) < 3; ++n) {
        }
        literal(at, n);
        at += n;
    }
}

std::string sgi_row(const std::vector<unsigned> &row, int value_bytes)
{
    std::string out;
    split_runs(
        row, 127,
        [&](size_t n, unsigned value) {
            put_be(out, n, value_bytes);
            put_be(out, value, value_bytes);
        },
        [&](size_t from, size_t n) {
            put_be(out, 0x80 | n, value_bytes);
            for (size_t i = 0; i < n; ++i)
                put_be(out, row[from + i], value_bytes);
        });
    put_be(out, 0, value_bytes);
    return out;
}

std::string bmp_row_of_runs(const std::vector<unsigned> &row, int bits)
{
    std::string out;
    const auto pack = [&](size_t from, size_t n) {
        std::string bytes;
        for (size_t i = 0; i < n; i += bits == 8 ? 1 : 2) {
            const unsigned low = i + 1 < n ? row[from + i + 1] : 0;
            bytes += static_cast<char>(bits == 8 ? row[from + i] : row[from + i] << 4 | low);
        }
        return bytes;
    };
    split_runs(
        row, 254,
        [&](size_t n, unsigned value) {
            put_le(out, n, 1);
            put_le(out, bits == 8 ? value : value << 4 | value, 1);
        },
        [&](size_t from, size_t n) {
            if (n < 3) {
                for (size_t i = 0; i < n; ++i)
                    out += {1, static_cast<char>(bits == 8 ? row[from + i] : row[from + i] << 4)};
                return;
            }
            put_le(out, n << 8, 2);
            const std::string bytes = pack(from, n);
            out += bytes;
            if (bytes.size() % 2 != 0)
                out += '\0';
        });
    return out + std::string(2, '\0');
}

// ---- BMP ----

std::uint32_t masked(const rgba_t &pixel, const std::array<std::uint32_t, 4> &masks)
{
    std::uint32_t value = 0;
    for (size_t i = 0; i < 4; ++i) {
        if (masks[i] == 0)
            continue;
        const int shift = std::countr_zero(masks[i]);
        const std::uint64_t most = masks[i] >> shift;
        value |= static_cast<std::uint32_t>((pixel[i] * most + 127) / 255) << shift;
    }
    return value;
}

std::string bmp_row(const picture_t &picture, const indexed_t &indexed, int y,
                    const bmp_options_t &o)
{
    std::string out;
    unsigned held = 0;
    for (int x = 0; x < picture.width; ++x) {
        const rgba_t &p = picture.at(x, y);
        if (o.bits <= 8) {
            const unsigned index = indexed.indices[static_cast<size_t>(y * picture.width + x)];
            held = held << o.bits | index;
            const int per_byte = 8 / o.bits;
            if ((x + 1) % per_byte == 0 || x + 1 == picture.width) {
                held <<= o.bits * ((per_byte - 1) - x % per_byte);
                put_le(out, held & 0xFF, 1);
                held = 0;
            }
        } else if (o.bits == 24) {
            out += {static_cast<char>(p[2]), static_cast<char>(p[1]), static_cast<char>(p[0])};
        } else {
            const auto masks = o.compression == 3 ? o.masks
                               : o.bits == 16
                                   ? std::array<std::uint32_t, 4>{0x7C00, 0x3E0, 0x1F, 0}
                                   : std::array<std::uint32_t, 4>{0xFF0000, 0xFF00, 0xFF, 0};
            put_le(out, masked(p, masks), o.bits / 8);
        }
    }
    while (out.size() % 4 != 0)
        out += '\0';
    return out;
}

std::string bmp_pixels(const picture_t &picture, const indexed_t &indexed, const bmp_options_t &o)
{
    std::string out;
    for (int i = 0; i < picture.height; ++i) {
        const int y = o.top_down ? i : picture.height - 1 - i;
        if (o.compression != 1 && o.compression != 2) {
            out += bmp_row(picture, indexed, y, o);
            continue;
        }
        std::vector<unsigned> row;
        for (int x = 0; x < picture.width; ++x)
            row.push_back(indexed.indices[static_cast<size_t>(y * picture.width + x)]);
        out += bmp_row_of_runs(row, o.bits);
    }
    if (o.compression == 1 || o.compression == 2)
        out += {0, 1};
    return out;
}

} // namespace

picture_t sample_picture(int width, int height, int colours)
{
    picture_t picture = {width, height, {}};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const int run = y % 3 == 0 ? x / 5 : x * 7 + y * 3;
            const int seed = colours > 0 ? run % colours : run * 5 + y;
            picture.pixels.push_back({static_cast<unsigned char>(seed * 37 + 11),
                                      static_cast<unsigned char>(seed * 91 + 5),
                                      static_cast<unsigned char>(255 - seed * 13),
                                      static_cast<unsigned char>(seed * 29 + 60)});
        }
    return picture;
}

indexed_t index_colours(const picture_t &picture)
{
    indexed_t out;
    for (const rgba_t &pixel : picture.pixels) {
        const auto found = std::find(out.colours.begin(), out.colours.end(), pixel);
        out.indices.push_back(static_cast<unsigned char>(found - out.colours.begin()));
        if (found == out.colours.end())
            out.colours.push_back(pixel);
    }
    return out;
}

std::string write_gif(const picture_t &picture, const gif_options_t &options)
{
    const indexed_t indexed = index_colours(picture);
    int bits = 1;
    while (1 << bits < static_cast<int>(indexed.colours.size()))
        ++bits;
    std::string map;
    for (int i = 0; i < 1 << bits; ++i) {
        const rgba_t c =
            static_cast<size_t>(i) < indexed.colours.size() ? indexed.colours[i] : rgba_t{};
        map += {static_cast<char>(c[0]), static_cast<char>(c[1]), static_cast<char>(c[2])};
    }
    const int map_flags = 0x80 | (bits - 1);
    std::string out = std::string("GIF") + options.version;
    put_le(out, static_cast<unsigned>(picture.width), 2);
    put_le(out, static_cast<unsigned>(picture.height), 2);
    out += {static_cast<char>(options.local_map ? 0 : map_flags), 0, 0};
    if (!options.local_map)
        out += map;
    if (options.with_extensions) {
        out += std::string("!\xF9\x04\x01\x00\x00\x00\x00", 8); // one colour is transparent
        out += "!\xFE" + in_blocks("a comment");
    }
    out += ',' + std::string(4, '\0');
    put_le(out, static_cast<unsigned>(picture.width), 2);
    put_le(out, static_cast<unsigned>(picture.height), 2);
    out += static_cast<char>((options.local_map ? map_flags : 0) | (options.interlaced ? 0x40 : 0));
    if (options.local_map)
        out += map;
    const int first_bits = std::max(2, bits);
    out += static_cast<char>(first_bits);
    out += in_blocks(compress(in_file_order(picture, indexed, options.interlaced), first_bits,
                              options.restart_often));
    return out + ';';
}

std::string write_sgi(const picture_t &picture, const sgi_options_t &o)
{
    std::string out;
    put_be(out, 474, 2);
    out += {static_cast<char>(o.encoded ? 1 : 0), static_cast<char>(o.value_bytes)};
    put_be(out, o.channels == 1 ? 2 : 3, 2);
    put_be(out, static_cast<unsigned>(picture.width), 2);
    put_be(out, static_cast<unsigned>(picture.height), 2);
    put_be(out, static_cast<unsigned>(o.channels), 2);
    put_be(out, 0, 4);
    put_be(out, o.value_bytes == 1 ? 255 : 65535, 4);
    out.resize(512);
    std::string starts, lengths, data;
    const size_t rows = static_cast<size_t>(picture.height * o.channels);
    for (int channel = 0; channel < o.channels; ++channel)
        for (int y = picture.height; y-- > 0;) {
            std::vector<unsigned> row;
            for (int x = 0; x < picture.width; ++x) {
                const bool is_alpha = o.channels % 2 == 0 && channel == o.channels - 1;
                const unsigned value =
                    picture.at(x, y)[is_alpha ? 3 : static_cast<size_t>(channel)];
                row.push_back(o.value_bytes == 1 ? value : value * 257);
            }
            std::string bytes;
            if (o.encoded)
                bytes = sgi_row(row, o.value_bytes);
            else
                for (const unsigned value : row)
                    put_be(bytes, value, o.value_bytes);
            put_be(starts, 512 + 8 * rows + data.size(), 4);
            put_be(lengths, bytes.size(), 4);
            data += bytes;
        }
    return o.encoded ? out + starts + lengths + data : out + data;
}

std::string write_bmp(const picture_t &picture, const bmp_options_t &o)
{
    const indexed_t indexed = o.bits <= 8 ? index_colours(picture) : indexed_t{};
    const bool core = o.header == 12;
    const auto header = static_cast<size_t>(o.header);
    std::string info;
    put_le(info, header, 4);
    put_le(info, static_cast<unsigned>(picture.width), core ? 2 : 4);
    put_le(info, static_cast<unsigned>(o.top_down ? -picture.height : picture.height),
           core ? 2 : 4);
    put_le(info, 1, 2);
    put_le(info, static_cast<unsigned>(o.bits), 2);
    const std::string pixels = bmp_pixels(picture, indexed, o);
    if (o.header > 16) {
        put_le(info, static_cast<unsigned>(o.compression), 4);
        put_le(info, pixels.size(), 4);
        put_le(info, 2835, 4);
        put_le(info, 2835, 4);
        put_le(info, indexed.colours.size(), 4);
        put_le(info, 0, 4);
        for (const std::uint32_t mask : o.masks)
            if (o.compression == 3 && (o.header > 52 || (&mask - o.masks.data()) < 3))
                put_le(info, mask, 4);
    }
    info.resize(std::max(header, info.size()));
    std::string palette;
    const size_t entries = o.bits > 8       ? 0
                           : o.header <= 16 ? size_t{1} << o.bits
                                            : indexed.colours.size();
    for (size_t i = 0; i < entries; ++i) {
        const rgba_t c = i < indexed.colours.size() ? indexed.colours[i] : rgba_t{};
        palette += {static_cast<char>(c[2]), static_cast<char>(c[1]), static_cast<char>(c[0])};
        if (!core)
            palette += '\0';
    }
    const size_t start = 14 + info.size() + palette.size();
    std::string out = "BM";
    put_le(out, start + pixels.size(), 4);
    put_le(out, 0, 4);
    put_le(out, start, 4);
    return out + info + palette + pixels;
}
