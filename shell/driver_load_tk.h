#ifndef VESK_SHELL_DRIVER_LOAD_TK_H
#define VESK_SHELL_DRIVER_LOAD_TK_H

// The OpenGL driver is loaded beside the scripts that build the window: with software OpenGL it brings a
// compiler along, which takes as long as half of these.

void driver_load_begin();

// Waits for it, when the views have taken it over; at the end of the process by itself.
void driver_load_end();

#endif
