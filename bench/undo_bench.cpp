// Whole-model undo and the journal: one object of a million vertices and as many quads, and ten
// thousand small objects. Times in seconds, memory in bytes a vertex.

#include "bench/terrain.h"
#include "edit/document/journal.h"
#include "edit/document/selection_internal.h"
#include "edit/document/undo.h"
#include "edit/primitives.h"
#include "edit/transform.h"
#include "model/change_marks.h"
#include "model/freed.h"
#include "model/normals.h"
#include "program/command_table.h"

#include <cstdlib>
#include <initializer_list>

namespace {

void command(std::initializer_list<const char *> words)
{
    do_command(static_cast<int>(words.size()), words.begin());
}

// Prints what the work took on the clock and in the processor.
template <class Work>
void measure(const char *what, Work work)
{
    const timing took = best_of(1, work);
    std::printf("%-44s %9.4f s %9.4f s\n", what, took.wall, took.cpu);
}

// The same with the memory that the model's states hold in addition.
template <class Work>
void measure_memory(const char *what, int vertices, Work work)
{
    const auto before = static_cast<double>(model_state_bytes());
    const timing took = best_of(1, work);
    std::printf("%-44s %9.4f s %9.4f s %7.1f bytes a vertex\n", what, took.wall, took.cpu,
                (static_cast<double>(model_state_bytes()) - before) / vertices);
}

// Whole-model records of the object that stands in the world.
void bench_records(object_t *terrain)
{
    const int n = terrain->num_vertices;
    const point3_t offset = {0.5f, 0, 0.25f};
    new_undo(UNDO_WORLD, "first");
    measure_memory("first whole-model record", n, set_undo_all);
    new_undo(UNDO_WORLD, "unchanged");
    measure_memory("of the unchanged model", n, set_undo_all);
    translate_object(terrain, &offset);
    new_undo(UNDO_WORLD, "moved");
    measure_memory("after a move", n, set_undo_all);
    translate_object(terrain, &offset);
    object_calc_normals_force(terrain);
    new_undo(UNDO_WORLD, "moved, normals");
    measure_memory("after a move with normals", n, set_undo_all);
    translate_object(terrain, &offset);
    object_calc_normals_force(terrain);
    new_undo(UNDO_WORLD, "moved, normals");
    measure_memory("again", n, set_undo_all);
}

void bench_reversals(object_t *terrain)
{
    const int n = terrain->num_vertices;
    const point3_t offset = {0.5f, 0, 0.25f};
    new_undo(UNDO_WORLD, "move");
    set_undo_all();
    translate_object(terrain, &offset);
    measure_memory("journal: state after a move", n, [] { journal_step("move"); });
    measure("undo it", [] { command({"undo"}); });

    new_undo(UNDO_WORLD, "surfaces");
    set_undo_all();
    surface_t *surface = item_of<surface_t>(terrain->surfaces);
    list_remove_item(&terrain->surfaces, surface);
    --terrain->num_surfaces;
    {
        freed_batch batch;
        batch.add(surface);
    }
    object_mark(terrain, CHANGED_TOPOLOGY);
    measure_memory("journal: state after a change of surfaces", n,
                   [] { journal_step("surfaces"); });
    measure("undo it: geometry made anew", [] { command({"undo"}); });
    measure("redo it", [] { command({"redo"}); });
    measure("undo it again", [] { command({"undo"}); });
}

void bench_commands()
{
    command({"clear_selection"});
    measure("select all and move, tree mode", [] {
        command({"select_all"});
        command({"move", "0.125", "0", "0.5"});
    });
    measure("to vertex mode", [] { command({"set_select_mode", "vertex"}); });
    measure("clear", [] { command({"clear_selection"}); });
    measure("select all", [] { command({"select_all"}); });
    measure("move", [] { command({"move", "0.125", "0", "0.5"}); });
    measure("move to", [] { command({"move_to", "0", "0", "0"}); });
    measure("undo", [] { command({"undo"}); });
    measure("redo", [] { command({"redo"}); });
}

void bench_many(int n)
{
    std::vector<object_t *> cubes;
    const point3_t origin = {0, 0, 0};
    for (int i = 0; i < n; ++i) {
        cubes.push_back(create_regular_cube(&origin));
        object_add_child(vesk_get_world(), cubes.back());
    }
    measure("journal: 10,000 objects", [] { journal_step("many"); });
    measure("one renamed", [&] {
        object_set_name(cubes[77], "another");
        journal_step("name");
    });
    measure("one moved", [&] {
        object_mark(cubes[78], CHANGED_POSITIONS);
        journal_step("move");
    });
    measure("one more", [&] {
        object_add_child(vesk_get_world(), create_regular_cube(&origin));
        journal_step("add");
    });
    measure("back by one", [] { journal_goto(static_cast<int>(journal_items().size()) - 2); });
    measure("a query", [] { command({"get_app_mode"}); });
}

} // namespace

int main(int argc, char **argv)
{
    const int side = argc > 1 ? std::atoi(argv[1]) : 1000;
    bench_begin();
    register_commands();
    object_t *terrain = terrain_arrays(side).build();
    object_calc_normals_force(terrain);
    std::printf("%d vertices, %d quads%26s wall         cpu\n", terrain->num_vertices,
                terrain->num_surfaces, "");
    bench_records(terrain);
    bench_reversals(terrain);
    bench_commands();
    object_delete(item_of<object_t>(vesk_get_world()->children));
    bench_many(10000);
    return 0;
}
