#ifndef VESK_MODEL_WORLD_H
#define VESK_MODEL_WORLD_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* Makes a new empty world the scene's world and returns it; a former one is not freed. */
VESK_API object_t *new_world(void);

/* The top object of the scene; null before start-up has made it. */
VESK_API object_t *vesk_get_world(void);

VESK_END_DECLS

#endif
