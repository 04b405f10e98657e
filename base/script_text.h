#ifndef VESK_BASE_SCRIPT_TEXT_H
#define VESK_BASE_SCRIPT_TEXT_H

// Texts of the program inside scripts: quoting, and formatting that neutralises its arguments.

#include <cstdarg>
#include <string>
#include <string_view>

constexpr int message_size = 2048; // of every formatted message, its terminator included

// `text` so that it stands for itself between double quotes of a script: "[ ] $ \" \\ { } ;" are
// escaped. For texts without those it returns them unchanged.
std::string quote_for_script(std::string_view text);

// `text` as one word of a script, outside quotes.
std::string script_word(std::string_view text);

// The formatted text, whatever its length; the same cut to a message's size.
std::string format_text(const char *format, va_list arguments);
std::string format_message(const char *format, va_list arguments);

// The formatted text for the inside of double quotes of a script: its %s arguments are quoted, the
// format is not. Cut to `limit` bytes before that, so that no escape is cut in two.
std::string format_for_script(const char *format, va_list arguments,
                              std::size_t limit = std::string::npos);

#endif
