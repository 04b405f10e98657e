#ifndef VESK_DRAW_GLX_WINDOWS_GL_H
#define VESK_DRAW_GLX_WINDOWS_GL_H

// Togl gives its one context from view to view by X windows. The driver forgets the picture of such a window,
// shared memory and all, with the next view; that of a window of GLX it keeps. So the two functions of GLX by
// which Togl shows a view, glXMakeCurrent and glXSwapBuffers, are this program's own, and put a window of GLX in
// the place of each X window.

// The X window of that Display goes, and its window of GLX with it.
void glx_window_forget(void *display, unsigned long window);

#endif
