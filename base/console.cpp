#include "base/console.h"

#include "base/script_text.h"
#include "base/ui_port.h"

#include <cstdarg>

namespace {

bool debugging = false;
bool console_open = true;

} // namespace

void console_printf(const char *format, ...)
{
    if (!console_open)
        return;
    va_list arguments;
    va_start(arguments, format);
    const std::string text = format_text(format, arguments);
    va_end(arguments);
    ui_port().console_write(text.c_str());
}

void console_release() { console_open = false; }

void set_debug_mode(bool on) { debugging = on; }

bool debug_mode() { return debugging; }

void debugf(const char *format, ...)
{
    if (!debugging)
        return;
    va_list arguments;
    va_start(arguments, format);
    const std::string text = format_message(format, arguments);
    va_end(arguments);
    if (console_open)
        ui_port().console_write(text.c_str());
}
