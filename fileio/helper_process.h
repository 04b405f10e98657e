#ifndef VESK_FILEIO_HELPER_PROCESS_H
#define VESK_FILEIO_HELPER_PROCESS_H

// Work on files that libraries do in a process of their own: whatever they do on a damaged file,
// the session goes on. The process is lib/scene_helper of the home directory, and nothing else is
// looked for.

#include <string>
#include <vector>

// What the process may use; it sets these limits for itself before it opens anything.
struct helper_limits {
    unsigned megabytes; // of address space, and of any file that it writes
    unsigned seconds;   // of processor time
};

// For a file of that many bytes: room for what readers make of it, and no more than most of the
// machine's memory.
helper_limits helper_limits_for(size_t file_size);

struct helper_result {
    enum { DONE, FAILED, CANCELLED } state = FAILED;
    std::string output; // what it wrote, when it ended well
    std::string reason; // why it failed, in plain words
};

// Runs the helper with these words. Events are let in meanwhile and the progress bar moves; the command
// "cancel" ends it at once. Returns when it is gone.
helper_result run_helper(const std::vector<std::string> &words, const helper_limits &limits);

#endif
