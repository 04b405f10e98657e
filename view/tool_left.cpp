#include "view/tool_left.h"

#include "edit/document/modes.h"
#include "edit/document/selection_internal.h"
#include "edit/panel_transform.h"
#include "view/handles.h"
#include "view/interaction.h"
#include "view/number_field.h"
#include "view/overlay.h"
#include "view/tool_create.h"
#include "view/tool_extra.h"
#include "view/tool_select.h"
#include "view/tool_transform.h"
#include "view/views_internal.h"

#include <cstring>

namespace {

bool acts_on_selection() { return mode_is_selectable(draw_mode()) != 0; }

// Who has the button; a drag stays with the one that it began with.
enum class family { TRANSFORM, CREATE, EXTRA };
family whose = family::TRANSFORM;

bool press(const pointer_event_t &event)
{
    const bool creates = !acts_on_selection() && draw_mode() != DRAW_ZOOM;
    whose = extra_tool() != nullptr ? family::EXTRA : creates ? family::CREATE : family::TRANSFORM;
    switch (whose) {
    case family::EXTRA:
        return extra_tool()->press(event);
    case family::CREATE:
        return create_press(event);
    default:
        return transform_press(event);
    }
}

// The one that has the button; an extra tool may have been put away during its drag.
void pass_on(const pointer_event_t &event, void (*extra_tool_t::*extra)(const pointer_event_t &),
             void (*create)(const pointer_event_t &), void (*transform)(const pointer_event_t &))
{
    if (whose != family::EXTRA) {
        (whose == family::CREATE ? create : transform)(event);
    } else if (extra_tool() != nullptr) {
        (extra_tool()->*extra)(event);
    }
}

void motion(const pointer_event_t &event)
{
    pass_on(event, &extra_tool_t::motion, create_motion, transform_motion);
}

void release(const pointer_event_t &event)
{
    pass_on(event, &extra_tool_t::release, create_release, transform_release);
}

void cancel()
{
    if (whose != family::EXTRA) {
        (whose == family::CREATE ? create_cancel : transform_cancel)();
    } else if (extra_tool() != nullptr) {
        extra_tool()->cancel();
    }
}

void click(const pointer_event_t &event)
{
    if (extra_tool() == nullptr && acts_on_selection()) {
        select_click(event.view, event.x, event.y, event.state, event.seconds);
    }
}

void hover(const pointer_event_t &event)
{
    if (extra_tool() != nullptr) {
        win_set_handle_cursor(event.view, HANDLE_NONE);
        extra_tool()->hover(event);
    } else if (acts_on_selection()) {
        win_set_handle_cursor(event.view, handle_at(event.view, event.x, event.y));
    } else {
        create_hover(event);
    }
}

bool holds() { return number_field_is_open(); }

void forget()
{
    transform_forget();
    create_forget();
}

void outside()
{
    if (extra_tool() != nullptr && extra_tool()->outside != nullptr) {
        extra_tool()->outside();
    }
}

const left_tool_t functions = {press, motion, release, cancel, click,
                               hover, holds,  forget,  outside};

void cancel_half_drawn()
{
    if (create_is_half_drawn()) {
        create_cancel();
    }
}

// Half a drag must not go on over another selection than the one that it moves.
void selection_changes(const char *, void *) { left_tool_interrupt(); }

} // namespace

void left_tool_install()
{
    interaction_set_left_tool(&functions);
    set_draw_cancel_hook(cancel_half_drawn);
    extra_tool_install();
    vesk_add_selection_changed_callback(selection_changes, nullptr);
}

void left_tool_interrupt()
{
    if (transform_runs()) {
        interaction_cancel();
    }
    panel_transform_cancel();
}

bool left_tool_key(const char *key)
{
    if (std::strcmp(key, "Escape") == 0 && interaction_drag() != drag_kind::none) {
        interaction_cancel();
        return true;
    }
    if (extra_tool() != nullptr) {
        return extra_tool()->key(key);
    }
    return create_key(key) || (interaction_drag() == drag_kind::tool && transform_key(key));
}

void left_tool_reset_for_test()
{
    transform_forget();
    whose = family::TRANSFORM;
    extra_tool_reset_for_test();
    tool_create_reset_for_test();
    tool_select_reset_for_test();
}
