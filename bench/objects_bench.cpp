// Commands that make, cut and join objects, at three sizes, and ten thousand small objects. Times
// are of whole commands, undo and history included, with what the library or the bare records
// alone take beside them.

#include "base/command_result.h"
#include "bench/terrain.h"
#include "edit/document/journal.h"
#include "edit/document/selection_internal.h"
#include "edit/document/undo.h"
#include "edit/hull.h"
#include "edit/primitives.h"
#include "edit/smooth_subdivide.h"
#include "fileio/clipboard.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/flat_mesh.h"
#include "model/normals.h"
#include "program/command_table.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <meshoptimizer.h>
#include <string>

namespace {

void command(std::initializer_list<const char *> words)
{
    do_command(static_cast<int>(words.size()), words.begin());
}

void empty_world()
{
    command({"clear_all"});
    clipboard_reset_for_test();
    journal_reset_for_test();
}

void report(const char *what, int vertices, const timing &took, const char *note = "")
{
    std::printf("%-34s %9d %9.4f s %9.4f s %8.1f ns a vertex  %s\n", what, vertices, took.wall,
                took.cpu, took.cpu * 1e9 / vertices, note);
}

// A terrain, selected; `pieces` cuts its quads into strips without common vertices.
object_t *select_terrain(int side, int pieces = 1)
{
    empty_world();
    const int rows = side / pieces;
    object_t *object = nullptr;
    if (pieces == 1) {
        terrain_arrays arrays(side);
        std::fill(arrays.uv.begin(), arrays.uv.end(), 0.0f); // no seams
        object = arrays.build();
    } else {
        object = new_object(OBJECT_POLY);
        object_add_child(vesk_get_world(), object);
        std::vector<float> xyz;
        std::vector<int> corners, offsets = {0};
        for (int piece = 0; piece < pieces; ++piece) {
            const int first = piece * side * rows;
            for (int i = 0; i < side * rows; ++i)
                xyz.insert(xyz.end(), {float(i % side), float(piece), float(i / side)});
            for (int i = 0; i + side < side * rows; ++i) {
                if ((i + 1) % side == 0)
                    continue;
                for (const int v : {i, i + side, i + side + 1, i + 1})
                    corners.push_back(first + v);
                offsets.push_back(static_cast<int>(corners.size()));
            }
        }
        vesk_object_add_vertices_from_float_array(object, xyz.data(),
                                                  static_cast<int>(xyz.size() / 3));
        vesk_object_add_surfaces_from_arrays(object, static_cast<int>(offsets.size()) - 1,
                                             offsets.data(), corners.data(), nullptr, 1);
    }
    object_calc_normals_force(object);
    command({"set_select_mode", "object"});
    command({"select_all"});
    journal_step("start");
    return object;
}

std::vector<point3_t> points_of(const object_t *object)
{
    std::vector<point3_t> points;
    for (const vertex *point : each<vertex>(object->vertices))
        points.push_back(point->position);
    return points;
}

void bench_hulls(int side)
{
    object_t *object = select_terrain(side);
    const int n = object->num_vertices;
    const std::vector<point3_t> points = points_of(object);
    polygons_t out;
    report("hull: the library alone", n, best_of(1, [&] { convex_hull(points, 1e-5, &out); }));
    report("convexhull", n, best_of(1, [] { command({"convexhull"}); }));
    select_terrain(side);
    report("delaunay: the library alone", n,
           best_of(1, [&] { delaunay_triangulation(points, 1, &out); }));
    report("delaunay", n, best_of(1, [] { command({"delaunay"}); }));
}

void bench_subdivision(int side)
{
    object_t *object = select_terrain(side);
    const int n = object->num_vertices;
    report("surface_loop_subdivision 1", n, best_of(1, [] {
               command({"surface_loop_subdivision", "1"});
           }));
    const int surfaces = object->num_surfaces, vertices = object->num_vertices;
    {
        // As many records as the result has, made by the bulk calls.
        std::vector<float> xyz(3 * static_cast<std::size_t>(vertices));
        std::vector<int> offsets, corners(3 * static_cast<std::size_t>(surfaces));
        for (int i = 0; i <= surfaces; ++i)
            offsets.push_back(3 * i);
        for (std::size_t i = 0; i < corners.size(); ++i)
            corners[i] = static_cast<int>(i) % vertices;
        empty_world();
        object_t *records = new_object(OBJECT_POLY);
        report("loop: the result's records alone", n, best_of(1, [&] {
                   vesk_object_add_vertices_from_float_array(records, xyz.data(), vertices);
                   vesk_object_add_surfaces_from_arrays(records, surfaces, offsets.data(),
                                                        corners.data(), nullptr, 1);
               }));
        object_free(records);
    }
    object = select_terrain(side);
    vesk_mesh_t *mesh = nullptr;
    report("loop: the mesh", n, best_of(1, [&] {
               mesh = vesk_object_to_mesh(object);
               loop_subdivide(mesh, 1);
           }));
    report("loop: back into the object", n, best_of(1, [&] { vesk_mesh_to_object(mesh, object); }));
    report("loop: freeing the mesh", n, best_of(1, [&] { vesk_mesh_free(mesh); }));
    report("loop: normals", n, best_of(1, [&] { object_calc_normals_force(object); }));
    report("loop: flat mesh for the history", n, best_of(1, [&] { object_flat(object); }));
    select_terrain(side);
    report("surface_doosabin", n, best_of(1, [] { command({"surface_doosabin"}); }));
}

void bench_reduce(int side)
{
    object_t *object = select_terrain(side);
    const int n = object->num_vertices;
    {
        const std::vector<point3_t> points = points_of(object);
        std::vector<unsigned> indices;
        const terrain_arrays arrays(side);
        for (std::size_t i = 0; i < arrays.indices.size(); i += 4) {
            for (const std::size_t corner : {0, 1, 2, 0, 2, 3})
                indices.push_back(static_cast<unsigned>(arrays.indices[i + corner]));
        }
        std::vector<unsigned> result(indices.size());
        report("reduce: the library alone", n, best_of(1, [&] {
                   meshopt_simplify(result.data(), indices.data(), indices.size(), &points[0].x,
                                    points.size(), sizeof(point3_t), indices.size() / 2, 1e10f, 0,
                                    nullptr);
               }));
    }
    const timing took = best_of(1, [] { command({"reduce", "50"}); });
    const std::string left = "to " + std::to_string(object->num_vertices);
    report("reduce 50", n, took, left.c_str());
}

void bench_pieces(int side)
{
    constexpr int strips = 50;
    object_t *object = select_terrain(side, strips);
    const int n = object->num_vertices;
    report("object_fragment into 50", n, best_of(1, [] { command({"object_fragment"}); }));
    report("object_merge of 50", n, best_of(1, [] { command({"object_merge"}); }));
    constexpr int many_objects = 316; // a million objects of one surface are no use to anybody
    if (side > many_objects)
        return;
    select_terrain(side);
    report("object_explode", n, best_of(1, [] { command({"object_explode"}); }));
    report("object_merge of all surfaces", n, best_of(1, [] { command({"object_merge"}); }));
}

void bench_copies(int side)
{
    const int n = select_terrain(side)->num_vertices;
    report("duplicate", n, best_of(1, [] { command({"duplicate"}); }));
    select_terrain(side);
    report("clipboard_copy", n, best_of(1, [] { command({"clipboard_copy"}); }));
    report("clipboard_paste", n, best_of(1, [] { command({"clipboard_paste"}); }));
    select_terrain(side);
    command({"set_select_mode", "surface"});
    report("duplicate, surfaces", n, best_of(1, [] { command({"duplicate"}); }));
    select_terrain(side);
    report("check_model", n, best_of(1, [] { command({"check_model"}); }));
    report("check_model again", n, best_of(1, [] { command({"check_model"}); }));
}

// A thousand copies, of a thousandth of the vertices each.
void bench_array(int side)
{
    const int small = static_cast<int>(std::lround(side / std::sqrt(1000.0)));
    const int n = 1000 * select_terrain(small)->num_vertices;
    report("array of 1,000", n, best_of(1, [] {
               command({"array", "1000", "10", "0", "0", "0"});
           }));
    report("undo it", n, best_of(1, [] { command({"undo"}); }));
    select_terrain(small);
    report("round array of 1,000", n, best_of(1, [] {
               command({"array_round", "1000", "y", "360"});
           }));
}

// ---- many objects ----

std::string identity_of(int i)
{
    command({"object_get_children", "1"});
    const std::string all = command_result_get();
    std::size_t from = 0;
    for (int skip = 0; skip < i; ++skip)
        from = all.find(' ', from) + 1;
    return all.substr(from, all.find(' ', from) - from);
}

void bench_many(int count)
{
    empty_world();
    const point3_t origin = {0, 0, 0};
    for (int i = 0; i < count; ++i)
        object_add_child(vesk_get_world(), create_regular_cube(&origin));
    command({"get_world"});
    journal_step("many");
    const std::string one = identity_of(count / 2);
    const char *id = one.c_str();
    std::printf("\n%d objects %36s wall         cpu\n", count, "");
    const auto measure = [](const char *what, auto &&work) {
        const timing took = best_of(3, work);
        std::printf("%-34s %19.6f s %9.6f s\n", what, took.wall, took.cpu);
    };
    command({"set_select_mode", "tree"});
    measure("select one", [&] {
        command({"clear_selection"});
        command({"object_select", id});
    });
    measure("move one", [] { command({"move", "1", "0", "0"}); });
    measure("duplicate one", [&] {
        command({"clear_selection"});
        command({"object_select", id});
        command({"duplicate"});
    });
    measure("hide and show one", [&] {
        command({"object_hide", id});
        command({"object_unhide", id});
    });
    measure("rename one", [&] {
        command({"object_set_name", id, "another"});
        command({"object_set_name", id, "name"});
    });
    measure("select all", [] { command({"select_all"}); });
    measure("move all", [] { command({"move", "1", "0", "0"}); });
    measure("hide and show all", [] {
        command({"hide_selected"});
        command({"unhide"});
        command({"select_all"});
    });
    const timing twice = best_of(1, [] { command({"duplicate"}); });
    std::printf("%-34s %19.6f s %9.6f s\n", "duplicate all", twice.wall, twice.cpu);
    const timing undone = best_of(1, [] { command({"undo"}); });
    std::printf("%-34s %19.6f s %9.6f s\n", "undo it", undone.wall, undone.cpu);
    const timing grouped = best_of(1, [] {
        command({"select_all"});
        command({"group"});
    });
    std::printf("%-34s %19.6f s %9.6f s\n", "group all", grouped.wall, grouped.cpu);
    const timing ungrouped = best_of(1, [] { command({"ungroup"}); });
    std::printf("%-34s %19.6f s %9.6f s\n", "ungroup", ungrouped.wall, ungrouped.cpu);
    const timing deleted = best_of(1, [] {
        command({"select_all"});
        command({"delete"});
    });
    std::printf("%-34s %19.6f s %9.6f s\n", "delete all", deleted.wall, deleted.cpu);
    const timing back = best_of(1, [] { command({"undo"}); });
    std::printf("%-34s %19.6f s %9.6f s\n", "undo it", back.wall, back.cpu);
}

} // namespace

// objects_bench [largest side [group]]: terrains of side * side vertices, 1000 by default; all
// groups, or the one that is named.
int main(int argc, char **argv)
{
    struct group_t {
        const char *name;
        void (*run)(int side);
    };
    const group_t groups[] = {{"hulls", bench_hulls},   {"subdivision", bench_subdivision},
                              {"reduce", bench_reduce}, {"pieces", bench_pieces},
                              {"copies", bench_copies}, {"array", bench_array}};
    const int largest = argc > 1 ? std::atoi(argv[1]) : 1000;
    const std::string wanted = argc > 2 ? argv[2] : "";
    bench_begin();
    register_commands();
    std::printf("%-34s %9s %11s %11s\n", "", "vertices", "wall", "cpu");
    for (const int side : {100, 316, 1000}) {
        for (const group_t &group : groups) {
            if (side <= largest && (wanted.empty() || wanted == group.name))
                group.run(side);
        }
    }
    for (const int count : {1000, 10000, 100000}) {
        if (wanted.empty() || wanted == "many")
            bench_many(count);
    }
    return 0;
}
