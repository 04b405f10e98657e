#ifndef VESK_BASE_MESSAGES_INTERNAL_H
#define VESK_BASE_MESSAGES_INTERNAL_H

#include "base/messages.h"

#include <string>
#include <string_view>

constexpr int message_size = 2048; // of every formatted text, its terminator included

// Console text through the port (standard output; standard error in batch mode); dropped once the
// console is released.
void console_printf(const char *format, ...) VESK_PRINTF(1, 2);
void console_release();

void set_debug_mode(bool on);
bool debug_mode();

// `text` so that it stands for itself between double quotes of a script: "[ ] $ \" \\ { } ;" are
// escaped. For texts without those it returns them unchanged.
std::string quote_for_script(std::string_view text);

// `text` as one word of a script, outside quotes.
std::string script_word(std::string_view text);

// A script call with text arguments: `format` holds only %s and %d, every %s stands between double
// quotes and is neutralised with quote_for_script. Returns the interpreter's result.
const char *script_call(const char *format, ...) VESK_PRINTF(1, 2);

#endif
