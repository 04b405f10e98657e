#include "shell/stuck_tk.h"

#include "base/crash_guard.h"
#include "shell/interp_tk.h"

#include <tk.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <thread>
#include <xcb/xcb.h>

namespace {

using namespace std::chrono_literals;
using time_point = std::chrono::steady_clock::time_point;

constexpr auto patience = 5s;
constexpr auto look = 200ms;    // while it answers
constexpr auto key_look = 25ms; // for presses: shorter than a finger's
constexpr int presses_wanted = 3;
constexpr auto next_attempt = 7ms;
constexpr auto rest_of_script = 500ms;
constexpr int attempts = 300;
constexpr unsigned escape_keysym = 0xFF1B;

struct {
    std::atomic<time_point> busy_since = time_point(); // zero: it waits for events
    std::atomic<unsigned> window = 0;                  // the main one
    Tcl_AsyncHandler end_of_script = nullptr;
    std::atomic<time_point> to_end = time_point(); // of what is busy since then
} state;

// ---- the main thread ----

// Called before the program waits for events, and after.
void before_wait(ClientData, int)
{
    state.busy_since = time_point();
    if (Tk_Window window = Tk_MainWindow(interp_tk()); window != nullptr)
        state.window = static_cast<unsigned>(Tk_WindowId(window));
}
void after_wait(ClientData, int) { state.busy_since = std::chrono::steady_clock::now(); }

int end_script(ClientData, Tcl_Interp *interp, int code)
{
    if (interp == nullptr ||
        state.busy_since.load() != state.to_end.load()) // it has ended by itself
        return code;
    Tcl_SetObjResult(interp, Tcl_NewStringObj("stopped by the user", -1));
    return TCL_ERROR;
}

// ---- the watching thread ----

template <class T>
using reply = std::unique_ptr<T, decltype([](T *p) { std::free(p); })>;

class keyboard {
public:
    keyboard() : display_(xcb_connect(nullptr, nullptr)) { find_escape(); }
    ~keyboard() { xcb_disconnect(display_); }
    keyboard(const keyboard &) = delete;
    keyboard &operator=(const keyboard &) = delete;

    // Whether Escape is held down, while the program has the keyboard.
    [[nodiscard]] bool escape_is_down() const
    {
        if (xcb_connection_has_error(display_) != 0 || escape_ == 0)
            return false;
        const auto keys = xcb_query_keymap(display_);
        const auto focus = xcb_get_input_focus(display_);
        const reply<xcb_query_keymap_reply_t> down(xcb_query_keymap_reply(display_, keys, nullptr));
        const reply<xcb_get_input_focus_reply_t> on(
            xcb_get_input_focus_reply(display_, focus, nullptr));
        return down != nullptr && on != nullptr && is_ours(on->focus) &&
               (down->keys[escape_ / 8] >> escape_ % 8 & 1) != 0;
    }

private:
    // Windows of one program have the upper bits of their numbers in common. Without a window manager
    // the keyboard belongs to whatever the pointer is over.
    [[nodiscard]] bool is_ours(xcb_window_t focus) const
    {
        const std::uint32_t own = ~xcb_get_setup(display_)->resource_id_mask;
        return focus == XCB_INPUT_FOCUS_POINTER_ROOT || (focus & own) == (state.window & own);
    }
    void find_escape()
    {
        if (xcb_connection_has_error(display_) != 0)
            return;
        const xcb_setup_t *setup = xcb_get_setup(display_);
        const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
        const reply<xcb_get_keyboard_mapping_reply_t> keys(xcb_get_keyboard_mapping_reply(
            display_, xcb_get_keyboard_mapping(display_, setup->min_keycode, count), nullptr));
        if (keys == nullptr)
            return;
        const xcb_keysym_t *symbols = xcb_get_keyboard_mapping_keysyms(keys.get());
        for (unsigned i = 0; i < count; ++i)
            if (symbols[i * keys->keysyms_per_keycode] == escape_keysym)
                escape_ = setup->min_keycode + i;
    }

    xcb_connection_t *display_;
    unsigned escape_ = 0; // its code; 0: there is none
};

// Whether the program still does what it did at that time.
bool is_stuck(time_point since)
{
    return since != time_point() && state.busy_since.load() == since;
}

// Until it is left: now and then the program is where that can be done. A script may catch the error,
// but hardly each time: it also comes between what it catches.
void stop(time_point since)
{
    using crash_guard::stop_answer;
    for (int i = 0; i < attempts && is_stuck(since); ++i) {
        crash_guard::ask_to_stop();
        std::this_thread::sleep_for(next_attempt);
        const stop_answer answer = crash_guard::answer_to_stop();
        if (answer == stop_answer::no_command) {
            state.to_end = since;
            Tcl_AsyncMark(state.end_of_script);
            std::this_thread::sleep_for(rest_of_script); // what tells of it is not to be ended, too
        }
        while (answer == stop_answer::given_up &&
               is_stuck(since)) // a copy is written, a box is made
            std::this_thread::sleep_for(look);
    }
}

void count_presses(time_point since)
{
    const keyboard keys;
    int presses = 0;
    for (bool was_down = true; is_stuck(since); std::this_thread::sleep_for(key_look)) {
        const bool down = keys.escape_is_down();
        presses += down && !was_down ? 1 : 0;
        was_down = down;
        if (presses == presses_wanted) {
            stop(since);
            presses = 0;
        }
    }
}

void watch()
{
    for (;; std::this_thread::sleep_for(look)) {
        const time_point since = state.busy_since;
        if (is_stuck(since) && std::chrono::steady_clock::now() - since > patience)
            count_presses(since);
    }
}

} // namespace

void stuck_watch_start()
{
    Tcl_CreateEventSource(before_wait, after_wait, nullptr);
    state.end_of_script = Tcl_AsyncCreate(end_script, nullptr);
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before); // signals are the main thread's
    std::thread(watch).detach();
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}
