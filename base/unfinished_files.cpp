#include "base/unfinished_files.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <mutex>
#include <set>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::string_view mark = ".~vesk-";
constexpr std::string_view letters = "XXXXXX";
constexpr time_t rest = 60; // seconds

bool is_unfinished(std::string_view name)
{
    return name.size() > mark.size() + letters.size() &&
           name.substr(name.size() - mark.size() - letters.size(), mark.size()) == mark;
}

// Whether the file was left: somebody who still writes it has locked it.
bool is_left(int folder, const char *name)
{
    struct stat about = {};
    if (fstatat(folder, name, &about, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISREG(about.st_mode) ||
        about.st_uid != geteuid() || about.st_mtime > time(nullptr) - rest)
        return false;
    const int fd = openat(folder, name, O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (fd < 0)
        return false;
    const bool left = flock(fd, LOCK_EX | LOCK_NB) == 0;
    close(fd);
    return left;
}

bool is_first_look(const std::string &folder)
{
    // Never destroyed: the last copy is written while the process ends.
    static std::mutex lock;
    static auto *const seen = new std::set<std::string>;
    const std::lock_guard held(lock);
    return seen->insert(folder).second;
}

} // namespace

int make_unfinished_file(const std::string &target, std::string *name)
{
    // As long as the target's own name may be.
    constexpr size_t most_name = NAME_MAX - mark.size() - letters.size();
    const size_t name_begin = target.rfind('/') + 1; // 0 without a folder
    *name = target.substr(0, name_begin + most_name);
    name->append(mark).append(letters);
    const int fd = mkostemp(name->data(), O_CLOEXEC);
    if (fd >= 0 && flock(fd, LOCK_EX | LOCK_NB) != 0)
        errno = 0; // without locks the time alone keeps it
    return fd;
}

void remove_unfinished_files(const std::string &folder)
{
    if (!is_first_look(folder))
        return;
    DIR *entries = opendir(folder.c_str());
    if (entries == nullptr)
        return;
    while (const dirent *entry = readdir(entries))
        if (is_unfinished(entry->d_name) && is_left(dirfd(entries), entry->d_name))
            unlinkat(dirfd(entries), entry->d_name, 0);
    closedir(entries);
}
