#include "draw/load_ahead_gl.h"

#include <GL/glx.h>

#include <fontconfig/fontconfig.h>
#include <future>
#include <system_error>
#include <thread>

namespace {

struct {
    std::promise<Display *> display; // of the views, or none
    bool promised = false;
    std::jthread thread;
} state;

void learn(Display *display)
{
    if (display != nullptr)
        glXQueryExtensionsString(display, DefaultScreen(display));
}

void load(std::future<Display *> display)
{
    FcInit();
    // A connection of its own: by the time that there is another one the driver is nearly loaded. Who closes the
    // last one unloads it.
    Display *own = XOpenDisplay(nullptr);
    learn(own);
    learn(display.get());
    if (own != nullptr)
        XCloseDisplay(own);
}

} // namespace

void load_ahead_begin()
{
    XInitThreads();
    try {
        state.thread = std::jthread(load, state.display.get_future());
    } catch (const std::system_error &) {
        // Then who needs it first does it.
    }
}

void load_ahead_for(void *display)
{
    if (!state.promised)
        state.display.set_value(static_cast<Display *>(display));
    state.promised = true;
}

void load_ahead_end()
{
    load_ahead_for(nullptr);
    if (state.thread.joinable())
        state.thread.join();
}
