/* A surface filter: Surface > Shade by slope gives each selected polygon a grey by how steep it is. The
   program opens the undo, calls the function for each surface and redraws. */

#include <math.h>
#include <plugin/vesk.h>

static void shade_by_slope(object_t *object, surface_t *surface)
{
    (void)object;
    surface_calc_normal(surface);
    const long grey = lrintf(255 * fabsf(surface->normal.y)); /* flat ground is white */
    surface_set_col(surface, rgb_to_index(grey << 16 | grey << 8 | grey));
}

int VESKPluginInit(void)
{
    vesk_register_surface_filter("Shade by slope", "Gives polygons a grey by how steep they are.",
                                 shade_by_slope, 0);
    return 1;
}

void VESKPluginExit(void) {}

const char *VESKPluginInfo(void) { return "slope 1.0"; }
const char *VESKPluginAbout(void) { return "Shades surfaces by their slope."; }
