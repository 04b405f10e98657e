#include "plugin/dialogs.h"

#include "base/command_result.h"
#include "base/messages.h"
#include "base/session_state.h"

#include <string>

namespace {

// Calls one of the scripts' dialog procedures. It waits for the user and so lets events in; edits
// are refused meanwhile.
const char *ask(const char *procedure, const char *title, const char *const *filters)
{
    const char *filter_text = vesk_filter_array_to_string(filters);
    pump_begin();
    const char *answer = script_call("%s \"%s\" \"%s\"", procedure, title, filter_text);
    pump_end();
    return answer;
}

} // namespace

const char *vesk_filter_array_to_string(const char *const *filters)
{
    static std::string text;
    text.clear();
    for (const char *const *p = filters; *p != nullptr; p += 2) {
        std::string patterns = p[1];
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
    return ask("get_opentexturename", title, filters);
}

const char *vesk_get_load_filename(const char *title, const char *const *filters)
{
    return ask("get_loadfilename", title, filters);
}

const char *vesk_get_import_filename(const char *title, const char *const *filters)
{
    return ask("get_importfilename", title, filters);
}

const char *vesk_get_save_filename(const char *title, const char *const *filters)
{
    tcl_command("set fsBox(currentfilter) 0");
    return ask("get_savefilename", title, filters);
}

const char *vesk_get_export_filename(const char *title, const char *const *filters)
{
    tcl_command("set fsBox(currentfilter) 0");
    return ask("get_exportfilename", title, filters);
}

const char *vesk_get_export_folder(const char *title)
{
    pump_begin();
    const char *answer = script_call("get_exportfolder \"%s\"", title);
    pump_end();
    return answer;
}
