#ifndef VESK_SHELL_STUCK_TK_H
#define VESK_SHELL_STUCK_TK_H

// A way out of a command, a plug-in's function or a script that does not end and lets no events in.
// Escape pressed three times in one of the program's windows, after the program has not answered for
// five seconds, gives the command up as after a fault, or ends the script. A thread looks at the keys
// through a connection of its own: the program's does not hear them.

// Once, on the main thread, when Tk is up.
void stuck_watch_start();

#endif
