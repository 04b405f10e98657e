// The tools that run an operation while the mouse drags: events in, the model and the console out.

#include "edit/document/edge_selection.h"
#include "edit/document/modes.h"
#include "edit/document/selection_internal.h"
#include "edit/document/undo.h"
#include "model/identity.h"
#include "model/world.h"
#include "model/world_check.h"
#include "tests/support/mesh_test.h"
#include "tests/view/tool_fixture.h"

#include <sstream>

namespace {

class OperationTools : public Tools {
protected:
    void SetUp() override
    {
        Tools::SetUp();
        prefs.gridsnap = 0;
        run("clear_all");
        // The middle one's corners are at 200 and 300, 50 and 150 in front view.
        squares = add_squares(3, 3);
        clear_selection();
    }
    void TearDown() override
    {
        EXPECT_TRUE(world_check(vesk_get_world()).empty());
        Tools::TearDown();
    }
    void choose(const std::string &tool, const std::string &mode)
    {
        run("set_select_mode", mode.c_str());
        clear_selection();
        if (mode == "surface")
            select_surfaces_at(squares, {0});
        else if (mode == "vertex")
            select_vertices_at(squares, {5});
        else
            run("edge_select", object_identity(squares), "4", "5");
        records = *undo_count_address();
        before = scene_text();
        selected_before = selected();
        run("set_view_tool", tool.c_str());
        recording().scripts.clear();
    }
    static std::string selected()
    {
        return run("get_selected_edges") + "/" + run("selection_get_num_vertices") + "/" +
               run("selection_get_num_surfaces");
    }
    static std::string echoed()
    {
        std::string all;
        for (const std::string &script : recording().scripts) {
            if (script.starts_with("echo_command "))
                all += script.substr(13) + "\n";
        }
        return all;
    }
    void expect_nothing_done()
    {
        EXPECT_EQ(scene_text(), before);
        EXPECT_EQ(selected(), selected_before);
        EXPECT_EQ(*undo_count_address(), records);
        EXPECT_EQ(echoed(), "");
    }
    object_t *squares = nullptr;
    int records = 0;
    std::string before, selected_before;
};

struct operation_case {
    const char *tool, *mode;
    int dx, dy;       // of the drag from the middle of what is selected
    int x, y;         // there
    const char *echo; // the command that it is
};
// clang-format off
const operation_case operation_cases[] = {
    {"edge_bevel",      "edge",    20, 0,   250, 50, "edge_bevel 0.2 1 0.5"},
    {"edge_bevel",      "vertex",  30, 5,   300, 50, "vertex_bevel 0.3"},
    {"inset",           "surface", 20, 9,   250, 100, "inset 0.2 0 each"},
    {"extrude_each",    "surface", 40, 0,   250, 100, "extrude_each 0.4"},
    {"extrude_normals", "surface", -40, 0,  250, 100, "extrude_normals -0.4"},
    {"extrude_edges",   "edge",    10, -20, 250, 50, "extrude_edges 0.1 0.2 0"},
    {"shell",           "surface", 15, 0,   250, 100, "shell 0.15 1"},
    {"slide",           "edge",    0, -30,  250, 50, "slide -0.3"},
};
// clang-format on
void PrintTo(const operation_case &c, std::ostream *out) { *out << c.tool << ' ' << c.mode; }
class OperationTool : public OperationTools, public testing::WithParamInterface<operation_case> {};

TEST_P(OperationTool, ShowsItsResultWhileItIsDraggedAndKeepsItAsOneStep)
{
    const operation_case &c = GetParam();
    choose(c.tool, c.mode);
    press(VIEW_XY, c.x, c.y);
    move(VIEW_XY, c.x + c.dx / 2 + 12, c.y + c.dy / 2);
    const std::string half_way = scene_text();
    EXPECT_NE(half_way, before);
    move(VIEW_XY, c.x + c.dx, c.y + c.dy);
    const std::string shown = scene_text();
    EXPECT_NE(shown, half_way);
    release(VIEW_XY, c.x + c.dx, c.y + c.dy);
    const std::string after = scene_text(), selected_after = selected();
    EXPECT_EQ(after, shown);
    EXPECT_EQ(echoed(), std::string(c.echo) + "\n");
    EXPECT_EQ(*undo_count_address(), records + 1);
    run("step_back");
    EXPECT_EQ(scene_text(), before);
    EXPECT_EQ(selected(), selected_before);
    run("redo");
    EXPECT_EQ(scene_text(), after);
    EXPECT_EQ(selected(), selected_after);
    run("step_back");
    std::istringstream line(c.echo);
    std::vector<std::string> words;
    for (std::string word; line >> word;)
        words.push_back(word);
    run_words(words);
    EXPECT_EQ(scene_text(), after);
}

TEST_P(OperationTool, EscapeAndAnEditFromElsewhereTakeItBack)
{
    const operation_case &c = GetParam();
    choose(c.tool, c.mode);
    press(VIEW_XY, c.x, c.y);
    move(VIEW_XY, c.x + c.dx, c.y + c.dy);
    EXPECT_TRUE(key("Escape"));
    expect_nothing_done();
    release(VIEW_XY, c.x + c.dx, c.y + c.dy);
    press(VIEW_XY, c.x, c.y);
    move(VIEW_XY, c.x + c.dx, c.y + c.dy);
    run("object_set_name", object_identity(squares), "squares");
    release(VIEW_XY, c.x + c.dx, c.y + c.dy);
    EXPECT_EQ(squares->num_surfaces, 9);
    EXPECT_EQ(squares->num_vertices, 16);
}

TEST_P(OperationTool, BackAtThePressNothingWasDone)
{
    const operation_case &c = GetParam();
    choose(c.tool, c.mode);
    press(VIEW_XY, c.x, c.y);
    move(VIEW_XY, c.x + c.dx, c.y + c.dy);
    move(VIEW_XY, c.x, c.y);
    release(VIEW_XY, c.x, c.y);
    expect_nothing_done();
}

INSTANTIATE_TEST_SUITE_P(All, OperationTool, testing::ValuesIn(operation_cases));

TEST_F(OperationTools, TheWheelTypedNumbersAndControl)
{
    choose("edge_bevel", "edge");
    press(VIEW_XY, 250, 50);
    move(VIEW_XY, 270, 50);
    interaction_wheel(VIEW_XY, 1);
    interaction_wheel(VIEW_XY, 1);
    EXPECT_EQ(last_message(), "Width 0.2  segments 3");
    EXPECT_TRUE(keys({"0", "period", "1"}));
    EXPECT_TRUE(key("Return"));
    EXPECT_EQ(echoed(), "edge_bevel 0.1 3 0.5\n");
    release(VIEW_XY, 270, 50);

    run("step_back");
    choose("inset", "surface");
    press(VIEW_XY, 250, 100);
    move(VIEW_XY, 270, 100);
    move(VIEW_XY, 280, 100, control);
    move(VIEW_XY, 300, 100, control);
    EXPECT_EQ(last_message(), "Width 0.2  Depth 0.2");
    move(VIEW_XY, 310, 100);
    release(VIEW_XY, 320, 100);
    EXPECT_EQ(echoed(), "inset 0.3 0.2 each\n");

    run("step_back");
    choose("extrude_edges", "edge");
    press(VIEW_XY, 250, 50);
    EXPECT_TRUE(keys({"z", "2", "Return"})); // before the pointer moves, too
    EXPECT_EQ(echoed(), "extrude_edges 0 0 2\n");
}

TEST_F(OperationTools, APressOnSomethingElseSelectsItFirst)
{
    choose("inset", "surface");
    drag(VIEW_XY, 350, 100, 370, 100);
    EXPECT_EQ(echoed(), "select_elements set " + std::to_string(object_identity(squares)) +
                            ":1\ninset 0.2 0 each\n");
    EXPECT_EQ(squares->num_surfaces, 13);
    click(VIEW_XY, 250, 100);
    EXPECT_EQ(selected_surfaces_of(squares), std::vector<int>{0});
}

TEST_F(OperationTools, GoesOnAfterAStepBack)
{
    run("set_select_mode", "surface");
    clear_selection();
    run("set_view_tool", "inset");
    for (int i = 0; i < 3; ++i) {
        drag(VIEW_XY, 350, 100, 370, 100);
        EXPECT_EQ(squares->num_surfaces, 13);
        run("step_back");
        EXPECT_EQ(squares->num_surfaces, 9);
        EXPECT_EQ(selected_surfaces_of(squares), std::vector<int>{1});
    }
    clear_selection();
    recording().scripts.clear();
    drag(VIEW_XY, 20, 20, 40, 20); // on nothing, with nothing
    EXPECT_EQ(echoed(), "");
    EXPECT_EQ(last_message(), "inset - nothing selected");
}

TEST_F(OperationTools, InThe3DViewAnExtrusionFollowsItsNormal)
{
    run("clear_all");
    cube = add_cube("cube");
    run("set_select_mode", "surface");
    run("set_view_tool", "extrude_each");
    run("view_3d_from_corner");
    press(VIEW_XYZ, 200, 110); // on the top
    move(VIEW_XYZ, 200, 60);
    EXPECT_GT(selection().box_max.y, 0.6f);
    release(VIEW_XYZ, 200, 60);
    EXPECT_EQ(cube->num_surfaces, 10);
    press(VIEW_XYZ, 5, 5); // beside it: the view turns
    move(VIEW_XYZ, 50, 30);
    release(VIEW_XYZ, 50, 30);
    EXPECT_EQ(cube->num_surfaces, 10);
}

} // namespace
