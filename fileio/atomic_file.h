#ifndef VESK_FILEIO_ATOMIC_FILE_H
#define VESK_FILEIO_ATOMIC_FILE_H

// A file that appears under its name only when it is complete: written to a temporary file in the
// same folder, flushed to disk, renamed. The old file survives every failure.

#include <string>
#include <string_view>

enum class atomic_result {
    done,
    not_opened,  // nothing could be opened, or the rename failed
    write_failed // after `written` bytes had gone out
};

// Writes `bytes` as `filename`. A symbolic link's target is replaced and mode bits are kept; a target
// that is no regular file (a pipe, a device) is written directly. Where the folder takes no new
// file but the target can be written, the old contents are copied aside first.
// `written`, when not null, gets the number of bytes that went out; errno tells the reason.
atomic_result atomic_file_write(const std::string &filename, std::string_view bytes,
                                std::size_t *written = nullptr);

#endif
