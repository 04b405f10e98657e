// What the transforms of the panels refuse, and turns that follow a number.

#include "edit/panel_transform.h"

#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo_internal.h"
#include "model/angle.h"
#include "model/lights.h"
#include "model/matrix.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "tests/support/mesh_test.h"
#include "tests/support/random_mesh.h"

namespace {

using words_t = std::vector<std::string>;

// A flat rectangle 2 by 1 with its corner at the origin, selected.
class PanelTransform : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        add_squares(2, 1);
        run("select_all");
        before_ = scene_text();
    }
    std::string before_;
};

struct refused_case {
    const char *name;
    words_t words;
    const char *message; // that of the selection where there is none of its own
};
void PrintTo(const refused_case &c, std::ostream *out) { *out << c.name; }
class RefusedTransform : public PanelTransform, public testing::WithParamInterface<refused_case> {};

TEST_P(RefusedTransform, OpensNoRecord)
{
    const unsigned serial = undo_last_serial();
    run_words(GetParam().words);
    EXPECT_EQ(last_message(), GetParam().message);
    EXPECT_EQ(undo_last_serial(), serial);
    EXPECT_EQ(scene_text(), before_);
}
// clang-format off
INSTANTIATE_TEST_SUITE_P(Commands, RefusedTransform, testing::Values(
    refused_case{"by_nothing", {"move_with_undo", "0", "0", "0"}, "select all done"},
    refused_case{"by_no_number", {"move_with_undo", "nan", "inf", "1e999"}, "select all done"},
    refused_case{"about_no_axis", {"rotate_axis_angle_with_undo", "3", "45"}, "rotate - no axis 3"},
    refused_case{"across_no_axis", {"mirror_with_undo", "-1"}, "mirror - no axis -1"},
    refused_case{"of_no_kind", {"transform_begin", "bend"}, "transform - no kind named 'bend'"},
    refused_case{"not_begun", {"transform_to", "1", "1", "1"}, "select all done"},
    refused_case{"too_large", {"scale", "3e38", "1", "1"}, "scale - the result would be too large"}));
// clang-format on

// A light has no vertices: its place is its box.
TEST_F(PanelTransform, ALightThatIsAloneStandsMovesAndTurnsWhereItIs)
{
    object_t *light = new_light();
    object_add_child(vesk_get_world(), light);
    run("set_select_mode", "light");
    run("select_all");
    run("move_to", 1, 2, 3);
    EXPECT_EQ(run("get_selection_centre"), "1 2 3");
    EXPECT_EQ(run("get_selection_size"), "0 0 0");
    const std::string moved = scene_text();
    for (const words_t &words :
         {words_t{"rotate_with_undo", "10", "20", "30"}, words_t{"mirror_with_undo", "1"}}) {
        run_words(words);
        EXPECT_EQ(run("get_selection_centre"), "1 2 3") << words[0];
        run("undo");
        EXPECT_EQ(scene_text(), moved) << words[0];
    }
    run("rotate_about_with_undo", 0, 0, 90, 0, 0, 0);
    EXPECT_NEAR(light->centre.z, 3, 1e-5);
    EXPECT_NEAR(light->centre.x * light->centre.x + light->centre.y * light->centre.y, 5, 1e-4);
    run("undo");
    EXPECT_EQ(scene_text(), moved);
}

// The angles that an object has are those that it was turned to, whatever it had before.
TEST_F(PanelTransform, TurnsToTheAnglesOfAFrame)
{
    const object_t *square = elements_of<object_t>(selection().objects).front();
    for (const point3_t wanted : {point3_t{30, 0, 0}, point3_t{30, 40, -50}, point3_t{0, 90, 0},
                                  point3_t{170, -80, 10}, point3_t{0, 0, 0}}) {
        run("rotate_to_with_undo", wanted.x, wanted.y, wanted.z, 1, 0.5, 0);
        const point3_t angles = matrix_angles(square->rotation);
        EXPECT_NEAR(angles.x * degrees_per_radian, wanted.x, 1e-3);
        EXPECT_NEAR(angles.y * degrees_per_radian, wanted.y, 0.03); // asin is flat at 90
        EXPECT_NEAR(angles.z * degrees_per_radian, wanted.z, 1e-3);
    }
}

struct turn_case {
    const char *name;
    const char *x, *y, *z;
};
// clang-format off
const turn_case turns[] = {
    {"one_axis",            "0",   "30",  "0"},
    {"three_axes",          "20",  "30",  "40"},
    {"half_about_x",        "180", "0",   "0"},
    {"half_about_z_by_two", "180", "180", "0"},
    {"half_about_y_by_two", "180", "0",   "180"},
    {"half_about_x_by_two", "0",   "180", "180"},
    {"half_and_quarter",    "90",  "180", "0"},
    {"quarters",            "90",  "90",  "90"},
    {"halves_all",          "180", "180", "180"},
    {"nearly_half",         "179.999", "0.001", "180"},
    {"more_than_whole",     "-400", "725", "10"},
};
// clang-format on
void PrintTo(const turn_case &c, std::ostream *out) { *out << c.name; }
class FollowedTurn : public SceneTest, public testing::WithParamInterface<turn_case> {
protected:
    static void expect_points(const object_t *object, const std::vector<point3_t> &expected)
    {
        const std::vector<point3_t> points = points_of(object);
        ASSERT_EQ(points.size(), expected.size());
        for (std::size_t i = 0; i < points.size(); ++i) {
            EXPECT_NEAR(points[i].x, expected[i].x, 1e-4f);
            EXPECT_NEAR(points[i].y, expected[i].y, 1e-4f);
            EXPECT_NEAR(points[i].z, expected[i].z, 1e-4f);
        }
    }
};

// A turn that follows a number is what the command does at once, and one record takes it back,
// whatever single axis the three angles come to.
TEST_P(FollowedTurn, IsTheCommandsAndItsRecordTakesItBack)
{
    const turn_case &c = GetParam();
    random_source random(5);
    object_t *shell = add_random_shell(random, 2);
    for (const std::string mode : {"object", "vertex"}) {
        run("clear_selection");
        run("set_select_mode", "object");
        select_object(shell);
        run("set_select_mode", mode);
        const std::vector<point3_t> before = points_of(shell);
        run("rotate_about_with_undo", c.x, c.y, c.z, "1", "2", "3");
        const std::vector<point3_t> after = points_of(shell);
        run("undo");
        expect_points(shell, before);
        run("transform_begin", "rotate");
        run("transform_about", "1", "2", "3");
        run("transform_to", "5", "6", "7");
        run("transform_to", c.x, c.y, c.z);
        run("transform_end");
        expect_points(shell, after);
        run("undo");
        expect_points(shell, before);
        run("redo");
        expect_points(shell, after);
        run("undo");
    }
}
INSTANTIATE_TEST_SUITE_P(Angles, FollowedTurn, testing::ValuesIn(turns));

} // namespace
