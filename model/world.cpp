#include "model/world.h"

#include "model/change_marks.h"
#include "model/object_tree.h"

namespace {
object_t *world;
}

object_t *new_world(void)
{
    world = new_object(OBJECT_WORLD);
    tree_mark();
    return world;
}

object_t *vesk_get_world(void) { return world; }
