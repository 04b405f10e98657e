#include "plugin/dialogs.h"

#include "app/command_result.h"
#include "app/messages_internal.h"
#include "app/session_state.h"

#include <string>

namespace {

// A script that waits for the user lets events in: what edits meanwhile is refused.
template <class... A> const char *ask(const char *format, A... arguments)
{
    pump_begin();
    const char *answer = script_call(format, arguments...);
    pump_end();
    return answer;
}

} // namespace

#pragma GCC diagnostic ignored "-Wformat-nonliteral"

const char *vesk_filter_array_to_string(const char *const *filters)
{
    static std::string text;
    text.clear();
    for (const char *const *p = filters; *p != nullptr; p += 2) {
        std::string patterns;
        for (const char *c = p[1]; *c != '\0'; ++c)
            patterns += *c;
        while (!patterns.empty() && patterns.back() == ' ')
            patterns.pop_back();
        if (!text.empty())
            text += ' ';
        text += "{" + list_element(p[0]) + " " + list_element(patterns) + "}";
    }
    debugf("filter string '%s'\n", text.c_str());
    return text.c_str();
}

const char *vesk_get_open_texturefilename(const char *title, const char *const *filters)
{
    return ask("get_opentexturename \"%s\" \"%s\"", title, vesk_filter_array_to_string(filters));
}

const char *vesk_get_load_filename(const char *title, const char *const *filters)
{
    return ask("get_loadfilename \"%s\" \"%s\"", title, vesk_filter_array_to_string(filters));
}

const char *vesk_get_import_filename(const char *title, const char *const *filters)
{
    return ask("get_importfilename \"%s\" \"%s\"", title, vesk_filter_array_to_string(filters));
}

const char *vesk_get_save_filename(const char *title, const char *const *filters)
{
    tcl_command("set fsBox(currentfilter) 0");
    return ask("get_savefilename \"%s\" \"%s\"", title, vesk_filter_array_to_string(filters));
}

const char *vesk_get_export_filename(const char *title, const char *const *filters)
{
    tcl_command("set fsBox(currentfilter) 0");
    return ask("get_exportfilename \"%s\" \"%s\"", title, vesk_filter_array_to_string(filters));
}

const char *vesk_get_export_folder(const char *title)
{
    return ask("get_exportfolder \"%s\"", title);
}
