#ifndef VESK_DRAW_LOAD_AHEAD_GL_H
#define VESK_DRAW_LOAD_AHEAD_GL_H

// What a window needs and what takes long without needing the window is done by a thread, beside Tk's start and
// the scripts: reading what fonts there are; loading the OpenGL driver, which with software OpenGL brings a
// compiler along. Who needs it first waits for what is left.

// Before any call of Xlib.
void load_ahead_begin();

// The connection (Display) of the views is there: the driver learns of its screens, too.
void load_ahead_for(void *display);

// Waits for it: before the display is closed, or the process ends.
void load_ahead_end();

#endif
