#include "base/command_result.h"

#include "base/messages.h"

#include <charconv>
#include <cstdarg>
#include <cstdio>

namespace {
std::string result;
bool has_result = false;
} // namespace

const char *command_result_get(void) { return has_result ? result.c_str() : nullptr; }

const char *command_result_set(const char *text)
{
    has_result = text != nullptr;
    std::string fresh = has_result ? text : ""; // `text` may be the result itself
    result = std::move(fresh);
    return command_result_get();
}

const char *command_result_append_string(const char *text)
{
    if (text != nullptr) {
        has_result = true;
        result += text;
    }
    return command_result_get();
}

const char *command_result_append_int(int number)
{
    return command_result_append_string(std::to_string(number).c_str());
}

const char *command_result_appendf(const char *format, ...)
{
    char buffer[message_size];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(buffer, sizeof buffer, format, arguments);
    va_end(arguments);
    return command_result_append_string(buffer);
}

std::string list_element(std::string_view text)
{
    const bool plain = !text.empty() && text.find_first_of("[]$\"\\{}; \t\r\n#") == text.npos;
    return plain ? std::string(text) : script_word(text);
}

void command_result_append_element(std::string_view text)
{
    has_result = true;
    if (!result.empty())
        result += ' ';
    result += list_element(text);
}

void command_result_append_element(int number)
{
    has_result = true;
    if (!result.empty())
        result += ' ';
    char digits[16];
    result.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}
