#include "view/projection.h"

#include "edit/document/selection.h"
#include "edit/snap.h"
#include "model/change_marks.h"
#include "tests/view/view_test.h"
#include "view/camera.h"
#include "view/camera_eye.h"
#include "view/fit.h"
#include "view/grid.h"

#include <cmath>
#include <utility>

namespace {

struct projection_case {
    const char *name;
    int view;
    point3_t point;
    int x, y;
};
// Scale 100, centres (215, 176.5), (200, 176.5), (215.5, 167).
// clang-format off
const projection_case projection_cases[] = {
    {"front_shows_x_and_y",      VIEW_XY, {1, 1, 9},      315, 77},
    {"side_shows_z_and_y",       VIEW_ZY, {9, 1, 1},      300, 77},
    {"plan_shows_x_and_z_down",  VIEW_XZ, {1, 9, 1},      316, 267},
    {"cut_toward_zero_at_the_left", VIEW_XY, {-2.157f, 0, 0}, 0, 177},
};
// clang-format on
void PrintTo(const projection_case &c, std::ostream *out) { *out << c.name; }

class Projection : public ViewTest, public testing::WithParamInterface<projection_case> {};

TEST_P(Projection, PutsAPointOnItsPixel)
{
    int x = -1;
    int y = -1;
    point2xy(&GetParam().point, &x, &y, GetParam().view);
    EXPECT_EQ(x, GetParam().x);
    EXPECT_EQ(y, GetParam().y);
}

TEST_P(Projection, GoesThereAndBack)
{
    vesk_get_view(GetParam().view)->pan[1] = 17;
    point3_t screen;
    point3_t back;
    point2screen(&GetParam().point, &screen, GetParam().view);
    screen2point(&screen, &back, GetParam().view);
    EXPECT_NEAR(back.x, GetParam().point.x, 1e-4);
    EXPECT_NEAR(back.y, GetParam().point.y, 1e-4);
    EXPECT_NEAR(back.z, GetParam().point.z, 1e-4);
}

INSTANTIATE_TEST_SUITE_P(Views, Projection, testing::ValuesIn(projection_cases));

class Views : public ViewTest {};

TEST_F(Views, TheMouseTakesTheHiddenAxisFromTheDepthPoint)
{
    vesk_get_depth_point()->z = 3;
    point3_t out = {};
    mouse_to_point(315, 76, VIEW_XY, &out);
    EXPECT_NEAR(out.x, 1.0, 1e-5);
    EXPECT_NEAR(out.y, 1.005, 1e-5);
    EXPECT_FLOAT_EQ(out.z, 3);
}

TEST_F(Views, The3DViewLeavesOutputsUnwritten)
{
    int x = 7;
    int y = 8;
    const point3_t point = {1, 2, 3};
    point2xy(&point, &x, &y, VIEW_XYZ);
    EXPECT_EQ(x, 7);
    EXPECT_EQ(y, 8);
}

TEST_F(Views, DepthMovesAwayFromZero)
{
    const point3_t min = {0, 0, 0};
    const point3_t max = {2, 4, 6};
    point3_t depth = {-1, 0, 1};
    set_av_depth(&min, &max, &depth, VIEW_ZY);
    set_av_depth(&min, &max, &depth, VIEW_XZ);
    set_av_depth(&min, &max, &depth, VIEW_XY);
    EXPECT_FLOAT_EQ(depth.x, -6);
    EXPECT_FLOAT_EQ(depth.y, 4);
    EXPECT_FLOAT_EQ(depth.z, 4);
}

TEST_F(Views, ZoomInAndOutRestoreScaleAndPanAndKeepTheMiddle)
{
    VESKView *view = vesk_get_view(VIEW_XZ);
    view->pan[0] = 30;
    view->pan[2] = -12;
    point3_t before = {};
    mouse_to_point(215, 167, VIEW_XZ, &before);
    run("zoom_in");
    EXPECT_FLOAT_EQ(view->scale, 150);
    point3_t after = {};
    mouse_to_point(215, 167, VIEW_XZ, &after);
    EXPECT_NEAR(after.z, before.z, 1e-3);
    run("zoom_out");
    EXPECT_FLOAT_EQ(view->scale, 100);
    EXPECT_FLOAT_EQ(view->pan[0], 30);
    EXPECT_FLOAT_EQ(view->pan[2], -12);
}

struct zoom_case {
    const char *name;
    int independent;
    int view;
    float scale_of_others;
};
// clang-format off
const zoom_case zoom_cases[] = {
    {"alone",              1, VIEW_ZY,   100},
    {"together",           0, VIEW_ZY,   150},
    {"no_window_zooms_all", 1, VIEW_NONE, 150},
};
// clang-format on
void PrintTo(const zoom_case &c, std::ostream *out) { *out << c.name; }
class ZoomWin : public ViewTest, public testing::WithParamInterface<zoom_case> {};

TEST_P(ZoomWin, FollowsIndependentScaling)
{
    prefs.independent_scaling = GetParam().independent;
    zoom_in_win(GetParam().view);
    EXPECT_FLOAT_EQ(vesk_get_view(VIEW_ZY)->scale, 150);
    EXPECT_FLOAT_EQ(vesk_get_view(VIEW_XY)->scale, GetParam().scale_of_others);
    EXPECT_FLOAT_EQ(vesk_get_view(VIEW_XZ)->scale, GetParam().scale_of_others);
}
INSTANTIATE_TEST_SUITE_P(Scaling, ZoomWin, testing::ValuesIn(zoom_cases));

TEST_F(Views, TheWheelLeavesAWalkingViewerAlone)
{
    run("zoomview", 3, 1);
    EXPECT_FLOAT_EQ(get_person()->scale, 1.1f);
    EXPECT_FLOAT_EQ(vesk_get_view(VIEW_XY)->scale, 100);
    run("zoomview", 3, 0);
    EXPECT_FLOAT_EQ(get_person()->scale, 1.1f);
    person_set_walk();
    run("zoomview", 3, 1);
    EXPECT_FLOAT_EQ(get_person()->scale, 1.0f);
}

TEST_F(Views, ResetRestoresScaleAndPan)
{
    zoom_view(VIEW_XY, 1);
    move_view(VIEW_XY, 5, 6);
    zoom_view(VIEW_XYZ, 1);
    run("reset_views");
    EXPECT_FLOAT_EQ(vesk_get_view(VIEW_XY)->scale, 100);
    EXPECT_FLOAT_EQ(vesk_get_view(VIEW_XY)->pan[0], 0);
    EXPECT_FLOAT_EQ(vesk_get_view(VIEW_XY)->pan[1], 0);
}

struct modifier_case {
    const char *name;
    int state, shift, control, alt;
};
// clang-format off
const modifier_case modifier_cases[] = {
    {"none",        0x0,     0, 0, 0},
    {"shift",       0x1,     1, 0, 0},
    {"control",     0x4,     0, 1, 0},
    {"alt_on_x11",  0x8,     0, 0, 1},
    {"alt_as_told", 0x20000, 0, 0, 1},
};
// clang-format on
TEST_F(Views, ModifiersAreBitsOfTheEventState)
{
    for (const modifier_case &c : modifier_cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(qualifier_shift(c.state), c.shift);
        EXPECT_EQ(qualifier_control(c.state), c.control);
        EXPECT_EQ(qualifier_alt(c.state), c.alt);
    }
}

// ---- fit ----

class Fit : public ViewTest {
protected:
    // A box from 0 0 0 to the corner, as two vertices.
    object_t *add_box(float x, float y, float z)
    {
        object_t *object = add_square(1);
        int i = 0;
        for (listitem *node = object->vertices; node != nullptr; node = node->next, ++i) {
            auto *v = reinterpret_cast<vertex *>(node->data);
            v->position = i % 2 == 0 ? point3_t{0, 0, 0} : point3_t{x, y, z};
        }
        object_mark(object, CHANGED_POSITIONS);
        return object;
    }
};

TEST_F(Fit, AllTakesTheSmallestFactorAndCentres)
{
    add_box(2, 1, 1);
    prefs.fit_view_factor = 1.0;
    run("fit_all");
    // Front: 430 / 200 = 2.15; side: 353 / 100; plan: 334 / 100 and 431 / 200: front decides.
    EXPECT_NEAR(vesk_get_view(VIEW_XY)->scale, 215, 1e-3);
    EXPECT_NEAR(vesk_get_view(VIEW_ZY)->scale, 215, 1e-3);
    int x = 0;
    int y = 0;
    const point3_t middle = {1, 0.5f, 0.5f};
    point2xy(&middle, &x, &y, VIEW_XY);
    EXPECT_EQ(x, 215);
    EXPECT_EQ(y, 177);
}

struct layout_case {
    const char *name;
    const char *viewsetting;
    double scale;
};
// clang-format off
const layout_case layout_cases[] = {
    {"plan_alone",  "xz",  215.5},
    {"side_alone",  "zy",  353},
    {"unknown",     "abc", 100},
};
// clang-format on
TEST_F(Fit, WhatIsLaidOutDecidesTheFactor)
{
    add_box(2, 1, 1);
    prefs.fit_view_factor = 1.0;
    for (const layout_case &c : layout_cases) {
        SCOPED_TRACE(c.name);
        windows_reset_scale();
        prefs_set_string(views_viewsetting(), c.viewsetting);
        run("fit_all");
        EXPECT_NEAR(vesk_get_view(VIEW_XY)->scale, c.scale, 1e-3);
    }
}

TEST_F(Fit, AFlatModelIsFittedByTheOtherAxis)
{
    add_box(0, 2, 0);
    prefs.fit_view_factor = 1.0;
    run("fit_all");
    EXPECT_NEAR(vesk_get_view(VIEW_XY)->scale, 176.5, 1e-3);
}

TEST_F(Fit, AModelWithoutExtentIsOnlyCentred)
{
    add_box(0, 0, 0);
    run("fit_all");
    EXPECT_FLOAT_EQ(vesk_get_view(VIEW_XY)->scale, 100);
}

TEST_F(Fit, TheSelectionIsCentredInAllViews)
{
    select_object(add_box(2, 2, 2));
    find_bounding_box();
    run("fit_selected_all");
    EXPECT_FLOAT_EQ(get_person()->origin.x, 1);
    EXPECT_NEAR(vesk_get_view(VIEW_XY)->pan[0], -vesk_get_view(VIEW_XY)->scale, 1e-3);
    // In the 3D view, too, the whole box is inside the window and fills a good part of it.
    double x = 0;
    double y = 0;
    ASSERT_TRUE(camera_project({2, 2, 2}, &x, &y));
    EXPECT_GT(y, 0);
    EXPECT_LT(y, 80);
}

TEST_F(Fit, The3dViewIsFramedToo)
{
    select_object(add_box(40, 20, 20));
    find_bounding_box();
    const auto expect_framed = [] {
        EXPECT_FLOAT_EQ(get_person()->origin.x, 20);
        double x[2] = {}, y[2] = {};
        ASSERT_TRUE(camera_project({40, 10, 0}, &x[0], &y[0]));
        ASSERT_TRUE(camera_project({0, 10, 20}, &x[1], &y[1]));
        EXPECT_GT(std::fabs(x[1] - x[0]), 150); // of 400 pixels
        EXPECT_GT(std::min(x[0], x[1]), 0);
        EXPECT_LT(std::max(x[0], x[1]), 400);
    };
    for (const char *layout : {"all", "xyz"}) {
        SCOPED_TRACE(layout);
        camera_reset_for_test();
        prefs_set_string(views_viewsetting(), layout);
        run("view_3d_from_corner");
        run("fit_all");
        expect_framed();
    }
    camera_reset_for_test();
    fit_selected(VIEW_XYZ);
    expect_framed();
}

TEST_F(Fit, AnewTheGroundIsSeenAndABoxShowsThreeSides)
{
    run("view_3d_from_corner");
    const auto at = [](const point3_t &p) {
        double x = 0, y = 0;
        EXPECT_TRUE(camera_project(p, &x, &y));
        return std::pair(x, y);
    };
    EXPECT_GT(at({0, 0, 0.5f}).second, at({0, 0, -0.5f}).second + 10); // the ground's near side
    EXPECT_GT(at({0.5f, 0, 0.5f}).first, at({0.5f, 0, -0.5f}).first - 200);
    EXPECT_LT(at({0.5f, 0, 0.5f}).first, at({0.5f, 0, -0.5f}).first - 10); // +x to the right, seen
    run("set_walk_viewer");
    run("view_3d_from_corner");
    EXPECT_FLOAT_EQ(get_person()->rotation.x, 0);
    person_reset(); // the fixed one looks along the ground, in both modes
    EXPECT_FLOAT_EQ(get_person()->rotation.y, 0);
}

TEST_F(Fit, NothingSelectedChangesNothing)
{
    run("fit_selected_all");
    run("goto_selected_all");
    run("set_view_3d_selection");
    EXPECT_FLOAT_EQ(vesk_get_view(VIEW_XY)->scale, 100);
    EXPECT_FLOAT_EQ(get_person()->origin.x, 0);
}

// ---- grid ----

TEST_F(Views, ADenseGridIsNotDrawnAndTheOtherIsThinner)
{
    prefs.grid = 0.1;
    prefs.drawgrid = 1.0;
    const std::vector<grid_layer_t> both = orthographic_grid(VIEW_XY);
    ASSERT_EQ(both.size(), 3u);
    EXPECT_FLOAT_EQ(both[1].width, 2);
    vesk_get_view(VIEW_XY)->scale = 49; // 4.9 pixels
    const std::vector<grid_layer_t> coarse = orthographic_grid(VIEW_XY);
    ASSERT_EQ(coarse.size(), 2u);
    EXPECT_FLOAT_EQ(coarse[0].width, 1);
    EXPECT_TRUE(coarse[1].is_axes);
    prefs.show_drawgrid = 0;
    EXPECT_EQ(orthographic_grid(VIEW_XY).size(), 1u);
    EXPECT_TRUE(orthographic_grid(VIEW_XYZ).empty());
}

TEST_F(Views, GridLinesRunThroughMultiplesOfTheSpacing)
{
    prefs.drawgrid = 1.0;
    const std::vector<grid_layer_t> layers = orthographic_grid(VIEW_XZ);
    for (const grid_line_t &line : layers[1].lines) {
        const double at = line.x1 == line.x2 ? line.x1 - 215.5 : line.y1 - 167.0;
        EXPECT_NEAR(std::remainder(at, 100.0), 0, 1e-3) << line.x1 << " " << line.y1;
    }
}

struct snap_case {
    const char *name;
    float from, spacing, to;
};
// clang-format off
const snap_case snap_cases[] = {
    {"nearest",              0.26f,  0.1f,  0.3f},
    {"halves_away_from_zero", 0.5f,  1.0f,  1.0f},
    {"negative_halves",     -0.5f,   1.0f, -1.0f},
    {"no_spacing",           0.26f,  0.0f,  0.26f},
    {"negative_spacing",     0.26f, -1.0f,  0.26f},
    {"beyond_an_int",        4e12f,  1.0f,  4e12f},
};
// clang-format on
TEST_F(Views, SnappingRoundsToMultiples)
{
    for (const snap_case &c : snap_cases) {
        SCOPED_TRACE(c.name);
        point3_t p = {c.from, 0, 0};
        snap_to_grid_float(&p, c.spacing, c.spacing, c.spacing);
        EXPECT_NEAR(p.x, c.to, 1e-6);
    }
}

} // namespace
