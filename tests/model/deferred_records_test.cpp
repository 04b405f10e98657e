#include "model/deferred_records.h"

#include "base/foreign.h"
#include "base/worker.h"
#include "edit/document/selection_internal.h"
#include "model/change_marks_internal.h"
#include "model/deferred_pages.h"
#include "model/each.h"
#include "model/flat_array.h"
#include "model/freed.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "tests/support/deferred_test.h"

#include <atomic>
#include <cstring>
#include <random>

namespace {

class DeferredRecords : public DeferredTest {};

// An object under the world of `side` by `side` quads, some one-sided, smooth or of other materials, with
// texture coordinates, then triangles between its points.
object_t *add_sheet(int side)
{
    object_t *object = new_object(OBJECT_POLY);
    std::vector<vertex *> points;
    for (int y = 0; y <= side; ++y) {
        for (int x = 0; x <= side; ++x) {
            points.push_back(object_add_new_vertex(object, static_cast<float>(x),
                                                   static_cast<float>(y),
                                                   static_cast<float>(x * y % 7)));
        }
    }
    const auto add = [&](const std::vector<int> &corners, int kind) {
        surface_t *surface = new_surface();
        surface_set_col(surface, kind % 5);
        vesk_surface_set_flags(surface, kind % 3 * 0x10);
        for (const int corner : corners)
            surface_add_vertex(surface, points[corner], static_cast<float>(corner), 0.5f);
        object_add_surface(object, surface);
    };
    for (int i = 0; i < side * side; ++i) {
        const int at = i / side * (side + 1) + i % side;
        add({at, at + 1, at + side + 2, at + side + 1}, i);
    }
    for (int i = 0; i + 2 < side * side; i += 5)
        add({i, i + 1, i + 2}, i);
    object_add_child(vesk_get_world(), object);
    object_mark_tree(object, CHANGED_ALL);
    return object;
}

std::shared_ptr<flat_mesh> without_records(object_t *object)
{
    return std::make_shared<flat_mesh>(object_flat(object)->without_records());
}

// The sheet with its records deferred.
object_t *add_deferred_sheet(int side)
{
    object_t *object = add_sheet(side);
    object_set_whole(object, without_records(object));
    return object;
}

// The names of the arrays that differ.
std::string differences(const flat_mesh &a, const flat_mesh &b)
{
    std::string names;
    const auto note = [&](bool equal, const char *name) { names += equal ? "" : name; };
    note(flat_identical(a.positions, b.positions), " positions");
    note(flat_identical(a.normals, b.normals), " normals");
    note(flat_identical(a.face_normals, b.face_normals), " face_normals");
    note(flat_identical(a.surfaces, b.surfaces), " surfaces");
    note(flat_identical(a.corner_offsets, b.corner_offsets), " corner_offsets");
    note(flat_identical(a.corners, b.corners), " corners");
    note(flat_identical(a.texture_coords, b.texture_coords), " texture_coords");
    return names;
}

TEST_F(DeferredRecords, AreWhatTheFlatMeshSays)
{
    for (const int side : {1, 2, 260}) { // the last of several pages
        object_t *object = add_sheet(side);
        const flat_ptr before = object_flat(object);
        object_set_whole(object, without_records(object));
        const flat_ptr after = object_flat(object);
        EXPECT_EQ(untouched_flat(object), after);
        EXPECT_EQ(object->num_vertices, before->num_vertices());
        EXPECT_EQ(flat_compare(object, *after), 0U) << "walks all lists";
        EXPECT_EQ(untouched_flat(object), nullptr);
        EXPECT_EQ(list_count(object->surfaces), before->num_surfaces());
        object_mark(object, CHANGED_ALL);
        const flat_ptr read = object_flat(object);
        EXPECT_TRUE(read->whole);
        EXPECT_EQ(differences(*read, *before), "");
    }
}

// Whole pages come and go, whatever was touched of them, and are used again.
TEST_F(DeferredRecords, TakeNoMemoryUntilTouchedAndGiveItBack)
{
    const std::size_t begin = deferred_pages::bytes_to_come();
    for (int round = 0; round < 3; ++round) {
        object_t *object = add_deferred_sheet(260);
        const std::size_t all = deferred_pages::bytes_to_come();
        EXPECT_GT(all, begin);
        if (round > 0) {
            const flat_ptr flat = object_flat(object);
            flat->vertex_record(5)->position.x += 1;
            EXPECT_LT(deferred_pages::bytes_to_come(), all);
            object_mark(object, CHANGED_POSITIONS);
            if (round == 2) { // one surface less: its records go one by one
                freed_batch batch;
                object->num_surfaces -= list_unlink_if<surface_t>(
                    &object->surfaces, batch, [](surface_t *, std::size_t i) { return i == 7; });
                object_mark(object, CHANGED_TOPOLOGY);
            }
            EXPECT_EQ(flat_compare(object, *object_flat(object)), 0U);
        }
        object_delete(object);
        EXPECT_EQ(deferred_pages::bytes_to_come(), begin);
    }
}

TEST_F(DeferredRecords, AreWrittenOnceForManyThreads)
{
    object_t *object = add_deferred_sheet(400);
    const flat_ptr flat = object_flat(object);
    std::atomic<int> wrong = 0;
    in_parallel(64, [&](int i) {
        std::mt19937 random(i);
        for (int k = 0; k < 500; ++k) {
            const int s = static_cast<int>(random() % flat->num_surfaces());
            int corner = flat->first_corner(s);
            for (const svertex *at : each<svertex>(flat->surface_record(s)->refs)) {
                const int v = flat->corner(corner++);
                if (at->vertex != flat->vertex_record(v) ||
                    std::memcmp(&at->vertex->position, &flat->position(v), sizeof(point3_t)) != 0)
                    ++wrong;
            }
        }
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(flat_compare(object, *flat), 0U);
}

// What foreign code does to them is seen, even when it only puts them elsewhere.
TEST_F(DeferredRecords, ForeignChangesAreFound)
{
    object_t *object = add_deferred_sheet(10);
    {
        const foreign_scope scope(code_of_function(recording), true);
        item_of<vertex>(object->vertices->next)->position.z = 77;
    }
    EXPECT_EQ(object_flat(object)->position(1).z, 77);

    object_t *other = add_deferred_sheet(12), *third = add_cube("third");
    object_flat(third);
    {
        const foreign_scope scope(code_of_function(recording), true);
        std::swap(other->vertices, third->vertices);
        std::swap(other->surfaces, third->surfaces);
        std::swap(other->num_vertices, third->num_vertices);
        std::swap(other->num_surfaces, third->num_surfaces);
    }
    EXPECT_EQ(object_flat(third)->num_vertices(), 169);
    EXPECT_EQ(object_flat(other)->num_vertices(), 8);
    object_delete(third);
    EXPECT_EQ(flat_compare(other, *object_flat(other)), 0U);
}

// An operation, undo and redo with and without: the same model. Selected elements that go are forgotten.
TEST_F(DeferredRecords, OperationsAndUndoAreAsWithRecords)
{
    std::vector<flat_ptr> results[2];
    for (const bool defers : {false, true}) {
        deferred_records_set_least(defers ? 1 : 1000000);
        run("clear_all");
        object_t *object = add_sheet(20);
        run("set_select_mode", "object");
        run("select_all");
        const auto keep = [&] { results[defers].push_back(object_flat(object)); };
        for (const char *command : {"catmull_clark", "undo", "redo", "catmull_clark"}) {
            if (std::string_view(command) == "catmull_clark")
                run(command, 1);
            else
                run(command);
            object = item_of<object_t>(vesk_get_world()->children);
            keep();
        }
        run("set_select_mode", "surface");
        run("select_all");
        EXPECT_EQ(selection().num_surfaces, object->num_surfaces);
        run("undo");
        run("undo");
        run("redo");
        run("reduce", 50);
        object = item_of<object_t>(vesk_get_world()->children);
        keep();
        run("delete");
    }
    ASSERT_EQ(results[0].size(), results[1].size());
    for (std::size_t i = 0; i < results[0].size(); ++i) {
        EXPECT_EQ(differences(*results[0][i], *results[1][i]), "") << i;
    }
}

} // namespace
