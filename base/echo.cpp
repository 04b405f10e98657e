#include "base/echo.h"

#include "base/messages.h"
#include "base/ui_port.h"

#include <charconv>

namespace {

template <class Number>
std::string shortest(Number value)
{
    char text[40];
    // Deliberate: minus nothing is nothing.
    const std::to_chars_result end =
        std::to_chars(text, text + sizeof text, value == 0 ? 0 : value);
    return {text, end.ptr};
}

} // namespace

void echo_command(const std::vector<std::string> &words)
{
    // Not by tcl_command: a list of elements may be longer than its buffer.
    std::string script = "echo_command";
    for (const std::string &word : words)
        script.append(1, ' ').append(script_word(word));
    bool ok = true;
    ui_port().eval(script.c_str(), &ok);
    if (!ok)
        tcl_trace_error("echo_command");
}

void echo_note(const std::string &text) { script_call("echo_note \"%s\"", text.c_str()); }

std::string echo_number(float value) { return shortest(value); }

std::string echo_number(double value) { return shortest(value); }

std::vector<std::string> echo_point(const point3_t &p)
{
    return {echo_number(p.x), echo_number(p.y), echo_number(p.z)};
}
