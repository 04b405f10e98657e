#include "draw/mesh_changes.h"

#include "model/change_marks.h"
#include "model/normals.h"
#include "tests/support/scene_test.h"

#include <random>

namespace {

using MeshChanges = SceneTest;

// The buffers of a mesh as they are written.
struct written_t {
    std::vector<float> positions;
    std::vector<std::int16_t> normals;
    bool operator==(const written_t &) const = default;
};

written_t all_of(const mesh_layout_t &layout, const flat_mesh &flat)
{
    written_t written = {std::vector<float>(3 * layout.num_slots()),
                         std::vector<std::int16_t>(4 * layout.num_slots())};
    layout_positions(layout, flat, {0, layout.num_slots()}, written.positions.data());
    layout_normals(layout, flat, {0, layout.num_slots()}, written.normals.data());
    return written;
}

TEST_F(MeshChanges, WhatIsWrittenAnewMakesTheBuffersThoseOfTheMovedMesh)
{
    object_t *object = add_cube("cube");
    run("select_all");
    for (int i = 0; i < 5; ++i)
        run("surface_subdivide");
    ASSERT_GT(object->num_vertices, 1000);
    std::mt19937 random(5);
    for (int round = 0; round < 40; ++round) {
        const flat_ptr before = object_flat(object);
        const mesh_layout_t layout = layout_mesh(*before, {.texture_coords = round % 4 == 3});
        written_t written = all_of(layout, *before);
        const std::vector<vertex *> records = *before->vertex_records;
        const int count = round == 0 ? 0 : 1 << round % 10;
        for (int i = 0; i < count; ++i)
            records[random() % records.size()]->position.y += 0.001f;
        object_mark(object, CHANGED_POSITIONS);
        object_calc_normals_force(object);
        const flat_ptr now = object_flat(object);
        const changed_t moved = changed_points(*before->positions, *now->positions);
        EXPECT_EQ(moved.empty(), count == 0);
        if (!layout_fits(layout.concave, *now, moved))
            continue;
        std::size_t slots = 0;
        for (const slot_run_t &run : moved_slots(layout, moved)) {
            layout_positions(layout, *now, run, written.positions.data() + 3 * run.first);
            slots += run.count;
        }
        for (const slot_run_t &run :
             turned_slots(layout, changed_points(*before->normals, *now->normals),
                          changed_points(*before->face_normals, *now->face_normals)))
            layout_normals(layout, *now, run, written.normals.data() + 4 * run.first);
        EXPECT_EQ(written, all_of(layout, *now)) << round;
        EXPECT_LE(slots, layout.num_slots());
    }
}

} // namespace
