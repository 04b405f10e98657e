// Commands of the preferences window.

#include "base/command_result.h"
#include "base/command_row.h"
#include "base/prefs.h"
#include "base/redraw.h"
#include "plugin/loader.h"
#include "program/own_commands.h"
#include "view/axis_cross.h"

#include <cstdio>
#include <string>

namespace {

std::string text_of(int value) { return std::to_string(value); }
std::string text_of(const char *value) { return value; }
std::string text_of(double value)
{
    char buffer[32];
    snprintf(buffer, sizeof buffer, "%.15g", value);
    return buffer;
}

// Key, kind and default of each row, three words each, an earlier field's second row left out.
void command_prefs_rows()
{
    command_result_set("");
    const auto tell = [](const char *key, const char *kind, const std::string &value) {
        for (const std::string_view word :
             {std::string_view(key), std::string_view(kind), std::string_view(value)})
            command_result_append_element(word);
    };
#define PREF(key, field, kind, value) tell(key, #kind, text_of(value));
#define PREF_AGAIN(key, field, kind)
#include "base/prefs_rows.inc"
#undef PREF
#undef PREF_AGAIN
}

constexpr int most_skipped = 1000;

void skip_plugins(int count, const char *const *words) { plugins_skip(count, words); }

void command_axis_colours(int x, int y, int z)
{
    set_axis_colours(x, y, z);
    redraw_all();
}

} // namespace

std::span<const own_command_t> preference_commands()
{
    using enum command_kind;
    static const own_command_t rows[] = {
        command_row("prefs_rows", command_prefs_rows, query, nullptr,
                    "returns key, kind and default of each preference"),
        command_row("axis_colours", command_axis_colours, view, "<int x> <int y> <int z>",
                    "colours of the axes in the views, as numbers 0xRRGGBB"),
        command_row("plugins_skip", skip_plugins, view, 0, most_skipped, "<file name> ...",
                    "plug-ins that are not loaded at the start, * for all"),
    };
    return rows;
}
