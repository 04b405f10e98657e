/* Adds one of everything: shadows a built-in command, replaces the native importer, brings a texture
   loader, surface filters and menu entries. */

#include "plugin/vesk.h"

static void my_get_platform(void) { command_result_set("mine"); }

static object_t *import_nothing(const char *filename)
{
    display_message("not today: %s", filename);
    return 0;
}

static VESKImage *load_grey(const char *filename)
{
    VESKImage *image = new_veskimage(filename);
    unsigned char *data = myalloc(4);
    for (int i = 0; i < 4; ++i)
        data[i] = (unsigned char)(60 * i);
    vesk_image_set_dim(image, 2, 2, 1);
    vesk_image_set_data(image, data);
    return image;
}

/* Splits a polygon into a fan of triangles and takes the polygon away. */
static void fan(object_t *object, surface_t *surface)
{
    const svertex *corners[64];
    int n = 0;
    for (const listitem *node = surface->refs; node && n < 64; node = node->next)
        corners[n++] = (const svertex *)node->data;
    for (int i = 1; i + 1 < n; ++i) {
        surface_t *triangle = new_surface();
        surface_add_vertex(triangle, corners[0]->vertex, 0, 0);
        surface_add_vertex(triangle, corners[i]->vertex, 0, 0);
        surface_add_vertex(triangle, corners[i + 1]->vertex, 0, 0);
        object_add_surface(object, triangle);
    }
    object_remove_surface(object, surface);
}

static int calls;
static void count(object_t *object, surface_t *surface)
{
    (void)object;
    (void)surface;
    ++calls;
}
static void filter_calls(void) { command_result_append_int(calls); }

__attribute__((no_sanitize("undefined"))) static void fault(object_t *object, surface_t *surface)
{
    volatile int *volatile nowhere = 0;
    (void)object;
    (void)surface;
    *nowhere = 1;
}

int VESKPluginInit(void)
{
    vesk_add_command("get_platform", my_get_platform);
    vesk_add_command("filter_calls", filter_calls);
    vesk_replace_importer_function(".VESK", import_nothing);
    vesk_register_texture_loader(".grey", "Grey files", load_grey);
    vesk_register_surface_filter("Fan", "Makes triangles.", fan, 0);
    vesk_register_surface_filter("Count [x]", 0, count, VESK_FILTER_NO_UNDO);
    vesk_register_surface_filter("Fault", "", fault, 0);
    vesk_add_export_menu_item("Grey...", "vesk filter_calls");
    vesk_add_menu_item(".mbar.file.menu", "A \"label\"", "vesk filter_calls");
    vesk_add_import_menu_item("Old", "x");
    return 1;
}

void VESKPluginExit(void) {}
