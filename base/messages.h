#ifndef VESK_BASE_MESSAGES_H
#define VESK_BASE_MESSAGES_H

#include "base/console.h"
#include "base/types.h"
#include "base/ui_calls.h"

VESK_BEGIN_DECLS

/* Shows a line on the status area: evaluates `display_message "<text>"`. Formats into 2048 bytes
   (longer texts are cut); `%s` arguments may hold any text, nothing in them is evaluated. */
VESK_API void display_message(const char *format, ...) VESK_PRINTF(1, 2);

/* Modal message box titled "VESK Message" with one OK button; without a display the text goes to
   standard error and the call returns at once. Formats into 2048 bytes. Returns 1. */
VESK_API int windows_message_dialog(const char *format, ...) VESK_PRINTF(1, 2);

VESK_END_DECLS

#ifdef VESK_INTERNAL
#include "base/script_text.h"
#endif

#endif
