#include "base/command_row.h"
#include "base/numbers.h"
#include "edit/catmull_clark.h"
#include "edit/extrude_normals.h"
#include "edit/inset.h"
#include "edit/orient.h"
#include "edit/quads_from_triangles.h"
#include "edit/select_more.h"
#include "edit/selection_sets.h"
#include "edit/vertex_tidy.h"
#include "program/own_commands.h"
#include "view/tool_select.h"

namespace {

void inset_words(int /*count*/, const char *const *words)
{
    command_inset(finite_float_of(words[0]), finite_float_of(words[1]), words[2]);
}

void shell_words(int /*count*/, const char *const *words)
{
    command_shell(finite_float_of(words[0]), int_of(words[1]));
}

void smooth_words(int /*count*/, const char *const *words)
{
    command_smooth_vertices(finite_float_of(words[0]), int_of(words[1]));
}

void similar_words(int /*count*/, const char *const *words)
{
    command_select_similar(words[0], finite_float_of(words[1]));
}

} // namespace

std::span<const own_command_t> topology_commands()
{
    using enum command_kind;
    static const own_command_t rows[] = {
        command_row("inset", inset_words, edit, 3, 3,
                    "<float width> <float depth> <string each or region>",
                    "a smaller polygon inside each selected one, or each region"),
        command_row("catmull_clark", command_catmull_clark, edit, 1, 2,
                    "<int steps> <sharp: degrees or selected>", "smooth subdivision into quads"),
        command_row("extrude_each", command_extrude_each, edit, "<float distance>",
                    "extrude every selected surface along its own normal"),
        command_row("extrude_normals", command_extrude_normals, edit, "<float distance>",
                    "extrude the selected regions along their normals, evenly"),
        command_row("shell", shell_words, edit, 2, 2, "<float thickness> <int rim>",
                    "give the selected surfaces a thickness"),
        command_row("quads_from_triangles", command_quads_from_triangles, edit, "<float degrees>",
                    "join pairs of triangles to quads"),
        command_row("orient_outwards", command_orient_outwards, edit, nullptr,
                    "make the selected surfaces agree and face outwards"),
        command_row("flatten", command_flatten, edit, nullptr,
                    "move the selected vertices onto their plane"),
        command_row("circularize", command_circularize, edit, nullptr,
                    "move the selected vertices onto a circle"),
        command_row("straighten", command_straighten, edit, nullptr,
                    "move chains of selected vertices onto lines"),
        command_row("space_evenly", command_space_evenly, edit, nullptr,
                    "space chains of selected vertices evenly"),
        command_row("smooth_vertices", smooth_words, edit, 2, 2, "<float factor> <int steps>",
                    "smooth the places of the selected vertices"),
        command_row("select_grow", command_select_grow, select, nullptr,
                    "select the neighbours of the selection, too"),
        command_row("select_shrink", command_select_shrink, select, nullptr,
                    "unselect what touches unselected elements"),
        command_row("select_invert", command_select_invert, select, nullptr,
                    "select what is not selected"),
        command_row("select_linked", command_select_linked, select, nullptr,
                    "select all that hangs together with the selection"),
        command_row("select_behind", command_select_behind, select, nullptr,
                    "select the next element behind the selected one, where the last click was"),
        command_row("selection_set_save", command_selection_set_save, edit, "<string name>",
                    "keep the selection under a name"),
        command_row("selection_set_load", command_selection_set_load, select, "<string name>",
                    "select what was kept under a name"),
        command_row("selection_set_delete", command_selection_set_delete, edit, "<string name>",
                    "forget a kept selection"),
        command_row("selection_set_list", command_selection_set_list, query, nullptr,
                    "returns the names of the kept selections"),
        command_row("select_similar", similar_words, select, 2, 2,
                    "<string material, normal, area, length, corners or coplanar> "
                    "<float tolerance>",
                    "select what is like the selection"),
        command_row("select_random", command_select_random, select, "<int percent> <int seed>",
                    "select a random part"),
    };
    return rows;
}
