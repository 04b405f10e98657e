#ifndef VESK_EDIT_PLACE_H
#define VESK_EDIT_PLACE_H

// Standing on a surface: the middle of the lower side of the selection's box comes to a point, and with
// `turns` what was up, along y, points along a normal of unit length.

#include "edit/drag_transform.h"

drag_change_t placing_on(const point3_t &box_min, const point3_t &box_max, const point3_t &at,
                         const vec3d &normal, bool turns);

// Command "place_on_surface": the point, then the normal; 0 0 0 turns nothing. Undo "place".
void command_place_on_surface(int count, const char *const *words);

// Commands "rotate_about_axis", by degrees, and "scale_along", by a factor (-1 mirrors): about an
// axis through a pivot, both words (edit/axis_pivot.h), z and the middle of the selection where they
// are left out. Undo "rotate", "scale".
void command_rotate_about_axis(int count, const char *const *words);
void command_scale_along(int count, const char *const *words);
// Commands "mirror_along": the axis, then the pivot; "move_along": a distance, then the axis. Undo
// "mirror", "move".
void command_mirror_along(int count, const char *const *words);
void command_move_along(int count, const char *const *words);

#endif
