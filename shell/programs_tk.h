#ifndef VESK_SHELL_PROGRAMS_TK_H
#define VESK_SHELL_PROGRAMS_TK_H

// Runs a command line in the user's shell, in a session of its own; see the port's start_program.
bool programs_tk_start(const char *command_line, void (*ended)(const char *line, int status));

#endif
