#include "draw/glx_windows_gl.h"

#include <GL/glx.h>

#include <algorithm>
#include <unordered_map>

namespace {

// By X window; one that GLX takes as it is stands for itself.
std::unordered_map<Window, GLXDrawable> drawables;

// Null: the server's GLX is older than such windows.
GLXFBConfig config_of(Display *display, Window window)
{
    int major = 0, minor = 0, count = 0;
    XWindowAttributes is = {};
    if (glXQueryVersion(display, &major, &minor) == 0 || major * 10 + minor < 13 ||
        XGetWindowAttributes(display, window, &is) == 0)
        return nullptr;
    GLXFBConfig *configs = glXGetFBConfigs(display, XScreenNumberOfScreen(is.screen), &count);
    if (configs == nullptr)
        return nullptr;
    const auto end = configs + count;
    const auto place = std::find_if(configs, end, [&](GLXFBConfig config) {
        int visual = 0;
        return glXGetFBConfigAttrib(display, config, GLX_VISUAL_ID, &visual) == Success &&
               static_cast<VisualID>(visual) == is.visual->visualid;
    });
    GLXFBConfig config = place != end ? *place : nullptr;
    XFree(configs);
    return config;
}

bool refused = false;

// The X window itself where the server will not make one of GLX: an error that nobody takes ends the program.
GLXDrawable made_for(Display *display, Window window)
{
    GLXFBConfig config = config_of(display, window);
    if (config == nullptr)
        return window;
    XSync(display, False); // what came before is somebody else's
    refused = false;
    const auto before = XSetErrorHandler([](Display *, XErrorEvent *) {
        refused = true;
        return 0;
    });
    const GLXDrawable made = glXCreateWindow(display, config, window, nullptr);
    XSync(display, False);
    XSetErrorHandler(before);
    return refused || made == None ? window : made;
}

GLXDrawable drawable_of(Display *display, Window window)
{
    const auto place = drawables.find(window);
    return place != drawables.end()
               ? place->second
               : drawables.emplace(window, made_for(display, window)).first->second;
}

} // namespace

void glx_window_forget(void *of, unsigned long window)
{
    auto *display = static_cast<Display *>(of);
    const auto place = drawables.find(window);
    if (place == drawables.end())
        return;
    if (place->second == glXGetCurrentDrawable())
        glXMakeContextCurrent(display, None, None, nullptr);
    if (place->second != place->first)
        glXDestroyWindow(display, place->second);
    drawables.erase(place);
}

// In the place of the library's functions for all that is loaded with this program.
#pragma GCC visibility push(default)

extern "C" Bool glXMakeCurrent(Display *display, GLXDrawable window, GLXContext context)
{
    if (window == None || context == nullptr)
        return glXMakeContextCurrent(display, None, None, nullptr);
    const GLXDrawable drawable = drawable_of(display, window);
    if (glXMakeContextCurrent(display, drawable, drawable, context) != False)
        return True;
    if (drawable == window)
        return False;
    drawables[window] = window; // the context does not fit it
    return glXMakeContextCurrent(display, window, window, context);
}

extern "C" void glXSwapBuffers(Display *display, GLXDrawable window)
{
    using swap_t = void (*)(Display *, GLXDrawable);
    static const auto swap = reinterpret_cast<swap_t>(
        glXGetProcAddressARB(reinterpret_cast<const GLubyte *>("glXSwapBuffers")));
    const auto place = drawables.find(window);
    swap(display, place != drawables.end() ? place->second : window);
}

#pragma GCC visibility pop
