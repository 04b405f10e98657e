#ifndef VESK_SHELL_PORT_TK_H
#define VESK_SHELL_PORT_TK_H

// Installs the port of the shell, over Tcl and, unless in batch mode, Tk. Called before there is an
// interpreter.
void port_tk_install(bool batch);

#endif
