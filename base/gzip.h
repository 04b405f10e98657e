#ifndef VESK_BASE_GZIP_H
#define VESK_BASE_GZIP_H

#include <cstddef>
#include <string>
#include <string_view>

// Whether bytes begin as a gzip file does.
bool is_gzip(std::string_view bytes);

// Unpacks a gzip file, also one of several parts. "" when it is whole and at most `most` bytes, else
// why not, for a message.
const char *gzip_unpack(std::string_view bytes, std::size_t most, std::string *out);

#endif
