#include "fileio/backup.h"

#include "base/messages.h"

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

namespace {

// Makes the version that was kept aside the newest backup; the reason why it could not be done, or "".
std::string put_first(const char *file, const std::string &aside)
{
    std::error_code error;
    for (int number = versions_kept; number > 1; --number)
        fs::rename(version(file, number - 1), version(file, number), error);
    fs::rename(aside, version(file, 1), error);
    if (!error)
        return "";
    std::error_code ignored;
    fs::remove(aside, ignored);
    return error.message();
}

void tell(const char *file, const std::string &reason)
{
    if (!reason.empty())
        display_message("'%s' has no new backup: %s", file, reason.c_str());
}

} // namespace

std::string backup_begin(const char *file)
{
    std::error_code error;
    if (versions_kept == 0 || !fs::is_regular_file(file, error))
        return "";
    const std::string aside = version(file, 0);
    // One that is there was left behind when a save was killed: before the new file stood it is only
    // another name of the old one.
    if (fs::is_regular_file(aside, error) && !fs::equivalent(file, aside, error))
        put_first(file, aside);
    fs::remove(aside, error);
    // A second name costs nothing: the save puts a new file under the first one. Without second
    // names it is a copy.
    fs::create_hard_link(fs::canonical(file, error), aside, error);
    if (error)
        fs::copy_file(file, aside, error);
    if (!error)
        return aside;
    tell(file, error.message());
    fs::remove(aside, error);
    return "";
}

void backup_end(const char *file, const std::string &aside, bool saved)
{
    if (aside.empty())
        return;
    std::error_code error;
    if (saved)
        tell(file, put_first(file, aside));
    else
        fs::remove(aside, error);
}
