#include "base/gzip.h"

#include <algorithm>
#include <zlib.h>

bool is_gzip(std::string_view bytes) { return bytes.starts_with("\x1F\x8B"); }

const char *gzip_unpack(std::string_view bytes, std::size_t most, std::string *out)
{
    constexpr int gzip_head = 16 + MAX_WBITS;
    constexpr std::size_t piece = 1 << 18;
    z_stream stream = {};
    if (inflateInit2(&stream, gzip_head) != Z_OK)
        return "there is no memory to unpack it";
    out->clear();
    std::string room(piece, '\0');
    std::size_t taken = 0;
    const char *reason = "its packed bytes are damaged";
    while (true) {
        if (stream.avail_in == 0) {
            const std::size_t next = std::min(bytes.size() - taken, piece);
            // zlib's older interface takes bytes that it never writes to.
            stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(bytes.data() + taken));
            stream.avail_in = static_cast<uInt>(next);
            taken += next;
        }
        stream.next_out = reinterpret_cast<Bytef *>(room.data());
        stream.avail_out = static_cast<uInt>(room.size());
        const int state = inflate(&stream, Z_NO_FLUSH);
        out->append(room, 0, room.size() - stream.avail_out);
        if (out->size() > most) {
            reason = "it unpacks to more than can be held";
            break;
        }
        const bool at_end = stream.avail_in == 0 && taken == bytes.size();
        if (state == Z_STREAM_END && at_end) {
            reason = "";
            break;
        }
        if (state == Z_STREAM_END) { // another part follows
            if (inflateReset(&stream) != Z_OK)
                break;
        } else if (state != Z_OK || (at_end && stream.avail_out > 0)) {
            break;
        }
    }
    inflateEnd(&stream);
    return reason;
}
