// The panels' transforms: as plain commands, and while their numbers are dragged.

#include "edit/document/journal.h"
#include "edit/document/selection_internal.h"
#include "edit/transform.h"
#include "model/bounds.h"
#include "model/change_marks.h"
#include "model/normals.h"
#include "model/object_internal.h"
#include "tests/support/mesh_test.h"
#include "tests/view/drag_fixture.h"

#include <cmath>

namespace {

TEST_F(Drags, ScalingAndMirroringLeaveTheirPointInItsPlace)
{
    select_object(cube);
    const std::vector<point3_t> before = positions();
    run("scale_about_with_undo", 2, 1, -1, 1, 0, 1);
    EXPECT_EQ(run("get_selection_size"), "2 1 1");
    EXPECT_EQ(run("get_selection_centre"), "-1 0 2");
    EXPECT_EQ(undos(), 1);
    run("undo");
    EXPECT_TRUE(same(positions(), before));
}

struct panel_case {
    const char *name;
    std::vector<std::string> words;
    const char *label;
};
// clang-format off
const panel_case panel_cases[] = {
    {"move",              {"move_with_undo", "1", "2", "3"}, "move"},
    {"about_one_axis",    {"rotate_with_undo", "0", "30", "0"}, "rotate"},
    {"about_three_axes",  {"rotate_with_undo", "10", "-50", "120"}, "rotate"},
    {"half_a_turn",       {"rotate_about_with_undo", "180", "0", "180", "1", "2", "3"}, "rotate"},
    {"about_a_point",     {"rotate_about_with_undo", "0", "0", "90", "5", "5", "5"}, "rotate"},
    {"about_an_axis",     {"rotate_axis_angle_with_undo", "0", "77"}, "rotate"},
    {"mirror",            {"mirror_with_undo", "1"}, "mirror"},
};
// clang-format on
void PrintTo(const panel_case &c, std::ostream *out) { *out << c.name; }
class PanelCommand : public Drags, public testing::WithParamInterface<panel_case> {};

// As the plain command, but one record, which works on whatever is selected later.
TEST_P(PanelCommand, DoesWhatThePlainOneDoesWithOneRecord)
{
    const panel_case &c = GetParam();
    object_t *other = add_cube("other");
    const point3_t odd = {0.1f, 0.7f, -2.3f};
    translate_object(cube, &odd);
    object_get_vertex_at(cube, 0)->position.x -= 1; // not symmetric
    object_mark(cube, CHANGED_POSITIONS);
    select_object(cube);
    const std::vector<point3_t> before = positions();
    std::vector<std::string> plain = c.words;
    plain[0] = plain[0].substr(0, plain[0].find("_with_undo"));
    run_words(plain);
    const std::vector<point3_t> wanted = positions();
    journal_goto(0);
    std::vector<point3_t> back = positions();
    ASSERT_TRUE(same(back, before));
    select_object(cube);
    run_words(c.words);
    const std::vector<point3_t> got = positions();
    for (size_t i = 0; i < wanted.size(); ++i) {
        EXPECT_NEAR(got[i].x, wanted[i].x, 1e-5);
        EXPECT_NEAR(got[i].y, wanted[i].y, 1e-5);
        EXPECT_NEAR(got[i].z, wanted[i].z, 1e-5);
    }
    EXPECT_EQ(undos(), 1);
    EXPECT_EQ(last_undo(), c.label);
    clear_selection();
    select_object(other);
    run("undo");
    back = positions();
    for (size_t i = 0; i < back.size(); ++i) {
        EXPECT_NEAR(back[i].x, before[i].x, 1e-5);
        EXPECT_NEAR(back[i].y, before[i].y, 1e-5);
        EXPECT_NEAR(back[i].z, before[i].z, 1e-5);
    }
}
INSTANTIATE_TEST_SUITE_P(Commands, PanelCommand, testing::ValuesIn(panel_cases));

TEST_F(Drags, APanelsTransformFollowsItsNumber)
{
    select_object(cube);
    const std::vector<point3_t> before = positions();
    run("transform_begin", "scale");
    for (const double factor : {1.5, 3.0, 2.0}) {
        run("transform_to", factor, 1.0, 1.0);
    }
    EXPECT_EQ(run("get_selection_size"), "2 1 1");
    EXPECT_EQ(undos(), 0);
    run("transform_end");
    EXPECT_EQ(undos(), 1);
    EXPECT_EQ(last_undo(), "resize");
    EXPECT_EQ(journal_items().size(), 2u);
    run("undo");
    EXPECT_TRUE(same(positions(), before));

    run("transform_begin", "rotate");
    run("transform_to", 0, 45, 0);
    run("transform_cancel");
    EXPECT_TRUE(same(positions(), before));
    run("transform_begin", "move");
    run("transform_to", 1, 0, 0);
    run("clear_all"); // an edit from elsewhere takes it back first
    EXPECT_EQ(undos(), 0);
    run("transform_to", 2, 0, 0);
    run("transform_end");
    run("transform_begin", "move");
    EXPECT_EQ(last_message(), "move - nothing selected");
    run("transform_begin", "sideways");
    EXPECT_EQ(last_message(), "transform - no kind named 'sideways'");
}

} // namespace
