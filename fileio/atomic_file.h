#ifndef VESK_FILEIO_ATOMIC_FILE_H
#define VESK_FILEIO_ATOMIC_FILE_H

#include <span>
#include <string>
#include <string_view>

// The one way files are written: models, preferences, exports, rescue copies. The bytes go to a
// temporary file beside the target, are flushed to disk and renamed over the target only when
// complete, so the old file survives every failure. Includes nothing of the project: everyone may
// call it.
//
// A symbolic link is followed and its target replaced. Mode bits are kept. A target that exists and
// is no regular file is written directly. Where the folder takes no temporary file but the target
// can be written, a backup copy is made elsewhere first and the target written in place.

struct atomic_write_t {
    bool opened = true;   // something could be opened for writing, and the rename worked
    size_t failed_at = 0; // when the write itself failed: how many bytes had been written
    bool ok = false;
};

atomic_write_t atomic_file_write(const char *name, std::span<const std::string_view> pieces);

inline atomic_write_t atomic_file_write(const char *name, std::string_view text)
{
    return atomic_file_write(name, std::span(&text, 1));
}

// The whole content of a file that can be read; false (and `out` untouched) otherwise.
bool read_whole_file(const char *name, std::string *out);

#endif
