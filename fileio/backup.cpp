#include "fileio/backup.h"

#include <algorithm>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

int versions_kept = 1;

std::string version(const char *file, int number)
{
    return std::string(file) + ".bak" + std::to_string(number);
}

} // namespace

void set_backup_versions(int versions) { versions_kept = std::clamp(versions, 0, 99); }

std::string backup_begin(const char *file)
{
    std::error_code error;
    if (versions_kept == 0 || !fs::is_regular_file(file, error))
        return "";
    const std::string aside = version(file, 0);
    fs::remove(aside, error);
    // A second name costs nothing: the save puts a new file under the first one. Without second
    // names it is a copy.
    fs::create_hard_link(fs::canonical(file, error), aside, error);
    if (error)
        fs::copy_file(file, aside, error);
    return error ? "" : aside;
}

void backup_end(const char *file, const std::string &aside, bool saved)
{
    if (aside.empty())
        return;
    std::error_code error;
    if (!saved) {
        fs::remove(aside, error);
        return;
    }
    for (int number = versions_kept; number > 1; --number)
        fs::rename(version(file, number - 1), version(file, number), error);
    fs::rename(aside, version(file, 1), error);
}
