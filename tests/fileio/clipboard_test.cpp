#include "fileio/clipboard.h"

#include "base/prefs.h"
#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "fileio/vesk_writer.h"
#include "model/bounds.h"
#include "model/identity.h"
#include "model/object_tree.h"
#include "model/owners.h"
#include "model/world.h"
#include "model/world_check.h"
#include "tests/support/mesh_test.h"

namespace {

object_t *only_selected()
{
    return selection().num_objects == 1 ? item_of<object_t>(selection().objects) : nullptr;
}

// One face of a cube's, the first.
void select_first_surface(object_t *object)
{
    run("set_select_mode", "surface");
    clear_selection();
    select_surface(object_get_surface_at(object, 0));
}

class Clipboard : public SceneTest {};

TEST_F(Clipboard, KeepsWhatWasCopiedAndPastesItAgainAndAgain)
{
    object_t *cube = add_cube("cube");
    select_object(cube);
    run("clipboard_copy");
    EXPECT_EQ(last_message(), "copy - 1 objects");
    run("move", 5, 0, 0);
    run("delete");

    for (int times = 1; times <= 2; ++times) {
        run("clipboard_paste");
        EXPECT_EQ(vesk_get_world()->num_children, times);
        ASSERT_NE(only_selected(), nullptr);
        EXPECT_STREQ(only_selected()->name, "cube");
        EXPECT_EQ(find_object_min(only_selected()).x, -0.5f) << "as it was when it was copied";
    }
    EXPECT_EQ(last_undo(), "paste");
    run("undo");
    EXPECT_EQ(vesk_get_world()->num_children, 1);
}

TEST_F(Clipboard, TakesWholeSurfacesWithTheirVertices)
{
    object_t *cube = add_cube("cube");
    select_first_surface(cube);
    run("clipboard_copy");
    run("set_select_mode", "object");
    run("clipboard_paste");
    const object_t *pasted = only_selected();
    ASSERT_NE(pasted, nullptr);
    EXPECT_STREQ(pasted->name, "cube");
    EXPECT_EQ(pasted->num_surfaces, 1);
    EXPECT_EQ(pasted->num_vertices, 4);
}

TEST_F(Clipboard, CutIsCopyAndDelete)
{
    select_object(add_cube("cube"));
    const std::string before = scene_text();
    run("clipboard_cut");
    EXPECT_EQ(last_undo(), "cut");
    EXPECT_EQ(vesk_get_world()->children, nullptr);
    run("undo");
    EXPECT_EQ(scene_text(), before);
    run("clipboard_paste");
    EXPECT_EQ(vesk_get_world()->num_children, 2);
}

TEST_F(Clipboard, CutOfVerticesThatMakeNoSurfaceDeletesNothing)
{
    object_t *cube = add_cube("cube");
    run("set_select_mode", "vertex");
    owned_list one;
    one.add(object_get_vertex_at(cube, 0));
    select_vertices(one.get());
    run("clipboard_cut");
    EXPECT_EQ(last_message(), "cut - nothing selected");
    EXPECT_EQ(cube->num_vertices, 8);
}

TEST_F(Clipboard, SurvivesEveryEndOfWhatItCameFrom)
{
    select_object(add_cube("cube"));
    run("clipboard_copy");
    run("clear_all");
    run("clipboard_paste");
    EXPECT_EQ(vesk_get_world()->num_children, 1);
}

TEST_F(Clipboard, GoesToAnotherInstanceAsAModelFile)
{
    object_t *cube = add_cube("a \"quoted\" [exit] name");
    object_set_userdata(cube, "$data");
    select_object(cube);
    run("clipboard_copy");
    ASSERT_NE(recording().offered, nullptr);
    const std::string text(recording().offered());
    EXPECT_EQ(text, std::string(recording().offered())) << "asked twice";
    EXPECT_TRUE(text.starts_with("VESKb"));

    clipboard_reset_for_test(); // the other instance: its own clipboard is empty
    run("clear_all");
    recording().others_clipboard = text.c_str();
    const std::size_t scripts = recording().scripts.size();
    run("clipboard_paste");

    ASSERT_EQ(vesk_get_world()->num_children, 1);
    const object_t *pasted = object_get_kid_at(vesk_get_world(), 0);
    EXPECT_STREQ(pasted->name, "a \"quoted\" [exit] name");
    EXPECT_STREQ(pasted->data, "$data");
    EXPECT_EQ(pasted->num_surfaces, 6);
    for (std::size_t i = scripts; i < recording().scripts.size(); ++i)
        EXPECT_EQ(recording().scripts[i].find("exit"), std::string::npos);
}

struct foreign_text {
    const char *name, *text;
    int objects; // that the paste makes
};
const foreign_text foreign_texts[] = {
    {"no_model", "exit", 1},
    {"other_revision", "VESKa\nOBJECT poly\nkids 0\n", 1},
    {"newer", "VESKff\nOBJECT poly\nkids 0\n", 1},
    {"only_a_header", "VESKb\n", 1},
    {"cut_short", "VESKb\nOBJECT world\nkids 2\nOBJECT poly\nname \"x\"\nkids 0\nOBJECT poly\n", 2},
    {"no_world", "VESKb\nOBJECT poly\nname \"x\"\nkids 0\n", 1},
};
void PrintTo(const foreign_text &c, std::ostream *out) { *out << c.name; }
class ForeignTexts : public Clipboard, public testing::WithParamInterface<foreign_text> {};

TEST_P(ForeignTexts, AreReadAsModelsOrLeftForTheOwnCopy)
{
    select_object(add_cube("own"));
    run("clipboard_copy");
    run("clear_all");
    recording().others_clipboard = GetParam().text;
    run("clipboard_paste");
    EXPECT_EQ(vesk_get_world()->num_children, GetParam().objects);
    EXPECT_TRUE(world_check(vesk_get_world()).empty());
    EXPECT_TRUE(recording().boxes.empty());
}
INSTANTIATE_TEST_SUITE_P(Texts, ForeignTexts, testing::ValuesIn(foreign_texts));

// ---- duplicates ----

struct shift_case {
    const char *name;
    int shift_duplicated;
    double grid;
    int gridsnap;
    float min_x;
};
// clang-format off
const shift_case shifts[] = {
    {"in_place",    0, 0.25, 0, -0.5f},
    {"by_the_grid", 1, 0.25, 0, -0.25f},
    {"snapped",     1, 0.25, 1, -0.25f},
};
// clang-format on
void PrintTo(const shift_case &c, std::ostream *out) { *out << c.name; }
class Duplicates : public SceneTest, public testing::WithParamInterface<shift_case> {};

TEST_P(Duplicates, StandBesideTheirOriginals)
{
    object_t *first = add_cube("first");
    add_cube("last");
    prefs.shift_duplicated = GetParam().shift_duplicated;
    prefs.grid = GetParam().grid;
    prefs.gridsnap = GetParam().gridsnap;
    select_object(first);
    const std::string before = scene_text();

    run("duplicate");

    ASSERT_EQ(vesk_get_world()->num_children, 3);
    object_t *copy = object_get_kid_at(vesk_get_world(), 1);
    EXPECT_EQ(only_selected(), copy);
    EXPECT_EQ(find_object_min(copy).x, GetParam().min_x);
    EXPECT_EQ(find_object_min(first).x, -0.5f);
    EXPECT_EQ(copy->centre.z, first->centre.z + GetParam().min_x + 0.5f);
    EXPECT_EQ(last_undo(), "duplicate");
    run("undo");
    EXPECT_EQ(scene_text(), before);
    EXPECT_EQ(only_selected(), first);
}

TEST_P(Duplicates, OfSurfacesHaveVerticesOfTheirOwn)
{
    object_t *cube = add_cube("cube");
    prefs.shift_duplicated = GetParam().shift_duplicated;
    prefs.grid = GetParam().grid;
    prefs.gridsnap = GetParam().gridsnap;
    select_first_surface(cube);
    const std::string before = scene_text();

    run("duplicate");

    EXPECT_EQ(cube->num_surfaces, 7);
    EXPECT_EQ(cube->num_vertices, 12);
    EXPECT_EQ(selection().num_surfaces, 1);
    EXPECT_EQ(item_of<surface_t>(selection().surfaces), object_get_surface_at(cube, 6));
    EXPECT_EQ(last_undo(), "duplicate");
    run("undo");
    EXPECT_EQ(scene_text(), before) << "the copies' vertices go too";
}
INSTANTIATE_TEST_SUITE_P(Shifts, Duplicates, testing::ValuesIn(shifts));

class Clones : public SceneTest {};

TEST_F(Clones, AreToldByTheirIdentities)
{
    for (const char *name : {"a", "b"})
        add_cube(name);
    run("select_all");
    const std::string ids = run("clone_selection");
    ASSERT_EQ(vesk_get_world()->num_children, 4);
    EXPECT_EQ(run("get_selected_objects"), ids);
    EXPECT_EQ(find_object_min(object_get_kid_at(vesk_get_world(), 1)).x, -0.5f);
}

TEST_F(Clones, OfSurfacesAreToldByTheirPlaces)
{
    add_cube("a");
    add_cube("b");
    run("set_select_mode", "surface");
    run("select_all");
    const std::string before = scene_text();
    EXPECT_EQ(run("clone_selection"), "6 7 8 9 10 11 6 7 8 9 10 11");
    EXPECT_EQ(run("get_counts"), "0 2 12 24 0 32");
    run("undo");
    EXPECT_EQ(scene_text(), before);
}

TEST_F(Clones, CarryHiddenAndLockedMembersAlong)
{
    object_t *group = new_group();
    object_add_child(vesk_get_world(), group);
    object_t *hidden = add_cube("hidden");
    object_reparent(hidden, group);
    object_set_visible(hidden, 0);
    select_object(group);
    run("clone_selection");
    const object_t *copy = object_get_kid_at(vesk_get_world(), 1);
    ASSERT_EQ(copy->num_children, 1);
    EXPECT_EQ(object_get_kid_at(copy, 0)->visible, 0);
}

} // namespace
