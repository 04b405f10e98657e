#ifndef VESK_MODEL_BOUNDS_H
#define VESK_MODEL_BOUNDS_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* Size and lowest corner of the box round the vertices of the object and its descendants; 0 0 0
   without vertices. */
VESK_API point3_t find_object_size(const object_t *object);
VESK_API point3_t find_object_min(const object_t *object);

/* Sets the object's centre to the middle of that box; without vertices it stays. */
VESK_API void object_calculate_centre(object_t *object);

VESK_END_DECLS

#ifdef VESK_INTERNAL

constexpr float bounds_start = 3.4028e38f;

// An empty box: min at +bounds_start, max at -bounds_start.
inline void bounds_clear(point3_t *min, point3_t *max)
{
    *min = {bounds_start, bounds_start, bounds_start};
    *max = {-bounds_start, -bounds_start, -bounds_start};
}
// Grows the box; coordinates that are no numbers change nothing.
inline void bounds_add(const point3_t &p, point3_t *min, point3_t *max)
{
    min->x = p.x < min->x ? p.x : min->x;
    min->y = p.y < min->y ? p.y : min->y;
    min->z = p.z < min->z ? p.z : min->z;
    max->x = p.x > max->x ? p.x : max->x;
    max->y = p.y > max->y ? p.y : max->y;
    max->z = p.z > max->z ? p.z : max->z;
}

// Box round the vertices of the object and all its descendants, hidden ones too. Starts from the
// empty box. Returns the number of vertices visited.
int object_bounds(const object_t *object, point3_t *min, point3_t *max);

#endif

#endif
