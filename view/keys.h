#ifndef VESK_VIEW_KEYS_H
#define VESK_VIEW_KEYS_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* A key press in a view: `key` is a character or a Tk keysym name, `state` the Tk modifier state.
   Returns 1 when the key was used, else 0. Command "keypress". */
VESK_API int handle_key_press(int view, const char *key, int state);

/* The same for keysym names in an orthographic view. */
VESK_API int handle_special_key_press(int view, const char *keysym, int state);

VESK_END_DECLS

#endif
