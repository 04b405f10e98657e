#include "view/tool_band.h"

#include "base/redraw.h"
#include "view/interaction.h"
#include "view/overlay.h"
#include "view/tool_select.h"
#include "view/tools.h"
#include "view/views_internal.h"

#include <cstring>

namespace {

pointer_event_t start;
bool moved = false;

bool press(const pointer_event_t &event)
{
    start = event;
    moved = false;
    return true;
}

void motion(const pointer_event_t &event)
{
    moved = moved || !is_click(start, event);
    if (moved)
        show_band(start, event);
}

void drop()
{
    overlay() = {};
    redraw(start.view);
}

void hand_back() { command_set_view_tool("none"); }

void release(const pointer_event_t &event)
{
    drop();
    hand_back();
    if (moved)
        select_band(start.view, {start.x, start.y, event.x, event.y, event.x < start.x},
                    event.state);
    else
        select_click(event.view, event.x, event.y, event.state, event.seconds);
}

void forget() { overlay() = {}; }

bool key(const char *keysym)
{
    if (std::strcmp(keysym, "Escape") != 0)
        return false;
    hand_back();
    return true;
}

} // namespace

const tool_t band_tool = {.name = "band",
                          .press = press,
                          .motion = motion,
                          .release = release,
                          .cancel = drop,
                          .pointer = cross_pointer,
                          .key = key,
                          .forget = forget};
