/* Commands that never end and let no events in: "loop_forever" moves every vertex of the scene's first
   object and goes on asking the program. */

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

int VESKPluginInit(void)
{
    vesk_add_command("loop_forever", loop_forever);
    return 1;
}

void VESKPluginExit(void) {}
