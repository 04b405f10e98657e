// A menu entry, in C++: Tools > Count triangles tells how many triangles a renderer would draw.

#include <plugin/vesk.h>

namespace {

long triangles_below(const object_t *object)
{
    long count = 0;
    for (const listitem *node = object->surfaces; node != nullptr; node = node->next) {
        const auto *surface = reinterpret_cast<const surface_t *>(node->data);
        if (surface->type == SURFACE_POLYGON && surface->num_refs > 2)
            count += surface->num_refs - 2;
    }
    for (const listitem *node = object->children; node != nullptr; node = node->next)
        count += triangles_below(reinterpret_cast<const object_t *>(node->data));
    return count;
}

void count_triangles()
{
    const long count = triangles_below(vesk_get_world());
    command_result_appendf("%ld", count);
    display_message("%ld triangles", count);
}

} // namespace

int VESKPluginInit(void)
{
    vesk_add_command("count_triangles", count_triangles);
    vesk_add_tools_menu_item("Count triangles", "vesk count_triangles",
                             "Tells how many triangles the scene has.");
    return 1;
}

void VESKPluginExit(void) {}

const char *VESKPluginInfo(void) { return "count 1.0"; }
const char *VESKPluginAbout(void) { return "Counts triangles."; }
