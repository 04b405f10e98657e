#include "draw/offscreen_gl.h"

#define EGL_NO_X11
#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <dlfcn.h>

namespace {

// The functions of the library, by name.
struct egl_t {
    void *library = nullptr;
    PFNEGLGETPROCADDRESSPROC get_proc_address = nullptr;
    PFNEGLINITIALIZEPROC initialize = nullptr;
    PFNEGLTERMINATEPROC terminate = nullptr;
    PFNEGLBINDAPIPROC bind_api = nullptr;
    PFNEGLCHOOSECONFIGPROC choose_config = nullptr;
    PFNEGLCREATECONTEXTPROC create_context = nullptr;
    PFNEGLCREATEPBUFFERSURFACEPROC create_surface = nullptr;
    PFNEGLMAKECURRENTPROC make_current = nullptr;

    template <class Function>
    bool find(Function *function, const char *name) const
    {
        *function = reinterpret_cast<Function>(dlsym(library, name));
        return *function != nullptr;
    }

    bool open()
    {
        if (library != nullptr)
            return true;
        library = dlopen("libEGL.so.1", RTLD_NOW | RTLD_LOCAL);
        return library != nullptr && find(&get_proc_address, "eglGetProcAddress") &&
               find(&initialize, "eglInitialize") && find(&terminate, "eglTerminate") &&
               find(&bind_api, "eglBindAPI") && find(&choose_config, "eglChooseConfig") &&
               find(&create_context, "eglCreateContext") &&
               find(&create_surface, "eglCreatePbufferSurface") &&
               find(&make_current, "eglMakeCurrent");
    }
};
egl_t egl;

} // namespace

struct offscreen_state_t {
    EGLDisplay display = EGL_NO_DISPLAY;

    ~offscreen_state_t()
    {
        if (display == EGL_NO_DISPLAY)
            return;
        egl.make_current(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        egl.terminate(display); // with what was made for it
    }

    bool open_display()
    {
        const auto of_platform = reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(
            egl.get_proc_address("eglGetPlatformDisplayEXT"));
        if (of_platform == nullptr)
            return false;
        display = of_platform(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr);
        return display != EGL_NO_DISPLAY && egl.initialize(display, nullptr, nullptr) != 0 &&
               egl.bind_api(EGL_OPENGL_API) != 0;
    }

    bool open_surface(int width, int height) const
    {
        // clang-format off
        const EGLint wanted[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
                                 EGL_RED_SIZE, 8, EGL_GREEN_SIZE, 8, EGL_BLUE_SIZE, 8,
                                 EGL_DEPTH_SIZE, 24, EGL_NONE};
        // clang-format on
        const EGLint size[] = {EGL_WIDTH, width, EGL_HEIGHT, height, EGL_NONE};
        EGLConfig config = nullptr;
        EGLint count = 0;
        if (egl.choose_config(display, wanted, &config, 1, &count) == 0 || count == 0)
            return false;
        const EGLSurface surface = egl.create_surface(display, config, size);
        const EGLContext context = egl.create_context(display, config, EGL_NO_CONTEXT, nullptr);
        return surface != EGL_NO_SURFACE && context != EGL_NO_CONTEXT &&
               egl.make_current(display, surface, surface, context) != 0;
    }
};

offscreen_t::offscreen_t(int width, int height) : state_(std::make_unique<offscreen_state_t>())
{
    if (!egl.open())
        problem_ = "the library libEGL is missing";
    else if (!state_->open_display())
        problem_ = "there is no software driver for pictures without a display";
    else if (!state_->open_surface(width, height))
        problem_ = "the driver refuses a picture of this size";
}

offscreen_t::~offscreen_t() = default;
