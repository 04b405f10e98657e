#include "draw/thumbnail_gl.h"
#include "program/startup.h"
#include "shell/bridge_tk.h"
#include "shell/port_tk.h"
#include "shell/views_tk.h"

#include <tcl.h>

static bool init_tcl(const command_line_t &line)
{
    if (!bridge_init(line))
        return false;
    if (line.batch)
        register_thumbnail_command();
    return true;
}

int main(int argc, char **argv)
{
    Tcl_FindExecutable(argv[0]); // before any change of directory
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
