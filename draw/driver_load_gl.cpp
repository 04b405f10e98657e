#include "draw/driver_load_gl.h"

#include <GL/glx.h>

#include <system_error>
#include <thread>
#include <utility>

namespace {

struct {
    std::jthread thread;
    Display *display = nullptr; // its own connection: who closes the last one unloads the driver
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
