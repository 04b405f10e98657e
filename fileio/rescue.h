#ifndef VESK_FILEIO_RESCUE_H
#define VESK_FILEIO_RESCUE_H

// Copies of unsaved work. A session with a window has a file of its own in the user's state folder
// ($XDG_STATE_HOME/vesk, else ~/.local/state/vesk, else one of the common temporary folder), locked for as long as the process lives, and
// beside it the copies that the session wrote: "autosave" now and then, "rescue" after a fault or a
// signal. A session that ends well takes its copies along; those of one that did not are offered by
// the next. Copies are written by a worker from a state of the model; no file of the user's is
// touched.

#include <ctime>
#include <string>
#include <vector>

// Begins the session's copies: from now on a fault that cannot be survived writes one. When they
// cannot lie where they should the status line says so.
void rescue_start();
// From now on the old bytes of a model that is written in place, because its folder takes no new file,
// are kept as a copy of that kind until the new ones stand: torn files are offered, too.
void rescue_keep_written_in_place();
// Removes the copies of a session that ends well. To be called when the user ended it; whoever else
// ends the program leaves them.
void rescue_end();
// The copies outlive the program: it is ended from outside.
void rescue_keep();

// Writes the present state of the model to `file` ("": the session's autosave copy) on a worker.
// False when a worker is busy or there is no session.
bool autosave_start(const char *file);
// What became of the copy that was begun last; whole when there was none.
enum class autosave_state { writing, whole, failed };
autosave_state autosave_last();
// After a fault: the journal's last state on a worker. Before the end: at once.
void rescue_write();
void rescue_write_now();
// Waits until the worker is idle. Returns whether the last copy was written.
bool rescue_wait();
// A failure of the worker on the status line, once until a copy succeeds.
void rescue_tell_failure();

struct recovery_copy {
    std::string file;
    std::string kind;     // "autosave", "rescue"
    std::string original; // the file that was being edited, "" for a model without a name
    std::time_t written;
    bool original_is_newer; // somebody changed it since
};
// Copies that sessions left behind, the newest first.
std::vector<recovery_copy> recovery_copies();
// Removes such a copy; false when it is none.
bool recovery_drop(const char *file);

void rescue_reset_for_test();

#endif
