#ifndef VESK_BASE_COOR_DISPLAY_H
#define VESK_BASE_COOR_DISPLAY_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* The coordinate display of the status area: the script variables "coors" and "size". */

/* Sets both texts. */
VESK_API void display_coor_data(const char *coordinates, const char *size);

/* A point; no size. */
VESK_API void show_coors(const point3_t *point);

/* A point and a vector ("V X ..."); no size. */
VESK_API void show_coors_and_point(const point3_t *point, const point3_t *vector);

/* A point and the size a - b of a box; b as a point when the two corners are equal. */
VESK_API void show_coors_and_bb(const point3_t *point, const point3_t *a, const point3_t *b);

/* A point and the absolute size of the box between a and b. */
VESK_API void show_coors_and_dim(const point3_t *point, const point3_t *a, const point3_t *b);

/* The absolute size of the box between a and b; no point. */
VESK_API void show_size(const point3_t *a, const point3_t *b);

/* A point and the distance from p to q. */
VESK_API void show_coors_and_len(const point3_t *point, const point3_t *p, const point3_t *q);

/* An angle in degrees; no size. */
VESK_API void show_angle(float degrees);

VESK_END_DECLS

#endif
