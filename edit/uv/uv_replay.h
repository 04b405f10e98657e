#ifndef VESK_EDIT_UV_UV_REPLAY_H
#define VESK_EDIT_UV_UV_REPLAY_H

#include "edit/uv/uv_edit.h"

#include <string>
#include <vector>

// Drags of texture coordinates as commands that repeat them.

// Chosen corners by their places among all that are shown: "0-3,8".
std::string uv_corner_text(const std::vector<char> &corners);
// Command "uv_select_corners": these and no others, by such a text.
void command_uv_select_corners(const char *places);

// One of "move", "rotate" and "scale", for the undo record's label: the chosen corners (all, when
// none is) by a matrix. Returns how many surfaces changed.
int uv_transform_by(const char *kind, const uv_matrix &matrix);
// Handler of "uv_transform": kind, then u' = a u + b v + e and v' = c u + d v + f as a b c d e f.
void command_uv_transform(int count, const char *const *words);

#endif
