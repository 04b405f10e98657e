#include "shell/bridge_tk.h"

#include "base/command_registry.h"
#include "base/command_result.h"
#include "base/entry_guard.h"
#include "base/filename.h"
#include "base/home.h"
#include "base/linked_vars.h"
#include "base/messages.h"
#include "base/prefs.h"
#include "base/session_state.h"
#include "draw/load_ahead_gl.h"
#include "edit/check/model_check.h"
#include "fileio/rescue.h"
#include "plugin/loader.h"
#include "program/startup.h"
#include "shell/icon_image_tk.h"
#include "shell/interp_tk.h"
#include "shell/stuck_tk.h"

#include <tk.h>
#include <togl.h>

#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

constexpr const char *missing_home_message =
    "\nCan't find %s.  Please set the environment variable VESK_HOME\n"
    "to the directory that contains VESK.\n"
    "  e.g.  (tcsh and csh) setenv VESK_HOME /home/me/vesk\n"
    "        (bash and sh)  export VESK_HOME=/home/me/vesk\n\n";

constexpr const char *tcl_scripts = "lib/tcl8.3";
constexpr const char *tk_scripts = "lib/tk8.3";

// In this order; the last one builds the window.
constexpr const char *start_scripts[] = {
    "tcl/veskops.tcl",    "tcl/veskhier.tcl",    "tcl/veskpalette.tcl",
    "tcl/veskprefs.tcl",  "tcl/veskview.tcl",    "tcl/vesk.tcl",
    "tcl/veskuvedit.tcl", "tcl/veskplugins.tcl", "tcl/vesktips.tcl",
};
constexpr const char *batch_script = "tcl/batch.tcl";

Tcl_AsyncHandler end_of_session = nullptr;

// ---- the "vesk" command ----

int tcl_vesk_command(ClientData, Tcl_Interp *interp, int argc, const char *argv[])
{
    do_command(argc - 1, argv + 1);
    const char *result = command_result_get();
    Tcl_SetObjResult(interp, Tcl_NewStringObj(result != nullptr ? result : "", -1));
    return TCL_OK;
}

// ---- signals that end the session ----

// The user does not end the session: work that is not saved is kept in a copy.
void keep_unsaved_work()
{
    const char *unsaved = tcl_get_string("unsaved_changes");
    if (unsaved != nullptr && std::strcmp(unsaved, "0") != 0) {
        rescue_keep();
        rescue_write_now();
    }
    rescue_end();
}

int leave_on_signal(ClientData, Tcl_Interp *, int)
{
    keep_unsaved_work();
    bridge_exit(0);
}

// ---- other ends ----

bool leaves_by_itself = false;

// After Tk's own handler, which therefore runs later: plug-ins end while the windows are there.
void leave_in_order(ClientData)
{
    leaves_by_itself = true;
    model_check_end();
    plugins_exit();
    rescue_end();
}

// A library or a plug-in called the C library's exit: so does the one that talks to the display, when
// that has gone.
void leave_by_library()
{
    if (!leaves_by_itself)
        guarded_entry([] { keep_unsaved_work(); });
}

int leave_on_lost_display(Display *)
{
    static constexpr char line[] = "VESK: the display has gone - exiting.\n";
    if (write(STDERR_FILENO, line, sizeof line - 1) < 0)
        errno = 0;
    keep_unsaved_work();
    _exit(1); // the exit handlers would talk to the display
}

int signal_pipe[2] = {-1, -1};

// Only a byte: marking from here would wait for locks that the interrupted notifier may hold.
void on_end_signal(int)
{
    const int error = errno;
    const char byte = 0;
    if (write(signal_pipe[1], &byte, 1) < 0) // full: the end is on its way already
        errno = error;
    errno = error;
}

// A thread of its own turns the byte into a mark, for which any thread is good but a handler.
void wait_for_end_signal()
{
    char byte = 0;
    while (read(signal_pipe[0], &byte, 1) < 0 && errno == EINTR) {
    }
    Tcl_AsyncMark(end_of_session);
}

void catch_end_signals()
{
    if (pipe2(signal_pipe, O_CLOEXEC) != 0)
        return;
    end_of_session = Tcl_AsyncCreate(leave_on_signal, nullptr);
    std::thread(wait_for_end_signal).detach();
    for (const int number : {SIGTERM, SIGHUP, SIGINT}) {
        struct sigaction action = {};
        action.sa_handler = on_end_signal;
        action.sa_flags = SA_RESETHAND; // a second one does not wait for long work to end
        sigemptyset(&action.sa_mask);
        sigaction(number, &action, nullptr);
    }
}

// ---- linked variables ----

void link(Tcl_Interp *interp, const char *name, void *address, int type)
{
    if (Tcl_LinkVar(interp, name, static_cast<char *>(address), type) != TCL_OK)
        tcl_trace_error(name);
}

int link_type(link_kind kind)
{
    switch (kind) {
    case link_kind::integer:
        return TCL_LINK_INT;
    case link_kind::real:
        return TCL_LINK_DOUBLE;
    case link_kind::boolean:
        return TCL_LINK_BOOLEAN;
    case link_kind::text:
        return TCL_LINK_STRING;
    }
    return TCL_LINK_INT;
}

int link_type_of_pref(int kind)
{
    switch (kind) {
    case PREF_DOUBLE:
        return TCL_LINK_DOUBLE;
    case PREF_STRING:
        return TCL_LINK_STRING;
    case PREF_BOOLEAN:
        return TCL_LINK_BOOLEAN;
    case PREF_KEY:
        return TCL_LINK_UCHAR;
    default:
        return TCL_LINK_INT;
    }
}

void link_variables(Tcl_Interp *interp)
{
    for (const linked_var_t &row : linked_vars())
        link(interp, row.name, row.address,
             link_type(row.kind) | (row.read_only ? TCL_LINK_READ_ONLY : 0));
    for (const vesk_pref_t &row : prefs_table())
        if (vesk_prefs_get_spec(row.key) == &row) // "extrude_cap_end" has two rows
            link(interp, (std::string("prefs_") + row.key).c_str(), row.address,
                 link_type_of_pref(row.kind));
}

// ---- libraries and scripts ----

bool find_in_home(const char *path, const char *shown)
{
    if (vesk_file_exists(path) != 0)
        return true;
    console_printf(missing_home_message, shown);
    return false;
}

// Absolute, or a later change of directory would break the autoloading.
void set_library(Tcl_Interp *interp, const char *variable, const char *directory)
{
    const std::string path = vesk_filename_concat_path_file(vesk_get_vesk_homedir(), directory);
    Tcl_SetVar(interp, variable, path.c_str(), TCL_GLOBAL_ONLY);
}

// A script gets its arguments; the interface the files that are about to be imported.
void set_arguments(Tcl_Interp *interp, const command_line_t &line)
{
    const std::vector<std::string> &words =
        line.batch || !line.script.empty() ? line.script_arguments : line.files;
    Tcl_Obj *arguments = Tcl_NewListObj(0, nullptr);
    for (const std::string &word : words) {
        Tcl_DString utf;
        Tcl_ExternalToUtfDString(nullptr, word.c_str(), -1, &utf);
        Tcl_ListObjAppendElement(nullptr, arguments,
                                 Tcl_NewStringObj(Tcl_DStringValue(&utf), Tcl_DStringLength(&utf)));
        Tcl_DStringFree(&utf);
    }
    Tcl_SetVar2Ex(interp, "argv", nullptr, arguments, TCL_GLOBAL_ONLY);
    Tcl_SetVar2Ex(interp, "argc", nullptr, Tcl_NewIntObj(static_cast<int>(words.size())),
                  TCL_GLOBAL_ONLY);
    Tcl_SetVar(interp, "argv0", line.batch ? line.script.c_str() : "vesk", TCL_GLOBAL_ONLY);
}

bool init_tcl_library(Tcl_Interp *interp)
{
    set_library(interp, "tcl_library", tcl_scripts);
    set_library(interp, "tk_library", tk_scripts);
    console_printf("Initializing dynamic TCL\n");
    if (!find_in_home(tcl_scripts, tcl_scripts))
        return false;
    if (Tcl_Init(interp) == TCL_OK)
        return true;
    console_printf("TCL failed\n");
    tcl_trace_error("initing dynamic TCL");
    return false;
}

// Xlib reads the table of the keys that compose letters, six thousand lines, three times for a window
// unless a folder keeps what came of it. Who has none gets one below the caches; Xlib uses none for root.
void keep_composed_keys()
{
    const char *home = std::getenv("HOME");
    if (std::getenv("XCOMPOSECACHE") != nullptr || home == nullptr || *home != '/' ||
        geteuid() == 0)
        return;
    const std::filesystem::path own(home);
    std::error_code failed;
    if (std::filesystem::exists(own / ".compose-cache", failed))
        return;
    const char *caches = std::getenv("XDG_CACHE_HOME");
    const std::filesystem::path folder =
        (caches != nullptr && *caches == '/' ? std::filesystem::path(caches) : own / ".cache") /
        "vesk" / "compose";
    std::filesystem::create_directories(folder, failed);
    if (!failed)
        setenv("XCOMPOSECACHE", folder.c_str(), 0);
}

bool init_tk_library(Tcl_Interp *interp)
{
    keep_composed_keys();
    Tcl_SetVar(interp, "tcl_interactive", "1", TCL_GLOBAL_ONLY);
    Tcl_StaticPackage(interp, "vesk", Tk_Init, nullptr);
    if (!find_in_home(tk_scripts, tk_scripts))
        return false;
    if (Tk_Init(interp) == TCL_OK)
        return true;
    console_printf("TK failed\n");
    tcl_trace_error("initing dynamic TK");
    return false;
}

void place_main_window(Tcl_Interp *interp)
{
    constexpr int less_than_screen_width = 50;
    constexpr int less_than_screen_height = 80;
    Tk_Window main_window = Tk_MainWindow(interp);
    const int width = prefs.cpwin_width != 0
                          ? prefs.cpwin_width
                          : WidthOfScreen(Tk_Screen(main_window)) - less_than_screen_width;
    const int height = prefs.cpwin_height != 0
                           ? prefs.cpwin_height
                           : HeightOfScreen(Tk_Screen(main_window)) - less_than_screen_height;
    tcl_command("wm geometry . %dx%d+%d+%d", width, height, prefs.cpwin_x, prefs.cpwin_y);
}

bool eval_start_scripts(bool batch)
{
    if (batch)
        return eval_tcl_file(batch_script) != 0;
    // Deliberate: the message names the script with a slash for its dot.
    if (!find_in_home("tcl/vesk.tcl", "tcl/vesk/tcl"))
        return false;
    for (const char *script : start_scripts)
        if (eval_tcl_file(script) == 0)
            return false;
    return true;
}

command_line_t command_line;

} // namespace

int init_tcl_stuff(int, char **)
{
    const char *library = std::getenv("TCL_LIBRARY");
    debugf("initializing TCL stuff\n");
    debugf("old dir %s, changing to %s TCL_LIBRARY=%s\n", start_directory().c_str(),
           vesk_get_vesk_homedir(), library != nullptr ? library : "(null)");
    if (chdir(vesk_get_vesk_homedir()) != 0)
        debugf("can't change to %s\n", vesk_get_vesk_homedir());

    if (!command_line.batch) {
        std::atexit(load_ahead_end);
        load_ahead_begin();
    }
    Tcl_Interp *interp = Tcl_CreateInterp();
    if (interp == nullptr) {
        console_printf("unable to create TCL interpreter\n");
        std::exit(0); // Deliberate: not 1
    }
    interp_tk_set(interp, false);
    set_arguments(interp, command_line);
    if (!init_tcl_library(interp))
        return 0;
    if (!command_line.batch) {
        if (!init_tk_library(interp))
            return 0;
        load_ahead_for(Tk_Display(Tk_MainWindow(interp)));
        Tcl_CreateExitHandler([](ClientData) { load_ahead_end(); }, nullptr); // before Tk's
        interp_tk_set(interp, true);
        place_main_window(interp);
        icon_image_install(interp);
        XSetIOErrorHandler(leave_on_lost_display);
        stuck_watch_start();
    }
    Tcl_CreateExitHandler(leave_in_order, nullptr);
    std::atexit(leave_by_library);
    std::setlocale(LC_NUMERIC, "C");
    catch_end_signals();
    Tcl_CreateCommand(interp, "vesk", tcl_vesk_command, nullptr, nullptr);
    link_variables(interp);
    if (!command_line.batch) {
        const int code = Togl_Init(interp);
        debugf("togl code %d  %s\n", code, Tcl_GetStringResult(interp));
    }
    return eval_start_scripts(command_line.batch) ? 1 : 0;
}

int eval_tcl_file(const char *name)
{
    debugf("eval_tcl_file %s\n", name);
    std::string path = name;
    if (vesk_file_exists(name) == 0) {
        path = std::string(vesk_get_vesk_homedir()) + "/" + name;
        if (vesk_file_exists(path.c_str()) == 0) {
            console_printf("can't eval TCL file '%s', tried %s too - file not found\n"
                           "VESK may have been installed incorectly.",
                           name, path.c_str());
            return 0;
        }
    }
    if (Tcl_EvalFile(interp_tk(), path.c_str()) == TCL_OK)
        return 1;
    tcl_trace_error(name);
    return 0;
}

bool bridge_init(const command_line_t &line)
{
    command_line = line;
    return init_tcl_stuff(0, nullptr) != 0;
}

bool bridge_run_script(const char *file)
{
    bool ok = false;
    guarded_entry([&] {
        ok = Tcl_EvalFile(interp_tk(), file) == TCL_OK;
        if (!ok) {
            const char *trace = Tcl_GetVar(interp_tk(), "errorInfo", TCL_GLOBAL_ONLY);
            std::fprintf(stderr, "%s\n",
                         trace != nullptr ? trace : Tcl_GetStringResult(interp_tk()));
        }
    });
    return ok;
}

void win_mainloop(void) { Tk_MainLoop(); }

void vesk_mainloop(void)
{
    for (;;) {
        guarded_entry([] { win_mainloop(); });
        if (Tk_GetNumMainWindows() == 0)
            bridge_exit(0);
    }
}

void bridge_exit(int status)
{
    Tcl_Exit(status);
    std::abort(); // Tcl_Exit does not return
}
