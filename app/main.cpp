#include "app/bridge_tk.h"
#include "app/startup.h"
#include "view/views_tk.h"

#include <tcl.h>

int main(int argc, char **argv)
{
    Tcl_FindExecutable(argv[0]); // before any change of directory
    const startup_toolkit_t toolkit = {
        .install_port = bridge_install_port,
        .init_tcl = bridge_init,
        .create_windows = create_ui,
        .run_script = bridge_run_script,
        .loop = vesk_mainloop,
        .quit = bridge_exit,
    };
    bridge_exit(vesk_run(argc, argv, toolkit));
}
