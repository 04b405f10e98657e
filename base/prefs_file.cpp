// The settings file: a header line with a version, then one line for each setting in table order.

#include "base/prefs_file.h"

#include "base/atomic_file.h"
#include "base/filename.h"
#include "base/home.h"
#include "base/messages.h"
#include "base/numbers.h"
#include "base/prefs.h"
#include "base/tokens.h"
#include "base/ui_port.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <strings.h>

namespace {

constexpr const char *file_name = "veskprefs.txt";
constexpr int file_version = 12;
constexpr size_t line_limit = 254; // of a longer line without quotes the rest is the next line

// The window geometry settings by view id: x, y, width, height.
int *const geometry[][4] = {
    {&prefs.frontwin_x, &prefs.frontwin_y, &prefs.frontwin_width, &prefs.frontwin_height},
    {&prefs.sidewin_x, &prefs.sidewin_y, &prefs.sidewin_width, &prefs.sidewin_height},
    {&prefs.planwin_x, &prefs.planwin_y, &prefs.planwin_width, &prefs.planwin_height},
    {&prefs.win3d_x, &prefs.win3d_y, &prefs.win3d_width, &prefs.win3d_height},
    {&prefs.cpwin_x, &prefs.cpwin_y, &prefs.cpwin_width, &prefs.cpwin_height},
};

// The next line of `text` from `at` on, its line end included: of one with a text in quotes all, of
// others at most 254 characters.
std::string next_line(const std::string &text, size_t *at)
{
    const size_t line_end = text.find('\n', *at);
    const size_t whole = line_end == std::string::npos ? text.size() - *at : line_end + 1 - *at;
    std::string line = text.substr(*at, whole);
    if (line.find('"') == std::string::npos)
        line.resize(std::min(whole, line_limit));
    *at += line.size();
    return line;
}

int truncated(double value)
{
    if (std::isnan(value))
        return 0;
    return static_cast<int>(std::clamp(value, -2147483648.0, 2147483647.0));
}

int boolean_of(const char *value)
{
    if (strcasecmp(value, "TRUE") == 0)
        return 1;
    if (strcasecmp(value, "FALSE") == 0)
        return 0;
    return truncated(double_of(value));
}

// The text in quotes on a line: a backslash stands before quotes and backslashes, "\n" and "\r" are
// line ends.
std::string quoted_text(const std::string &line)
{
    std::string text;
    for (size_t i = line.find('"') + 1; i < line.size() && line[i] != '"'; ++i) {
        const bool escaped = line[i] == '\\' && i + 1 < line.size();
        const char c = escaped ? line[++i] : line[i];
        text += escaped && c == 'n' ? '\n' : escaped && c == 'r' ? '\r' : c;
    }
    return text;
}

// "0xFF00C0"; anything else leaves the setting.
void read_hex(const char *value, int *out)
{
    if (value[0] == '0' && value[1] == 'x' &&
        std::isxdigit(static_cast<unsigned char>(value[2])) != 0)
        *out = static_cast<int>(unsigned_of_hex(value));
}

void set_value(const vesk_pref_t &row, const char *value)
{
    switch (row.kind) {
    case PREF_DOUBLE:
        *static_cast<double *>(row.address) = double_of(value);
        break;
    case PREF_INT:
        *static_cast<int *>(row.address) = truncated(double_of(value));
        break;
    case PREF_HEX:
        read_hex(value, static_cast<int *>(row.address));
        break;
    case PREF_STRING:
        prefs_set_string(static_cast<char **>(row.address), value);
        break;
    case PREF_KEY:
        *static_cast<unsigned char *>(row.address) = prefs_key_code(value);
        break;
    default:
        *static_cast<int *>(row.address) = boolean_of(value);
    }
}

// One line after the header; false stops the reading.
bool read_setting(const std::string &line, int number)
{
    if (line[0] == '\n' || line[0] == '#' || line == "\r\n")
        return true;
    std::string tokenized = line;
    char *tokens[VESK_MAX_TOKENS];
    const int count = vesk_get_tokens(tokenized.data(), nullptr, tokens);
    if (count != 2) {
        console_printf("error reading prefs file (line %d) - expected token value pair - actually "
                       "found %d items '%s'\n",
                       number, count, line.c_str());
        return false;
    }
    debugf("%d '%s' '%s'\n", number, tokens[0], tokens[1]);
    const vesk_pref_t *row = vesk_prefs_get_spec(tokens[0]);
    if (row == nullptr) {
        console_printf("prefs token '%s' in prefs file (line %d) - ignored (it's probably no "
                       "longer used)\n",
                       tokens[0], number);
    } else {
        const bool quoted = row->kind == PREF_STRING && line.find('"') != std::string::npos;
        set_value(*row, quoted ? quoted_text(line).c_str() : tokens[1]);
    }
    return true;
}

// Whether the first line is that of a settings file of this version; else the user is told.
bool accept_header(std::string line, const char *name)
{
    char *tokens[VESK_MAX_TOKENS];
    const int count = vesk_get_tokens(line.data(), nullptr, tokens);
    const char *magic = count > 0 ? tokens[0] : "";
    if (std::strcmp(magic, "VESK3P") == 0) {
        windows_message_dialog("'%s' is a prefs file from an old version of VESK.\nsave-settings "
                               "to replace it.\n.",
                               name);
        return false;
    }
    if (std::strcmp(magic, "VESKPR") != 0) {
        windows_message_dialog("'%s' is not a valid VESK prefs file.", name);
        return false;
    }
    if ((count > 1 ? int_of(tokens[1]) : 0) < file_version) {
        windows_message_dialog("The prefs file is from an older version of VESK.\nsave-settings to "
                               "replace it.\n.");
        return false;
    }
    return true;
}

void read_settings(const std::string &text, const char *name)
{
    console_printf("loading settings from %s.\n", name);
    if (text.empty()) {
        console_printf("empty preferences file!\n");
        return;
    }
    size_t at = 0;
    if (!accept_header(next_line(text, &at), name))
        return;
    for (int number = 1; at < text.size(); ++number) {
        if (!read_setting(next_line(text, &at), number))
            return;
    }
    console_printf("prefs file %s loaded OK.\n", name);
}

VESK_PRINTF(2, 3) void appendf(std::string &out, const char *format, ...)
{
    char buffer[512];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(buffer, sizeof buffer, format, arguments);
    va_end(arguments);
    out += buffer;
}

void append_quoted(std::string &out, const char *text)
{
    out += '"';
    for (const char *p = text == nullptr ? "" : text; *p != '\0'; ++p) {
        if (*p == '"' || *p == '\\' || *p == '\n' || *p == '\r')
            out += '\\';
        out += *p == '\n' ? 'n' : *p == '\r' ? 'r' : *p;
    }
    out += '"';
}

void append_value(std::string &out, const vesk_pref_t &row)
{
    switch (row.kind) {
    case PREF_INT:
        appendf(out, "%d", *static_cast<const int *>(row.address));
        break;
    case PREF_DOUBLE:
        appendf(out, "%f", *static_cast<const double *>(row.address));
        break;
    case PREF_HEX:
        appendf(out, "0x%X", static_cast<unsigned>(*static_cast<const int *>(row.address)));
        break;
    case PREF_STRING:
        append_quoted(out, *static_cast<char *const *>(row.address));
        break;
    case PREF_KEY:
        out += prefs_key_name(*static_cast<const unsigned char *>(row.address));
        break;
    default:
        out += *static_cast<const int *>(row.address) != 0 ? "TRUE" : "FALSE";
    }
}

} // namespace

const char *prefs_get_prefs_filename(void)
{
    static std::string name;
    const char *profile = std::getenv("USERPROFILE");
    name = profile == nullptr ? file_name : vesk_filename_concat_path_file(profile, file_name);
    return name.c_str();
}

void init_prefs(void)
{
    prefs_set_defaults();
    std::string name = prefs_get_prefs_filename();
    std::string text;
    if (!read_whole_file(name.c_str(), &text)) {
        console_printf("no VESK settings file at %s - looking in $VESK_HOME (%s).\n", name.c_str(),
                       vesk_get_vesk_homedir());
        name = vesk_filename_concat_path_file(vesk_get_vesk_homedir(), file_name);
        if (!read_whole_file(name.c_str(), &text)) {
            console_printf("No settings file found at \"%s\"\n - using default setup. That's OK, a "
                           "file will be created when settings are saved.\n",
                           name.c_str());
            return;
        }
    }
    read_settings(text, name.c_str());
}

void save_prefs(void)
{
    for (const int view : {VIEW_XZ, VIEW_ZY, VIEW_XY, VIEW_XYZ, VIEW_MAIN}) {
        int place[4];
        if (!ui_port().window_geometry(view, place))
            continue; // no window: the setting stays
        for (int i = 0; i < 4; ++i)
            *geometry[view][i] = place[i];
    }
    std::string text;
    appendf(text, "VESKPR %d\n", file_version);
    for (const vesk_pref_t &row : prefs_table()) {
        text += row.key;
        text += ' ';
        append_value(text, row);
        text += '\n';
    }
    const std::string name = prefs_get_prefs_filename();
    if (!atomic_file_write(name.c_str(), text)) {
        windows_message_dialog(
            "can't open preferences file '%s' for writing - settings not saved\n", name.c_str());
        return;
    }
    console_printf("Settings have been saved to %s\n", name.c_str());
}
