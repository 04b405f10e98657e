#ifndef VESK_BASE_CRASH_GUARD_H
#define VESK_BASE_CRASH_GUARD_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* The name of a fault code ("EXCEPTION_ACCESS_VIOLATION"); "Unknown exception type" for others. */
VESK_API const char *vesk_exception_get_message(unsigned code);

VESK_END_DECLS

#ifdef VESK_INTERNAL

#include "base/session_state.h"

#include <csetjmp>
#include <exception>
#include <string>

// The crash guard: runs a callable so that an exception or a hardware fault inside it ends the
// callable and not the program. A fault arrives at the signal handler, which jumps to the innermost
// guard of its thread; the guard throws the fault's code from an ordinary statement. Frames between
// are skipped without their destructors: whatever is "open" stands in the session state, which the
// guard copies on entry and puts back.
//
// Every entry from Tcl or Tk, every call into a plug-in and every importer runs inside one.

struct fault_t {
    enum kind_t { EXCEPTION, CODE, OTHER } kind = OTHER;
    std::string what;              // EXCEPTION: its description
    unsigned code = 0;             // CODE
    std::string last_error;        // the platform's text for its last error
    bool in_foreign = false;       // a plug-in's code was on the stack
    const void *foreign = nullptr; // that code, when it was the innermost
};

namespace crash_guard {

struct frame_t {
    sigjmp_buf buffer;
    frame_t *outer;
};

extern thread_local frame_t *top; // innermost active guard
void install();                   // signal handlers and alternate stack; once, at start
bool is_installed();
// A hook that is asked first about a fault of access, in the handler, on whichever thread: true when it
// has put right what stands at the address, so that the access is to be made again.
void set_repair(bool (*hook)(void *address));
// Alternate stack of a further thread, as long as this lives: room for the handler of an overflow.
class thread_stack_t {
public:
    thread_stack_t();
    ~thread_stack_t();
    thread_stack_t(const thread_stack_t &) = delete;
    thread_stack_t &operator=(const thread_stack_t &) = delete;

private:
    void *memory_;
};
unsigned last_code();          // of the fault that just jumped
std::string last_error_text(); // strerror of the errno that the handler or the caller saw
// Puts the session state back and notes in the fault whose code it was.
void restore(const session_state_t &before, fault_t *fault);
[[noreturn]] void quit_broken(); // rescue copy, a line on standard error, exit

// The code of a command that its user stopped.
constexpr unsigned stopped_code = 0xE0000001;
// Of the last request to stop: its command was given up; no command runs; what runs now cannot be left
// (the heap, a library, a write of results), so that it is to be asked again.
enum class stop_answer { none, given_up, no_command, not_now };
// Asks the thread that installed the guard, from another one, to give up the command that it runs, as
// if that had faulted where it stands: only within the program or the plug-in whose function runs.
void ask_to_stop();
stop_answer answer_to_stop();

// Called after a survivable fault, with the session state restored and before any dialog: checks
// and repairs the world, writes the rescue copy. Three faults of the program's own within ten
// seconds, or a fault in here, end the program; those of plug-ins do not count.
void set_after_fault(void (*hook)(const fault_t &fault));
void run_after_fault(const fault_t &fault);

// Writes the rescue copy from memory without allocating; used when the heap cannot be trusted.
void set_rescue(void (*hook)());

void forget_faults_for_test();

// Runs `callable`; false, with `fault` filled, when it faulted. Leaves the session state as it is: for
// workers, which have no part in it.
template <class F>
[[gnu::noinline]] bool guarded_bare(F &&callable, fault_t *fault)
{
    frame_t frame;
    frame.outer = top;
    struct pop_t {
        frame_t *outer;
        ~pop_t() { top = outer; }
    } pop{frame.outer};
    try {
        // The handler runs with SA_NODEFER, so no signal mask needs saving.
        if (sigsetjmp(frame.buffer, 0) != 0) {
            top = frame.outer;
            throw last_code();
        }
        top = &frame;
        callable();
        return true;
    } catch (const std::exception &exception) {
        *fault = {fault_t::EXCEPTION, exception.what(), 0, last_error_text()};
    } catch (unsigned code) {
        *fault = {fault_t::CODE, "", code, last_error_text()};
    } catch (...) {
        *fault = {fault_t::OTHER, "", 0, last_error_text()};
    }
    return false;
}

} // namespace crash_guard

// The same; after a fault the session state is what it was before.
template <class F>
bool guarded(F &&callable, fault_t *fault)
{
    const session_state_t before = session();
    if (crash_guard::guarded_bare(callable, fault))
        return true;
    crash_guard::restore(before, fault);
    return false;
}

// The same with the steps that follow a fault; the caller then shows its dialog.
template <class F>
bool guarded_with_recovery(F &&callable, fault_t *fault)
{
    if (guarded(callable, fault))
        return true;
    crash_guard::run_after_fault(*fault);
    return false;
}

#endif

#endif
