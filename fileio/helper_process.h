#ifndef VESK_FILEIO_HELPER_PROCESS_H
#define VESK_FILEIO_HELPER_PROCESS_H

// Work on files by libraries in a process of their own: a crash on a damaged file does not end the
// session. The process is lib/scene_helper of the home directory, and no other place is searched.

#include <string>
#include <vector>

// The limits of the process, which sets them for itself before it opens anything.
struct helper_limits {
    unsigned megabytes; // of address space, and of any file that it writes
    unsigned seconds;   // of processor time
};

// Limits for a file of `file_size` bytes: room for the scene that a reader makes of it, and at most
// three quarters of the machine's memory.
helper_limits helper_limits_for(size_t file_size);

struct helper_result {
    enum { DONE, FAILED, CANCELLED } state = FAILED;
    std::string output; // its result, when it ended well
    std::string reason; // why it failed, in plain words
};

// Runs the helper with these words. Events are let in meanwhile and the progress bar moves; the
// command "cancel" ends it at once. Returns when it is gone.
helper_result run_helper(const std::vector<std::string> &words, const helper_limits &limits);

#endif
