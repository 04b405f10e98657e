#include "base/messages.h"

#include "base/file_report.h"
#include "base/session_state.h"
#include "base/ui_port.h"

#include <cstdarg>

void display_message(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string text = format_for_script(format, arguments, message_size - 1);
    va_end(arguments);
    debugf("sending command to TCL: %s\n", text.c_str());
    script_evaluate("display_message \"" + text + "\"");
}

int windows_message_dialog(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string text = format_message(format, arguments);
    va_end(arguments);
    file_report_box(text);
    pump_begin();
    ui_port().message_box("VESK Message", text.c_str());
    pump_end();
    return 1;
}
