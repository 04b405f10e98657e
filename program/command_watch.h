#ifndef VESK_PROGRAM_COMMAND_WATCH_H
#define VESK_PROGRAM_COMMAND_WATCH_H

// What goes on round every command: change marks and references are put right after foreign
// handlers, the journal takes a state when an outermost command changed the model, and what a fault
// left behind is repaired. Installed with the commands.
void command_watch_install();

#endif
