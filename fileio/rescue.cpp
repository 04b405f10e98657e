#include "fileio/rescue.h"

#include "base/atomic_file.h"
#include "base/crash_guard.h"
#include "base/current_file.h"
#include "base/messages.h"
#include "base/worker.h"
#include "edit/document/journal.h"
#include "fileio/state_writer.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr const char *session_suffix = ".session";
constexpr const char *kinds[] = {"autosave", "rescue"};
constexpr const char *part_suffix = ".part"; // of a rescue copy that is not whole

struct rescue_session {
    fs::path base; // the session's files without their suffixes; empty: no session
    int lock = -1;
    bool kept = false;
    // Where a fault writes to: made beforehand.
    std::string rescue_file, temporary_file;

    worker_t worker;
    std::atomic<bool> busy = false;
    std::atomic<bool> written = false;
    std::atomic<bool> failed = false;
    bool told = false;
    std::string target; // of the worker's copy
};

rescue_session &session_files()
{
    static auto *const session = new rescue_session; // joined at the program's exit
    return *session;
}

// The folders that copies may lie in: the user's own, and another for when that cannot be written.
std::vector<fs::path> state_folders()
{
    std::vector<fs::path> folders;
    const char *state = getenv("XDG_STATE_HOME");
    const char *home = getenv("HOME");
    if (state && state[0] == '/')
        folders.push_back(fs::path(state) / "vesk");
    else
        folders.push_back(fs::path(home ? home : "/") / ".local/state/vesk");
    std::error_code error;
    const fs::path common = fs::temp_directory_path(error);
    if (!error)
        folders.push_back(common / ("vesk-" + std::to_string(getuid())));
    return folders;
}

// Makes the folder when it is missing; false when it is not the user's alone.
bool is_own_folder(const fs::path &folder)
{
    std::error_code error;
    fs::create_directories(folder.parent_path(), error);
    struct stat status = {};
    if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST)
        return false;
    if (lstat(folder.c_str(), &status) != 0 || !S_ISDIR(status.st_mode) ||
        status.st_uid != geteuid())
        return false;
    return chmod(folder.c_str(), 0700) == 0;
}

// Makes and locks the file of a session in a folder; -1 when that is not to be had.
int lock_in(const fs::path &folder, const char *what, fs::path *base)
{
    if (!is_own_folder(folder))
        return -1;
    *base = folder / (std::string(what) + "-" + std::to_string(time(nullptr)) + "-" +
                      std::to_string(getpid()));
    const std::string file = base->string() + session_suffix;
    const int lock = open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (lock < 0 || flock(lock, LOCK_EX | LOCK_NB) == 0)
        return lock;
    close(lock);
    return -1;
}

// Opens and locks the session's own file in a folder.
bool open_session(const fs::path &folder)
{
    rescue_session &session = session_files();
    fs::path base;
    session.lock = lock_in(folder, "session", &base);
    if (session.lock < 0)
        return false;
    session.base = base;
    return true;
}

std::string copy_name(const fs::path &base, const char *kind)
{
    return base.string() + "." + kind + ".vesk";
}

// Writes the name of the file that is being edited into a session's file.
void note_original(int lock, const std::string &name)
{
    std::error_code error;
    const std::string full = name.empty() ? name : fs::absolute(name, error).string();
    if (ftruncate(lock, 0) == 0 && pwrite(lock, full.data(), full.size(), 0) < 0)
        debugf("can't note the file being edited\n");
}

void on_fatal_fault()
{
    const rescue_session &session = session_files();
    const state_ptr state = journal_state();
    if (state && state->num_objects > 1)
        write_model_state_bare(*state, session.temporary_file.c_str(), session.rescue_file.c_str());
}

void remove_files(const fs::path &base)
{
    std::error_code ignored;
    for (const char *kind : kinds)
        fs::remove(copy_name(base, kind), ignored);
    fs::remove(copy_name(base, "rescue") + part_suffix, ignored);
    fs::remove(base.string() + session_suffix, ignored);
}

bool start_worker(const state_ptr &state, const std::string &file)
{
    rescue_session &session = session_files();
    if (session.busy || !state || state->num_objects < 2) // an empty world is no work
        return false;
    session.worker.wait();
    session.busy = true;
    session.written = false;
    session.target = file;
    const auto ended = [&session] {
        session.failed = !session.written;
        session.busy = false;
    };
    try {
        session.worker = worker_t(
            [&session, state, file] {
                work_in_background();
                session.written = write_model_state(*state, file.c_str());
            },
            ended);
    } catch (const std::system_error &) { // no thread to be had
        ended();
    }
    return true;
}

// True for a file of a session whose process is gone.
bool is_left_behind(const fs::path &file, std::string *original)
{
    const int fd = open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    const bool left = flock(fd, LOCK_EX | LOCK_NB) == 0;
    if (left) {
        char text[4096];
        const ssize_t size = read(fd, text, sizeof text);
        original->assign(text, static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    }
    close(fd);
    return left;
}

// Times of files, in seconds; 0 for none.
std::time_t written_at(const fs::path &file)
{
    struct stat status;
    return stat(file.c_str(), &status) == 0 ? status.st_mtime : 0;
}

// Visits each session that was left behind, with its copies.
template <class Visit>
void for_each_left(Visit &&visit)
{
    std::error_code error;
    std::vector<fs::path> files;
    for (const fs::path &folder : state_folders()) {
        struct stat status = {}; // of others' folders nothing is opened
        if (lstat(folder.c_str(), &status) != 0 || status.st_uid != geteuid())
            continue;
        for (const fs::directory_entry &entry : fs::directory_iterator(folder, error)) {
            if (entry.path().extension() == session_suffix)
                files.push_back(entry.path());
        }
    }
    for (const fs::path &file : files) {
        std::string original;
        if (!is_left_behind(file, &original))
            continue;
        fs::path base = file;
        base.replace_extension();
        std::vector<recovery_copy> copies;
        for (const char *kind : kinds) {
            const std::string name = copy_name(base, kind);
            const std::time_t written = written_at(name);
            if (written != 0)
                copies.push_back({name, kind, original, written,
                                  !original.empty() && written_at(original) > written});
        }
        if (copies.empty()) {
            remove_files(base);
        } else {
            visit(base, copies);
        }
    }
}

} // namespace

void rescue_start()
{
    rescue_session &session = session_files();
    if (!session.base.empty())
        return;
    const std::vector<fs::path> folders = state_folders();
    const auto place = std::find_if(folders.begin(), folders.end(), open_session);
    if (place == folders.end()) {
        display_message("no copies of unsaved work are kept: no folder for them can be written");
        return;
    }
    if (place != folders.begin())
        display_message("can't write to '%s' - copies of unsaved work go to '%s'",
                        folders.front().c_str(), place->c_str());
    session.rescue_file = copy_name(session.base, "rescue");
    session.temporary_file = session.rescue_file + part_suffix;
    crash_guard::set_rescue(on_fatal_fault);
}

namespace {

// A session of its own for as long as a file is being written in place.
struct write_session {
    fs::path base;
    int lock = -1;
};
write_session in_place;

void drop_copy(const std::string & /*copy*/)
{
    remove_files(in_place.base);
    close(in_place.lock);
    in_place = {};
}

// Of models only: others are not offered.
std::string keep_copy(const std::string &target, const std::string &bytes)
{
    if (!bytes.starts_with("VESK"))
        return "";
    for (const fs::path &folder : state_folders()) {
        in_place.lock = lock_in(folder, "write", &in_place.base);
        if (in_place.lock < 0)
            continue;
        note_original(in_place.lock, target);
        const std::string name = copy_name(in_place.base, "rescue");
        // There is no file of that name, so this one is never written in place itself.
        if (atomic_file_write(name.c_str(), bytes))
            return name;
        drop_copy(name);
    }
    return "";
}

} // namespace

void rescue_keep_written_in_place() { atomic_file_set_copies({keep_copy, drop_copy}); }

void rescue_end()
{
    rescue_session &session = session_files();
    rescue_wait();
    if (session.base.empty())
        return;
    crash_guard::set_rescue(nullptr);
    if (!session.kept)
        remove_files(session.base);
    close(session.lock);
    session.base.clear();
}

void rescue_keep() { session_files().kept = true; }

bool autosave_start(const char *file)
{
    rescue_session &session = session_files();
    if (file[0] != '\0')
        return start_worker(model_state_capture(), file);
    if (session.base.empty())
        return false;
    note_original(session.lock, edited_file());
    return start_worker(model_state_capture(), copy_name(session.base, "autosave"));
}

void rescue_write()
{
    rescue_session &session = session_files();
    if (session.base.empty())
        return;
    note_original(session.lock, edited_file());
    start_worker(journal_state(), session.rescue_file);
}

void rescue_write_now()
{
    rescue_wait();
    rescue_write();
    rescue_wait();
}

autosave_state autosave_last()
{
    const rescue_session &session = session_files();
    if (session.busy)
        return autosave_state::writing;
    return session.failed ? autosave_state::failed : autosave_state::whole;
}

bool rescue_wait()
{
    rescue_session &session = session_files();
    session.worker.wait();
    return !session.failed;
}

void rescue_tell_failure()
{
    rescue_session &session = session_files();
    if (session.busy)
        return;
    if (session.failed && !session.told)
        display_message("can't write the copy '%s'", session.target.c_str());
    session.told = session.failed;
}

std::vector<recovery_copy> recovery_copies()
{
    std::vector<recovery_copy> found;
    for_each_left([&](const fs::path &, const std::vector<recovery_copy> &copies) {
        found.insert(found.end(), copies.begin(), copies.end());
    });
    std::sort(found.begin(), found.end(),
              [](const recovery_copy &a, const recovery_copy &b) { return a.written > b.written; });
    return found;
}

bool recovery_drop(const char *file)
{
    bool dropped = false;
    for_each_left([&](const fs::path &base, const std::vector<recovery_copy> &copies) {
        for (const recovery_copy &copy : copies) {
            if (copy.file != file)
                continue;
            std::error_code error;
            dropped = fs::remove(copy.file, error);
            if (copies.size() == 1)
                remove_files(base);
        }
    });
    return dropped;
}

void rescue_reset_for_test()
{
    session_files().kept = false;
    rescue_end();
    session_files().failed = false;
    session_files().told = false;
}
