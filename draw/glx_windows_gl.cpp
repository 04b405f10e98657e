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

GLXDrawable drawable_of(Display *display, Window window)
{
    const auto [place, is_new] = drawables.try_emplace(window, window);
    if (is_new) {
        if (GLXFBConfig config = config_of(display, window); config != nullptr)
            place->second = glXCreateWindow(display, config, window, nullptr);
    }
    return place->second;
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
    return glXMakeContextCurrent(display, drawable, drawable, context);
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
