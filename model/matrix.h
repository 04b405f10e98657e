#ifndef VESK_MODEL_MATRIX_H
#define VESK_MODEL_MATRIX_H

/* A matrix is nine floats, row by row. Points are row vectors: p' = p x M. Angles are in radians.
   Products are computed in double and stored in single precision. A frame is a rotation and a
   translation: p x R + T. */

#include "base/types.h"
#include "model/list.h"

VESK_BEGIN_DECLS

/* Rotation about z by `z`, then about y by `y`, then about x by `x`, each counter-clockwise when
   looking from the axis's positive end to the origin. */
VESK_API void matrix_set_rotate(float *m, float x, float y, float z);
/* Counter-clockwise about an axis (of any length but 0: then the identity). */
VESK_API void matrix_set_rotate_angle_axis(float *m, const point3_t *axis, float angle);
/* The rotation of a quaternion (normalised here; 0 gives the identity). */
VESK_API void matrix_set_rotate_quaternion(float *m, float x, float y, float z, float w);

/* The global matrix of the routines with 3d in their names. _inv: the inverse rotation. */
VESK_API void set_global_matrix_rotate(float x, float y, float z);
VESK_API void set_global_matrix_rotate_inv(float x, float y, float z);
VESK_API void set_global_matrix_angle_axis(const point3_t *axis, float angle);
VESK_API void rotate_point_3d(point3_t *p);
VESK_API void rotate_pointlist_3d(const listitem *points);
/* m := G x m: the global rotation first, then m's. */
VESK_API void rotate_matrix(float *m);

/* p := p x m. */
VESK_API void matrix_rotate_point(const float *m, point3_t *p);
VESK_API void pointlist_rotate_matrix(const listitem *points, const float *m);

/* out := b x a: rotating by out is rotating by b, then by a. `out` is neither a nor b. */
VESK_API void matrix_multiply(const float *a, const float *b, float *out);
VESK_API void rotmult(float *out, const float *a, const float *b);
VESK_API void matrix_copy(const float *from, float *to);
/* 1 only for exactly 1 on the diagonal and 0 elsewhere. */
VESK_API int matrix_is_identity(const float *m);
/* out := transpose of m, the inverse of a rotation. `out` may be m. */
VESK_API void rotinvert(float *out, const float *m);

/* out := origin + p x m, and its inverse for a rotation. */
VESK_API void point_transform_local_to_global(point3_t *out, const float *m, const point3_t *origin,
                                              const point3_t *p);
VESK_API void point_transform_global_to_local(point3_t *out, const float *m, const point3_t *origin,
                                              const point3_t *p);

/* outR := R2 x R1, outT := T2 x R1 + T1: frame 2 first, then frame 1. */
VESK_API void frame_mult(float *out_r, point3_t *out_t, const float *r1, const point3_t *t1,
                         const float *r2, const point3_t *t2);
VESK_API void frame_invert(float *out_r, point3_t *out_t, const float *r, const point3_t *t);
VESK_API void frame_cp(float *to_r, point3_t *to_t, const float *from_r, const point3_t *from_t);
/* (R, T) := frame_mult of (R, T) and (R2, T2). */
VESK_API void frame_postmult(float *r, point3_t *t, const float *r2, const point3_t *t2);
/* out := inverse of (R, T), then post-multiplied by (R2, T2). */
VESK_API void frame_multinv(float *out_r, point3_t *out_t, const float *r, const point3_t *t,
                            const float *r2, const point3_t *t2);

/* Debug output. */
VESK_API void matrix_print(const float *m);

/* Unit length; a zero vector stays zero. */
VESK_API void normalize_point(point3_t *p);
VESK_API float points_dist(const point3_t *a, const point3_t *b);

VESK_END_DECLS

#ifdef VESK_INTERNAL
const float *global_matrix();
void matrix_set_identity(float *m);
/* The angles from which matrix_set_rotate makes a rotation; straight up or down, where many do,
   those without a turn about z. */
point3_t matrix_angles(const float *m);
#endif

#endif
