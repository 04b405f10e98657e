#include "fileio/file_text.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

bool file_text_read(const char *filename, file_text *text)
{
    const int fd = open(filename, O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    struct stat info = {};
    const bool sized = fstat(fd, &info) == 0 && S_ISREG(info.st_mode);
    // One byte more than the file has, so that its end shows without growing.
    std::size_t room = (sized ? static_cast<std::size_t>(info.st_size) : 65536) + 1;
    text->bytes = std::make_unique_for_overwrite<char[]>(room);
    text->size = 0;
    for (;;) {
        if (text->size == room) {
            auto bigger = std::make_unique_for_overwrite<char[]>(2 * room);
            std::copy_n(text->bytes.get(), room, bigger.get());
            text->bytes = std::move(bigger);
            room *= 2;
        }
        const ssize_t n = read(fd, text->bytes.get() + text->size, room - text->size);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        text->size += static_cast<std::size_t>(n);
    }
    close(fd);
    return true;
}
