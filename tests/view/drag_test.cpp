// Everything that changes or ends a drag: numbers, locks, snapping, cancelling, what comes between.

#include "edit/document/journal.h"
#include "edit/document/modes.h"
#include "edit/document/selection_internal.h"
#include "edit/document/undo.h"
#include "edit/transform.h"
#include "model/bounds.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/normals.h"
#include "model/object_internal.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "tests/support/mesh_test.h"
#include "tests/view/drag_fixture.h"
#include "view/number_field.h"
#include "view/overlay.h"
#include "view/projection.h"

#include <cmath>
#include <set>

namespace {

// ---- numbers ----

struct number_case {
    const char *name;
    const char *mode;
    int view;
    int x0, y0, x1, y1; // the drag before the keys
    std::vector<const char *> keys;
    const char *centre, *size; // of the selection afterwards
    const char *label;
};
// clang-format off
const number_case number_cases[] = {
    {"move_typed_from_the_horizontal_axis", "move", VIEW_XY, 200, 150, 230, 120,
        {"2", "Return"}, "2 0.3 0", "1 1 1", "move"},
    {"tab_goes_on", "move", VIEW_XY, 200, 150, 230, 120,
        {"2", "Tab", "minus", "1", "Tab", "3", "Return"}, "2 -1 3", "1 1 1", "move"},
    {"the_side_view_begins_with_z", "move", VIEW_ZY, 200, 150, 230, 150,
        {"1", "period", "5", "KP_Enter"}, "0 0 1.5", "1 1 1", "move"},
    {"backspace_and_a_late_sign", "move", VIEW_XY, 200, 150, 230, 150,
        {"2", "5", "BackSpace", "minus", "Return"}, "-2 0 0", "1 1 1", "move"},
    {"an_axis_chooses_the_component", "move", VIEW_XY, 200, 150, 230, 120,
        {"y", "4", "Return"}, "0 4 0", "1 1 1", "move"},
    {"an_angle", "rotate", VIEW_XY, 240, 150, 240, 140,
        {"4", "5", "Return"}, "0 0 0", "1.41421 1.41421 1", "rotate"},
    {"a_handle_s_size", "move", VIEW_XY, 258, 150, 270, 150,
        {"3", "Return"}, "1 0 0", "3 1 1", "resize"},
    {"the_other_sizes_grow_about_the_middle", "move", VIEW_XY, 258, 150, 270, 150,
        {"3", "Tab", "2", "Return"}, "1 0 0", "3 2 1", "resize"},
};
// clang-format on
void PrintTo(const number_case &c, std::ostream *out) { *out << c.name; }
class TypedNumbers : public Drags, public testing::WithParamInterface<number_case> {};

TEST_P(TypedNumbers, HaveEffectAtOnceAndReturnKeepsThem)
{
    const number_case &c = GetParam();
    select_object(cube);
    run("set_draw_mode", c.mode);
    const std::vector<point3_t> before = positions();
    press(c.view, c.x0, c.y0);
    move(c.view, c.x1, c.y1);
    for (const char *k : c.keys) {
        EXPECT_TRUE(key(k)) << k;
    }
    EXPECT_EQ(interaction_drag(), drag_kind::none);
    EXPECT_EQ(run("get_selection_centre"), c.centre);
    EXPECT_EQ(run("get_selection_size"), c.size);
    EXPECT_EQ(last_undo(), c.label);
    EXPECT_EQ(undos(), 1);
    EXPECT_FALSE(number_field_is_open());
    release(c.view, c.x1, c.y1); // the button comes up later
    EXPECT_EQ(undos(), 1);
    run("undo");
    EXPECT_TRUE(same(positions(), before));
}
INSTANTIATE_TEST_SUITE_P(Cases, TypedNumbers, testing::ValuesIn(number_cases));

TEST_F(Drags, TheNumberFieldIsShownAtThePointerAndKeepsTheDragWithoutTheButton)
{
    select_object(cube);
    press(VIEW_XY, 200, 150);
    EXPECT_FALSE(key("Return"));
    EXPECT_FALSE(key("q"));
    EXPECT_TRUE(key("1"));
    EXPECT_EQ(last_call("show_number_field"), "0 200 150 \"dX\" 0 \"1\"");
    EXPECT_EQ(run("get_selection_centre"), "1 0 0");
    release(VIEW_XY, 200, 150);
    EXPECT_EQ(interaction_drag(), drag_kind::tool);
    move(VIEW_XY, 300, 300); // only what is typed counts now
    EXPECT_TRUE(key("0"));
    EXPECT_EQ(run("get_selection_centre"), "10 0 0");
    EXPECT_EQ(undos(), 0);
    click(VIEW_XY, 300, 300); // a click keeps it
    EXPECT_EQ(interaction_drag(), drag_kind::none);
    EXPECT_EQ(run("get_selection_centre"), "10 0 0");
    EXPECT_EQ(undos(), 1);
    EXPECT_FALSE(key("1")); // no drag, no number
}

TEST_F(Drags, NumbersMakeBoxesAndOutlines)
{
    run("set_draw_mode", "box");
    press(VIEW_XY, 200, 150);
    move(VIEW_XY, 250, 170);
    EXPECT_TRUE(keys({"2", "Tab", "3", "Tab", "0", "period", "5", "Return"}));
    EXPECT_EQ(run("get_selection_size"), "2 3 0.5");
    EXPECT_EQ(run("get_selection_centre"), "1 -1.5 0"); // the way the mouse went
    EXPECT_EQ(undos(), 1);

    run("set_draw_mode", "polyline");
    click(VIEW_XY, 200, 150);
    move(VIEW_XY, 260, 160);
    EXPECT_TRUE(keys({"x", "1", "Return"})); // one to the right, and no further
    move(VIEW_XY, 350, 50);
    EXPECT_TRUE(key("y"));
    click(VIEW_XY, 350, 50);
    EXPECT_TRUE(key("Return"));
    const object_t *line = get_current_object();
    ASSERT_EQ(line->num_vertices, 3);
    const point3_t second = object_get_vertex_at(line, 1)->position;
    const point3_t third = object_get_vertex_at(line, 2)->position;
    EXPECT_EQ(second.x, 1);
    EXPECT_EQ(second.y, 0);
    EXPECT_EQ(third.x, 1); // locked to y
    EXPECT_NEAR(third.y, 1, 1e-6);
}

// ---- taking it back ----

struct cancel_case {
    const char *name;
    const char *mode;
    int x, y;
    void (*by)(Tools *test);
    bool changes_nothing_else = true; // the history and the unsaved changes are as before
};
// clang-format off
const cancel_case cancel_cases[] = {
    {"escape",        "move",   210, 130, [](Tools *) { tool_key("Escape"); }},
    {"the_right_button", "move", 210, 130, [](Tools *) { interaction_press({VIEW_XY, 220, 140, 3, 0, 90}); }},
    {"rotating",      "rotate", 240, 150, [](Tools *) { tool_key("Escape"); }},
    {"resizing",      "move",   258, 150, [](Tools *) { interaction_press({VIEW_XY, 220, 140, 3, 0, 90}); }},
    {"after_numbers", "move",   210, 130, [](Tools *) { tool_key("7"); tool_key("Escape"); }},
    {"undo_meanwhile", "move",  210, 130, [](Tools *) { run("undo"); }, false},
    {"a_key_that_selects", "move", 210, 130, [](Tools *) { run("keypress", 0, "v", 0); run("keypress", 0, "o", 0); }, false},
};
// clang-format on
void PrintTo(const cancel_case &c, std::ostream *out) { *out << c.name; }
class Cancelled : public Drags, public testing::WithParamInterface<cancel_case> {};

TEST_P(Cancelled, LeavesTheVeryBitsAndTheUndoList)
{
    const cancel_case &c = GetParam();
    const point3_t odd = {0.1f, 0.2f, 0.3f};
    translate_object(cube, &odd);
    set_new_select_mode(SELECT_OBJECT);
    clear_all_undos();
    select_object(cube);
    run("set_draw_mode", c.mode);
    const std::vector<point3_t> before = positions();
    run("redraw_all");
    const size_t states = journal_items().size();
    const std::uint64_t change = journal_change_number();
    press(VIEW_XY, c.x + 10, c.y - 20);
    for (int i = 0; i < 20; ++i) {
        move(VIEW_XY, c.x + i * 3, c.y + i);
    }
    EXPECT_FALSE(same(positions(), before));
    c.by(this);
    EXPECT_EQ(interaction_drag(), drag_kind::none);
    EXPECT_TRUE(same(positions(), before));
    EXPECT_FALSE(overlay().moving);
    EXPECT_FALSE(number_field_is_open());
    const int count = undos();
    move(VIEW_XY, 20, 20);
    release(VIEW_XY, 20, 20);
    EXPECT_TRUE(same(positions(), before));
    EXPECT_EQ(undos(), count);
    EXPECT_EQ(last_call("popup_view_menu"), ""); // the right button meant the drag
    if (c.changes_nothing_else) {
        run("get_counts");
        EXPECT_EQ(journal_items().size(), states);
        EXPECT_EQ(journal_change_number(), change);
    }
}
INSTANTIATE_TEST_SUITE_P(Ways, Cancelled, testing::ValuesIn(cancel_cases));

TEST_F(Drags, ComingBackToTheStartIsNoChange)
{
    select_object(cube);
    press(VIEW_XY, 200, 150);
    move(VIEW_XY, 300, 150);
    move(VIEW_XY, 200, 150);
    release(VIEW_XY, 200, 150);
    EXPECT_EQ(undos(), 0);
}

// ---- locks and snapping ----

TEST_F(Drags, AnAxisLocksHandlesToo)
{
    select_object(cube);
    press(VIEW_XY, 258, 92); // the upper right corner
    move(VIEW_XY, 358, 42);
    EXPECT_TRUE(key("y"));
    release(VIEW_XY, 358, 42);
    EXPECT_EQ(run("get_selection_size"), "1 1.5 1");
}

TEST_F(Drags, HandlesSnapTheirSideToTheGrid)
{
    select_object(cube);
    prefs.gridsnap = 1;
    prefs.grid = 1;
    drag(VIEW_XY, 258, 150, 328, 150); // its side from 0.5 to 1.2: 1
    EXPECT_EQ(run("get_selection_size"), "1.5 1 1");
}

class NearSnap : public Drags {
protected:
    void SetUp() override
    {
        Drags::SetUp();
        other = add_cube("other");
        const point3_t away = {3, 0.25f, 0};
        translate_object(other, &away);
        select_object(cube);
        prefs.snap_near = 1;
    }
    object_t *other;
};

TEST_F(NearSnap, BringsTheGrabbedVertexToOneOfAnotherObject)
{
    // Grabbed near its right lower corner, dragged to within five pixels of the other's left lower.
    drag(VIEW_XY, 245, 195, 443, 172);
    EXPECT_EQ(run("get_selection_centre"), "2 0.25 0");
    run("undo");
    drag(VIEW_XY, 245, 195, 420, 172); // too far away
    EXPECT_NEAR(selection().box_centre.x, 1.75, 1e-5);
}

TEST_F(NearSnap, FollowsTheDepthOnlyWhenItIsNear)
{
    const point3_t deep = {0, 0, 5};
    translate_object(other, &deep);
    drag(VIEW_XY, 245, 195, 443, 172);
    EXPECT_EQ(run("get_selection_centre"), "2 0.25 0");
}

TEST_F(NearSnap, PointsThatAreDrawnTakeTheWholePlace)
{
    run("set_draw_mode", "line");
    click(VIEW_XY, 448, 178); // at the other's left lower corner
    click(VIEW_XY, 200, 250);
    const point3_t first = object_get_vertex_at(get_current_object(), 0)->position;
    EXPECT_EQ(first.x, 2.5f);
    EXPECT_EQ(first.y, -0.25f);
    EXPECT_EQ(std::fabs(first.z), 0.5f);
}

// ---- large selections, own centres, what was just loaded ----

TEST_F(Drags, LargeSelectionsMoveAsAPictureAndChangeAtTheRelease)
{
    object_t *large = new_object(OBJECT_POLY);
    vertex *last = nullptr;
    for (int i = 0; i < 20001; ++i) {
        last = object_add_new_vertex(large, static_cast<float>(i % 100) / 100.0f,
                                     static_cast<float>(i / 100) / 200.0f, 0);
    }
    object_add_child(vesk_get_world(), large);
    select_object(large);
    const point3_t before = last->position;
    press(VIEW_XY, 250, 100);
    move(VIEW_XY, 350, 100);
    EXPECT_TRUE(overlay().moving);
    EXPECT_TRUE(overlay().pending);
    EXPECT_FLOAT_EQ(overlay().pending_matrix[12], 1.0f);
    EXPECT_EQ(last->position.x, before.x);
    EXPECT_NEAR(selection().box_min.x, 1, 1e-5); // the frame goes along
    EXPECT_TRUE(key("Escape"));
    EXPECT_NEAR(selection().box_min.x, 0, 1e-5);
    drag(VIEW_XY, 250, 100, 350, 100);
    EXPECT_FLOAT_EQ(last->position.x, before.x + 1);
    EXPECT_FALSE(overlay().moving);
    EXPECT_EQ(undos(), 1);
}

TEST_F(Drags, ObjectsTurnAboutTheirOwnCentresAndBack)
{
    object_t *other = add_cube("other");
    const point3_t away = {3, 0, 0};
    translate_object(other, &away);
    select_object(cube);
    select_object(other);
    prefs.rotate_about_object_centre = 1;
    run("set_draw_mode", "rotate");
    const std::vector<point3_t> before = positions();
    press(VIEW_XY, 200, 150);
    EXPECT_TRUE(keys({"4", "5", "Return"}));
    EXPECT_NEAR(other->centre.x, 3, 1e-6);
    EXPECT_NEAR(selection().box_size.x, 3 + std::sqrt(2.0), 1e-4); // each in its place
    EXPECT_EQ(undos(), 1);
    run("undo");
    for (size_t i = 0; i < before.size(); ++i) {
        EXPECT_NEAR(positions()[i].x, before[i].x, 1e-6);
        EXPECT_NEAR(positions()[i].y, before[i].y, 1e-6);
    }
    EXPECT_NEAR(selection().box_size.x, 4, 1e-4);
    run("redo");
    EXPECT_NEAR(selection().box_size.x, 3 + std::sqrt(2.0), 1e-4);
}

TEST_F(Drags, OverWhatWasJustLoadedTheyAreTheViews)
{
    const std::string file = temporary_file("loaded.vesk");
    select_object(cube);
    run("save_vesk", file);
    run("clear_all");
    prefs.fit_view_after_load = 0;
    run("load_vesk", file);
    const std::string there = run("get_selection_centre");
    int x = 0, y = 0;
    point2xy(&selection().box_centre, &x, &y, VIEW_XY);
    drag(VIEW_XYZ, 200, 150, 240, 150);
    EXPECT_EQ(run("get_selection_centre"), there);
    EXPECT_NE(get_person()->rotation.y, 0);
    click(VIEW_XY, x, y);
    drag(VIEW_XY, x, y, x + 40, y);
    EXPECT_NE(run("get_selection_centre"), there);
}

} // namespace
