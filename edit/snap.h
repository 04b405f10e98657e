#ifndef VESK_EDIT_SNAP_H
#define VESK_EDIT_SNAP_H

#include "app/types.h"

VESK_BEGIN_DECLS

/* Moves each coordinate to the nearest multiple of its axis' spacing, halves away from zero; an axis
   whose spacing is not positive keeps its coordinate. Returns the z axis' multiple. */
VESK_API int snap_to_grid_float(point3_t *point, float gx, float gy, float gz);

/* By the preference `grid` on all axes while `gridsnap` is on, else nothing. */
VESK_API void snap_to_grid(point3_t *point);

VESK_END_DECLS

#endif
