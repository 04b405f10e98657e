// Edge mode and the cuts on a terrain in one object: selecting, picking, the previews of the tools,
// the operations. Beside it, in the same run: making the records of that mesh.
//   edges_bench [side]    default 1000

#include "bench/terrain.h"
#include "edit/document/edge_selection.h"
#include "edit/document/modes.h"
#include "edit/document/step.h"
#include "model/flat_mesh.h"
#include "model/normals.h"
#include "program/command_table.h"
#include "view/camera.h"
#include "view/fit.h"
#include "view/interaction.h"
#include "view/pick.h"
#include "view/tools.h"
#include "view/views_internal.h"

#include <cstdlib>
#include <initializer_list>
#include <optional>
#include <string>

namespace {

constexpr int width = 436;
constexpr int height = 346;

void command(std::initializer_list<const char *> words)
{
    do_command(static_cast<int>(words.size()), words.begin());
}

// Commands are steps of the history as usual, but a debug build's comparison of the whole model with
// what was announced, after every command, is left out.
std::optional<step_t> step;

void watch_commands()
{
    command_registry_set_hooks(
        {.before = [](const vesk_command_t *, int,
                      const char *const *) { step.emplace(step_t::of::command); },
         .after = [](const vesk_command_t *, bool) { step->keep("command"); }});
}

template <class Work>
double measure(const char *what, int times, Work work)
{
    const timing took = best_of(times, work);
    std::printf("%-44s %9.2f ms   cpu %9.2f\n", what, took.wall * 1e3, took.cpu * 1e3);
    return took.cpu;
}

// The edge in the middle of the terrain, along x.
void select_middle(int id, int side)
{
    const int middle = side * (side / 2) + side / 2;
    command({"set_select_mode", "edge"});
    command({"clear_selection"});
    command({"edge_select", std::to_string(id).c_str(), std::to_string(middle).c_str(),
             std::to_string(middle + 1).c_str()});
}

void bench_selecting(int id, int side)
{
    measure("entering edge mode, all selected", 3, [] {
        command({"set_select_mode", "object"});
        command({"select_all"});
        command({"set_select_mode", "edge"});
    });
    measure("select all", 3, [] {
        command({"clear_selection"});
        command({"select_all"});
    });
    for (const char *name : {"select_loop", "select_ring", "select_grow"}) {
        select_middle(id, side);
        command({"selection_get_num_edges"});
        measure(name, 1, [&] { command({name}); });
    }
    select_middle(id, side);
    for (const int view : {VIEW_XZ, VIEW_XYZ})
        measure(view == VIEW_XZ ? "edge under the pointer, plan" : "edge under the pointer, 3D", 3,
                [&] { pick_at(view, pick_kind::EDGE, width / 2, height / 2, 4); });
}

void bench_operations(int id, int side)
{
    select_middle(id, side);
    measure("loop cut of a ring", 1, [] { command({"loop_cut", "1", "0"}); });
    command({"step_back"});
}

double seconds = 0;

// The tool under the pointer: motions over a few pixels.
void bench_hover(const char *what, int view)
{
    int way = 0;
    measure(what, 20, [&] {
        ++way;
        interaction_motion(
            {view, width / 2 + 60 + way, height / 2 - 40 + 2 * (way % 5), 0, 0, seconds += 0.02});
    });
}

void click(int view, int x, int y)
{
    interaction_press({view, x, y, 1, 0, seconds += 1});
    interaction_release({view, x, y, 1, 0, seconds += 0.1});
}

void bench_tools()
{
    command({"clear_selection"});
    for (const int view : {VIEW_XZ, VIEW_XYZ}) {
        const std::string where = view == VIEW_XZ ? "plan: " : "3D: ";
        command({"set_view_tool", "loop_cut"});
        bench_hover((where + "preview of the loop cut").c_str(), view);
        command({"set_view_tool", "knife"});
        bench_hover((where + "the knife's first point").c_str(), view);
        measure((where + "the knife's first click").c_str(), 1,
                [&] { click(view, width / 2 - 60, height / 2 + 40); });
        click(view, width / 2, height / 2);
        bench_hover((where + "preview of the knife").c_str(), view);
        measure((where + "the knife cuts").c_str(), 1, [] { tool_key("Return"); });
        command({"step_back"});
        command({"set_view_tool", "none"});
    }
}

} // namespace

int main(int argc, char **argv)
{
    const int side = argc > 1 ? std::atoi(argv[1]) : 1000;
    bench_begin();
    register_commands();
    watch_commands();
    person_reset();
    tools_install();
    const terrain_arrays arrays(side);
    object_t *terrain = nullptr;
    const double bare = measure("making the records", 1, [&] { terrain = arrays.build(); });
    object_calc_normals_force(terrain);
    for (int view = 0; view < num_views; ++view)
        handle_resize(view, width, height);
    command({"select_all"});
    fit_selected_all();
    std::printf("-- %d vertices, %d quads\n", terrain->num_vertices, terrain->num_surfaces);

    bench_selecting(2, side);
    bench_operations(2, side);
    bench_tools();
    command({"set_select_mode", "object"});
    command({"select_all"});
    const double subdivided = measure("catmull_clark", 1, [] { command({"catmull_clark", "1"}); });
    std::printf("-- %d quads: %.2f of their bare records\n", terrain->num_surfaces,
                subdivided / (bare * terrain->num_surfaces / arrays.num_surfaces()));
    return 0;
}
