// The tools that cut: events in, the marks of the cut and the model out.

#include "edit/document/modes.h"
#include "edit/document/selection_internal.h"
#include "edit/document/undo.h"
#include "model/vec3d.h"
#include "model/world.h"
#include "model/world_check.h"
#include "tests/support/mesh_test.h"
#include "tests/view/tool_fixture.h"
#include "view/overlay.h"

#include <cmath>

namespace {

class CutTools : public Tools {
protected:
    void SetUp() override
    {
        Tools::SetUp();
        prefs.gridsnap = 0;
        clear_selection();
    }
    void TearDown() override
    {
        EXPECT_TRUE(world_check(vesk_get_world()).empty());
        Tools::TearDown();
    }
    // The words of the last console line.
    static std::string echoed()
    {
        for (auto i = recording().scripts.rbegin(); i != recording().scripts.rend(); ++i) {
            if (i->starts_with("echo_command "))
                return i->substr(13);
        }
        return "";
    }
    static double length_of_lines()
    {
        double sum = 0;
        const std::vector<point3_t> &ends = cut_marks().lines;
        for (std::size_t i = 0; i + 1 < ends.size(); i += 2)
            sum += length(between(ends[i], ends[i + 1]));
        return sum;
    }
};

// ---- the knife ----

class KnifeTool : public CutTools {
protected:
    void SetUp() override
    {
        CutTools::SetUp();
        run("set_view_tool", "knife");
    }
    void expect_marked(const point3_t &at) const
    {
        ASSERT_FALSE(cut_marks().points.empty());
        EXPECT_LT(length(between(cut_marks().points.back(), at)), 1e-5);
    }
};

TEST_F(KnifeTool, CutsTheClickedLineAsOneStepThatItsEchoRepeats)
{
    const std::string before = scene_text();
    move(VIEW_XY, 151, 130);
    expect_marked({-0.5f, 0.2f, 0.5f}); // on the edge
    click(VIEW_XY, 151, 130);
    move(VIEW_XY, 200, 150);
    EXPECT_GT(length_of_lines(), 0.5);
    click(VIEW_XY, 200, 150); // inside the front
    move(VIEW_XY, 249, 101);
    expect_marked({0.5f, 0.5f, 0.5f}); // the corner
    click(VIEW_XY, 249, 101);
    EXPECT_EQ(scene_text(), before);
    EXPECT_EQ(*undo_count_address(), 0);
    EXPECT_TRUE(key("Return"));
    EXPECT_EQ(last_message(), "knife - 1 surfaces");
    EXPECT_EQ(cube->num_surfaces, 7);
    EXPECT_EQ(cube->num_vertices, 10);
    EXPECT_EQ(*undo_count_address(), 1);
    EXPECT_TRUE(cut_marks().empty());
    EXPECT_NEAR(std::fabs(volume(cube)), 1, 1e-5);
    const std::string after = scene_text(), words = echoed();
    run("step_back");
    EXPECT_EQ(scene_text(), before);
    const std::string coordinates = words.substr(words.find(' ') + 1);
    std::string plain;
    for (const char c : coordinates) {
        if (c != '\\')
            plain += c;
    }
    run("knife", plain.c_str());
    EXPECT_EQ(scene_text(), after);
}

TEST_F(KnifeTool, SnapsToMiddlesAndRightAngles)
{
    move(VIEW_XY, 151, 130, control);
    expect_marked({-0.5f, 0, 0.5f});
    click(VIEW_XY, 151, 130);
    move(VIEW_XY, 249, 180, shift);
    expect_marked({0.5f, 0.2f, 0.5f}); // straight across
    move(VIEW_XY, 210, 140, shift);
    expect_marked({0.1f, 0.2f, 0.5f});
    click(VIEW_XY, 210, 140, shift);
    move(VIEW_XY, 215, 180, shift);
    expect_marked({0.1f, -0.3f, 0.5f}); // down from there
}

TEST_F(CutTools, ShowTheCutOnBothSidesWithSymmetry)
{
    run("clear_all");
    add_mesh({{-1, 0, 0}, {0, 0, 0}, {1, 0, 0}, {-1, 1, 0}, {0, 1, 0}, {1, 1, 0}},
             {{0, 1, 4, 3}, {1, 2, 5, 4}});
    for (const char *axis : {"off", "x"}) {
        const double sides = axis == std::string("x") ? 2 : 1;
        run("symmetry", axis, "origin");
        run("set_view_tool", "loop_cut");
        move(VIEW_XY, 250, 150); // on the right one's lower side
        EXPECT_NEAR(length_of_lines(), sides, 1e-5) << axis;
        run("set_view_tool", "knife");
        click(VIEW_XY, 250, 150);
        move(VIEW_XY, 250, 50);
        EXPECT_NEAR(length_of_lines(), sides, 0.05) << axis;
        move(VIEW_XY, 120, 50); // over the plane
        EXPECT_GT(length_of_lines(), 1) << axis;
        EXPECT_TRUE(key("Escape"));
    }
}

TEST_F(KnifeTool, TakesPointsBackAndDropsTheLine)
{
    click(VIEW_XY, 151, 130);
    click(VIEW_XY, 200, 150);
    click(VIEW_XY, 249, 170);
    EXPECT_TRUE(key("BackSpace"));
    EXPECT_EQ(cut_marks().points.size(), 2u);
    EXPECT_TRUE(key("Escape"));
    EXPECT_TRUE(cut_marks().empty());
    EXPECT_FALSE(key("Escape"));
    EXPECT_FALSE(key("Return"));
    EXPECT_FALSE(key("BackSpace")); // deletes the selection then
    EXPECT_EQ(cube->num_surfaces, 6);
}

TEST_F(KnifeTool, ADoubleClickCuts)
{
    click(VIEW_XY, 151, 130);
    click(VIEW_XY, 249, 170);
    seconds -= 0.9;
    click(VIEW_XY, 249, 170);
    EXPECT_EQ(cube->num_surfaces, 7);
}

TEST_F(KnifeTool, ShowsWhereThereIsNoWay)
{
    run("clear_all");
    object_t *apart = add_mesh(
        {{-1, 0, 0}, {-0.5f, 0, 0}, {-0.5f, 1, 0}, {-1, 1, 0}, {0.5f, 0, 0}, {1, 0, 0}, {1, 1, 0}},
        {{0, 1, 2, 3}, {4, 5, 6}});
    click(VIEW_XY, 101, 120);
    click(VIEW_XY, 149, 120);
    EXPECT_NEAR(length_of_lines(), 0.5, 1e-5);
    move(VIEW_XY, 290, 130);
    EXPECT_EQ(last_message(), "knife - no way over the surface to point 3");
    EXPECT_EQ(cut_marks().broken.size(), 2u);
    EXPECT_NEAR(length_of_lines(), 0.5, 1e-5);
    click(VIEW_XY, 290, 130);
    EXPECT_TRUE(key("Return")); // refused, and the line stays
    EXPECT_TRUE(key("BackSpace"));
    EXPECT_TRUE(key("Return"));
    EXPECT_EQ(apart->num_surfaces, 3);
}

TEST_F(KnifeTool, WorksOnWhatIsSelectedOnly)
{
    run("clear_all");
    object_t *squares = add_squares(2, 1);
    select_surfaces_at(squares, {1});
    click(VIEW_XY, 250, 80);
    EXPECT_EQ(last_message(), "knife - that is not among what is selected");
    EXPECT_TRUE(cut_marks().points.empty());
    click(VIEW_XY, 301, 80);
    click(VIEW_XY, 399, 80);
    EXPECT_TRUE(key("Return"));
    EXPECT_EQ(squares->num_surfaces, 3);
    EXPECT_EQ(selected_surfaces_of(squares).size(), 2u);
}

TEST_F(KnifeTool, ForgetsALineWhoseModelChanged)
{
    click(VIEW_XY, 151, 130);
    click(VIEW_XY, 200, 150);
    select_object(cube);
    run("move_with_undo", "1", "0", "0");
    move(VIEW_XY, 20, 20);
    EXPECT_TRUE(cut_marks().empty());
    EXPECT_FALSE(key("Return"));
    click(VIEW_XY, 270, 150);
    run("delete");
    click(VIEW_XY, 290, 150);
    EXPECT_TRUE(cut_marks().empty());
}

// ---- the slice ----

struct slice_case {
    const char *name, *keep, *cap;
    double volume; // of the cube where the result is closed, else 0
    int surfaces;  // of all objects
};
// clang-format off
const slice_case slice_cases[] = {
    {"both_open",   "both",  "0", 1,    10},
    {"front_capped", "front", "1", 0.75, 6},
    {"back_capped", "back",  "1", 0.25, 6},
    {"front_open",  "front", "0", 0,    5},
};
// clang-format on
void PrintTo(const slice_case &c, std::ostream *out) { *out << c.name; }
class SliceTool : public CutTools, public testing::WithParamInterface<slice_case> {};

TEST_P(SliceTool, CutsByThePlaneOnTheLineWhoseLeftIsItsFront)
{
    select_object(cube);
    run("set_view_tool", "slice");
    run("set_tool_option", "slice_keep", GetParam().keep);
    run("set_tool_option", "slice_cap", GetParam().cap);
    const std::string before = scene_text();
    press(VIEW_XY, 100, 175);
    move(VIEW_XY, 300, 175);
    EXPECT_NEAR(length_of_lines(), 4, 1e-4); // round the cube
    EXPECT_EQ(scene_text(), before);
    release(VIEW_XY, 300, 175);
    EXPECT_TRUE(cut_marks().empty());
    EXPECT_EQ(last_undo(), "slice");
    EXPECT_EQ(cube->num_surfaces, GetParam().surfaces);
    if (GetParam().volume > 0) {
        EXPECT_NEAR(std::fabs(volume(cube)), GetParam().volume, 1e-5);
    }
    const std::string after = scene_text(), words = echoed();
    EXPECT_EQ(words,
              std::string("slice -1 -0.25 0 0 1 0 ") + GetParam().keep + " " + GetParam().cap);
    run("step_back");
    EXPECT_EQ(scene_text(), before);
    run("slice", "-1", "-0.25", "0", "0", "1", "0", GetParam().keep, GetParam().cap);
    EXPECT_EQ(scene_text(), after);
}
INSTANTIATE_TEST_SUITE_P(Sides, SliceTool, testing::ValuesIn(slice_cases));

class SliceDrag : public CutTools {
protected:
    void SetUp() override
    {
        CutTools::SetUp();
        select_object(cube);
        run("set_view_tool", "slice");
    }
};

TEST_F(SliceDrag, InThe3DViewThePlaneGoesThroughTheEye)
{
    press(VIEW_XYZ, 20, 150);
    move(VIEW_XYZ, 380, 150);
    EXPECT_NEAR(length_of_lines(), 4, 1e-3); // the eye is level with the middle
    for (const point3_t &p : cut_marks().lines)
        EXPECT_NEAR(p.y, 0, 1e-4);
    EXPECT_TRUE(key("Escape"));
    EXPECT_TRUE(cut_marks().empty());
    release(VIEW_XYZ, 380, 150);
    EXPECT_EQ(cube->num_surfaces, 6);
    drag(VIEW_XYZ, 20, 150, 380, 170, shift); // level by steps of 15 degrees
    EXPECT_EQ(cube->num_surfaces, 10);
    for (const point3_t &p : points_of(cube))
        EXPECT_TRUE(std::fabs(p.y) < 1e-4 || std::fabs(std::fabs(p.y) - 0.5f) < 1e-4);
}

TEST_F(SliceDrag, AClickAndALineBesideTheModelChangeNothing)
{
    click(VIEW_XY, 200, 150);
    drag(VIEW_XY, 10, 10, 300, 10);
    EXPECT_EQ(last_message(), "slice - the plane cuts nothing");
    EXPECT_EQ(*undo_count_address(), 0);
    EXPECT_EQ(echoed().substr(0, 5), "");
}

TEST_F(SliceDrag, ShowsTheModelAsItBecomesAmidTheDrag)
{
    press(VIEW_XY, 20, 175);
    move(VIEW_XY, 380, 175);
    EXPECT_NEAR(length_of_lines(), 4, 1e-4);
    run("delete");
    move(VIEW_XY, 381, 175);
    EXPECT_EQ(length_of_lines(), 0);
    run("step_back");
    run("select_all");
    move(VIEW_XY, 382, 175);
    EXPECT_NEAR(length_of_lines(), 4, 1e-4);
    key("Escape");
}

TEST_F(SliceDrag, OptionsTakeTheirOwnWordsOnly)
{
    run("set_tool_option", "slice_keep", "half");
    EXPECT_EQ(last_message(), "the option slice_keep cannot be 'half'");
    run("set_tool_option", "bevel_segments", "0");
    EXPECT_EQ(last_message(), "the option bevel_segments cannot be '0'");
    run("set_tool_option", "nothing", "1");
    EXPECT_EQ(last_message(), "no tool has an option 'nothing'");
    EXPECT_EQ(run("get_tool_option", "slice_keep"), "both");
}

} // namespace
