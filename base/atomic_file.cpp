#include "base/atomic_file.h"

#include "base/unfinished_files.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

int last_error = 0;

// Notes why something failed; `ok` again.
bool noted(bool ok)
{
    if (!ok)
        last_error = errno;
    return ok;
}

// The file behind any links; the name itself when nothing exists there.
std::string resolved(const char *name)
{
    char buffer[PATH_MAX];
    if (realpath(name, buffer) != nullptr)
        return buffer;
    // A link to a file that does not exist yet: its target is to be made.
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

// Writes everything and adds the bytes written to `written`; false on failure.
bool write_all(int fd, std::string_view text, size_t *written)
{
    for (size_t at = 0; at < text.size();) {
        const ssize_t n = ::write(fd, text.data() + at, text.size() - at);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        at += static_cast<size_t>(n);
        *written += static_cast<size_t>(n);
    }
    return true;
}

std::string folder_of(const std::string &file)
{
    const size_t slash = file.rfind('/');
    return slash == std::string::npos ? "." : file.substr(0, slash + 1);
}

void sync_folder_of(const std::string &file)
{
    const int fd = open(folder_of(file).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return;
    fsync(fd);
    close(fd);
}

unsigned new_file_mode()
{
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

std::string keep_in_temporary_folder(const std::string &bytes)
{
    const char *folder = std::getenv("TMPDIR");
    std::string name = std::string(folder == nullptr ? "/tmp" : folder) + "/vesk-backup-XXXXXX";
    const int copy = mkostemp(name.data(), O_CLOEXEC);
    if (copy < 0)
        return "";
    size_t copied = 0;
    const bool kept = write_all(copy, bytes, &copied) && fsync(copy) == 0;
    close(copy);
    if (kept)
        return name;
    unlink(name.c_str());
    return "";
}

in_place_copies copies = {
    [](const std::string &, const std::string &) { return std::string(); },
    [](const std::string &) {},
};

} // namespace

void atomic_file_set_copies(in_place_copies by) { copies = by; }

atomic_writer_t::atomic_writer_t(const char *name) : target(resolved(name))
{
    struct stat old = {};
    const bool exists = stat(target.c_str(), &old) == 0;
    if (exists && !S_ISREG(old.st_mode)) {
        open_target(way::direct);
    } else if (!exists || access(target.c_str(), W_OK) == 0) { // a read-only file is not replaced
        open_temporary(exists, exists ? old.st_mode & 07777 : new_file_mode());
    } else {
        noted(false);
    }
}

void atomic_writer_t::open_temporary(bool exists, unsigned mode)
{
    remove_unfinished_files(folder_of(target));
    fd = make_unfinished_file(target, &other);
    if (fd >= 0) {
        is_open = true;
        failed = !noted(fchmod(fd, mode) == 0);
        return;
    }
    noted(false);
    if (exists)
        open_in_place();
}

void atomic_writer_t::open_target(way chosen)
{
    how = chosen;
    fd = open(target.c_str(), O_WRONLY | O_TRUNC | O_CREAT | O_CLOEXEC, 0666);
    is_open = noted(fd >= 0);
}

// The folder takes no temporary file: a copy of the old bytes is kept elsewhere first.
void atomic_writer_t::open_in_place()
{
    std::string old;
    if (!read_whole_file(target.c_str(), &old))
        return;
    other = copies.keep(target, old);
    copy_is_ours = other.empty();
    if (copy_is_ours)
        other = keep_in_temporary_folder(old);
    if (other.empty()) // no copy, no write
        return;
    open_target(way::in_place);
    if (!is_open)
        drop_copy();
}

bool atomic_writer_t::write(std::string_view text)
{
    if (!is_open || failed)
        return false;
    failed = !noted(write_all(fd, text, &bytes));
    return !failed;
}

void atomic_writer_t::drop_copy()
{
    if (copy_is_ours)
        unlink(other.c_str());
    else
        copies.drop(other);
}

void atomic_writer_t::take_back()
{
    if (how == way::temporary) {
        unlink(other.c_str());
    } else if (how == way::in_place) {
        std::string old;
        size_t restored = 0;
        const int again = open(target.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
        const bool whole = again >= 0 && read_whole_file(other.c_str(), &old) &&
                           write_all(again, old, &restored) && fsync(again) == 0;
        if (again >= 0)
            close(again);
        if (whole) // else the backup is the only whole copy: it stays
            drop_copy();
    }
}

bool atomic_writer_t::commit()
{
    if (!is_open)
        return false;
    if (!failed && how != way::direct)
        failed = !noted(fsync(fd) == 0);
    if (!noted(close(fd) == 0))
        failed = true;
    fd = -1;
    if (!failed && how == way::temporary && !noted(rename(other.c_str(), target.c_str()) == 0)) {
        failed = true;
        is_open = false; // reported as a file that could not be opened
    }
    if (failed) {
        take_back();
        return false;
    }
    if (how == way::temporary) {
        sync_folder_of(target);
    } else if (how == way::in_place) {
        drop_copy();
    }
    return true;
}

atomic_writer_t::~atomic_writer_t()
{
    if (fd < 0)
        return;
    close(fd);
    take_back();
}

bool atomic_file_write(const char *name, std::string_view text)
{
    atomic_writer_t file(name);
    file.write(text);
    return file.commit();
}

std::string atomic_file_reason() { return std::strerror(last_error); }

bool read_whole_file(const char *name, std::string *out)
{
    const int fd =
        open(name, O_RDONLY | O_CLOEXEC | O_NONBLOCK); // a pipe would wait for its writer
    if (fd < 0)
        return false;
    std::string text;
    struct stat info = {};
    if (fstat(fd, &info) == 0 && !S_ISREG(info.st_mode) && !S_ISDIR(info.st_mode)) {
        close(fd); // a device may have no end
        errno = EINVAL;
        return false;
    }
    if (S_ISREG(info.st_mode))
        text.reserve(static_cast<size_t>(info.st_size));
    char buffer[65536];
    ssize_t n = 0;
    while ((n = read(fd, buffer, sizeof buffer)) > 0 || (n < 0 && errno == EINTR)) {
        if (n > 0)
            text.append(buffer, static_cast<size_t>(n));
    }
    close(fd);
    if (n < 0)
        return false;
    *out = std::move(text);
    return true;
}
