#ifndef VESK_EDIT_PANEL_TRANSFORM_H
#define VESK_EDIT_PANEL_TRANSFORM_H

// The transforms of panels and dialogs: the plain commands with one undo record each; and
// one that follows a number while it is dragged. Nothing selected: a status line.

// Each moves, turns (degrees, about the middle of the box or a point) or mirrors the selection.
void move_with_undo(float x, float y, float z);
void rotate_with_undo(float rx, float ry, float rz);
void rotate_about_with_undo(float rx, float ry, float rz, float x, float y, float z);
// Turns the selection about a point so that the frame of its first object has these angles.
void rotate_to_with_undo(float rx, float ry, float rz, float x, float y, float z);
void rotate_axis_angle_with_undo(float axis, float degrees);
void mirror_with_undo(int axis);
// Scales the selection about a point.
void scale_about_with_undo(float sx, float sy, float sz, float x, float y, float z);

// Turns each selected object about its own centre and the axis that looks into a view (0 to 2);
// other selections about the middle of the box.
void rotate_each_with_undo(int view, float degrees);
// Brings the selection's box to these corners.
void resize_with_undo(float min_x, float min_y, float min_z, float max_x, float max_y, float max_z);

// Begins a transform: "move" (by an offset), "rotate" (by degrees about the middle of the box) or
// "scale" (by factors about it). panel_transform_to gives the whole amount since the beginning,
// panel_transform_end keeps it as one undo record, panel_transform_cancel puts back the very bits.
// panel_transform_about gives a rotation another centre.
void panel_transform_begin(const char *kind);
void panel_transform_about(float x, float y, float z);
void panel_transform_to(float x, float y, float z);
void panel_transform_end();
void panel_transform_cancel();

#endif
