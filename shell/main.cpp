#include "draw/thumbnail_gl.h"
#include "program/startup.h"
#include "shell/bridge_tk.h"
#include "shell/port_tk.h"
#include "shell/views_tk.h"

#include <tcl.h>

#include <clocale>
#include <cstring>
#include <langinfo.h>

static bool init_tcl(const command_line_t &line)
{
    if (!bridge_init(line))
        return false;
    if (line.batch)
        register_thumbnail_command();
    return true;
}

// Without a locale (cron, containers) file names are UTF-8, as everywhere else: with ASCII the
// interpreter would turn each of their bytes into a letter.
static void choose_encoding()
{
    std::setlocale(LC_CTYPE, "");
    if (std::strcmp(nl_langinfo(CODESET), "ANSI_X3.4-1968") != 0)
        return;
    std::setlocale(LC_CTYPE, "C.UTF-8");
    Tcl_SetSystemEncoding(nullptr, "utf-8");
}

int main(int argc, char **argv)
{
    Tcl_FindExecutable(argv[0]); // before any change of directory
    choose_encoding();
    const startup_toolkit_t toolkit = {
        .install_port = port_tk_install,
        .init_tcl = init_tcl,
        .create_windows = create_ui,
        .run_script = bridge_run_script,
        .loop = vesk_mainloop,
        .quit = bridge_exit,
    };
    bridge_exit(vesk_run(argc, argv, toolkit));
}
