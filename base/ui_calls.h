#ifndef VESK_BASE_UI_CALLS_H
#define VESK_BASE_UI_CALLS_H

#include "base/types.h"

/* Calls into the scripts: procedures, variables, pending events. */

VESK_BEGIN_DECLS

/* Evaluates a formatted script (2048 bytes, raw: the caller answers for what it inserts) and
   returns the interpreter's result, valid until the next call. An error is traced to the console;
   the result is then the error text. */
VESK_API const char *tcl_command(const char *format, ...) VESK_PRINTF(1, 2);

/* Evaluates a script file; errors are traced to the console. Returns the interpreter's result. */
VESK_API const char *tcl_eval_file(const char *file);

/* Prints the interpreter's result and stack trace to the console; `context` says where. */
VESK_API void tcl_trace_error(const char *context);

/* Shows the label of the newest undo record; null or "" for none. */
VESK_API void set_undo_string(const char *label);

/* Sets the progress bar, 0 to 100; 0 hides it. */
VESK_API void set_progress_bar(int percent);

/* Opens the context menu of the 3D view at window pixel x, y. */
VESK_API void popup_3d_menu(int x, int y);
VESK_API void popup_view_menu(int view, int x, int y);

/* The number field at the pointer of a view, while a drag takes numbers: a letter in the colour of
   axis 0 to 2 and what was typed so far; then it goes. */
VESK_API void show_number_field(int view, int x, int y, const char *label, int axis,
                                const char *text);
VESK_API void hide_number_field(void);

/* Adds texture `index` to the texture menu; before index 0 a separator. */
VESK_API void create_texture_menubutton(const char *label, int index);

/* Global script variables: a null value sets the empty text; reading gives null for none. */
VESK_API void tcl_set_string(const char *name, const char *value);
VESK_API const char *tcl_get_string(const char *name);
VESK_API void tcl_set_int(const char *name, int value);

/* Processes pending events and redraws now. */
VESK_API void tcl_update(void);

/* Processes pending events until none is left; long work calls it to keep the interface alive. */
VESK_API void handle_tcl_events(void);

/* Refreshes the script side after a change: evaluates "sync_ui". */
VESK_API void display_status(void);

VESK_END_DECLS

#ifdef VESK_INTERNAL
#include <string>

// Evaluates a script and returns the interpreter's result, valid until the next call; an error is
// traced to the console.
const char *script_evaluate(const std::string &script);

// A script call with text arguments: `format` holds only %s and %d, every %s stands between double
// quotes and is neutralised with quote_for_script. Returns the interpreter's result.
const char *script_call(const char *format, ...) VESK_PRINTF(1, 2);
#endif

#endif
