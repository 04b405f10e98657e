#include "model/lights.h"

#include "model/change_marks.h"
#include "model/each.h"
#include "model/world.h"

namespace {

struct light_record {
    listitem *lights;
    std::uint64_t tree_count; // of the tree that the list was made for
    const object_t *world;
};
light_record record;

} // namespace

object_t *new_light(void) { return new_object(OBJECT_LIGHT); }

void register_light(object_t *light)
{
    // The list is read off the world; a new light changes the tree.
    if (light)
        tree_mark();
}

listitem *world_lights()
{
    object_t *world = vesk_get_world();
    if (record.tree_count != tree_change_count() || record.world != world) {
        list_free(&record.lights);
        owned_list found;
        for_each_object(world, [&](object_t *object) {
            if (object->type == OBJECT_LIGHT)
                found.add(object);
        });
        record = {found.release(), tree_change_count(), world};
    }
    return record.lights;
}
