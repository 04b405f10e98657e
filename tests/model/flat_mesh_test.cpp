#include "model/flat_mesh.h"

#include "model/alloc.h"
#include "model/change_marks_internal.h"
#include "model/each.h"
#include "model/freed.h"
#include "model/normals.h"
#include "model/normals_internal.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "model/world_check.h"
#include "tests/support/random_mesh.h"
#include "tests/support/scene_test.h"

#include <cstring>

namespace {

vertex *point(const object_t *object, int i) { return object_get_vertex_at(object, i); }
surface_t *face(const object_t *object, int i) { return object_get_surface_at(object, i); }
svertex *corner(const object_t *object, int i)
{
    return static_cast<svertex *>(list_get_item(face(object, 0)->refs, i));
}

struct change_case {
    const char *name;
    unsigned aspect;
    void (*change)(object_t *);
};
// clang-format off
const change_case change_cases[] = {
    {"position",      CHANGED_POSITIONS,      [](object_t *o) { vertex_set_point(point(o, 3), 5, 6, 7); }},
    {"normal",        CHANGED_NORMALS,        [](object_t *o) { point(o, 2)->normal.x = 0.25f; }},
    {"face_normal",   CHANGED_NORMALS,        [](object_t *o) { vesk_surface_set_normal(face(o, 1), 1, 0, 0); }},
    {"material",      CHANGED_ATTRIBUTES,     [](object_t *o) { surface_set_col(face(o, 4), 7); }},
    {"shading",       CHANGED_ATTRIBUTES,     [](object_t *o) { surface_set_shading(face(o, 5), 1); }},
    {"texture_coord", CHANGED_TEXTURE_COORDS, [](object_t *o) { corner(o, 1)->u = 0.75f; }},
    {"corner_order",  CHANGED_TOPOLOGY,       [](object_t *o) { surface_reverse_normal(face(o, 0)); }},
    {"other_vertex",  CHANGED_TOPOLOGY,       [](object_t *o) { corner(o, 0)->vertex = point(o, 7); }},
    {"new_corner",    CHANGED_TOPOLOGY,       [](object_t *o) { surface_add_vertex(face(o, 0), point(o, 7), 0, 0); }},
};
// clang-format on
void PrintTo(const change_case &c, std::ostream *out) { *out << c.name; }
class FlatMesh : public SceneTest, public testing::WithParamInterface<change_case> {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        cube = add_cube("cube");
    }
    object_t *cube = nullptr;
};
class FlatMeshOf : public SceneTest {};

// The arrays of the marked aspect are new and right, the others are the very same.
TEST_P(FlatMesh, RebuildsOnlyWhatIsMarked)
{
    const flat_ptr before = object_flat(cube);
    EXPECT_EQ(object_flat(cube), before);
    const std::uint64_t stamp = object_stamp(cube);
    GetParam().change(cube);
    object_mark(cube, GetParam().aspect);
    EXPECT_NE(object_stamp(cube), stamp);
    const flat_ptr after = object_flat(cube);
    const unsigned aspect = GetParam().aspect;
    const bool all = aspect == CHANGED_TOPOLOGY;
    EXPECT_EQ(after->positions != before->positions, all || aspect == CHANGED_POSITIONS);
    EXPECT_EQ(after->normals != before->normals, all || aspect == CHANGED_NORMALS);
    EXPECT_EQ(after->surfaces != before->surfaces, all || aspect == CHANGED_ATTRIBUTES);
    EXPECT_EQ(after->texture_coords != before->texture_coords,
              all || aspect == CHANGED_TEXTURE_COORDS);
    EXPECT_EQ(after->corners != before->corners, all);
    EXPECT_EQ(marks_check("test"), 0); // it is as the lists say
}

TEST_P(FlatMesh, NoticesUnmarkedChangesOfForeignCode)
{
    object_t *other = add_cube("other");
    const flat_ptr before = object_flat(cube);
    const flat_ptr untouched = object_flat(other);
    object_stamp(cube);
    const std::uint64_t other_stamp = object_stamp(other);
    GetParam().change(cube);
    EXPECT_EQ(object_flat(cube), before); // nobody said so
    mark_all_suspect();
    EXPECT_NE(object_flat(cube), before);
    EXPECT_EQ(object_flat(other), untouched);
    EXPECT_EQ(object_stamp(other), other_stamp);
    EXPECT_EQ(marks_check("test"), 0);
}

TEST_P(FlatMesh, CheckFindsForgottenMarks)
{
    marks_check("nothing");
    recording().console.clear();
    GetParam().change(cube);
    EXPECT_EQ(marks_check("the test"), 1);
    EXPECT_EQ(marks_take_unmarked(), 1);
    EXPECT_EQ(recording().console.find("unmarked change in object 'cube': "), 0U);
    EXPECT_EQ(marks_check("nothing"), 0);
}
INSTANTIATE_TEST_SUITE_P(Aspect, FlatMesh, testing::ValuesIn(change_cases));

TEST_F(FlatMeshOf, RecordChangesAreNoticedToo)
{
    object_t *cube = add_cube("cube");
    object_flat(cube);
    const std::uint64_t stamp = object_stamp(cube);
    const std::uint64_t tree = tree_change_count();
    cube->name[0] = 'X';
    EXPECT_EQ(object_stamp(cube), stamp);
    mark_all_suspect();
    EXPECT_NE(object_stamp(cube), stamp);
    EXPECT_NE(tree_change_count(), tree);
}

TEST_F(FlatMeshOf, LeavesOutCornersThatAreNotTheObjects)
{
    object_t *cube = add_cube("cube");
    object_t *other = add_cube("other");
    surface_add_vertex(face(cube, 0), nullptr, 0, 0);
    surface_add_vertex(face(cube, 0), point(other, 2), 0, 0);
    object_mark(cube, CHANGED_TOPOLOGY);
    const flat_ptr flat = object_flat(cube);
    EXPECT_EQ(flat->surface_corners(0).size(), 4U);
    EXPECT_EQ(flat->num_corners(), 24);
    EXPECT_EQ(marks_check("nothing"), 0);
    corner(cube, 3)->v = 0.5f;
    object_mark(cube, CHANGED_TEXTURE_COORDS);
    EXPECT_EQ((*object_flat(cube)->texture_coords)[3].v, 0.5f);
}

// A thousand copies hold the arrays once, in the history too.
// Normals by the flat mesh are those by the lists, to the bit, and the flat mesh has them.
void expect_renewed(object_t *object)
{
    object_renew_normals(object);
    EXPECT_EQ(flat_compare(object, *object_flat(object)), 0U);
    const flat_mesh renewed = *object_flat(object);
    object_calc_normals_force(object);
    const flat_mesh &expected = *object_flat(object);
    const auto same = [](const flat_array<point3_t> &a, const flat_array<point3_t> &b) {
        return a->size() == b->size() &&
               (a->empty() || std::memcmp(a->data(), b->data(), a->size() * sizeof(point3_t)) == 0);
    };
    EXPECT_TRUE(same(renewed.normals, expected.normals));
    EXPECT_TRUE(same(renewed.face_normals, expected.face_normals));
}

TEST_P(FlatMesh, NormalsAreRenewedAfterAnyChange)
{
    object_flat(cube);
    GetParam().change(cube);
    object_mark(cube, GetParam().aspect);
    expect_renewed(cube);
}

TEST_F(FlatMeshOf, NormalsAreRenewedOnAllCoresAndWithForeignCorners)
{
    random_source random(7);
    object_t *grid = add_random_sheet(random, 400);
    expect_renewed(grid);
    surface_t *line = new_surface(); // two corners: its normal stays, and counts
    surface_add_vertex(line, point(grid, 5), 0, 0);
    surface_add_vertex(line, point(grid, 159999), 0, 0);
    vesk_surface_set_normal(line, 0, 0, 3);
    object_add_surface(grid, line);
    expect_renewed(grid);
    EXPECT_EQ(line->normal.z, 3);

    object_t *other = add_cube("other");
    corner(grid, 0)->vertex = point(other, 0);
    object_mark(grid, CHANGED_TOPOLOGY);
    expect_renewed(grid);
}

TEST_F(FlatMeshOf, ACopySharesTheArraysUntilItChanges)
{
    object_t *cube = add_cube("cube");
    vertex *other = new_vertex();
    corner(cube, 0)->vertex = other; // has no place in the flat mesh, and none in a copy
    corner(cube, 1)->u = 0.75f;
    object_mark(cube, CHANGED_TOPOLOGY);
    object_t *copy = object_clone(cube);
    object_add_child(vesk_get_world(), copy);
    const flat_ptr before = object_flat(cube), same = object_flat(copy);
    EXPECT_EQ(same->corners, before->corners);
    EXPECT_EQ(same->normals, before->normals);
    EXPECT_EQ(point(copy, 3), same->vertex_record(3));
    EXPECT_EQ(marks_check("clone"), 0); // it is as the copy's lists say
    EXPECT_EQ(face(copy, 0)->num_refs, 3);
    vertex_set_point(point(copy, 3), 5, 6, 7);
    object_mark(copy, CHANGED_POSITIONS);
    EXPECT_EQ(object_flat(copy)->position(3).y, 6);
    EXPECT_EQ(object_flat(copy)->corners, before->corners);
    EXPECT_EQ(object_flat(cube)->positions, before->positions);
    corner(cube, 0)->vertex = point(cube, 0);
    object_mark(cube, CHANGED_TOPOLOGY);
    myfree(other);
}

TEST_F(FlatMeshOf, OutlivesItsObject)
{
    object_t *cube = add_cube("cube");
    const flat_mesh kept = object_flat(cube)->without_records();
    object_delete(cube);
    EXPECT_EQ(kept.num_vertices(), 8);
    EXPECT_EQ(kept.vertex_records, nullptr);
    EXPECT_GT(kept.bytes(), 8 * sizeof(point3_t));
}

// ---- world check ----

struct damage_case {
    const char *name;
    const char *text;
    void (*damage)(object_t *);
};
// clang-format off
const damage_case damage_cases[] = {
    {"vertex_count",   "vertex count 70, list has 8",      [](object_t *o) { o->num_vertices = 70; }},
    {"surface_count",  "surface count 5, list has 6",      [](object_t *o) { o->num_surfaces = 5; }},
    {"child_count",    "child count 1, list has 0",        [](object_t *o) { o->num_children = 1; }},
    {"parent",         "wrong parent",                     [](object_t *o) { o->parent = nullptr; }},
    {"ring_of_nodes",  "vertex list runs into itself",     [](object_t *o) { list_end(o->vertices)->next = o->vertices->next; }},
    {"ring_of_objects","repeated element in list of child",[](object_t *o) { object_add_child(o, vesk_get_world()); vesk_get_world()->parent = nullptr; }},
    {"null_surface",   "null element in list of surface",  [](object_t *o) { o->surfaces->data = 0; }},
    {"null_corner",    "no vertex at surface 0 corner",    [](object_t *o) { corner(o, 2)->vertex = nullptr; }},
    {"foreign_corner", "foreign vertex at surface 0 corner",
     [](object_t *o) { corner(o, 2)->vertex = point(static_cast<object_t *>(list_get_item(vesk_get_world()->children, 0)), 0); }},
};
// clang-format on
void PrintTo(const damage_case &c, std::ostream *out) { *out << c.name; }
class WorldCheck : public SceneTest, public testing::WithParamInterface<damage_case> {};

TEST_P(WorldCheck, RepairsAndSaysSo)
{
    add_cube("other");
    object_t *cube = add_cube("cube");
    EXPECT_TRUE(world_check(vesk_get_world()).empty());
    surface_t *first = face(cube, 0);
    svertex *third = corner(cube, 2);
    GetParam().damage(cube);
    const std::vector<world_fault> faults = world_check(vesk_get_world());
    ASSERT_FALSE(faults.empty());
    EXPECT_EQ(faults[0].text, GetParam().text);
    EXPECT_EQ(faults[0].object, cube);
    EXPECT_TRUE(world_check(vesk_get_world()).empty());
    EXPECT_GE(object_flat(cube)->num_corners(), 20);
    // What the repair took out of the lists is nobody's any more; the test gives it back.
    if (list_index(cube->surfaces, first) < 0)
        object_add_surface(cube, first);
    else if (list_index(first->refs, third) < 0)
        surface_add_vertref(first, third);
}
INSTANTIATE_TEST_SUITE_P(Damage, WorldCheck, testing::ValuesIn(damage_cases));

// ---- freed things ----

freed_things last_freed;
object_t *held_object;

TEST_F(FlatMeshOf, FreesAreAnnouncedOncePerBatchAndForeignOnesAreFound)
{
    static bool listening = false;
    if (!std::exchange(listening, true)) {
        freed_add_listener([](const freed_things &freed) { last_freed = freed; });
        freed_add_holder([](freed_things &held) {
            if (held_object)
                held.objects.push_back(held_object);
        });
    }
    last_freed = {};
    object_t *a = add_cube("a");
    object_t *b = add_cube("b");
    {
        const freed_batch batch;
        object_delete_nocleanup(a);
        object_delete_nocleanup(b);
        EXPECT_TRUE(last_freed.empty());
        EXPECT_STREQ(a->name, "a"); // still readable
    }
    EXPECT_EQ(last_freed.objects.size(), 2U);
    EXPECT_EQ(last_freed.vertices.size(), 16U);
    EXPECT_EQ(last_freed.surfaces.size(), 12U);

    last_freed = {};
    held_object = add_cube("c");
    freed_filter_foreign();
    EXPECT_TRUE(last_freed.empty());
    object_t *dead = add_cube("d"); // the last one: no other object takes its place
    object_delete(dead);
    last_freed = {};
    object_t *alive = std::exchange(held_object, dead);
    freed_filter_foreign();
    ASSERT_EQ(last_freed.objects.size(), 1U);
    EXPECT_EQ(last_freed.objects[0], dead);
    held_object = nullptr;
    object_delete(alive);
}

} // namespace
