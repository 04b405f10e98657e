#include "view/tools.h"

#include "base/messages.h"
#include "base/redraw.h"
#include "edit/document/modes.h"
#include "edit/document/selection.h"
#include "edit/palette_preview.h"
#include "edit/panel_transform.h"
#include "view/highlight.h"
#include "view/interaction.h"
#include "view/tool_band.h"
#include "view/tool_create.h"
#include "view/tool_insert.h"
#include "view/tool_knife.h"
#include "view/tool_loop_cut.h"
#include "view/tool_measure.h"
#include "view/tool_operations.h"
#include "view/tool_options.h"
#include "view/tool_place.h"
#include "view/tool_select.h"
#include "view/tool_slice.h"
#include "view/tool_transform.h"
#include "view/tool_zoom.h"
#include "view/views_internal.h"

#include <cstring>

namespace {

// In the order in which they are asked whether a draw mode is theirs.
const tool_t *const tools[] = {&transform_tool, &zoom_tool,     &create_tool, &measure_tool,
                               &insert_tool,    &loop_cut_tool, &knife_tool,  &slice_tool,
                               &band_tool,      &place_tool};

const tool_t *chosen = nullptr; // by name

template <class Visit>
void for_each_tool(Visit &&visit)
{
    for (const tool_t *tool : tools)
        visit(*tool);
    for (const tool_t &tool : operation_tools())
        visit(tool);
}

const tool_t *tool_named(const char *name)
{
    const tool_t *found = nullptr;
    for_each_tool([&](const tool_t &tool) {
        if (tool.name != nullptr && std::strcmp(tool.name, name) == 0)
            found = &tool;
    });
    return found;
}

void choose(const tool_t *tool)
{
    if (interaction_drag() == drag_kind::tool)
        interaction_cancel();
    highlight_clear();
    const tool_t *before = tool_now();
    chosen = tool;
    if (before != nullptr && before != tool_now() && before->leave != nullptr)
        before->leave();
    interaction_show_pointer();
    tcl_command("set_view_tool_ui %s", tool == nullptr ? "none" : tool->name);
    redraw_all();
}

void draw_mode_changed()
{
    highlight_clear();
    if (chosen != nullptr)
        choose(nullptr);
    else
        interaction_show_pointer();
}

void cancel_half_drawn() { create_tool.leave(); }

// A drag must not continue over another selection than the one that it moves.
void selection_changes(const char *, void *) { tools_interrupt(); }

} // namespace

const tool_t *tool_now()
{
    if (chosen != nullptr)
        return chosen;
    for (const tool_t *tool : tools) {
        if (tool->name == nullptr && tool->wanted())
            return tool;
    }
    return nullptr;
}

void tools_install()
{
    interaction_set_tools(tool_now);
    set_draw_cancel_hook(cancel_half_drawn);
    set_draw_mode_hook(draw_mode_changed);
    vesk_add_selection_changed_callback(selection_changes, nullptr);
}

const char *cross_pointer(const pointer_event_t &) { return "crosshair"; }

const char *flat_cross_pointer(const pointer_event_t &event)
{
    return is_orthographic(event.view) ? "crosshair" : nullptr;
}

bool tool_key(const char *keysym)
{
    if (std::strcmp(keysym, "Escape") == 0 && interaction_drag() != drag_kind::none) {
        interaction_cancel();
        return true;
    }
    const tool_t *tool = tool_now();
    return tool != nullptr && tool->key != nullptr && tool->key(keysym);
}

void tools_interrupt()
{
    for_each_tool([](const tool_t &tool) {
        if (tool.runs != nullptr && tool.runs())
            interaction_cancel();
    });
    panel_transform_cancel();
    palette_preview_end();
}

void tools_forget()
{
    interaction_forget();
    for_each_tool([](const tool_t &tool) {
        if (tool.forget != nullptr)
            tool.forget();
    });
}

void command_set_view_tool(const char *name)
{
    const tool_t *tool = tool_named(name);
    if (tool == nullptr && std::strcmp(name, "none") != 0)
        display_message("no view tool named '%s'", name);
    else
        choose(tool);
}

void tools_reset_for_test()
{
    highlight_clear();
    tools_forget();
    chosen = nullptr;
    tool_select_reset_for_test();
    tool_options_reset_for_test();
}
