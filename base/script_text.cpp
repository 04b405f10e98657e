#include "base/script_text.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

namespace {

// A formatted text in pieces: text of the format, and texts of its %s arguments.
struct piece_t {
    std::string text;
    bool is_argument;
};

template <class T>
std::string format_one(const std::string &spec, T value)
{
    char buffer[512]; // %f of the largest double takes 317
    const int length = snprintf(buffer, sizeof buffer, spec.c_str(), value);
    return std::string(buffer, static_cast<size_t>(std::clamp(length, 0, 511)));
}

// Formats piece by piece, because the %s arguments are neutralised and the rest is not.
std::vector<piece_t> format_pieces(const char *format, va_list arguments)
{
    std::vector<piece_t> pieces{{"", false}};
    for (const char *p = format; *p != '\0'; ++p) {
        if (*p != '%') {
            pieces.back().text += *p;
            continue;
        }
        if (p[1] == '%') {
            pieces.back().text += *p++;
            continue;
        }
        std::string spec = "%";
        while (*++p != '\0' && std::string_view("-+ #0123456789.lhz").find(*p) != std::string::npos)
            spec += *p;
        if (*p == '\0')
            break;
        spec += *p;
        const bool is_long = spec.find('l') != std::string::npos;
        switch (*p) {
        case 's': {
            const char *text = va_arg(arguments, const char *);
            pieces.push_back({text == nullptr ? "" : text, true});
            pieces.push_back({"", false});
            break;
        }
        case 'f':
        case 'g':
        case 'e':
            pieces.back().text += format_one(spec, va_arg(arguments, double));
            break;
        default:
            pieces.back().text += is_long ? format_one(spec, va_arg(arguments, long))
                                          : format_one(spec, va_arg(arguments, int));
        }
    }
    return pieces;
}

// The text of the pieces, cut to `limit` bytes before its arguments are neutralised, so that no
// escape is ever cut in two.
std::string neutral_text(const std::vector<piece_t> &pieces, size_t limit)
{
    std::string text;
    for (const piece_t &piece : pieces) {
        const std::string_view kept = std::string_view(piece.text).substr(0, limit);
        limit -= kept.size();
        text += piece.is_argument ? quote_for_script(kept) : std::string(kept);
    }
    return text;
}

} // namespace

std::string format_text(const char *format, va_list arguments)
{
    va_list again;
    va_copy(again, arguments);
    const int length = vsnprintf(nullptr, 0, format, again);
    va_end(again);
    if (length <= 0)
        return {};
    std::string text(static_cast<size_t>(length) + 1, '\0');
    vsnprintf(text.data(), text.size(), format, arguments);
    text.pop_back();
    return text;
}

std::string format_message(const char *format, va_list arguments)
{
    std::string text = format_text(format, arguments);
    if (text.size() >= message_size)
        text.resize(message_size - 1);
    return text;
}

#pragma GCC diagnostic pop

std::string format_for_script(const char *format, va_list arguments, std::size_t limit)
{
    return neutral_text(format_pieces(format, arguments), limit);
}

std::string quote_for_script(std::string_view text)
{
    std::string quoted;
    quoted.reserve(text.size());
    for (const char c : text) {
        if (std::string_view("[]$\"\\{};").find(c) != std::string_view::npos)
            quoted += '\\';
        quoted += c;
    }
    return quoted;
}

std::string script_word(std::string_view text)
{
    std::string word;
    for (const char c : text) {
        if (c == '\n') {
            word += "\\n";
            continue;
        }
        if (std::string_view("[]$\"\\{}; \t\r#").find(c) != std::string_view::npos)
            word += '\\';
        word += c;
    }
    return word.empty() ? "{}" : word;
}
