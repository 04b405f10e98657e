// The port functions of the shell. Batch mode has Tcl without Tk: services of windows do nothing
// there, and messages go to standard error.
#include "shell/port_tk.h"

#include "base/entry_guard.h"
#include "base/ui_port.h"
#include "shell/clipboard_tk.h"
#include "shell/interp_tk.h"
#include "shell/programs_tk.h"
#include "shell/views_tk.h"

#include <tk.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <sys/wait.h>
#include <unistd.h>

namespace {

bool in_batch = false;

// Evaluates words as they are: nothing in them is substituted.
int eval_words(std::initializer_list<const char *> words)
{
    std::initializer_list<const char *>::iterator word = words.begin();
    Tcl_Obj *list = Tcl_NewListObj(0, nullptr);
    for (; word != words.end(); ++word)
        Tcl_ListObjAppendElement(nullptr, list, Tcl_NewStringObj(*word, -1));
    Tcl_IncrRefCount(list);
    const int code = Tcl_EvalObjEx(interp_tk(), list, TCL_EVAL_GLOBAL | TCL_EVAL_DIRECT);
    Tcl_DecrRefCount(list);
    return code;
}

// ---- script ----

const char *port_result() { return interp_tk() != nullptr ? Tcl_GetStringResult(interp_tk()) : ""; }

const char *port_eval(const char *script, bool *ok)
{
    if (interp_tk() == nullptr) {
        *ok = true;
        return "";
    }
    *ok = Tcl_EvalEx(interp_tk(), script, -1, TCL_EVAL_GLOBAL) == TCL_OK;
    return port_result();
}

const char *port_eval_file(const char *file, bool *ok)
{
    if (interp_tk() == nullptr) {
        *ok = false;
        return "";
    }
    *ok = Tcl_EvalFile(interp_tk(), file) == TCL_OK;
    return port_result();
}

const char *get_global(const char *name, const char *element)
{
    return interp_tk() != nullptr ? Tcl_GetVar2(interp_tk(), name, element, TCL_GLOBAL_ONLY)
                                  : nullptr;
}

void port_set_var(const char *name, const char *value)
{
    if (interp_tk() != nullptr)
        Tcl_SetVar2(interp_tk(), name, nullptr, value, TCL_GLOBAL_ONLY);
}

void port_update_linked(const char *name)
{
    if (interp_tk() != nullptr)
        Tcl_UpdateLinkedVar(interp_tk(), name);
}

char *port_alloc_text(const char *text)
{
    const size_t size = std::strlen(text) + 1;
    char *copy = Tcl_Alloc(static_cast<unsigned>(size));
    std::memcpy(copy, text, size);
    return copy;
}

void port_free_text(char *text) { Tcl_Free(text); }

// ---- dialogue ----

void port_message_box(const char *title, const char *text)
{
    const bool window = interp_has_tk() && Tk_GetNumMainWindows() > 0;
    if (interp_tk() != nullptr) {
        Tcl_InterpState saved = Tcl_SaveInterpState(interp_tk(), TCL_OK);
        const int code =
            window ? eval_words({"tk_messageBox", "-title", title, "-type", "ok", "-message", text})
                   : eval_words({"message_box", text});
        Tcl_RestoreInterpState(interp_tk(), saved);
        if (code == TCL_OK)
            return;
    }
    std::fprintf(stderr, "%s\n", text);
}

void port_console_write(const char *text)
{
    std::FILE *stream = in_batch ? stderr : stdout;
    std::fputs(text, stream);
    std::fflush(stream);
}

// ---- view ----

bool port_window_geometry(int view, int out[4])
{
    return interp_has_tk() && views_tk_geometry(view, out);
}

Tk_Window widget_of(const char *path)
{
    if (!interp_has_tk() || Tk_GetNumMainWindows() == 0)
        return nullptr;
    Tcl_InterpState saved = Tcl_SaveInterpState(interp_tk(), TCL_OK);
    const Tk_Window window = Tk_NameToWindow(interp_tk(), path, Tk_MainWindow(interp_tk()));
    Tcl_RestoreInterpState(interp_tk(), saved);
    return window;
}

// The size of a widget, or the requested one while it is not laid out yet.
bool port_widget_size(const char *widget, int out[2])
{
    const Tk_Window window = widget_of(widget);
    if (window == nullptr)
        return false;
    const bool shown = Tk_IsMapped(window) && Tk_Width(window) > 1 && Tk_Height(window) > 1;
    out[0] = shown ? Tk_Width(window) : Tk_ReqWidth(window);
    out[1] = shown ? Tk_Height(window) : Tk_ReqHeight(window);
    return true;
}

bool port_photo_put(const char *photo, int width, int height, const unsigned char *rgb)
{
    if (!interp_has_tk() || Tk_GetNumMainWindows() == 0)
        return false;
    Tk_PhotoHandle handle = Tk_FindPhoto(interp_tk(), photo);
    Tcl_InterpState saved = Tcl_SaveInterpState(interp_tk(), TCL_OK);
    if (handle == nullptr && eval_words({"image", "create", "photo", photo}) == TCL_OK)
        handle = Tk_FindPhoto(interp_tk(), photo);
    bool done = false;
    if (handle != nullptr) {
        Tk_PhotoImageBlock block = {
            const_cast<unsigned char *>(rgb), width, height, 3 * width, 3, {0, 1, 2, -1}};
        done = Tk_PhotoSetSize(interp_tk(), handle, width, height) == TCL_OK &&
               Tk_PhotoPutBlock(interp_tk(), handle, &block, 0, 0, width, height,
                                TK_PHOTO_COMPOSITE_SET) == TCL_OK;
    }
    Tcl_RestoreInterpState(interp_tk(), saved);
    return done;
}

// ---- time ----

void port_pump_events()
{
    if (interp_tk() != nullptr)
        while (Tcl_DoOneEvent(TCL_DONT_WAIT) != 0) {
        }
}

void port_update()
{
    if (interp_tk() == nullptr)
        return;
    Tcl_InterpState saved = Tcl_SaveInterpState(interp_tk(), TCL_OK);
    Tcl_EvalEx(interp_tk(), "update", -1, TCL_EVAL_GLOBAL);
    Tcl_RestoreInterpState(interp_tk(), saved);
}

double port_now_seconds()
{
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

struct wake_event {
    Tcl_Event header; // first: the interpreter's part
    void (*what)();
};
Tcl_ThreadId main_thread = nullptr;

int serve_wake(Tcl_Event *event, int /*flags*/)
{
    // The interpreter gave it as its header.
    const auto what = reinterpret_cast<wake_event *>(event)->what;
    guarded_entry([what] { what(); });
    return 1;
}

void port_wake(void (*what)())
{
    auto *const event = reinterpret_cast<wake_event *>(Tcl_Alloc(sizeof(wake_event)));
    *event = {{serve_wake, nullptr}, what};
    Tcl_ThreadQueueEvent(main_thread, &event->header, TCL_QUEUE_TAIL);
    Tcl_ThreadAlert(main_thread);
}

// ---- desktop ----

// A grandchild, so that nobody has to wait for it.
bool start_detached(const char *const *arguments)
{
    const pid_t child = fork();
    if (child < 0)
        return false;
    if (child == 0) {
        setsid();
        if (fork() == 0) {
            execvp(arguments[0], const_cast<char *const *>(arguments));
            _exit(127);
        }
        _exit(0);
    }
    waitpid(child, nullptr, 0);
    return true;
}

bool port_open_address(const char *url)
{
    const char *const arguments[] = {"xdg-open", url, nullptr};
    return !in_batch && start_detached(arguments);
}

} // namespace

void port_tk_install(bool batch)
{
    in_batch = batch;
    main_thread = Tcl_GetCurrentThread();
    ui_port_t port = ui_port_silent();
    port.eval = port_eval;
    port.eval_file = port_eval_file;
    port.result = port_result;
    port.error_info = [] { return get_global("errorInfo", nullptr); };
    port.set_var = port_set_var;
    port.get_var = [](const char *name) { return get_global(name, nullptr); };
    port.get_element = get_global;
    port.update_linked = port_update_linked;
    port.alloc_text = port_alloc_text;
    port.free_text = port_free_text;
    port.message_box = port_message_box;
    port.console_write = port_console_write;
    port.widget_size = port_widget_size;
    port.photo_put = port_photo_put;
    port.pump_events = port_pump_events;
    port.update = port_update;
    port.now_seconds = port_now_seconds;
    port.wake = port_wake;
    port.open_address = port_open_address;
    if (!batch) {
        port.start_program = programs_tk_start;
        port.clipboard_offer = clipboard_tk_offer;
        port.clipboard_offer_picture = clipboard_tk_offer_picture;
        port.clipboard_get = clipboard_tk_get;
        port.window_geometry = port_window_geometry;
        views_tk_fill_port(port);
    }
    ui_port_install(port);
}
