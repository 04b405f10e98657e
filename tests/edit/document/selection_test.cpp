// Selecting in the five modes, switching between them, and what is told.

#include "edit/document/modes.h"
#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo.h"
#include "model/identity.h"
#include "model/lights.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "tests/support/scene_test.h"

#include <algorithm>

namespace {

using names_t = std::vector<std::string>;

names_t selected_names()
{
    names_t names;
    for (const object_t *object : each<object_t>(selection().objects))
        names.emplace_back(object->name);
    return names;
}

object_t *add_group(object_t *parent, const char *name)
{
    object_t *group = new_group();
    object_set_name(group, name);
    object_add_child(parent, group);
    return group;
}

object_t *add_leaf(object_t *parent, const char *name)
{
    object_t *leaf = add_cube(name);
    object_reparent(leaf, parent);
    return leaf;
}

// world: outer { a, inner { b, c (hidden) } }, d
class Selection : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        outer = add_group(vesk_get_world(), "outer");
        a = add_leaf(outer, "a");
        inner = add_group(outer, "inner");
        b = add_leaf(inner, "b");
        c = add_leaf(inner, "c");
        d = add_leaf(vesk_get_world(), "d");
        object_set_visible(c, 0);
    }
    object_t *outer, *inner, *a, *b, *c, *d;
};

TEST_F(Selection, ObjectsBelowAPolygonObjectAreSelectedAndTakenOutOnTheirOwn)
{
    object_t *below = add_leaf(d, "below");
    object_t *lowest = add_leaf(below, "lowest");
    select_object(d);
    set_new_select_mode(SELECT_OBJECT);
    EXPECT_EQ(selected_names(), (names_t{"d", "below", "lowest"}));
    unselect_object(below);
    EXPECT_EQ(selected_names(), (names_t{"d", "lowest"}));
    select_object(outer);
    unselect_object(outer);
    EXPECT_EQ(selected_names(), (names_t{"d", "lowest"})) << "of a group its members go";
    unselect_object(lowest);
}

TEST_F(Selection, ObjectRuleGivesTopsLeavesOrElementsByMode)
{
    select_object(b);
    EXPECT_EQ(selected_names(), (names_t{"outer"}));
    EXPECT_EQ(get_current_object(), outer);

    clear_selection();
    set_new_select_mode(SELECT_OBJECT);
    select_object(outer);
    EXPECT_EQ(selected_names(), (names_t{"a", "b"}));
    EXPECT_EQ(get_current_object(), nullptr);

    clear_selection();
    set_new_select_mode(SELECT_VERTEX);
    select_object(outer);
    EXPECT_EQ(selection().num_vertices, 16); // not those of the hidden one
    EXPECT_EQ(selection().num_vertices, list_count(selection().vertices));

    clear_selection();
    set_new_select_mode(SELECT_SURFACE);
    select_object(outer);
    select_object(outer);
    EXPECT_EQ(selection().num_surfaces, 12);
}

TEST_F(Selection, HiddenAndLockedObjectsAndTheWorldAreNeverTaken)
{
    set_new_select_mode(SELECT_OBJECT);
    object_set_locked(d, 1);
    object_set_visible(inner, 0);
    object_set_visible(b, 1);
    select_all();
    EXPECT_EQ(selected_names(), (names_t{"a"})); // below a hidden group nothing is visited

    set_new_select_mode(SELECT_VERTEX);
    clear_selection();
    select_object(inner); // but its visible members give their vertices
    EXPECT_EQ(selection().num_vertices, 8);

    set_new_select_mode(SELECT_TREE);
    clear_selection();
    select_object(vesk_get_world());
    EXPECT_TRUE(nothing_is_selected());
}

struct switch_case {
    const char *name;
    int from, to;
    const char *selected; // by name, in the old mode
    names_t objects;
    int surfaces, vertices;
};
// clang-format off
const switch_case switch_cases[] = {
    {"tree_to_object",    SELECT_TREE,    SELECT_OBJECT,  "outer", {"a", "b"}, 0, 0},
    {"tree_to_surface",   SELECT_TREE,    SELECT_SURFACE, "outer", {}, 12, 0},
    {"tree_to_vertex",    SELECT_TREE,    SELECT_VERTEX,  "outer", {}, 0, 16},
    {"object_to_tree",    SELECT_OBJECT,  SELECT_TREE,    "b",     {"outer"}, 0, 0},
    {"object_to_vertex",  SELECT_OBJECT,  SELECT_VERTEX,  "b",     {}, 0, 8},
    {"vertex_to_object",  SELECT_VERTEX,  SELECT_OBJECT,  "b",     {"b"}, 0, 0},
    {"vertex_to_tree",    SELECT_VERTEX,  SELECT_TREE,    "b",     {"outer"}, 0, 0},
    {"vertex_to_surface", SELECT_VERTEX,  SELECT_SURFACE, "b",     {}, 6, 0},
    {"surface_to_vertex", SELECT_SURFACE, SELECT_VERTEX,  "b",     {}, 0, 8},
    {"surface_to_object", SELECT_SURFACE, SELECT_OBJECT,  "b",     {"b"}, 0, 0},
    {"surface_to_tree",   SELECT_SURFACE, SELECT_TREE,    "b",     {"outer"}, 0, 0},
    {"to_light",          SELECT_OBJECT,  SELECT_LIGHT,   "b",     {}, 0, 0},
};
// clang-format on
void PrintTo(const switch_case &c, std::ostream *out) { *out << c.name; }
class SwitchMode : public Selection, public testing::WithParamInterface<switch_case> {};

TEST_P(SwitchMode, CarriesTheSelectionOverAndIsUndone)
{
    const switch_case &row = GetParam();
    set_new_select_mode(row.from);
    select_by_name(row.selected);
    const int vertices = selection().num_vertices;
    const names_t before = selected_names();

    set_new_select_mode(row.to);
    EXPECT_EQ(selected_names(), row.objects);
    EXPECT_EQ(selection().num_surfaces, row.surfaces);
    EXPECT_EQ(selection().num_vertices, row.vertices);
    EXPECT_EQ(last_call("set_select_mode_ui"), select_mode_name(row.to));

    run("undo");
    EXPECT_EQ(select_mode(), row.from);
    EXPECT_EQ(selected_names(), before);
    EXPECT_EQ(selection().num_vertices, vertices);
    EXPECT_EQ(list_count(selection().vertices), vertices);
}
INSTANTIATE_TEST_SUITE_P(Modes, SwitchMode, testing::ValuesIn(switch_cases));

// Whoever goes from a visible member to the tree sees what is selected then; whoever comes from
// vertices had their reasons to hide it.
TEST_F(Selection, TheHiddenTopOfASelectedObjectAppearsButNotThatOfVertices)
{
    for (const int from : {SELECT_OBJECT, SELECT_VERTEX}) {
        set_new_select_mode(from);
        clear_selection();
        object_set_visible(outer, 0);
        object_set_visible(b, 1);
        select_by_name("b");
        set_new_select_mode(SELECT_TREE);
        EXPECT_EQ(selected_names(), (names_t{"outer"}));
        EXPECT_EQ(outer->visible, from == SELECT_OBJECT ? 1 : 0);
    }
}

struct taken_out_case {
    int mode;
    names_t objects; // left when "b" is taken out of everything
    int surfaces, vertices;
};

TEST_F(Selection, ObjectsAreTakenOutAndAddedByNumberAsTheModeHasThem)
{
    const taken_out_case rows[] = {
        {SELECT_TREE, {"d"}, 0, 0},
        {SELECT_OBJECT, {"a", "d"}, 0, 0},
        {SELECT_SURFACE, {}, 12, 0},
        {SELECT_VERTEX, {}, 0, 16},
    };
    const int id = object_identity(b);
    for (const taken_out_case &row : rows) {
        set_new_select_mode(row.mode);
        clear_selection();
        select_all();
        const size_t all = selected_names().size();
        const int surfaces = selection().num_surfaces, vertices = selection().num_vertices;
        run("object_deselect", id);
        names_t left = selected_names();
        std::sort(left.begin(), left.end());
        EXPECT_EQ(left, row.objects) << row.mode;
        EXPECT_EQ(selection().num_surfaces, row.surfaces) << row.mode;
        EXPECT_EQ(selection().num_vertices, row.vertices) << row.mode;
        EXPECT_EQ(list_count(selection().vertices), row.vertices) << row.mode;
        run("object_deselect", 9999);
        EXPECT_EQ(selected_names().size(), row.objects.size());
        run("object_select", id);
        EXPECT_EQ(selected_names().size(), all);
        EXPECT_EQ(selection().num_surfaces, surfaces);
        EXPECT_EQ(selection().num_vertices, vertices);
    }
}

TEST_F(Selection, ASurfaceWithOneUnselectedVertexDropsOut)
{
    set_new_select_mode(SELECT_VERTEX);
    select_object(d);
    owned_list one;
    one.add(object_get_vertex_at(d, 0));
    unselect_vertices(one.get());
    EXPECT_EQ(selection().num_vertices, 7);

    set_new_select_mode(SELECT_SURFACE);
    EXPECT_EQ(selection().num_surfaces, 3); // a corner belongs to three of the six

    const int records = *undo_count_address();
    set_new_select_mode(SELECT_SURFACE);
    EXPECT_EQ(*undo_count_address(), records);
}

TEST_F(Selection, WrongModesAreToldAndChangeNothing)
{
    select_vertices(d->vertices);
    unselect_surface(object_get_surface_at(d, 0));
    EXPECT_EQ(selection_get_selected_vertices(), nullptr);
    select_whole_surfaces();
    EXPECT_EQ(recording().console,
              "select_vertices called when not in VERTEX selectmode\n"
              "unselect_surface called in non surface mode\n"
              "selection_get_selected_vertices works only in vertex and surface mode\n"
              "select:select_whole_surfaces NOT RUNNING!\n");
    EXPECT_TRUE(nothing_is_selected());
}

TEST_F(Selection, BoxIsOfEverythingSelectedAndOnlyThenValid)
{
    EXPECT_EQ(run("get_selection_size"), "0 0 0");
    select_object(d);
    EXPECT_EQ(run("get_selection_size"), "1 1 1");
    EXPECT_EQ(run("get_selection_centre"), "0 0 0");
    clear_selection();
    object_t *light = new_light();
    object_add_child(vesk_get_world(), light);
    vesk_object_set_centre(light, 3, 2, 1);
    select_object(light);
    EXPECT_EQ(run("get_selection_centre"), "3 2 1"); // the place of a light that is alone
    EXPECT_EQ(run("get_selection_size"), "0 0 0");
    select_object(d);
    EXPECT_EQ(run("get_selection_size"), "1 1 1");
}

TEST_F(Selection, DeletedThingsLeaveIt)
{
    set_new_select_mode(SELECT_OBJECT);
    select_all();
    EXPECT_EQ(selected_names(), (names_t{"a", "b", "d"}));
    object_delete(inner);
    EXPECT_EQ(selected_names(), (names_t{"a", "d"}));
    EXPECT_EQ(selection().num_objects, 2);

    set_new_select_mode(SELECT_VERTEX);
    object_delete(a);
    EXPECT_EQ(selection().num_vertices, 8);
    run("undo"); // to the object selection, of which only d lives
    EXPECT_EQ(selected_names(), (names_t{"d"}));
}

std::vector<std::string> told;
void hear(const char *tag, void *) { told.emplace_back(tag); }

TEST_F(Selection, EveryChangeIsAnnounced)
{
    told.clear();
    vesk_add_selection_changed_callback(hear, nullptr);
    select_object(a);
    unselect_object(a);
    clear_selection();
    EXPECT_EQ(told, (names_t{"select_object", "unselect_object", "clear_selection"}));
}

TEST_F(Selection, CommandsHideAndLockAndTellTheTruth)
{
    set_new_select_mode(SELECT_OBJECT);
    select_object(a);
    run("hide_selected");
    EXPECT_TRUE(nothing_is_selected());
    EXPECT_EQ(a->visible, 0);
    run("unhide");
    EXPECT_EQ(a->visible, 1);
    EXPECT_EQ(c->visible, 1);
    select_object(b);
    run("lock_unselected");
    EXPECT_EQ(a->locked, 1);
    EXPECT_EQ(d->locked, 1);
    EXPECT_EQ(b->locked, 0);
    EXPECT_EQ(inner->locked, 0);
    EXPECT_EQ(selected_names(), (names_t{"b"}));
    run("unlock");
    EXPECT_EQ(a->locked, 0);
}

TEST_F(Selection, ModeNamesAreTranslatedAndUnknownOnesTold)
{
    EXPECT_EQ(string_to_mode("submove"), 100);
    EXPECT_STREQ(mode_to_string(100), "subselect");
    EXPECT_EQ(mode_is_selectable(DRAW_EXTRUDE), 1);
    EXPECT_EQ(mode_is_selectable(DRAW_BOX), 0);
    run("set_draw_mode", "sphere");
    EXPECT_EQ(run("get_app_mode"), "tree sphere");
    run("set_draw_mode", "1");
    run("set_select_mode", "3");
    EXPECT_EQ(run("get_app_mode"), "vertex rotate");
    recording().console.clear();
    run("set_draw_mode", "nonsense");
    set_new_draw_mode(55);
    EXPECT_EQ(recording().console, "ERROR!!! set_new_draw_mode nonsense has no equiv number!\n"
                                   "ERROR!!! set_new_draw_mode_string 55 has no equiv string!\n");
    EXPECT_EQ(run("get_app_mode"), "vertex rotate");
}

} // namespace
