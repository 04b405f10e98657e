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
#include "tests/view/tool_fixture.h"
#include "view/number_field.h"
#include "view/overlay.h"
#include "view/projection.h"

#include <cmath>
#include <set>

namespace {

class Drags : public Tools {
protected:
    // The cube's vertices, bit by bit.
    std::vector<point3_t> positions() const
    {
        std::vector<point3_t> all;
        for (const vertex *v : each<vertex>(cube->vertices)) {
            all.push_back(v->position);
        }
        return all;
    }
    static bool same(const std::vector<point3_t> &a, const std::vector<point3_t> &b)
    {
        return a.size() == b.size() &&
               std::equal(a.begin(), a.end(), b.begin(), [](const point3_t &p, const point3_t &q) {
                   return p.x == q.x && p.y == q.y && p.z == q.z;
               });
    }
    static int undos() { return *undo_count_address(); }
};

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

// ---- large selections, own centres, double clicks ----

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

TEST_F(Drags, TheExtrudeToolSweepsTheSelectedSurfacesWithOneRecord)
{
    run("set_select_mode", "surface");
    run("clear_selection");
    clear_all_undos();
    run("set_draw_mode", "extrude");
    drag(VIEW_XY, 20, 20, 60, 60); // nothing selected: a rubber band
    EXPECT_EQ(cube->num_surfaces, 6);
    click(VIEW_XY, 180, 150); // the cube's front
    ASSERT_EQ(selection().num_surfaces, 1);
    prefs.extrude_num = 2;
    press(VIEW_ZY, 250, 150); // its edge, seen from the side
    move(VIEW_ZY, 300, 150);
    EXPECT_EQ(overlay().preview.size(), 12u); // the outline, and four walls
    EXPECT_EQ(cube->num_surfaces, 6);         // nothing is changed yet
    move(VIEW_ZY, 350, 150);
    release(VIEW_ZY, 350, 150);
    EXPECT_EQ(cube->num_surfaces, 5 + 8 + 1); // a body: no face stays inside
    EXPECT_NEAR(find_object_size(cube).z, 2, 1e-5);
    EXPECT_EQ(selection().num_surfaces, 1); // the new end, for what comes next
    EXPECT_EQ(last_undo(), "extrude");
    EXPECT_EQ(undos(), 1);
    EXPECT_TRUE(overlay().preview.empty());
    run("undo");
    for (const object_t *restored : each<object_t>(vesk_get_world()->children)) {
        EXPECT_EQ(restored->num_surfaces, 6);
    }
    press(VIEW_ZY, 250, 150);
    move(VIEW_ZY, 300, 150);
    EXPECT_TRUE(key("Escape"));
    EXPECT_TRUE(overlay().preview.empty());
    EXPECT_EQ(undos(), 0);
}

struct sweep_case {
    const char *name;
    int state;
    std::vector<const char *> keys; // during the drag, which goes 0.6 to the right and 0.5 up
    const char *centre;             // of the new end
};
// clang-format off
const sweep_case sweep_cases[] = {
    {"where_the_surface_faces",      0, {},                   "0 0 1.1"},
    {"shift_goes_any_way",           1, {},                   "0 0.5 1.1"},
    {"along_an_axis",                0, {"y"},                "0 0.5 0.5"},
    {"a_typed_distance",             0, {"2", "Return"},      "0 0 2.5"},
    {"a_typed_way_along_an_axis",    0, {"y", "2", "Return"}, "0 2 0.5"},
    {"tab_types_the_other_way",      1, {"Tab", "2", "Return"}, "2 0.5 1.1"},
};
// clang-format on
void PrintTo(const sweep_case &c, std::ostream *out) { *out << c.name; }
class Sweeps : public Drags, public testing::WithParamInterface<sweep_case> {};

TEST_P(Sweeps, GoAlongTheNormalUnlessTheyAreToldOtherwise)
{
    run("set_select_mode", "surface");
    click(VIEW_XY, 180, 150); // the cube's front, z = 0.5
    run("set_draw_mode", "extrude");
    clear_all_undos();
    press(VIEW_ZY, 250, 150);
    move(VIEW_ZY, 310, 100, GetParam().state);
    for (const char *k : GetParam().keys)
        EXPECT_TRUE(key(k)) << k;
    release(VIEW_ZY, 310, 100, GetParam().state);
    EXPECT_EQ(run("get_selection_centre"), GetParam().centre);
    EXPECT_EQ(undos(), 1);
}
INSTANTIATE_TEST_SUITE_P(Cases, Sweeps, testing::ValuesIn(sweep_cases));

// ---- the panels' transforms ----

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
