// Picking, rubber bands and handles, against known places on the screen.

#include "view/pick.h"

#include "base/prefs.h"
#include "edit/document/modes.h"
#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "edit/transform.h"
#include "model/change_marks.h"
#include "model/world.h"
#include "tests/support/scene_test.h"
#include "view/camera_internal.h"
#include "view/handles.h"
#include "view/projection.h"
#include "view/tool_select.h"
#include "view/views_internal.h"

namespace {

// Two unit cubes: "near" at z = 2, "far" at the origin, one behind the other in the front view.
class Pick : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        views_reset_for_test();
        camera_reset_for_test();
        for (int view = 0; view < 4; ++view) {
            handle_resize(view, 400, 300);
        }
        tool_select_reset_for_test();
        far_cube = add_cube("far");
        near_cube = add_cube("near");
        const point3_t offset = {0, 0, 2};
        translate_object(near_cube, &offset);
    }
    object_t *far_cube, *near_cube;
};

std::vector<std::string> names_at(int view, int x, int y)
{
    std::vector<std::string> names;
    for (const pick_hit_t &hit : pick_at(view, pick_kind::OBJECT, x, y, 4)) {
        names.emplace_back(hit.object->name);
    }
    return names;
}

TEST_F(Pick, WhatIsInFrontComesFirstInEveryView)
{
    using names = std::vector<std::string>;
    EXPECT_EQ(names_at(VIEW_XY, 200, 150), (names{"near", "far"}));
    EXPECT_EQ(names_at(VIEW_XYZ, 200, 150), (names{"near", "far"}));
    EXPECT_EQ(names_at(VIEW_ZY, 400, 150), (names{"near"})); // z = 2 lies 200 pixels to the right
    EXPECT_EQ(names_at(VIEW_XZ, 200, 150), (names{"far"}));
    EXPECT_TRUE(names_at(VIEW_XY, 10, 10).empty());
}

TEST_F(Pick, HiddenAndLockedObjectsAreNeverFound)
{
    object_set_visible(near_cube, 0);
    EXPECT_EQ(names_at(VIEW_XY, 200, 150), (std::vector<std::string>{"far"}));
    object_set_locked(far_cube, 1);
    EXPECT_TRUE(names_at(VIEW_XY, 200, 150).empty());
}

TEST_F(Pick, WireframesAreFoundByTheirEdges)
{
    prefs.filled_orth = 0;
    EXPECT_TRUE(names_at(VIEW_XY, 200, 150).empty());
    EXPECT_EQ(names_at(VIEW_XY, 152, 150).size(), 2U); // the left edges, at x = 150
}

TEST_F(Pick, VerticesAndSurfacesAreFoundWithTheirRecords)
{
    const auto vertices = pick_at(VIEW_XY, pick_kind::VERTEX, 249, 101, 4);
    ASSERT_EQ(vertices.size(), 4U); // the upper right corners of both cubes
    EXPECT_FLOAT_EQ(vertices[0].point->position.z, 2.5f);
    const auto surfaces = pick_at(VIEW_XY, pick_kind::SURFACE, 200, 150, 0);
    ASSERT_EQ(surfaces.size(), 4U);
    EXPECT_EQ(surfaces[0].object, near_cube);
    EXPECT_FLOAT_EQ(surfaces[0].surface->normal.z, 1);
}

struct band_case {
    const char *name;
    pick_kind kind;
    band_t band;
    size_t found;
};
// clang-format off
const band_case band_cases[] = {
    {"all_objects",        pick_kind::OBJECT,  {100, 50, 300, 250, false}, 2},
    {"half_not_inside",    pick_kind::OBJECT,  {100, 50, 200, 250, false}, 0},
    {"half_touched",       pick_kind::OBJECT,  {100, 50, 200, 250, true},  2},
    {"within_a_face",      pick_kind::OBJECT,  {190, 140, 210, 160, true}, 2},
    {"corner_vertices",    pick_kind::VERTEX,  {140, 90, 160, 110, false}, 4},
    {"left_sides",         pick_kind::SURFACE, {140, 90, 160, 210, false}, 2},
    {"beside_everything",  pick_kind::SURFACE, {0, 0, 50, 50, true},       0},
    {"drawn_backwards",    pick_kind::OBJECT,  {300, 250, 100, 50, false}, 2},
};
// clang-format on
void PrintTo(const band_case &c, std::ostream *out) { *out << c.name; }
class Band : public Pick, public testing::WithParamInterface<band_case> {};

TEST_P(Band, TakesWhatLiesInIt)
{
    EXPECT_EQ(pick_band(VIEW_XY, GetParam().kind, GetParam().band).size(), GetParam().found);
}
INSTANTIATE_TEST_SUITE_P(Bands, Band, testing::ValuesIn(band_cases));

std::string selected()
{
    std::string names;
    for (const object_t *object : each<object_t>(selection().objects)) {
        names += std::string(object->name) + " ";
    }
    return names;
}

TEST_F(Pick, ClicksGoBehindAndShiftAddsOrRemoves)
{
    select_click(VIEW_XY, 200, 150, 0, 1);
    EXPECT_EQ(selected(), "near ");
    select_click(VIEW_XY, 201, 150, 0, 2);
    EXPECT_EQ(selected(), "far ");
    select_click(VIEW_XY, 200, 150, 0, 3);
    EXPECT_EQ(selected(), "near ");
    select_click(VIEW_XZ, 200, 150, 1, 4); // Shift
    EXPECT_EQ(selected(), "near far ");
    select_click(VIEW_XZ, 200, 150, 1, 5);
    EXPECT_EQ(selected(), "near ");
    select_click(VIEW_XY, 5, 5, 0, 6);
    EXPECT_TRUE(nothing_is_selected());
}

TEST_F(Pick, BandsReplaceAddAndRemove)
{
    select_band(VIEW_XZ, {100, 50, 300, 210, false}, 0); // the far one: z from 100 to 200
    EXPECT_EQ(selected(), "far ");
    select_band(VIEW_XZ, {100, 250, 300, 450, false}, 1);
    EXPECT_EQ(selected(), "far near ");
    select_band(VIEW_XZ, {100, 50, 300, 210, false}, 4);
    EXPECT_EQ(selected(), "near ");
    set_new_select_mode(SELECT_VERTEX);
    select_band(VIEW_XY, {140, 90, 160, 110, false}, 0);
    EXPECT_EQ(selection().num_vertices, 4);
}

TEST_F(Pick, HandlesStandRoundTheBoxAndResizeIt)
{
    EXPECT_EQ(handle_at(VIEW_XY, 200, 150), HANDLE_NONE);
    select_object(far_cube);
    EXPECT_EQ(handle_box(VIEW_XY).num_places, 8);
    EXPECT_FALSE(handle_box(VIEW_XYZ).valid);
    EXPECT_EQ(handle_at(VIEW_XY, 200, 150), HANDLE_INSIDE_MOVE);
    EXPECT_EQ(handle_at(VIEW_XY, 142, 92), HANDLE_TOP | HANDLE_LEFT);
    EXPECT_EQ(handle_at(VIEW_XY, 258, 150), HANDLE_EDGE | HANDLE_RIGHT);
    set_new_draw_mode(DRAW_ROTATE);
    EXPECT_EQ(handle_at(VIEW_XY, 200, 150), HANDLE_INSIDE_ROTATE);

    const world_box_t box = {{0, 0, 0}, {1, 2, 1}};
    const world_box_t wider =
        resized_box(VIEW_XY, box, HANDLE_EDGE | HANDLE_RIGHT, 1, -0.3f, false, false);
    EXPECT_FLOAT_EQ(wider.max.x, 2);
    EXPECT_FLOAT_EQ(wider.max.y, 2);
    const world_box_t kept =
        resized_box(VIEW_XY, box, HANDLE_TOP | HANDLE_RIGHT, 1, 0, false, true);
    EXPECT_FLOAT_EQ(kept.max.y, 4);
    EXPECT_FLOAT_EQ(kept.min.y, 0);
    EXPECT_FLOAT_EQ(kept.max.z - kept.min.z, 2);
    const world_box_t both =
        resized_box(VIEW_XZ, box, HANDLE_BOTTOM | HANDLE_EDGE, 0, 0.5f, true, false);
    EXPECT_FLOAT_EQ(both.max.z, 1.5f);
    EXPECT_FLOAT_EQ(both.min.z, -0.5f);
}

} // namespace
