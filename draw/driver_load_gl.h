#ifndef VESK_DRAW_DRIVER_LOAD_GL_H
#define VESK_DRAW_DRIVER_LOAD_GL_H

// The OpenGL driver is loaded beside the scripts that build the window: with software OpenGL it brings a
// compiler along, which takes as long as half of these.

void driver_load_begin();

// Waits for it: when the views have taken it over, or before the process ends.
void driver_load_end();

#endif
