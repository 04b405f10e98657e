#include "edit/check/model_check.h"
#include "edit/document/selection_internal.h"
#include "model/bounds.h"
#include "model/each.h"
#include "model/world.h"
#include "model/world_check.h"
#include "tests/edit/mesh_corpus.h"
#include "tests/support/mesh_test.h"

#include <algorithm>
#include <cmath>

namespace {

std::vector<object_t *> objects()
{
    std::vector<object_t *> all;
    for (object_t *object : each<object_t>(vesk_get_world()->children))
        all.push_back(object);
    return all;
}

object_t *add_box(float x, float y, float z, float w, float h, float d)
{
    return add_mesh(
        {{x, y, z},
         {x + w, y, z},
         {x + w, y + h, z},
         {x, y + h, z},
         {x, y, z + d},
         {x + w, y, z + d},
         {x + w, y + h, z + d},
         {x, y + h, z + d}},
        {{3, 2, 1, 0}, {4, 5, 6, 7}, {0, 1, 5, 4}, {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 0, 4, 7}});
}

class Copies : public SceneTest {
protected:
    void TearDown() override
    {
        EXPECT_TRUE(world_check(vesk_get_world()).empty());
        SceneTest::TearDown();
    }
    // Tree mode, and these are selected.
    static void choose(const std::vector<object_t *> &wanted)
    {
        run("set_select_mode", "tree");
        run("clear_selection");
        for (object_t *object : wanted)
            select_object(object);
    }
};

float lowest(const object_t *object, int axis)
{
    const point3_t min = find_object_min(object);
    return axis == 0 ? min.x : axis == 1 ? min.y : min.z;
}

struct array_case {
    const char *name;
    std::vector<std::string> words;
    std::vector<point3_t> lows; // of the copies' boxes; the original is 1 x 2 x 3 at 4 0 0
};
// clang-format off
const array_case array_cases[] = {
    {"row",          {"array", "2", "1.5", "0", "-1", "0"}, {{5.5f, 0, -1}, {7, 0, -2}}},
    {"by_size",      {"array", "2", "1", "0.5", "0", "1"},  {{5, 1, 0}, {6, 2, 0}}},
    {"whole_turn",   {"array_round", "3", "z", "360"},      {{-2, 4, 0}, {-5, -2, 0}, {0, -5, 0}}},
    {"quarter",      {"array_round", "1", "2", "90"},       {{-2, 4, 0}}},
    {"about_a_point",{"array_round", "1", "y", "180", "4,0,0"}, {{3, 0, -3}}},
    {"other_axis",   {"array_round", "1", "0,0,2", "-90", "origin"}, {{0, -5, 0}}},
};
// clang-format on
void PrintTo(const array_case &c, std::ostream *out) { *out << c.name; }
class CopiesStand : public Copies, public testing::WithParamInterface<array_case> {};

TEST_P(CopiesStand, WhereTheWordsSay)
{
    object_t *box = add_box(4, 0, 0, 1, 2, 3);
    choose({box});
    ASSERT_TRUE(run_and_expect_exact_undo(GetParam().words));
    const std::vector<object_t *> all = objects();
    ASSERT_EQ(all.size(), GetParam().lows.size() + 1);
    EXPECT_EQ(selection().num_objects, static_cast<int>(GetParam().lows.size()));
    for (std::size_t i = 1; i < all.size(); ++i) {
        const point3_t low = find_object_min(all[i]), expected = GetParam().lows[i - 1];
        EXPECT_NEAR(low.x, expected.x, 1e-6);
        EXPECT_NEAR(low.y, expected.y, 1e-6);
        EXPECT_NEAR(low.z, expected.z, 1e-6);
        EXPECT_NEAR(volume(all[i]), 6, 1e-5);
    }
}
INSTANTIATE_TEST_SUITE_P(Words, CopiesStand, testing::ValuesIn(array_cases));

TEST_F(Copies, OfSurfacesComeIntoTheirObject)
{
    object_t *box = add_box(0, 0, 0, 1, 1, 1);
    select_surfaces_at(box, {1, 4});
    ASSERT_TRUE(run_and_expect_exact_undo({"array", "10", "0", "0", "2", "0"}));
    EXPECT_EQ(box->num_surfaces, 6 + 20);
    EXPECT_EQ(box->num_vertices, 8 + 60);
    EXPECT_EQ(selection().num_surfaces, 20);
    EXPECT_EQ(last_undo(), "array");
    expect_sound(box);
}

TEST_F(Copies, FollowThePath)
{
    object_t *path = add_mesh({{0, 0, 0}, {4, 0, 0}, {4, 4, 0}}, {{0, 1, 2}}, SURFACE_LINE);
    choose({path});
    run("define_extrude_path");
    object_t *box = add_box(-0.5f, -0.25f, 0, 1, 0.5f, 1);
    choose({box});
    ASSERT_TRUE(run_and_expect_exact_undo({"array_path", "4", "1"}));
    const std::vector<object_t *> all = objects();
    ASSERT_EQ(all.size(), 6u);
    EXPECT_NEAR(lowest(all[2], 0), 1.5, 1e-6);  // half way along the first part
    EXPECT_NEAR(lowest(all[5], 0), 3.75, 1e-6); // at the end, turned
    EXPECT_NEAR(lowest(all[5], 1), 3.5, 1e-6);
    run("undo");
    ASSERT_TRUE(run_and_expect_exact_undo({"array_path", "4", "0"}));
    EXPECT_NEAR(lowest(objects()[5], 0), 3.5, 1e-6);
}

TEST_F(Copies, AreRefusedWithoutChange)
{
    choose({add_box(0, 0, 0, 1, 1, 1)});
    const std::string before = scene_text();
    run("array", 0, 1, 0, 0, 0);
    run("array", 2000000000, 1, 0, 0, 0);
    run("array_round", 3, "w", 360);
    EXPECT_EQ(last_message(), "round array - no axis 'w'");
    run("mirror_copy", "x", 0, "1,2");
    EXPECT_EQ(last_message(), "mirror copy - no pivot '1,2'");
    run("align", "x", "upper", "first");
    run("symmetrize", "x", "left");
    EXPECT_EQ(scene_text(), before);
    EXPECT_EQ(last_undo(), "");
}

TEST_F(Copies, MirroredBodiesFaceOutwards)
{
    choose({add_box(1, 0, 0, 1, 2, 3)});
    ASSERT_TRUE(run_and_expect_exact_undo({"mirror_copy", "x", "0"}));
    ASSERT_EQ(objects().size(), 2u);
    EXPECT_NEAR(volume(objects()[1]), 6, 1e-5);
    EXPECT_EQ(lowest(objects()[1], 0), -2);
}

TEST_F(Copies, AWeldedHalfMakesOneClosedBody)
{
    object_t *box = add_box(0.01f, 0, 0, 1, 2, 3);
    choose({box});
    ASSERT_TRUE(run_and_expect_exact_undo({"mirror_copy", "x", "0.05"}));
    EXPECT_EQ(objects().size(), 1u);
    EXPECT_EQ(box->num_surfaces, 10);
    EXPECT_EQ(box->num_vertices, 12);
    EXPECT_NEAR(volume(box), 2 * 1.01 * 6, 1e-5);
    expect_closed(box);
}

TEST_F(Copies, SymmetrizeMakesBothSidesAlike)
{
    for (const corpus_mesh &mesh : corpus_with(MESH_CLOSED | MESH_SOUND)) {
        SCOPED_TRACE(mesh.name);
        object_t *object = mesh.add();
        choose({object});
        run("move_to", 0.1f, 0, 0);
        ASSERT_TRUE(run_and_expect_exact_undo({"symmetrize", "x", "positive"}));
        expect_closed(object);
        std::vector<point3_t> points = points_of(object), mirrored = points;
        for (point3_t &p : mirrored)
            p.x = -p.x + 0.0f;
        const auto less = [](const point3_t &a, const point3_t &b) {
            return std::tie(a.x, a.y, a.z) < std::tie(b.x, b.y, b.z);
        };
        std::sort(points.begin(), points.end(), less);
        std::sort(mirrored.begin(), mirrored.end(), less);
        EXPECT_EQ(points, mirrored);
        EXPECT_GT(volume(object), 0);
        run("clear_all");
    }
}

struct line_case {
    const char *name;
    std::vector<std::string> words;
    std::vector<double> lows; // of boxes 1, 2 and 1 wide that stand at 0.2, 3 and 9
};
// clang-format off
const line_case line_cases[] = {
    {"all_max",      {"align", "x", "max", "selection"},  {9, 8, 9}},
    {"first_centre", {"align", "x", "centre", "first"},   {0.2, -0.3, 0.2}},
    {"origin",       {"align", "0", "min", "origin"},     {0, 0, 0}},
    {"gaps",         {"distribute", "x", "gaps"},         {0.2, 4.1, 9}},
    {"centres",      {"distribute", "x", "centres"},      {0.2, 4.1, 9}},
};
// clang-format on
void PrintTo(const line_case &c, std::ostream *out) { *out << c.name; }
class CopiesInLine : public Copies, public testing::WithParamInterface<line_case> {};

TEST_P(CopiesInLine, StandWhereTheWordsSay)
{
    choose({add_box(0.2f, 0, 0, 1, 1, 1), add_box(3, 0, 0, 2, 1, 1), add_box(9, 0, 0, 1, 1, 1)});
    ASSERT_TRUE(run_and_expect_exact_undo(GetParam().words));
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(lowest(objects()[i], 0), GetParam().lows[i], 1e-6);
}
INSTANTIATE_TEST_SUITE_P(Words, CopiesInLine, testing::ValuesIn(line_cases));

TEST_F(Copies, SelectedVerticesComeInLine)
{
    object_t *grid = add_squares(2, 2);
    select_vertices_at(grid, {0, 4, 8});
    ASSERT_TRUE(run_and_expect_exact_undo({"align", "y", "max", "first"}));
    EXPECT_EQ(points_of(grid)[4].y, 0);
    EXPECT_EQ(points_of(grid)[8].y, 0);
    EXPECT_EQ(points_of(grid)[7].y, 2);
}

TEST_F(Copies, DroppedThingsRestOnWhatLiesBelow)
{
    add_box(-5, -1, -0.5f, 10, 1, 1); // a beam along x, its top at 0
    object_t *across = add_box(-0.5f, 3, -5, 1, 1, 10);
    object_t *on_top = add_box(-0.4f, 6, -0.4f, 0.5f, 1, 0.5f);
    object_t *beside = add_box(6, 3, 0, 1, 1, 1);
    choose({on_top, beside, across});
    ASSERT_TRUE(run_and_expect_exact_undo({"drop", "below"}));
    const std::vector<object_t *> all = objects();
    EXPECT_NEAR(lowest(all[1], 1), 0, 1e-6); // no corner of either is over the other
    EXPECT_NEAR(lowest(all[2], 1), 1, 1e-6);
    EXPECT_EQ(lowest(all[3], 1), 3);
    choose({all[2]});
    run("drop", "-2.5");
    EXPECT_EQ(lowest(all[2], 1), -2.5f);
}

TEST_F(Copies, DroppedElementsRestAsOneOnWhatDoesNotHangOnThem)
{
    add_box(-5, -1, -0.5f, 10, 1, 1); // a beam along x, its top at 0
    // A floor at y = -3 and a sheet over it, of one object.
    object_t *sheet = add_mesh({{-4, -3, -4},
                                {-4, -3, 4},
                                {4, -3, 4},
                                {4, -3, -4},
                                {-1, 2, -3},
                                {-1, 2, 3},
                                {1, 4, 3},
                                {1, 4, -3}},
                               {{0, 1, 2, 3}, {4, 5, 6, 7}});
    const auto expect_heights = [&](float low, float high) {
        EXPECT_NEAR(points_of(sheet)[4].y, low, 1e-6);
        EXPECT_NEAR(points_of(sheet)[6].y, high, 1e-6);
        EXPECT_EQ(points_of(sheet)[0].y, -3);
    };
    select_surfaces_at(sheet, {1}); // lies across the beam
    ASSERT_TRUE(run_and_expect_exact_undo({"drop", "below"}));
    expect_heights(0, 2);
    run("undo");
    select_vertices_at(sheet, {4, 5, 6, 7}); // an edge of them crosses the beam
    run("drop", "below");
    expect_heights(0, 2);
    run("undo");
    select_vertices_at(sheet, {4, 6});
    run("drop", "below");
    expect_heights(-3, -1); // beside the beam, on its own floor
    select_vertices_at(sheet, {0, 1, 2, 3});
    run("drop", "below");
    EXPECT_EQ(last_message(), "drop - nothing lies below");
}

TEST_F(Copies, GoByPickedAxes)
{
    object_t *box = add_box(1, 0, 0, 1, 1, 1);
    select_vertices_at(box, {0, 3}); // along y
    run("pick_axis");
    select_vertices_at(box, {0, 4});
    run("pick_pivot");
    EXPECT_EQ(run("get_picked"), "0 1 0 1 0 0.5");
    choose({box});
    run("array_round", 1, "picked", 180, "picked");
    ASSERT_EQ(objects().size(), 2u);
    EXPECT_NEAR(lowest(objects()[1], 0), 0, 1e-6);
    EXPECT_NEAR(lowest(objects()[1], 2), 0, 1e-6);
}

TEST_F(Copies, WhatIsPlacedStandsOnTheSurface)
{
    object_t *box = add_box(4, 2, 0, 1, 2, 1);
    choose({box});
    ASSERT_TRUE(run_and_expect_exact_undo({"place_on_surface", "1", "0", "0", "3", "0", "0"}));
    const point3_t low = find_object_min(objects()[0]), size = find_object_size(objects()[0]);
    EXPECT_NEAR(low.x, 1, 1e-6); // its lower side is in x = 1 now, and it is 2 long
    EXPECT_NEAR(size.x, 2, 1e-6);
    EXPECT_NEAR(low.y, -0.5, 1e-6);
    EXPECT_NEAR(low.z, -0.5, 1e-6);
    EXPECT_NEAR(volume(objects()[0]), 2, 1e-5);
    EXPECT_EQ(last_undo(), "place");
    run("undo");
    choose({objects()[0]});
    run("place_on_surface", 0, 7, 0, 0, 0, 0);
    EXPECT_NEAR(lowest(objects()[0], 1), 7, 1e-6);
    EXPECT_NEAR(lowest(objects()[0], 0), -0.5, 1e-6);
}

TEST_F(Copies, TurnsAndSizesGoByAnyAxis)
{
    object_t *box = add_box(1, 0, 0, 1, 1, 1);
    choose({box});
    ASSERT_TRUE(run_and_expect_exact_undo({"rotate_about_axis", "90", "0,0,1", "origin"}));
    EXPECT_EQ(lowest(objects()[0], 1), 1);
    EXPECT_EQ(lowest(objects()[0], 0), -1);
    EXPECT_EQ(last_undo(), "rotate");
    ASSERT_TRUE(run_and_expect_exact_undo({"scale_along", "-2", "y", "origin"}));
    EXPECT_EQ(lowest(objects()[0], 1), -4);
    select_vertices_at(objects()[0], {0, 1, 2, 3});
    ASSERT_TRUE(run_and_expect_exact_undo({"rotate_about_axis", "30", "normal"}));
}

} // namespace
