#include "view/tool_extra.h"

#include "base/messages.h"
#include "base/messages_internal.h"
#include "base/redraw.h"
#include "edit/document/modes.h"
#include "view/tool_create.h"
#include "view/tool_insert.h"
#include "view/tool_measure.h"

#include <cstring>

namespace {

const extra_tool_t *const tools[] = {&measure_tool, &insert_tool};
const extra_tool_t *now = nullptr;

void change_to(const extra_tool_t *tool)
{
    if (now != nullptr && now != tool) {
        now->leave();
    }
    if (create_is_half_drawn()) {
        create_cancel();
    }
    now = tool;
    tcl_command("set_view_tool_ui %s", tool == nullptr ? "none" : tool->name);
    redraw_all();
}

void draw_mode_changed()
{
    if (now != nullptr) {
        change_to(nullptr);
    }
}

} // namespace

const extra_tool_t *extra_tool() { return now; }

void command_set_view_tool(const char *name)
{
    if (std::strcmp(name, "none") == 0) {
        change_to(nullptr);
        return;
    }
    for (const extra_tool_t *tool : tools) {
        if (std::strcmp(tool->name, name) == 0) {
            change_to(tool);
            return;
        }
    }
    display_message("no view tool named '%s'", name);
}

void extra_tool_install() { set_draw_mode_hook(draw_mode_changed); }

void extra_tool_reset_for_test() { now = nullptr; }
