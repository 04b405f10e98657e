#ifndef VESK_BASE_COMMAND_RESULT_H
#define VESK_BASE_COMMAND_RESULT_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* The result text of the running command: handlers fill it, the script gets it. It is reset at the
   start of every command. Returned texts are owned by the program and valid until the next change;
   null means that there is none. */

VESK_API const char *command_result_get(void);

/* Replaces the result by a copy of `text`; null for no result. Returns the new result. */
VESK_API const char *command_result_set(const char *text);

/* Appends a text; null changes nothing. Returns the result. */
VESK_API const char *command_result_append_string(const char *text);

/* Appends a number in decimal. Returns the result. */
VESK_API const char *command_result_append_int(int number);

/* Appends a formatted text of at most 2047 bytes. Returns the result. */
VESK_API const char *command_result_appendf(const char *format, ...) VESK_PRINTF(1, 2);

VESK_END_DECLS

#ifdef VESK_INTERNAL

#include <string>
#include <string_view>

// Appends one element of a Tcl list, quoted as it needs, after a blank when the result is not
// empty.
void command_result_append_element(std::string_view text);
void command_result_append_element(int number);

// `text` as one element of a Tcl list.
std::string list_element(std::string_view text);

#endif

#endif
