#include "fileio/atomic_file.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using pieces_t = std::span<const std::string_view>;

// The file behind any links; the name itself when nothing exists there.
std::string resolved(const char *name)
{
    char buffer[PATH_MAX];
    if (realpath(name, buffer) != nullptr)
        return buffer;
    // A link to a file that does not exist yet: what it points at is to be made.
    const ssize_t length = readlink(name, buffer, sizeof buffer - 1);
    if (length <= 0)
        return name;
    const std::string target(buffer, static_cast<size_t>(length));
    if (target[0] == '/')
        return target;
    const std::string link = name;
    const size_t slash = link.rfind('/');
    return slash == std::string::npos ? target : link.substr(0, slash + 1) + target;
}

// Writes everything; false on failure with the number of bytes that went out.
bool write_all(int fd, pieces_t pieces, size_t *written)
{
    *written = 0;
    for (const std::string_view piece : pieces) {
        for (size_t at = 0; at < piece.size();) {
            const ssize_t n = write(fd, piece.data() + at, piece.size() - at);
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0)
                return false;
            at += static_cast<size_t>(n);
            *written += static_cast<size_t>(n);
        }
    }
    return true;
}

void sync_folder_of(const std::string &file)
{
    const size_t slash = file.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : file.substr(0, slash + 1);
    const int fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return;
    fsync(fd);
    close(fd);
}

atomic_write_t write_directly(const std::string &target, pieces_t pieces)
{
    atomic_write_t result;
    const int fd = open(target.c_str(), O_WRONLY | O_TRUNC | O_CREAT | O_CLOEXEC, 0666);
    if (fd < 0) {
        result.opened = false;
        return result;
    }
    result.ok = write_all(fd, pieces, &result.failed_at);
    if (close(fd) != 0)
        result.ok = false;
    return result;
}

// The folder takes no temporary file: keep a copy of the old bytes elsewhere, write in place, and
// put the old bytes back when that fails.
atomic_write_t write_in_place(const std::string &target, pieces_t pieces)
{
    atomic_write_t result;
    std::string old;
    if (access(target.c_str(), W_OK) != 0 || !read_whole_file(target.c_str(), &old)) {
        result.opened = false;
        return result;
    }
    const char *folder = std::getenv("TMPDIR");
    std::string backup = std::string(folder == nullptr ? "/tmp" : folder) + "/vesk-backup-XXXXXX";
    const int fd = mkstemp(backup.data());
    const std::string_view old_piece = old;
    size_t written = 0;
    const bool kept = fd >= 0 && write_all(fd, pieces_t(&old_piece, 1), &written) && fsync(fd) == 0;
    if (fd >= 0)
        close(fd);
    if (!kept) { // no copy, no write
        if (fd >= 0)
            unlink(backup.c_str());
        result.opened = false;
        return result;
    }
    result = write_directly(target, pieces);
    const bool whole = result.ok || write_directly(target, pieces_t(&old_piece, 1)).ok;
    if (whole) // else the backup is the only whole copy: it stays
        unlink(backup.c_str());
    return result;
}

} // namespace

atomic_write_t atomic_file_write(const char *name, pieces_t pieces)
{
    const std::string target = resolved(name);
    struct stat old = {};
    const bool exists = stat(target.c_str(), &old) == 0;
    if (exists && !S_ISREG(old.st_mode))
        return write_directly(target, pieces);
    if (exists && access(target.c_str(), W_OK) != 0) // read-only: do not replace it behind its back
        return {.opened = false};

    std::string temporary = target + ".XXXXXX";
    const int fd = mkostemp(temporary.data(), O_CLOEXEC);
    if (fd < 0)
        return exists ? write_in_place(target, pieces) : atomic_write_t{.opened = false};
    mode_t mode = old.st_mode & 07777;
    if (!exists) {
        const mode_t mask = umask(0);
        umask(mask);
        mode = 0666 & ~mask;
    }
    atomic_write_t result;
    result.ok = fchmod(fd, mode) == 0 && write_all(fd, pieces, &result.failed_at) && fsync(fd) == 0;
    if (close(fd) != 0)
        result.ok = false;
    if (result.ok && rename(temporary.c_str(), target.c_str()) != 0) {
        result.ok = false;
        result.opened = false;
    }
    if (result.ok)
        sync_folder_of(target);
    else
        unlink(temporary.c_str());
    return result;
}

bool read_whole_file(const char *name, std::string *out)
{
    const int fd = open(name, O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    std::string text;
    struct stat info = {};
    if (fstat(fd, &info) == 0 && S_ISREG(info.st_mode))
        text.reserve(static_cast<size_t>(info.st_size));
    char buffer[65536];
    ssize_t n = 0;
    while ((n = read(fd, buffer, sizeof buffer)) > 0 || (n < 0 && errno == EINTR))
        if (n > 0)
            text.append(buffer, static_cast<size_t>(n));
    close(fd);
    if (n < 0)
        return false;
    *out = std::move(text);
    return true;
}
