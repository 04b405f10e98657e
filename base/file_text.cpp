#include "base/file_text.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Big buffers take big pages where the system has them: a page fault for each 4 kB would cost as
// much as reading.
char *new_buffer(std::size_t *size)
{
    constexpr std::size_t big_page = 2 << 20;
    const bool big = *size >= 4 * big_page;
    if (big)
        *size = (*size + big_page - 1) / big_page * big_page;
    void *buffer = big ? std::aligned_alloc(big_page, *size) : std::malloc(*size);
    if (!buffer)
        throw std::bad_alloc();
    if (big)
        madvise(buffer, *size, MADV_HUGEPAGE);
    return static_cast<char *>(buffer);
}

} // namespace

bool file_text_read(const char *filename, file_text *text)
{
    const int fd = open(filename, O_RDONLY | O_CLOEXEC | O_NONBLOCK); // a pipe would wait
    if (fd < 0)
        return false;
    struct stat info = {};
    const bool sized = fstat(fd, &info) == 0 && S_ISREG(info.st_mode);
    if (!sized && !S_ISDIR(info.st_mode)) { // a device may have no end
        close(fd);
        errno = EINVAL;
        return false;
    }
    // One byte more than the file has, so that its end shows without growing.
    std::size_t room = (sized ? static_cast<std::size_t>(info.st_size) : 65536) + 1;
    text->bytes.reset(new_buffer(&room));
    text->size = 0;
    for (;;) {
        if (text->size == room) {
            room *= 2;
            char *bigger = new_buffer(&room);
            std::copy_n(text->begin(), text->size, bigger);
            text->bytes.reset(bigger);
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
