// Texture coordinates of one object of 100,000 corners (25,000 quads): what a step of the editor
// costs, beside reading the coordinates once.

#include "bench/terrain.h"
#include "edit/document/selection.h"
#include "edit/uv/uv_edit.h"
#include "edit/uv/uv_measure.h"
#include "edit/uv/uv_pack.h"
#include "edit/uv/uv_project.h"
#include "edit/uv/uv_relax.h"
#include "model/change_marks.h"
#include "model/normals.h"
#include "program/command_table.h"
#include "view/uv_drag.h"
#include "view/uv_view.h"
#include "view/views_internal.h"

#include <cstdlib>
#include <initializer_list>

namespace {

double reading = 0; // seconds

template <class Work>
void measure(const char *what, Work work)
{
    const timing took = best_of(3, work);
    std::printf("%-52s %9.5f s %9.5f s %8.0f x reading\n", what, took.wall, took.cpu,
                took.wall / reading);
}

void command(std::initializer_list<const char *> words)
{
    do_command(static_cast<int>(words.size()), words.begin());
}

// A drag of everything: press, steps, release.
pointer_event_t event(int x, int button = 0) { return {texture_coords_view, x, 200, button, 0, 0}; }

void bench_drag()
{
    uv_view_resize(800, 600);
    command({"uv_select_mode", "island"});
    command({"uv_select", "all"});
    uv_drag_press(event(400, 1));
    uv_drag_motion(event(410));
    int x = 410;
    measure("one step of a drag of all corners", [&] { uv_drag_motion(event(++x)); });
    measure("the same, and the picture's lines are numbered anew", [&] {
        uv_drag_motion(event(++x));
        uv_find_islands(uv_editor().mesh);
    });
    measure("its release: one undo record, one state", [&] {
        uv_drag_release(event(++x, 1));
        uv_drag_press(event(400, 1));
        uv_drag_motion(event(430));
    });
    uv_drag_cancel();
    measure("a click", [] { uv_view_click(400, 300, 0); });
    measure("a rubber band over all", [] { uv_view_take_band(800, 600, 0, 0, 0); });
}

} // namespace

int main(int argc, char **argv)
{
    bench_begin();
    register_commands();
    const int quads = argc > 1 ? std::atoi(argv[1]) : 25000;
    const terrain_arrays arrays(static_cast<int>(std::sqrt(quads)) + 1);
    object_t *terrain = arrays.build();
    object_calc_normals_force(terrain);
    command({"set_select_mode", "object"});
    select_object(terrain);
    command({"uv_project", "planar_y", "1"});
    const uv_mesh mesh = uv_mesh_of({terrain});
    const uv_islands islands = uv_find_islands(mesh);
    std::printf("%d corners, %d surfaces, %d island\n", mesh.num_corners(), mesh.num_surfaces(),
                islands.num_islands);
    volatile double kept = 0;
    reading = best_of(5, [&] {
                  double sum = 0;
                  for (const flat_uv &p : mesh.at)
                      sum += double{p.u} * p.v;
                  kept = kept + sum;
              }).wall;
    std::printf("%-52s %9.6f s\n", "reading the coordinates once", reading);

    measure("arrays of the object's polygons", [&] { uv_mesh_of({terrain}); });
    measure("islands, points and edges", [&] { uv_find_islands(mesh); });
    measure("stretch", [&] { uv_measure_stretch(mesh, 1); });
    measure("overlaps: side by side", [&] { uv_find_overlaps(mesh); });
    std::vector<int> all;
    for (int i = 0; i < mesh.num_surfaces(); ++i)
        all.push_back(i);
    measure("box projection",
            [&] { uv_project(mesh, all, uv_projection::BOX, uv_extent::PROPORTIONS, 1); });
    std::vector<flat_uv> at = mesh.at;
    measure("relax: the system and 10 steps",
            [&] { uv_relax(mesh, islands, std::vector<char>(at.size(), 1), all, 10, 1, at); });
    bench_drag();

    command({"inituv"});
    const uv_mesh stacked = uv_mesh_of({terrain});
    measure("overlaps: all on one place", [&] { uv_find_overlaps(stacked); });
    std::printf("%d islands\n", uv_find_islands(stacked).num_islands);
    measure("packing every surface as an island", [] {
        command({"uv_pack", "1"});
        command({"undo"});
    });
    const std::vector<uv_rectangle> sizes(3000, uv_rectangle{1, 0.7});
    measure("packing 3,000 islands along the skyline",
            [&] { uv_pack_rectangles(sizes, 1, 0.001, true); });
    return 0;
}
