#include "view/tool_zoom.h"

#include "base/redraw.h"
#include "edit/document/modes.h"
#include "view/interaction.h"
#include "view/overlay.h"
#include "view/tool_create.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cstdlib>

namespace {

pointer_event_t start;
bool moved = false;

bool wanted() { return draw_mode() == DRAW_ZOOM; }

bool press(const pointer_event_t &event)
{
    start = event;
    moved = false;
    return is_orthographic(event.view);
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

void release(const pointer_event_t &event)
{
    drop();
    if (!moved) {
        qualifier_shift(event.state) != 0 ? zoom_out_win(start.view) : zoom_in_win(start.view);
        return;
    }
    int geometry[4] = {};
    win_get_geom(start.view, geometry);
    const auto width = static_cast<float>(std::max(std::abs(event.x - start.x), 4));
    const auto height = static_cast<float>(std::max(std::abs(event.y - start.y), 4));
    view_pan_by(start.view,
                static_cast<float>(geometry[2]) / 2 - static_cast<float>(event.x + start.x) / 2,
                static_cast<float>(geometry[3]) / 2 - static_cast<float>(event.y + start.y) / 2);
    view_zoom_by(start.view, std::min(static_cast<float>(geometry[2]) / width,
                                      static_cast<float>(geometry[3]) / height));
    redraw_orth();
}

const char *pointer(const pointer_event_t &event)
{
    return is_orthographic(event.view) ? "glass" : nullptr;
}

} // namespace

// Between drags it shows where the pointer is, as the create tools do.
const tool_t zoom_tool = {.wanted = wanted,
                          .press = press,
                          .motion = motion,
                          .release = release,
                          .cancel = drop,
                          .pointer = pointer,
                          .hover = show_point_at};
