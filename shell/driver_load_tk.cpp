#include "shell/driver_load_tk.h"

#include <GL/glx.h>
#include <tcl.h>

#include <system_error>
#include <thread>
#include <utility>

namespace {

struct {
    std::jthread thread;
    Display *display =
        nullptr; // a connection of its own: who closes the last one unloads the driver
} state;

void load()
{
    state.display = XOpenDisplay(nullptr);
    if (state.display != nullptr)
        glXQueryExtensionsString(state.display, DefaultScreen(state.display));
}

} // namespace

void driver_load_begin()
{
    XInitThreads();
    Tcl_CreateExitHandler([](ClientData) { driver_load_end(); }, nullptr);
    try {
        state.thread = std::jthread(load);
    } catch (const std::system_error &) {
        // Then the first view loads it.
    }
}

void driver_load_end()
{
    if (state.thread.joinable())
        state.thread.join();
    if (Display *display = std::exchange(state.display, nullptr); display != nullptr)
        XCloseDisplay(display);
}
