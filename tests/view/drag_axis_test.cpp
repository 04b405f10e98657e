// Drags and commands along axes that are picked or named by a word.

#include "edit/document/selection_internal.h"
#include "model/each.h"
#include "tests/view/tool_fixture.h"

#include <algorithm>
#include <cmath>

namespace {

class DragAxis : public Tools {
protected:
    // The axis 1 1 0 is picked, the cube is selected.
    void SetUp() override
    {
        Tools::SetUp();
        prefs.gridsnap = 0;
        run("set_select_mode", "vertex");
        run("clear_selection");
        std::vector<vertex *> ends;
        for (vertex *v : each<vertex>(cube->vertices)) {
            if (v->position.z > 0 && v->position.x == v->position.y)
                ends.push_back(v);
        }
        std::sort(ends.begin(), ends.end(),
                  [](const vertex *a, const vertex *b) { return a->position.x < b->position.x; });
        selection_add_vertices(ends);
        run("pick_axis");
        run("clear_selection");
        run("set_select_mode", "object");
        select_object(cube);
        find_bounding_box();
    }
    static void expect_middle(double x, double y)
    {
        EXPECT_NEAR(selection().box_centre.x, x, 1e-5);
        EXPECT_NEAR(selection().box_centre.y, y, 1e-5);
        EXPECT_NEAR(selection().box_centre.z, 0, 1e-5);
    }
};

TEST_F(DragAxis, ADragKeepsToThePickedOne)
{
    press(VIEW_XY, 200, 150);
    move(VIEW_XY, 220, 150);
    EXPECT_TRUE(key("p"));
    move(VIEW_XY, 240, 150);
    expect_middle(0.2, 0.2);
    EXPECT_TRUE(keys({"2", "Return"})); // typed: along it
    expect_middle(std::sqrt(2.0), std::sqrt(2.0));
    run("step_back");
    press(VIEW_XY, 200, 150);
    move(VIEW_XY, 220, 160);
    EXPECT_TRUE(key("l")); // the same one, then free again
    EXPECT_TRUE(key("l"));
    move(VIEW_XY, 230, 160);
    expect_middle(0.3, -0.1);
    EXPECT_TRUE(key("p"));
    EXPECT_TRUE(key("x")); // another lock instead
    move(VIEW_XY, 240, 160);
    expect_middle(0.4, 0);
    release(VIEW_XY, 240, 160);
    EXPECT_EQ(last_undo(), "move");
}

TEST_F(DragAxis, AWayThatPointsAtTheViewerIsNone)
{
    press(VIEW_XZ, 200, 150); // from above 1 1 0 is seen, along itself it is not
    move(VIEW_XZ, 220, 150);
    EXPECT_TRUE(key("p"));
    release(VIEW_XZ, 220, 150);
    EXPECT_NEAR(selection().box_centre.x, selection().box_centre.y, 1e-5);
    run("step_back");
    run("set_select_mode", "surface");
    run("clear_selection");
    for (surface_t *surface : each<surface_t>(cube->surfaces)) {
        if (surface->normal.z > 0.5f)
            selection_add_surfaces({surface});
    }
    find_bounding_box();
    press(VIEW_XY, 200, 150);
    move(VIEW_XY, 220, 150);
    EXPECT_TRUE(key("n"));
    move(VIEW_XY, 260, 170);
    release(VIEW_XY, 260, 170);
    EXPECT_NEAR(selection().box_centre.x, 0, 1e-5);
}

TEST_F(DragAxis, CommandsMoveAndMirrorAlongIt)
{
    run("move_along", 2, "picked");
    expect_middle(std::sqrt(2.0), std::sqrt(2.0));
    EXPECT_EQ(last_undo(), "move");
    run("undo");
    run("mirror_along", "last", "1,0,0");
    expect_middle(1, 1);
    EXPECT_EQ(last_undo(), "mirror");
    run("mirror_along", "sideways");
    EXPECT_EQ(last_message(), R"(mirror - no axis "sideways")");
}

} // namespace
