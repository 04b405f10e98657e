#include "archive.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <zlib.h>

namespace {

constexpr std::size_t end_size = 22;
constexpr std::size_t entry_size = 46;
constexpr std::size_t local_size = 30;

// A number of `size` bytes, the lowest first; 0 outside the archive.
std::size_t number_at(const std::string &bytes, std::size_t at, int size)
{
    std::size_t value = 0;
    for (int i = size; i-- > 0;) {
        const std::size_t place = at + static_cast<std::size_t>(i);
        value = value << 8 | (place < bytes.size() ? static_cast<unsigned char>(bytes[place]) : 0u);
    }
    return value;
}

template <class N>
void add_number(std::string &out, N value)
{
    for (std::size_t i = 0; i < sizeof(N); ++i)
        out += static_cast<char>(value >> 8 * i);
}

} // namespace

std::map<std::string, archive_entry> archive_entries(const std::string &bytes)
{
    std::map<std::string, archive_entry> entries;
    const std::size_t end = bytes.rfind("PK\5\6");
    if (end == std::string::npos || bytes.size() - end < end_size)
        return entries;
    const std::size_t count = number_at(bytes, end + 10, 2);
    std::size_t at = number_at(bytes, end + 16, 4);
    for (std::size_t i = 0; i < count; ++i) {
        if (at + entry_size > bytes.size() || bytes.compare(at, 4, "PK\1\2") != 0)
            break;
        const std::size_t name = number_at(bytes, at + 28, 2);
        const std::size_t local = number_at(bytes, at + 42, 4);
        if (at + entry_size + name > bytes.size() || local + local_size > bytes.size())
            break;
        const std::size_t data =
            local + local_size + number_at(bytes, local + 26, 2) + number_at(bytes, local + 28, 2);
        const std::size_t packed = number_at(bytes, at + 20, 4);
        if (data <= bytes.size() && packed <= bytes.size() - data)
            entries[bytes.substr(at + entry_size, name)] = {
                data, packed, number_at(bytes, at + 24, 4),
                static_cast<int>(number_at(bytes, at + 10, 2))};
        at += entry_size + name + number_at(bytes, at + 30, 2) + number_at(bytes, at + 32, 2);
    }
    return entries;
}

bool archive_extract(const std::string &bytes, const archive_entry &entry, std::size_t most,
                     std::string *out)
{
    if (entry.method == 0) {
        *out = bytes.substr(entry.offset, entry.packed);
        return out->size() <= most;
    }
    z_stream stream = {};
    if (entry.method != 8 || inflateInit2(&stream, -MAX_WBITS) != Z_OK)
        return false;
    std::string packed = bytes.substr(entry.offset, entry.packed);
    stream.next_in = reinterpret_cast<Bytef *>(packed.data());
    stream.avail_in = static_cast<uInt>(packed.size());
    out->clear();
    int state = Z_OK;
    while (state == Z_OK && out->size() <= most) {
        char piece[65536];
        stream.next_out = reinterpret_cast<Bytef *>(piece);
        stream.avail_out = sizeof piece;
        state = inflate(&stream, Z_NO_FLUSH);
        out->append(piece, sizeof piece - stream.avail_out);
    }
    inflateEnd(&stream);
    return state == Z_STREAM_END && out->size() <= most;
}

bool archive_writer::add(const std::string &name, const std::string &content)
{
    constexpr std::size_t most = 0xFFFF0000u; // places and sizes have four bytes
    if (bytes_.size() + content.size() + directory_.size() > most)
        return false;
    const auto place = static_cast<std::uint32_t>(bytes_.size());
    const auto size = static_cast<std::uint32_t>(content.size());
    std::string common;                        // of both headers
    for (const int half : {20, 0, 0, 0, 0x21}) // version, flags, stored, time, 1980-01-01
        add_number(common, static_cast<std::uint16_t>(half));
    add_number(common, static_cast<std::uint32_t>(
                           crc32_z(0, reinterpret_cast<const Bytef *>(content.data()), size)));
    add_number(common, size);
    add_number(common, size);
    add_number(common, static_cast<std::uint16_t>(name.size()));
    add_number(common, std::uint16_t{0});
    bytes_ += "PK\3\4" + common + name;
    bytes_ += content;
    directory_ += std::string("PK\1\2\24\0", 6) + common;
    directory_.append(10, '\0'); // no comment, first disk, no attributes
    add_number(directory_, place);
    directory_ += name;
    ++count_;
    return true;
}

std::string archive_writer::finish()
{
    const auto place = static_cast<std::uint32_t>(bytes_.size());
    bytes_ += directory_ + std::string("PK\5\6\0\0\0\0", 8);
    add_number(bytes_, count_);
    add_number(bytes_, count_);
    add_number(bytes_, static_cast<std::uint32_t>(directory_.size()));
    add_number(bytes_, place);
    add_number(bytes_, std::uint16_t{0});
    return std::move(bytes_);
}
