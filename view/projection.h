#ifndef VESK_VIEW_PROJECTION_H
#define VESK_VIEW_PROJECTION_H

#include "base/types.h"
#include "model/object.h"

VESK_BEGIN_DECLS

/* World to window of an orthographic view. Other view ids leave the outputs unwritten. */

/* Pixel of a world point: 0.5 is added and the rest cut toward zero, so -0.7 becomes 0. */
VESK_API void point2xy(const point3_t *point, int *out_x, int *out_y, int view);

/* The same into the vertex's two screen words. */
VESK_API void point3towin(vertex *v, int view);

/* The two world coordinates that the view shows. */
VESK_API void point3dto2d(const point3_t *point, float *out_a, float *out_b, int view);

/* Pixels of a size. */
VESK_API void size_to_pixels(const point3_t *size, int *out_w, int *out_h, int view);

/* World units of a number of pixels. */
VESK_API double pixels_to_distance(int pixels, int view);

/* Unrounded screen point of a world point, one component for each world axis, and its inverse. */
VESK_API void point2screen(const point3_t *point, point3_t *out, int view);
VESK_API void screen2point(const point3_t *screen, point3_t *out, int view);

/* World point under a mouse position; the hidden axis comes from the depth point. */
VESK_API void mouse_to_point(int x, int y, int view, point3_t *out);

VESK_END_DECLS

#endif
