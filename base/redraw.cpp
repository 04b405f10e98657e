#include "base/redraw.h"

#include "base/ui_port.h"

void redraw(int view)
{
    if (is_orthographic(view))
        ui_port().post_redisplay(view);
    else if (view == VIEW_XYZ)
        redraw_3d();
}

void redraw_3d(void) { ui_port().post_redisplay(VIEW_XYZ); }

void redraw_orth(void)
{
    redraw(VIEW_XY);
    redraw(VIEW_ZY);
    redraw(VIEW_XZ);
}

void redraw_all(void)
{
    redraw_orth();
    redraw_3d();
    ui_port().post_redisplay(texture_coords_view);
}

void request_redisplay(int view)
{
    if (view != VIEW_NONE)
        ui_port().post_redisplay(view);
}

void redraw_view(int view)
{
    if (is_orthographic(view) || view == VIEW_XYZ)
        ui_port().draw_now(view);
}
