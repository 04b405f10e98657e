/* After which nothing ends: the command "loop_forever" moves every vertex of the scene's first object
   and goes on asking the program; the command "close_rings", the importer of .ring files and a surface
   filter leave lists that run into themselves. */

#include "plugin/vesk.h"

static volatile int endless = 1;

static void loop_forever(void)
{
    while (endless) {
        object_t *world = vesk_get_world();
        const listitem *first = world->children;
        if (first == 0)
            continue;
        object_t *object = (object_t *)first->data;
        for (const listitem *node = object->vertices; node; node = node->next) {
            vertex *v = (vertex *)node->data;
            v->position.x += 1e-6f;
            command_result_set("going on");
        }
    }
}

/* Lists without an end, of vertices, of corners, of children. */
static void close_rings(void)
{
    object_t *world = vesk_get_world();
    object_t *object = (object_t *)world->children->data;
    listitem *last = object->vertices;
    while (last->next)
        last = last->next;
    last->next = object->vertices;
    surface_t *surface = (surface_t *)object->surfaces->data;
    surface->refs->next->next = surface->refs;
    world->children->next = world->children;
}

static void close_list(listitem *list)
{
    listitem *last = list;
    while (last->next)
        last = last->next;
    last->next = list;
}

static object_t *import_ring(const char *filename)
{
    const point3_t centre = {0, 0, 0};
    object_t *object = create_regular_cube(&centre);
    (void)filename;
    close_list(object->surfaces);
    return object;
}

static void filter_ring(object_t *object, surface_t *surface)
{
    (void)object;
    close_list(surface->refs);
}

int VESKPluginInit(void)
{
    vesk_register_file_importer(".ring", "Ring files", import_ring, "endless");
    vesk_register_surface_filter("Endless", "Closes corners.", filter_ring, 0);
    vesk_add_command("close_rings", close_rings);
    vesk_add_command("loop_forever", loop_forever);
    return 1;
}

void VESKPluginExit(void) {}
