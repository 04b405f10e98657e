#ifndef VESK_SHELL_BRIDGE_TK_H
#define VESK_SHELL_BRIDGE_TK_H

// The start and the end of the interpreter, the start scripts, the event loop.

#include "base/types.h"

struct command_line_t;

bool bridge_init(const command_line_t &line);
bool bridge_run_script(const char *file);

// Ends the process after its exit handlers.
[[noreturn]] void bridge_exit(int status);

VESK_BEGIN_DECLS

/* Creates the interpreter, links the program's variables and evaluates the start-up scripts.
   Returns 1, or 0 when something of the home directory is missing or fails (told on the console). */
VESK_API int init_tcl_stuff(int argc, char **argv);

/* Evaluates a script of the home directory; the name is relative to it. Returns 1, or 0 when it is
   missing or fails (told on the console). */
VESK_API int eval_tcl_file(const char *name);

/* Runs the event loop; a fault in it is reported and the loop continues. Ends the process when no main
   window is left. */
VESK_API void vesk_mainloop(void);

/* The plain event loop. */
VESK_API void win_mainloop(void);

VESK_END_DECLS

#endif
