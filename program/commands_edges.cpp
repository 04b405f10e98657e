// Commands of edges: selecting them, and the operations on them.

#include "base/command_row.h"
#include "edit/bridge.h"
#include "edit/connect.h"
#include "edit/dissolve.h"
#include "edit/edge_bevel.h"
#include "edit/edge_select.h"
#include "edit/extrude_edges.h"
#include "edit/fill_hole.h"
#include "edit/loop_cut.h"
#include "edit/slide.h"
#include "program/own_commands.h"

std::span<const own_command_t> edge_commands()
{
    using enum command_kind;
    static const own_command_t rows[] = {
        command_row("edge_select", command_edge_select, select,
                    "<int object_id> <int vertex> <int vertex>",
                    "add the edge between two vertices to the selection"),
        command_row("edge_deselect", command_edge_deselect, select,
                    "<int object_id> <int vertex> <int vertex>",
                    "take the edge between two vertices out of the selection"),
        command_row("selection_get_num_edges", command_get_num_edges, query, nullptr,
                    "returns the number of selected edges"),
        command_row("get_selected_edges", command_get_selected_edges, query, nullptr,
                    "returns object id and two vertices of each selected edge"),
        command_row("select_loop", command_select_loop, select, nullptr,
                    "select the loops through the selected edges"),
        command_row("select_ring", command_select_ring, select, nullptr,
                    "select the rings through the selected edges"),
        command_row("select_boundary", command_select_boundary, select, nullptr,
                    "select the open edges"),
        command_row("select_sharp", command_select_sharp, select, "<float degrees>",
                    "select edges whose surfaces meet at a larger angle"),
        command_row("select_path", command_select_path, select, nullptr,
                    "select the shortest way between two selected elements"),
        command_row("loop_cut", command_loop_cut, edit, 0, 2, "<int cuts> <float slide>",
                    "cut the rings of quads through the selected edges"),
        command_row("loop_cut_at", command_loop_cut_at, edit, 3, 5,
                    "<int object_id> <int vertex> <int vertex> <int cuts> <float slide>",
                    "cut the ring of quads through one edge"),
        command_row("connect", command_connect, edit, nullptr,
                    "new edges between selected vertices, or middles of selected edges"),
        command_row("split_edges", command_split_edges, edit, nullptr,
                    "part the surfaces along the selected edges"),
        command_row("dissolve", command_dissolve, edit, nullptr,
                    "take the selected elements away and leave polygons"),
        command_row("collapse", command_collapse, edit, nullptr,
                    "bring connected selected elements to one point"),
        command_row("extrude_edges", command_extrude_edges, edit, "<float x> <float y> <float z>",
                    "a quad from every selected edge to its copy"),
        command_row("edge_bevel", command_edge_bevel, edit, 1, 3,
                    "<float width> <int segments> <float profile>",
                    "replace the selected edges by strips of quads"),
        command_row("vertex_bevel", command_vertex_bevel, edit, "<float width>",
                    "cut the selected vertices off"),
        command_row("slide", command_slide, edit, "<float share>",
                    "move selected edges or vertices along the edges beside them"),
        command_row("fill_hole", command_fill_hole, edit, 0, 1, "<polygon|grid|fan>",
                    "close the holes that have a selected edge"),
        command_row("bridge", command_bridge, edit, 0, 3,
                    "<int segments> <int twist> <float smooth>",
                    "join two borders, or two selected surfaces"),
    };
    return rows;
}
