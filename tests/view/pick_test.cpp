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
#include "view/camera_eye.h"
#include "view/camera_internal.h"
#include "view/handles.h"
#include "view/projection.h"
#include "view/shown_elements.h"
#include "view/tool_select.h"
#include "view/views_internal.h"

#include <utility>

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

// Single faces in the 3D view, from where it starts.
class PickIn3d : public Pick {
protected:
    void SetUp() override
    {
        Pick::SetUp();
        object_set_visible(far_cube, 0);
        object_set_visible(near_cube, 0);
    }
    static object_t *add_face(const char *name, const std::vector<point3_t> &corners, int twosided)
    {
        object_t *object = new_object(OBJECT_POLY);
        object_set_name(object, name);
        surface_t *surface = new_surface();
        surface_set_twosided(surface, twosided);
        object_add_surface(object, surface);
        for (const point3_t &p : corners)
            surface_add_vertex(surface, object_add_new_vertex(object, p.x, p.y, p.z), 0, 0);
        object_add_child(vesk_get_world(), object);
        return object;
    }
};

TEST_F(PickIn3d, DepthIsThatUnderThePointerNotThatOfTheMiddle)
{
    // Leans away from the viewer: its middle is nearer than the patch, its upper end is behind it.
    add_face("slope", {{-5, -5, 4}, {5, -5, 4}, {5, 5, -16}, {-5, 5, -16}}, 1);
    add_face("patch", {{-1, 2.5f, -8}, {1, 2.5f, -8}, {1, 3.5f, -8}, {-1, 3.5f, -8}}, 1);
    double x = 0, y = 0;
    ASSERT_TRUE(camera_project({0, 3, -8}, &x, &y));
    const auto names = names_at(VIEW_XYZ, static_cast<int>(x), static_cast<int>(y));
    ASSERT_EQ(names.size(), 2U);
    EXPECT_EQ(names[0], "patch");
    ASSERT_TRUE(camera_project({0, 0, -6}, &x, &y));
    EXPECT_EQ(names_at(VIEW_XYZ, static_cast<int>(x), static_cast<int>(y))[0], "slope");
}

TEST_F(PickIn3d, GroundThatGoesOnBehindTheViewerIsFound)
{
    add_face("ground", {{-500, -1, 500}, {500, -1, 500}, {500, -1, -500}, {-500, -1, -500}}, 0);
    for (const int y : {200, 250, 290})
        EXPECT_EQ(names_at(VIEW_XYZ, 200, y), (std::vector<std::string>{"ground"})) << y;
    EXPECT_TRUE(names_at(VIEW_XYZ, 200, 50).empty());
    const auto band = pick_band(VIEW_XYZ, pick_kind::SURFACE, {100, 200, 300, 280, true});
    EXPECT_EQ(band.size(), 1U);
}

TEST_F(PickIn3d, WhatTheModeTakesIsShownAndFound)
{
    EXPECT_FALSE(view_shows_edges(VIEW_XYZ));
    EXPECT_FALSE(view_shows_vertices(VIEW_XYZ));
    set_new_select_mode(SELECT_EDGE);
    EXPECT_TRUE(view_shows_edges(VIEW_XYZ));
    set_new_select_mode(SELECT_SURFACE);
    EXPECT_TRUE(view_shows_edges(VIEW_XYZ));
    EXPECT_FALSE(view_shows_vertices(VIEW_XYZ));
    set_new_select_mode(SELECT_VERTEX);
    EXPECT_TRUE(view_shows_vertices(VIEW_XYZ));
    prefs.show_mode_elements_3d = 0;
    EXPECT_FALSE(view_shows_vertices(VIEW_XYZ));
}

TEST_F(PickIn3d, BacksThatAreNotDrawnAreNotFound)
{
    const std::vector<point3_t> away = {{-1, -1, 0}, {-1, 1, 0}, {1, 1, 0}, {1, -1, 0}};
    object_t *back = add_face("back", away, 0);
    add_face("behind", {{-1, -1, -1}, {1, -1, -1}, {1, 1, -1}, {-1, 1, -1}}, 0);
    EXPECT_EQ(names_at(VIEW_XYZ, 200, 150), (std::vector<std::string>{"behind"}));
    EXPECT_EQ(names_at(VIEW_XY, 200, 150), (std::vector<std::string>{"behind"}));
    for (surface_t *surface : each<surface_t>(back->surfaces))
        surface_set_twosided(surface, 1);
    object_mark(back, CHANGED_ATTRIBUTES);
    EXPECT_EQ(names_at(VIEW_XYZ, 200, 150).front(), "back");
}

TEST_F(PickIn3d, SelectThroughFindsWhatSurfacesHide)
{
    object_set_visible(near_cube, 1);
    for (surface_t *surface : each<surface_t>(near_cube->surfaces))
        surface_set_twosided(surface, 0);
    object_mark(near_cube, CHANGED_ATTRIBUTES);
    const auto counts = [] {
        return std::pair(pick_at(VIEW_XYZ, pick_kind::SURFACE, 200, 150, 4).size(),
                         pick_band(VIEW_XYZ, pick_kind::VERTEX, {0, 0, 399, 299, true}).size());
    };
    EXPECT_EQ(counts(), std::pair(size_t{1}, size_t{4})); // its front
    prefs.select_through = 1;
    EXPECT_EQ(counts(), std::pair(size_t{2}, size_t{8}));
}

TEST_F(PickIn3d, OfTwoVerticesTheOneThatIsSeenComesFirst)
{
    object_set_visible(near_cube, 1); // its face at z = 2.5 hides the vertex
    add_face("hidden", {{0, 0, 0}, {0.4f, 0, 0}, {0, 0.4f, 0}}, 1);
    const auto at_front = pick_at(VIEW_XY, pick_kind::VERTEX, 249, 101, 4);
    ASSERT_FALSE(at_front.empty());
    EXPECT_FLOAT_EQ(at_front[0].point->position.z, 2.5f);
    // Nearer to the pointer, but behind the cube.
    add_face("corner", {{0.49f, 0.49f, 0}, {0.3f, 0.49f, 0}, {0.49f, 0.3f, 0}}, 1);
    const auto both = pick_at(VIEW_XY, pick_kind::VERTEX, 249, 101, 4);
    ASSERT_GT(both.size(), 1U);
    EXPECT_FLOAT_EQ(both[0].point->position.z, 2.5f);
}

TEST_F(PickIn3d, LargeMeshesAreSearchedRightAlsoAfterTheyMoved)
{
    object_t *mesh = new_object(OBJECT_POLY); // 40 x 40 squares of 0.1, from -2 to 2
    object_set_name(mesh, "mesh");
    std::vector<vertex *> row, above;
    for (int y = 0; y <= 40; ++y, above = std::exchange(row, {})) {
        for (int x = 0; x <= 40; ++x)
            row.push_back(object_add_new_vertex(mesh, static_cast<float>(x) * 0.1f - 2,
                                                static_cast<float>(y) * 0.1f - 2, 0));
        for (size_t x = 0; y > 0 && x < 40; ++x) {
            surface_t *square = new_surface();
            object_add_surface(mesh, square);
            for (vertex *v : {above[x], above[x + 1], row[x + 1], row[x]})
                surface_add_vertex(square, v, 0, 0);
        }
    }
    object_add_child(vesk_get_world(), mesh);
    const auto square_at = [&](int x, int y) {
        const auto hits = pick_at(VIEW_XY, pick_kind::SURFACE, x, y, 0);
        return hits.empty() ? -1 : list_index(mesh->surfaces, hits[0].surface);
    };
    EXPECT_EQ(square_at(200 - 195, 150 - 5), 20 * 40); // 100 pixels a unit: the left end of row 20
    EXPECT_EQ(square_at(200 + 195, 150 + 5), 19 * 40 + 39);
    EXPECT_EQ(pick_band(VIEW_XY, pick_kind::SURFACE, {198, 138, 222, 152, false}).size(), 2U);
    EXPECT_EQ(pick_at(VIEW_XY, pick_kind::VERTEX, 200, 150, 3).size(), 1U);
    const point3_t offset = {0.1f, 0, 0};
    translate_object(mesh, &offset);
    EXPECT_EQ(square_at(200 - 185, 150 - 5), 20 * 40);
    EXPECT_EQ(square_at(200 - 195, 150 - 5), -1);
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

TEST_F(Pick, TheNextOneBehindIsTakenOnlyWhileNothingElseHappens)
{
    select_click(VIEW_XY, 200, 150, 0, 1);
    clear_selection(); // as Escape does
    select_click(VIEW_XY, 200, 150, 0, 1.6);
    EXPECT_EQ(selected(), "near ");
    select_click(VIEW_XY, 200, 150, 0, 10); // long after
    EXPECT_EQ(selected(), "near ");
    select_click(VIEW_XY, 200, 150, 0, 11);
    EXPECT_EQ(selected(), "far ");
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
