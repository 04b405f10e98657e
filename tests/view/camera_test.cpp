#include "edit/document/selection.h"
#include "tests/view/view_test.h"
#include "view/axis_cross.h"
#include "view/camera_eye.h"
#include "view/fit.h"

#include <cmath>

namespace {

class Camera : public ViewTest {
protected:
    static void expect_point(const point3_t &p, double x, double y, double z)
    {
        EXPECT_NEAR(p.x, x, 1e-5);
        EXPECT_NEAR(p.y, y, 1e-5);
        EXPECT_NEAR(p.z, z, 1e-5);
    }
};

TEST_F(Camera, AResetLooksFromTheInitialPlaceAlongMinusZ)
{
    prefs.init3d_x = 1;
    prefs.init3d_y = 2;
    prefs.init3d_z = 3;
    get_person()->scale = 4;
    get_person()->offset = {1, 1, 1};
    person_reset();
    expect_point(get_person()->location, 1, 2, 3);
    expect_point(get_person()->direction, 0, 0, -1);
    expect_point(get_person()->offset, 0, 0, 0);
    EXPECT_FLOAT_EQ(get_person()->scale, 1);
}

TEST_F(Camera, EachModeKeepsItsOwnCamera)
{
    person_set_spin_rotation(30, 40);
    vesk_person_scale_mult(2);
    run("set_walk_viewer");
    EXPECT_EQ(last_message(), "walk mode");
    EXPECT_FLOAT_EQ(get_person()->rotation.x, 0);
    viewer_move_forward(2);
    run("set_spin_viewer");
    EXPECT_FLOAT_EQ(get_person()->rotation.x, 30);
    EXPECT_FLOAT_EQ(get_person()->scale, 2);
    run("set_walk_viewer");
    expect_point(get_person()->location, 0, 0, 3);
    EXPECT_EQ(*camera_walk_indicator(), 1);
}

struct turn_case {
    const char *name;
    void (*turn)(float);
    void (*back)(float);
    double x, y, z; // direction after 90 degrees
};
// clang-format off
const turn_case turn_cases[] = {
    {"left",  viewer_turn_left,  viewer_turn_right, -1,  0, 0},
    {"right", viewer_turn_right, viewer_turn_left,   1,  0, 0},
    {"up",    viewer_turn_up,    viewer_turn_down,   0,  1, 0},
    {"down",  viewer_turn_down,  viewer_turn_up,     0, -1, 0},
};
// clang-format on
TEST_F(Camera, TurnsGoTheirWayAndBack)
{
    for (const turn_case &c : turn_cases) {
        SCOPED_TRACE(c.name);
        person_reset();
        c.turn(90);
        expect_point(get_person()->direction, c.x, c.y, c.z);
        c.back(90);
        expect_point(get_person()->direction, 0, 0, -1);
    }
}

TEST_F(Camera, MovesFollowTheDirection)
{
    person_reset();
    const point3_t zero = {0, 0, 0};
    viewer_set_location(&zero);
    viewer_move_forward(2);
    viewer_move_left(1);
    viewer_move_up(0.5f);
    expect_point(get_person()->location, -1, 0.5, -2);
}

TEST_F(Camera, LevellingTakesTheSlopeOut)
{
    viewer_turn_up(20);
    run("person_level");
    EXPECT_FLOAT_EQ(get_person()->direction.y, 0);
}

TEST_F(Camera, LookingStraightUpGivesNoNumbersThatAreNone)
{
    const point3_t up = {0, 5, 0};
    person_set_direction(get_person(), &up);
    double m[16];
    camera_modelview(m);
    for (const double element : m)
        EXPECT_TRUE(std::isfinite(element));
}

TEST_F(Camera, PlaceAndDirectionGoThroughText)
{
    run("person_set_loc_dir", "1 2 3 0 0 -2");
    expect_point(get_person()->location, 1, 2, 3);
    EXPECT_EQ(run("person_get_loc_dir"), "1.000000 2.000000 3.000000  0.000000 0.000000 -1.000000");
    run("person_set_loc_dir", "9 9 9 1 0");
    expect_point(get_person()->location, 1, 2, 3);
}

TEST_F(Camera, AFlightTurnsWhollyAndStopsOneIncrementShort)
{
    person_reset();
    const point3_t zero = {0, 0, 0};
    viewer_set_location(&zero);
    run("viewer_flyto", 1, 4, 0, 0, 1, 0, 0);
    expect_point(get_person()->location, 2, 0, 0);
    expect_point(get_person()->direction, 1, 0, 0);
    run("viewer_flyto", 0, 9, 9, 9, 0, 0, 1);
    expect_point(get_person()->location, 2, 0, 0);
    run("viewer_flyto", 2147483647, 4, 0, 0, 0, 0, -1); // ends
    EXPECT_NEAR(get_person()->location.x, 4, 0.01f);
    run("person_set_loc_dir", "1 nan 0 0 0 -1");
    EXPECT_NEAR(get_person()->location.x, 4, 0.01f);
}

TEST_F(Camera, AWalkingViewerStepsBackFromTheSelection)
{
    select_object(add_square(1)); // half sizes 1 1 0
    find_bounding_box();
    prefs.fov = 90;
    person_set_walk();
    run("set_view_3d_selection");
    expect_point(get_person()->location, 0, 0, std::sqrt(3.0)); // sqrt(1 + 2 * 1 + 0)
}

TEST_F(Camera, AClickOnTheCrossLooksAlongItsAxis)
{
    for (int axis = 0; axis < 3; ++axis) {
        for (const bool positive : {true, false}) {
            camera_look_along(axis, positive);
            const axis_end_t front = axis_cross(1).ends.back(); // the nearest one
            EXPECT_EQ(front.axis, axis);
            EXPECT_EQ(front.positive, positive);
        }
    }
}

// ---- mouse ----

class Mouse : public Camera {
protected:
    static pointer_event_t at(int view, int x, int y, int button, double seconds, int state = 0)
    {
        return {view, x, y, button, state, seconds};
    }
    static void drag(int view, int button, int dx, int dy, int state = 0)
    {
        interaction_press(at(view, 100, 100, button, 1.0, state));
        interaction_motion(at(view, 100 + dx, 100 + dy, 0, 1.1, state));
        interaction_release(at(view, 100 + dx, 100 + dy, button, 2.0, state));
    }
};

TEST_F(Mouse, TheMiddleButtonPansAndTheRightOneZooms)
{
    drag(VIEW_ZY, 2, 30, -20);
    EXPECT_FLOAT_EQ(vesk_get_view(VIEW_ZY)->pan[2], 30);
    EXPECT_FLOAT_EQ(vesk_get_view(VIEW_ZY)->pan[1], -20);
    drag(VIEW_ZY, 3, 0, -60);
    EXPECT_GT(vesk_get_view(VIEW_ZY)->scale, 120);
    EXPECT_FLOAT_EQ(vesk_get_view(VIEW_XY)->scale, 100);
}

TEST_F(Mouse, AltAndTheLeftButtonStandForTheMiddleOne)
{
    drag(VIEW_XY, 1, 12, 0, 0x8);
    EXPECT_FLOAT_EQ(vesk_get_view(VIEW_XY)->pan[0], 12);
}

TEST_F(Mouse, TheSettingsSwitchPanAndZoomOff)
{
    prefs.middle_button_drags_view = 0;
    prefs.right_button_zooms_view = 0;
    drag(VIEW_XY, 2, 30, 0);
    drag(VIEW_XY, 3, 0, 30);
    EXPECT_FLOAT_EQ(vesk_get_view(VIEW_XY)->pan[0], 0);
    EXPECT_FLOAT_EQ(vesk_get_view(VIEW_XY)->scale, 100);
}

TEST_F(Mouse, ALeftDragTurnsTheModelAndAFlickKeepsItSpinning)
{
    interaction_press(at(VIEW_XYZ, 100, 100, 1, 1.0));
    interaction_motion(at(VIEW_XYZ, 120, 100, 0, 1.05));
    interaction_release(at(VIEW_XYZ, 120, 100, 1, 1.06));
    EXPECT_FLOAT_EQ(get_person()->rotation.y, 10); // 20 pixels at 5 degrees for 10
    ASSERT_GT(interaction_tick_msecs(), 0);
    interaction_tick(1.16);
    EXPECT_GT(get_person()->rotation.y, 12);
    interaction_press(at(VIEW_XYZ, 100, 100, 1, 1.2));
    EXPECT_EQ(interaction_tick_msecs(), 0);
    interaction_release(at(VIEW_XYZ, 100, 100, 1, 1.3));
}

TEST_F(Mouse, AReleaseAfterARestLeavesTheModelStill)
{
    drag(VIEW_XYZ, 1, 40, 0);
    EXPECT_EQ(interaction_tick_msecs(), 0);
}

TEST_F(Mouse, AWalkGoesOnWhileTheButtonIsDown)
{
    person_set_walk();
    const float before = get_person()->location.z;
    interaction_press(at(VIEW_XYZ, 100, 100, 1, 1.0));
    interaction_motion(at(VIEW_XYZ, 100, 60, 0, 1.0));
    interaction_tick(1.1);
    interaction_tick(1.2);
    EXPECT_LT(get_person()->location.z, before - 0.5f);
    interaction_release(at(VIEW_XYZ, 100, 60, 1, 1.3));
    EXPECT_EQ(interaction_tick_msecs(), 0);
}

TEST_F(Mouse, CancelPutsTheViewBack)
{
    interaction_press(at(VIEW_XY, 100, 100, 3, 1.0));
    interaction_motion(at(VIEW_XY, 100, 40, 0, 1.1));
    interaction_cancel();
    EXPECT_FLOAT_EQ(vesk_get_view(VIEW_XY)->scale, 100);
    EXPECT_EQ(interaction_drag(), drag_kind::none);
}

TEST_F(Mouse, ARightClickIn3DOpensTheMenu)
{
    interaction_press(at(VIEW_XYZ, 100, 90, 3, 1.0));
    interaction_release(at(VIEW_XYZ, 101, 90, 3, 1.1));
    EXPECT_EQ(recording().scripts.back(), "popup_3d_menu 101 90");
}

TEST_F(Mouse, ARightClickInAFlatViewOpensTheMenuUnlessItDragged)
{
    for (const int zooms : {1, 0}) {
        prefs.right_button_zooms_view = zooms;
        recording().scripts.clear();
        interaction_press(at(VIEW_ZY, 100, 90, 3, 1.0));
        interaction_motion(at(VIEW_ZY, 100, 60, 0, 1.1));
        interaction_release(at(VIEW_ZY, 100, 60, 3, 1.2));
        for (const std::string &script : recording().scripts)
            EXPECT_NE(script.substr(0, 5), "popup") << zooms;
        interaction_press(at(VIEW_ZY, 100, 90, 3, 2.0));
        interaction_release(at(VIEW_ZY, 101, 90, 3, 2.1));
        EXPECT_EQ(recording().scripts.back(),
                  "popup_view_menu " + std::to_string(VIEW_ZY) + " 101 90");
    }
    prefs.right_button_zooms_view = 1;
}

TEST_F(Mouse, APressOnTheCrossIsAClickOnIt)
{
    const axis_cross_t cross = axis_cross(1);
    for (const axis_end_t &end : cross.ends) {
        if (end.axis != 0 || !end.positive)
            continue;
        const int x = static_cast<int>(end.x);
        const int y = static_cast<int>(end.y);
        interaction_press(at(VIEW_XYZ, x, y, 1, 1.0));
        interaction_release(at(VIEW_XYZ, x, y, 1, 1.1));
    }
    EXPECT_FLOAT_EQ(get_person()->rotation.y, -90);
}

} // namespace
