// Commands of copies, halves and things put in line, of the axes they go by, of what moves along
// with the selection, of deformers, and of dimension lines.

#include "base/command_row.h"
#include "edit/align.h"
#include "edit/axis_pivot.h"
#include "edit/copies.h"
#include "edit/deform.h"
#include "edit/dimensions.h"
#include "edit/drop.h"
#include "edit/mirror_copy.h"
#include "edit/place.h"
#include "edit/soft_selection.h"
#include "edit/symmetry.h"
#include "program/own_commands.h"

std::span<const own_command_t> copy_commands()
{
    using enum command_kind;
    static const own_command_t rows[] = {
        command_row("array", command_array, edit, 5, 5,
                    "<int n> <float dx> <float dy> <float dz> <int by size>",
                    "n copies of the selection in a row"),
        command_row("array_round", command_array_round, edit, 3, 4,
                    "<int n> <string axis> <float degrees> <string pivot>",
                    "n copies of the selection round an axis"),
        command_row("array_path", command_array_path, edit, "<int n> <int turn along>",
                    "n copies of the selection along the path"),
        command_row("mirror_copy", command_mirror_copy, edit, 2, 3,
                    "<string axis> <float weld distance> <string pivot>",
                    "the mirror image beside the selection, or joined to it"),
        command_row("symmetrize", command_symmetrize, edit, 2, 3,
                    "<string axis> <string positive or negative> <string pivot>",
                    "replace one half of the selection by the mirror image of the other"),
        command_row("align", command_align, edit, 3, 3,
                    "<string axis> <string min, centre or max> "
                    "<string selection, first, origin or grid>",
                    "bring the selected things in line"),
        command_row("distribute", command_distribute, edit, 2, 2,
                    "<string axis> <string gaps or centres>", "space the selected things evenly"),
        command_row("drop", command_drop, edit, "<string height or below>",
                    "rest the selected objects on a height, or on what lies below"),
        command_row("place_on_surface", command_place_on_surface, edit, 6, 6,
                    "<float x> <float y> <float z> <float nx> <float ny> <float nz>",
                    "stand the selection on a point, turned to a normal"),
        command_row("rotate_about_axis", command_rotate_about_axis, edit, 1, 3,
                    "<float degrees> <string axis> <string pivot>",
                    "turn the selection about any axis"),
        command_row("scale_along", command_scale_along, edit, 1, 3,
                    "<float factor> <string axis> <string pivot>",
                    "scale the selection along any axis; -1 mirrors it"),
        command_row("mirror_along", command_mirror_along, edit, 1, 2,
                    "<string axis> <string pivot>", "mirror the selection along any axis"),
        command_row("move_along", command_move_along, edit, 1, 2, "<float distance> <string axis>",
                    "move the selection along any axis"),
        command_row("bend", command_bend, edit, 1, 3,
                    "<float degrees> <string axis> <string pivot>", "bend the selection to an arc"),
        command_row("taper", command_taper, edit, 1, 3,
                    "<float factor> <string axis> <string pivot>",
                    "make the selection narrower or wider along an axis"),
        command_row("twist", command_twist, edit, 1, 3,
                    "<float degrees> <string axis> <string pivot>",
                    "turn the ends of the selection against each other"),
        command_row("inflate", command_inflate, edit, 1, 2, "<float share> <string pivot>",
                    "bring the selection onto a sphere"),
        command_row("noise", command_noise, edit, 1, 2, "<float amount> <int seed>",
                    "move the selected vertices by chance"),
        command_row("push_normals", command_push_normals, edit, 1, 1, "<float distance>",
                    "move the selected vertices along their normals"),
        command_row("soft_selection", command_soft_selection, view, 1, 4,
                    "<int on> <float radius> <string smooth, round, linear, sharp or even> "
                    "<string space or surface>",
                    "moves take along what is near"),
        command_row("symmetry", command_symmetry, view, 1, 2,
                    "<string off, x, y or z> <string origin or centre>",
                    "changes of one side are made on the other, too"),
        command_row("pick_axis", command_pick_axis, view, nullptr,
                    "remember the direction of the selection as the picked axis"),
        command_row("pick_pivot", command_pick_pivot, view, nullptr,
                    "remember the middle of the selection as the picked pivot"),
        command_row("dimension_add", command_dimension_add, edit, nullptr,
                    "keep the lengths of the selected edges as dimension lines"),
        command_row("dimension_remove", command_dimension_remove, edit, nullptr,
                    "take the dimension lines off the selected objects"),
        command_row("get_dimensions", command_get_dimensions, query, nullptr,
                    "returns object id, two vertices and the length of each dimension line"),
        command_row("get_picked", command_get_picked, query, nullptr,
                    "returns the picked axis and the picked pivot"),
    };
    return rows;
}
