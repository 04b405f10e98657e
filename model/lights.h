#ifndef VESK_MODEL_LIGHTS_H
#define VESK_MODEL_LIGHTS_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* A light object, named "light"; its position is its centre. */
VESK_API object_t *new_light(void);

/* Registers a light that was added to the scene. */
VESK_API void register_light(object_t *light);

VESK_END_DECLS

#ifdef VESK_INTERNAL
// All light objects of the world, in tree order; rebuilt after changes of the tree. Owned here.
listitem *world_lights();
#endif

#endif
