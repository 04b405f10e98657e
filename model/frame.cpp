#include "model/frame.h"

#include "model/matrix.h"
#include "model/vector.h"

void object_translation_local_to_global(const object_t *object, point3_t *offset)
{
    if (object->parent)
        *offset = point_add(*offset, object->parent->centre);
}

void object_global_to_local(const object_t *object, point3_t *location, float *rotation)
{
    *location = {0, 0, 0};
    matrix_set_identity(rotation);
    const object_t *parent = object->parent;
    if (!parent)
        return;
    point_transform_global_to_local(location, parent->rotation, &parent->centre, &object->centre);
    float inverse[9];
    rotinvert(inverse, parent->rotation);
    matrix_multiply(inverse, object->rotation, rotation);
}

void object_point_global_to_local(const object_t *object, const point3_t *world, point3_t *local)
{
    if (object->parent)
        point_transform_global_to_local(local, object->rotation, &object->centre, world);
    else
        *local = *world;
}
