#ifndef VESK_MODEL_FRAME_H
#define VESK_MODEL_FRAME_H

/* Local and world coordinates of objects. With an object's world matrix R and centre c, and its
   parent's P and d: centre = d + loc x P, vertex = v x R + c. */

#include "model/object.h"

VESK_BEGIN_DECLS

/* Turns an offset in the parent's frame, already rotated by its matrix, into the world translation
   of the object: the parent's centre is added. Without a parent it stays. */
VESK_API void object_translation_local_to_global(const object_t *object, point3_t *offset);

/* The object's location and rotation relative to its parent; 0 0 0 and the identity without one. */
VESK_API void object_global_to_local(const object_t *object, point3_t *location, float *rotation);

/* A world point in the object's own frame; unchanged for an object without a parent. */
VESK_API void object_point_global_to_local(const object_t *object, const point3_t *world,
                                           point3_t *local);

VESK_END_DECLS

#endif
