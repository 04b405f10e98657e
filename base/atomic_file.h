#ifndef VESK_BASE_ATOMIC_FILE_H
#define VESK_BASE_ATOMIC_FILE_H

#include <string>
#include <string_view>

// The one way files are written: models, preferences, exports, rescue copies. The bytes go to a
// temporary file beside the target, are flushed to disk and renamed over the target only when
// complete, so the old file survives every failure. What a process that was killed left of such files
// goes at the next write to that folder. Includes nothing of the project: everyone may call it.
//
// A symbolic link is followed and its target replaced. Mode bits are kept. A target that exists and
// is no regular file is written directly. Where the folder takes no temporary file but the target
// can be written, a backup copy is made elsewhere first and the target written in place.
class atomic_writer_t {
public:
    explicit atomic_writer_t(const char *name);
    ~atomic_writer_t(); // without commit: the old file is as it was
    atomic_writer_t(const atomic_writer_t &) = delete;
    atomic_writer_t &operator=(const atomic_writer_t &) = delete;

    // False when nothing could be opened for writing, or the rename failed.
    [[nodiscard]] bool opened() const { return is_open; }
    // After the first failure nothing more is written.
    bool write(std::string_view text);
    // True when the target is complete.
    bool commit();
    // Bytes written before the first failure.
    [[nodiscard]] size_t written() const { return bytes; }

private:
    enum class way { temporary, direct, in_place };
    void open_temporary(bool exists, unsigned mode);
    void open_in_place();
    void open_target(way how);
    void take_back();
    void drop_copy();

    std::string target;
    std::string other; // the temporary file, or the backup
    way how = way::temporary;
    int fd = -1;
    bool is_open = false;
    bool failed = false;
    bool copy_is_ours = false; // in the temporary folder
    size_t bytes = 0;
};

// Who keeps the old bytes while a file is written in place: `keep` returns the name of the copy, ""
// for one in the temporary folder, and `drop` removes it.
struct in_place_copies {
    std::string (*keep)(const std::string &target, const std::string &bytes);
    void (*drop)(const std::string &copy);
};
void atomic_file_set_copies(in_place_copies by);

// A whole file at once; false when it could not be written completely.
bool atomic_file_write(const char *name, std::string_view text);

// Why the last write that failed did, as the system says it ("No space left on device").
std::string atomic_file_reason();

// The whole content of a file that can be read; false (and `out` untouched) otherwise. Pipes and
// devices are none.
bool read_whole_file(const char *name, std::string *out);

#endif
