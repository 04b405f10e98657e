// Commands of copies, halves and things put in line, and of the axes they go by.

#include "base/command_row.h"
#include "edit/align.h"
#include "edit/axis_pivot.h"
#include "edit/copies.h"
#include "edit/drop.h"
#include "edit/mirror_copy.h"
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
        command_row("pick_axis", command_pick_axis, view, nullptr,
                    "remember the direction of the selection as the picked axis"),
        command_row("pick_pivot", command_pick_pivot, view, nullptr,
                    "remember the middle of the selection as the picked pivot"),
        command_row("get_picked", command_get_picked, query, nullptr,
                    "returns the picked axis and the picked pivot"),
    };
    return rows;
}
