#ifndef VESK_SHELL_BRIDGE_TK_H
#define VESK_SHELL_BRIDGE_TK_H

// The bridge to the one Tcl interpreter.

#include "base/types.h"

#include <tcl.h>

struct command_line_t;

// Null before init_tcl_stuff.
Tcl_Interp *bridge_interp();

// Port functions over Tcl and, unless in batch mode, Tk. Called before there is an interpreter.
void bridge_install_port(bool batch);

// Whether Tk is up: only then can a message box be shown.
bool bridge_has_tk();
void bridge_set_interp(Tcl_Interp *interp, bool has_tk);

bool bridge_init(const command_line_t &line);
bool bridge_run_script(const char *file);

// Ends the process; what is registered to run at the end runs.
[[noreturn]] void bridge_exit(int status);

VESK_BEGIN_DECLS

/* Creates the interpreter, links the program's variables and evaluates the start-up scripts.
   Returns 1, or 0 when something of the home directory is missing or fails (told on the console). */
VESK_API int init_tcl_stuff(int argc, char **argv);

/* Evaluates a script of the home directory; the name is relative to it. Returns 1, or 0 when it is
   missing or fails (told on the console). */
VESK_API int eval_tcl_file(const char *name);

/* Runs the event loop; a fault in it is told and the loop goes on. Ends the process when no main
   window is left. */
VESK_API void vesk_mainloop(void);

/* The plain event loop. */
VESK_API void win_mainloop(void);

VESK_END_DECLS

#endif
