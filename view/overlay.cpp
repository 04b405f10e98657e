#include "view/overlay.h"

#include "base/redraw.h"
#include "view/interaction.h"

overlay_t &overlay()
{
    static overlay_t shown;
    return shown;
}

void show_band(const pointer_event_t &press, const pointer_event_t &event)
{
    overlay_t &shown = overlay();
    shown.band_view = event.view;
    shown.x0 = press.x;
    shown.y0 = press.y;
    shown.x1 = event.x;
    shown.y1 = event.y;
    redraw(event.view);
}
