// Clicks that follow each other: what they go down to, what they take, what lies behind.

#include "edit/document/current_object.h"
#include "edit/document/selection_internal.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "tests/support/mesh_test.h"
#include "tests/view/drag_fixture.h"

namespace {

TEST_F(Drags, ADoubleClickGoesDownToTheObject)
{
    object_t *group = new_object(OBJECT_GROUP);
    object_set_name(group, "group");
    object_add_child(vesk_get_world(), group);
    object_reparent(cube, group);
    run("set_select_mode", "tree");
    click(VIEW_XY, 200, 150);
    EXPECT_EQ(get_current_object(), group);
    seconds -= 1; // the second click comes soon
    click(VIEW_XY, 200, 150);
    EXPECT_EQ(run("get_app_mode"), "object move");
    EXPECT_EQ(get_current_object(), cube);
    click(VIEW_XY, 20, 20);
    seconds -= 1;
    click(VIEW_XY, 20, 20); // on empty space: nothing
    EXPECT_EQ(run("get_app_mode"), "object move");
}

TEST_F(Drags, ADoubleClickOnAnElementTakesMoreThanTheElement)
{
    const auto twice = [&](int x, int y, int state = 0) {
        click(VIEW_XY, x, y, state);
        seconds -= 1;
        click(VIEW_XY, x, y, state);
    };
    run("clear_all");
    object_t *squares = add_squares(3, 2); // 200 to 500, 150 to -50 in front view
    add_squares(1, 1);
    run("set_select_mode", "surface");
    clear_selection();
    twice(205, 100); // near the first one's left side
    const auto chosen = [&] {
        const std::vector<int> places = selected_surfaces_of(squares);
        return std::set<int>(places.begin(), places.end());
    };
    EXPECT_EQ(chosen(), (std::set<int>{0, 1, 2}));
    twice(350, 140, shift); // the lower side of the second
    EXPECT_EQ(chosen(), (std::set<int>{0, 1, 2, 4}));
    run("set_select_mode", "vertex");
    clear_selection();
    twice(300, 150);
    EXPECT_EQ(selected_vertices_of(squares).size(), 12u);
    EXPECT_EQ(selection().num_vertices, 12);
}

TEST_F(Drags, SelectBehindGoesThroughWhatLiesUnderThePointer)
{
    run("set_select_mode", "surface");
    clear_selection();
    move(VIEW_XY, 180, 150);
    prefs.filled_orth = 0;
    std::set<int> seen;
    for (int i = 0; i < 2; ++i) {
        run("keypress", VIEW_XY, "q", 0);
        ASSERT_EQ(selection().num_surfaces, 1);
        seen.insert(selected_surfaces_of(cube).front());
    }
    EXPECT_EQ(seen.size(), 2u); // front and back
    run("keypress", VIEW_XY, "q", 0);
    EXPECT_EQ(last_message(), "select behind - 1 of 2");
    run("select_behind"); // at the same place
    EXPECT_EQ(last_message(), "select behind - 2 of 2");
    move(VIEW_XY, 20, 20);
    run("keypress", VIEW_XY, "q", 0);
    EXPECT_EQ(last_message(), "select behind - nothing lies there");
    EXPECT_EQ(selection().num_surfaces, 1);
}

} // namespace
