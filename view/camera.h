#ifndef VESK_VIEW_CAMERA_H
#define VESK_VIEW_CAMERA_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* The viewer of the 3D view. In spin mode the model is turned about `origin` in front of it, in
   walk mode the viewer itself moves and turns; each mode keeps its own camera across switches. */
typedef struct Person {
    point3_t origin;    /* what the spin rotation turns about */
    point3_t location;  /* of the viewer */
    point3_t direction; /* unit; elements 2, 6 and 10 of the matrix */
    point3_t rotation;  /* spin angles about x, y and z in degrees */
    point3_t spare;     /* cleared with the rotation */
    float scale;        /* zoom */
    float move_step;    /* world units of one walk step */
    float turn_step;    /* degrees of one walk turn */
    int32_t walk;       /* 1 in walk mode */
    point3_t offset;    /* extra translation */
    float matrix[16];   /* the viewer's rotation, row * 4 + column */
} Person_t;

/* The one viewer. */
VESK_API Person_t *get_person(void);
VESK_API int vesk_person_is_walk_vehicle(void);

/* Switches the mode: the first entry into a mode resets its camera, later ones restore it. Both end
   with a line on the status area, also when the mode was on already. */
VESK_API void person_set_walk(void);
VESK_API void person_set_spin(void);

/* Spin angles in degrees: all three, or x and y only. */
VESK_API void vesk_person_set_rotation(const point3_t *degrees);
VESK_API void vesk_person_add_rotation(const point3_t *degrees);
VESK_API void person_set_spin_rotation(float x, float y);
VESK_API void person_add_spin_rotation(float x, float y);
VESK_API void person_get_spin_rotation(float *out_x, float *out_y);

VESK_API void vesk_person_scale_mult(float factor);
VESK_API void vesk_person_scale_div(float factor);

VESK_API void person_set_origin(const point3_t *point);
VESK_API void person_zero_origin(void);
VESK_API void person_set_offset(const point3_t *point);
VESK_API void person_zero_offset(void);
VESK_API void person_set_location(Person_t *person, float x, float y, float z);
VESK_API void viewer_set_location(const point3_t *point);

/* Commands "set_view_3d_origin" and "set_view_3d_cursor": turn about the world origin, or about the
   depth point, without an offset. Both redraw the 3D view. */
VESK_API void set_3d_view_origin(void);
VESK_API void set_3d_view_cursor(void);

VESK_API void person_init_matrix(Person_t *person);
VESK_API void person_set_direction(Person_t *person, const point3_t *direction);
VESK_API void person_set_direction_from_matrix(Person_t *person);
VESK_API void person_copy_matrix(Person_t *to, const Person_t *from);

/* Makes the viewer's sideways axis horizontal. */
VESK_API void person_level(Person_t *person);

VESK_API void person_turn_left(Person_t *person, float degrees);
VESK_API void person_turn_right(Person_t *person, float degrees);
VESK_API void person_turn_up(Person_t *person, float degrees);
VESK_API void person_turn_down(Person_t *person, float degrees);
VESK_API void person_move_forward(Person_t *person, float distance);
VESK_API void person_move_back(Person_t *person, float distance);
VESK_API void person_move_left(Person_t *person, float distance);
VESK_API void person_move_right(Person_t *person, float distance);
VESK_API void person_move_up(Person_t *person, float distance);
VESK_API void person_move_down(Person_t *person, float distance);

/* The same of the one viewer; none of them redraws. */
VESK_API void viewer_turn_left(float degrees);
VESK_API void viewer_turn_right(float degrees);
VESK_API void viewer_turn_up(float degrees);
VESK_API void viewer_turn_down(float degrees);
VESK_API void viewer_move_forward(float distance);
VESK_API void viewer_move_back(float distance);
VESK_API void viewer_move_left(float distance);
VESK_API void viewer_move_right(float distance);
VESK_API void viewer_move_up(float distance);
VESK_API void viewer_move_down(float distance);

/* Command "person_level". */
VESK_API void viewer_level(void);

/* The viewer as the preferences init3d_... place it, looking along -z; keeps the mode. */
VESK_API void person_reset(void);

/* "x y z  dx dy dz" in a static buffer; setting wants six numbers and changes nothing otherwise. */
VESK_API const char *person_get_loc_dir_string(void);
VESK_API void person_set_loc_dir_string(const char *text);

/* Moves and turns the viewer in `steps` steps, drawing each; returns when it is there. The location
   stops one increment short. Below 1 step nothing happens; more than 100000 are 100000. "cancel"
   stops it where it is. */
VESK_API void person_flyto(int steps, float x, float y, float z, float dx, float dy, float dz);

/* Perspective (1) or parallel (0) projection of the 3D view. Command "do_perspective". */
VESK_API void do_perspective(int perspective);

/* The hidden coordinates of the mouse position in the orthographic views; the 3D cursor. */
VESK_API point3_t *vesk_get_depth_point(void);

/* Moves the depth coordinate of `view` away from zero by half the mean extent of the box min, max:
   of `depth`, or of the depth point. */
VESK_API void set_av_depth(const point3_t *min, const point3_t *max, point3_t *depth, int view);
VESK_API void set_av_depth_box(const point3_t *min, const point3_t *max, int view);

/* Prints the viewer's state to the debug output. */
VESK_API void person_print_info(void);

/* Command "person_get_loc_dir". */
VESK_API void command_person_get_loc_dir(void);
/* Command "get_3d_cursor": the depth point. */
VESK_API void command_get_3d_cursor(void);

VESK_END_DECLS

#endif
