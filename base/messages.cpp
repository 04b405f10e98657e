#include "base/messages_internal.h"
#include "base/session_state.h"
#include "base/ui_port.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <vector>

namespace {

bool debugging = false;
bool console_open = true;

// A formatted text in pieces: what came from the format, and what came from its %s arguments.
struct piece_t {
    std::string text;
    bool is_argument;
};

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

std::string vformat(const char *format, va_list arguments)
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

template <class T>
std::string format_one(const std::string &spec, T value)
{
    char buffer[512]; // %f of the largest double takes 317
    const int length = snprintf(buffer, sizeof buffer, spec.c_str(), value);
    return std::string(buffer, static_cast<size_t>(std::clamp(length, 0, 511)));
}

#pragma GCC diagnostic pop

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

std::string plain_text(const char *format, va_list arguments)
{
    std::string text = vformat(format, arguments);
    if (text.size() >= message_size)
        text.resize(message_size - 1);
    return text;
}

const char *evaluate(const std::string &script)
{
    debugf("sending command to TCL: %s\n", script.c_str());
    bool ok = true;
    const char *result = ui_port().eval(script.c_str(), &ok);
    if (!ok)
        tcl_trace_error(script.c_str());
    return result;
}

} // namespace

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

const char *script_call(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string script = neutral_text(format_pieces(format, arguments), std::string::npos);
    va_end(arguments);
    return evaluate(script);
}

void console_printf(const char *format, ...)
{
    if (!console_open)
        return;
    va_list arguments;
    va_start(arguments, format);
    const std::string text = vformat(format, arguments);
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
    const std::string text = plain_text(format, arguments);
    va_end(arguments);
    if (console_open)
        ui_port().console_write(text.c_str());
}

void display_message(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string text = neutral_text(format_pieces(format, arguments), message_size - 1);
    va_end(arguments);
    debugf("sending command to TCL: %s\n", text.c_str());
    evaluate("display_message \"" + text + "\"");
}

void display_status(void)
{
    tcl_command("sync_ui");
    debugf("done display status\n");
}

int windows_message_dialog(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string text = plain_text(format, arguments);
    va_end(arguments);
    pump_begin();
    ui_port().message_box("VESK Message", text.c_str());
    pump_end();
    return 1;
}

const char *tcl_command(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string script = plain_text(format, arguments);
    va_end(arguments);
    return evaluate(script);
}

const char *tcl_eval_file(const char *file)
{
    bool ok = true;
    const char *result = ui_port().eval_file(file, &ok);
    if (!ok)
        tcl_trace_error(file);
    return result;
}

void tcl_trace_error(const char *context)
{
    console_printf("TCL ERROR IN VESK in %s:\n%s\n", context, ui_port().result());
    const char *trace = ui_port().error_info();
    if (trace == nullptr) {
        console_printf("NO Stack Trace\n");
    } else {
        console_printf("Stack Trace:\n%s\n\n", trace);
    }
}

void set_undo_string(const char *label)
{
    script_call("set_undo_string \"%s\"", label == nullptr ? "" : label);
}

void set_progress_bar(int percent) { script_call("set_progress_bar %d", percent); }

void popup_3d_menu(int x, int y) { script_call("popup_3d_menu %d %d", x, y); }

void popup_view_menu(int view, int x, int y)
{
    script_call("popup_view_menu %d %d %d", view, x, y);
}

void show_number_field(int view, int x, int y, const char *label, int axis, const char *text)
{
    script_call("show_number_field %d %d %d \"%s\" %d \"%s\"", view, x, y, label, axis, text);
}

void hide_number_field(void) { script_call("hide_number_field"); }

void create_texture_menubutton(const char *label, int index)
{
    if (index == 0)
        tcl_command(".mbar.object.menu.texture add separator");
    script_call(".mbar.object.menu.texture add command -label \"%s\" -command \"vesk "
                "set_texture %d\"",
                label, index);
}

void tcl_set_string(const char *name, const char *value)
{
    ui_port().set_var(name, value == nullptr ? "" : value);
}

const char *tcl_get_string(const char *name) { return ui_port().get_var(name); }

void tcl_set_int(const char *name, int value)
{
    ui_port().set_var(name, std::to_string(value).c_str());
}

void tcl_update(void)
{
    pump_begin();
    ui_port().update();
    pump_end();
}

void handle_tcl_events(void)
{
    pump_begin();
    ui_port().pump_events();
    pump_end();
}
