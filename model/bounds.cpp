#include "model/bounds.h"

#include "model/deferred_records.h"
#include "model/each.h"

int object_bounds(const object_t *object, point3_t *min, point3_t *max)
{
    bounds_clear(min, max);
    int n = 0;
    for_each_object(const_cast<object_t *>(object), [&](const object_t *part) {
        if (const flat_ptr flat = untouched_flat(part)) {
            for (const point3_t &position : *flat->positions)
                bounds_add(position, min, max);
            n += flat->num_vertices();
            return;
        }
        for (const vertex *point : each<vertex>(part->vertices)) {
            bounds_add(point->position, min, max);
            ++n;
        }
    });
    return n;
}

point3_t find_object_size(const object_t *object)
{
    point3_t min, max;
    if (object_bounds(object, &min, &max) == 0)
        return {0, 0, 0};
    return {max.x - min.x, max.y - min.y, max.z - min.z};
}

point3_t find_object_min(const object_t *object)
{
    point3_t min, max;
    if (object_bounds(object, &min, &max) == 0)
        return {0, 0, 0};
    return min;
}

void object_calculate_centre(object_t *object)
{
    point3_t min, max;
    if (object_bounds(object, &min, &max) == 0)
        return;
    vesk_object_set_centre(object, min.x + (max.x - min.x) / 2, min.y + (max.y - min.y) / 2,
                           min.z + (max.z - min.z) / 2);
}
