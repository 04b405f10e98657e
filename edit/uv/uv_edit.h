#ifndef VESK_EDIT_UV_UV_EDIT_H
#define VESK_EDIT_UV_UV_EDIT_H

// Changes of texture coordinates: the arithmetic that the mouse and the commands share, and the
// commands. Commands work on the choice in the editor, else on everything it shows; each is one
// undo record of texture coordinates, and a status line says when there is no target.

#include "edit/uv/uv_editor.h"

// u' = a u + b v + e, v' = c u + d v + f
struct uv_matrix {
    double a = 1, b = 0, c = 0, d = 1, e = 0, f = 0;
    [[nodiscard]] flat_uv apply(const flat_uv &p) const;
};
uv_matrix uv_translation(double du, double dv);
// Anticlockwise as seen, with the shape that the picture's pixels give it.
uv_matrix uv_rotation(double degrees, const flat_uv &centre, double aspect);
uv_matrix uv_scaling(double su, double sv, const flat_uv &centre);

// Moves the box's sides from one place to another; a side of no length is only moved.
uv_matrix uv_between_boxes(const uv_box &from, const uv_box &to);

// `from` with the matrix applied to the corners that move.
std::vector<flat_uv> uv_transformed(const std::vector<flat_uv> &from,
                                    const std::vector<char> &moving, const uv_matrix &matrix);

// The nearest whole pixel.
float uv_snapped(float value, double pixels);

void command_uv_move(float du, float dv);
void command_uv_rotate(float degrees);
void command_uv_scale(float su, float sv);
void command_uv_flip(const char *axis);
// By 90 degrees to the left, in the pixels of the picture.
void command_uv_rotate_90();
// The box of the choice becomes the unit square; `keep` keeps its proportions and centres it.
void command_uv_fit(int keep);
// Chosen corners are moved to one line; in the modes of surfaces and islands whole islands do.
void command_uv_align(const char *side);
// Words: optionally a distance.
void command_uv_weld(int count, const char *const *words);
void command_uv_split();
void command_uv_snap();

#endif
