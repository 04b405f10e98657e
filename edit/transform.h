#ifndef VESK_EDIT_TRANSFORM_H
#define VESK_EDIT_TRANSFORM_H

#include "base/types.h"
#include "model/object.h"

VESK_BEGIN_DECLS

/* Moving, rotating, scaling and mirroring. The selection_/selected_ forms work on whatever is
   selected: its vertices, the vertices of its surfaces (each once) and its topmost objects with
   their descendants, each part once. Angles of commands are degrees. All set change marks. */

/* ---- objects ---- */

/* Moves the object's own centre and vertices; translate_object its descendants' too. */
VESK_API void translate_object_only(object_t *object, const point3_t *offset);
VESK_API void translate_object(object_t *object, const point3_t *offset);
VESK_API void translate_objectlist(const listitem *objects, const point3_t *offset);
/* Moves the object, descendants included, so that its stored centre comes to `point`. */
VESK_API void translate_object_abs(object_t *object, const point3_t *point);

/* Turns centre, frame and vertices of the object and its descendants by the global matrix. */
VESK_API void rotate_object(object_t *object);

/* Multiplies centre and vertices of the object and its descendants. */
VESK_API void object_scale(object_t *object, float sx, float sy, float sz);

/* ---- the selection ---- */

/* Moves everything selected; nothing else (no box, normals, undo). */
VESK_API void translate_all_selected(const point3_t *offset);

/* Moves the selection and its box; normals are recomputed unless objects are selected. No undo. */
VESK_API void move_selection(const point3_t *offset);

/* Multiplies everything selected by `factors` between two moves. */
VESK_API void translate_multiply_selected(const point3_t *first, const point3_t *factors,
                                          const point3_t *second);

/* Turns everything selected by the global matrix about `centre` (null: the middle of the box). */
VESK_API void rotate_selected_with_global_matrix(const point3_t *centre);

/* Turns the selection by degrees about x, y and z through its box's middle, or through `centre`;
   normals and box are recomputed. No undo. */
VESK_API void rotate_selection(float rx, float ry, float rz);
VESK_API void rotate_selection_about(float rx, float ry, float rz, const point3_t *centre);
VESK_API void rotate_selection_axis_angle(int axis, float degrees);

/* A rotation drawn in a view, about the axis that looks into it; `centre` may be null. Shows
   "rotating..." and "rotation done". */
VESK_API void rotate_selected(float degrees, int view, const point3_t *centre);

/* Scales about the middle of the box, which is recomputed. No undo. */
VESK_API void scale_selection(float sx, float sy, float sz);

/* Recomputes the normals of the objects that own what is selected. */
VESK_API void selected_calc_normals(void);

/* The middle of two corners. */
VESK_API void find_box_centre(const point3_t *a, const point3_t *b, point3_t *out);

/* A new list of the vertices of the selected surfaces, each once; the caller frees it. */
VESK_API listitem *selected_surfaces_get_unique_vertices(void);

/* ---- commands ---- */

/* "move": no undo. "move_to": the box's middle to a point, undo "move to". */
VESK_API void move_selection_f(float x, float y, float z);
VESK_API void selection_move_to_f(float x, float y, float z);
/* "rotate", "rotate_about", "rotate_axis_angle" (axis truncated): no undo. */
VESK_API void rotate_selection_f(float rx, float ry, float rz);
VESK_API void rotate_selection_about_f(float rx, float ry, float rz, float x, float y, float z);
VESK_API void selection_rotate_axis_angle(float axis, float degrees);
/* "scale": undo "size selection"; nothing without a valid box. */
VESK_API void selected_scale(float sx, float sy, float sz);
/* "size_to": to a size; an axis that is flat, or asked below 0, keeps its size. */
VESK_API void selection_size_to_f(float x, float y, float z);
VESK_API void selection_size_to(const point3_t *size);
/* "mirror": at the middle of the box on axis 0, 1 or 2. Faces are not reversed. No undo. */
VESK_API void mirror_selected(int axis);

VESK_END_DECLS

#ifdef VESK_INTERNAL
// rotate_object and rotate_selected_with_global_matrix by a matrix of the caller's.
void object_rotate(object_t *object, const float *m);
void selection_rotate(const float *m, const point3_t *centre);
// The rotation of rotate_selected.
void matrix_set_turn_in_view(float *m, int view, float degrees);
#endif

#endif
