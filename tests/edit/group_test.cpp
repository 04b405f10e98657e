#include "edit/group.h"

#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "fileio/vesk_writer.h"
#include "model/identity.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "model/world_check.h"
#include "tests/support/mesh_test.h"

#include <random>

namespace {

// "a(b,c) d": the tree below the world.
std::string tree_text(const object_t *top)
{
    std::string text;
    for (const object_t *child : each<object_t>(top->children)) {
        text += (text.empty() ? "" : " ") + std::string(child->name);
        if (child->children != nullptr)
            text += "(" + tree_text(child) + ")";
    }
    return text;
}
std::string tree_text() { return tree_text(vesk_get_world()); }

object_t *named(const std::string &name)
{
    return find_object_where(vesk_get_world(),
                             [&](const object_t *object) { return name == object->name; });
}

void select_names(const std::string &names)
{
    clear_selection();
    std::vector<object_t *> objects;
    for (const char name : names)
        objects.push_back(named(std::string(1, name)));
    selection_add_objects(objects);
}

std::string selected_names()
{
    std::string names;
    for (const object_t *object : elements_of<object_t>(selection().objects))
        names += (names.empty() ? "" : " ") + std::string(object->name);
    return names;
}

struct group_case {
    const char *name, *command, *selected, *tree, *after;
};
// clang-format off
const group_case cases[] = { // of the tree  a b(c,d(e)) f
    {"neighbours",          "group",   "ab", "group(a b(c d(e))) f", "group"},
    {"takes_first_place",   "group",   "fa", "b(c d(e)) group(f a)", "group"},
    {"across_parents",      "group",   "cf", "a b(group(c f) d(e))", "group"},
    {"one_below_another",   "group",   "be", "a group(b(c d(e))) f", "group"},
    {"one_group",           "ungroup", "b",  "a c d(e) f",           "c d"},
    {"inner_group",         "ungroup", "d",  "a b(c e) f",           "e"},
    {"a_group_and_its_own", "ungroup", "db", "a c e f",              "c e"},
    {"groups_among_others", "ungroup", "fb", "a c d(e) f",           "c d"},
};
// clang-format on
void PrintTo(const group_case &c, std::ostream *out) { *out << c.name; }

class Groups : public SceneTest, public testing::WithParamInterface<group_case> {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        for (const char *name : {"a", "c", "e", "f"})
            add_cube(name);
        for (const char *name : {"b", "d"}) {
            object_t *group = new_group();
            object_set_name(group, name);
            object_reparent_before(group, vesk_get_world(), named("f"));
        }
        object_reparent(named("c"), named("b"));
        object_reparent(named("d"), named("b"));
        object_reparent(named("e"), named("d"));
    }
};

TEST_P(Groups, AreMadeAndDissolvedWithUndoAndRedo)
{
    ASSERT_EQ(tree_text(), "a b(c d(e)) f");
    select_names(GetParam().selected);
    const std::string before = scene_text();

    run(GetParam().command);

    EXPECT_EQ(tree_text(), GetParam().tree);
    EXPECT_EQ(selected_names(), GetParam().after);
    EXPECT_EQ(last_undo(), GetParam().command);
    EXPECT_TRUE(world_check(vesk_get_world()).empty());
    const std::string after = scene_text();
    run("undo");
    EXPECT_EQ(scene_text(), before);
    run("redo");
    EXPECT_EQ(scene_text(), after);
}
INSTANTIATE_TEST_SUITE_P(Tree, Groups, testing::ValuesIn(cases));

struct refusal {
    const char *name, *mode, *command, *message;
};
const refusal refusals[] = {
    {"surfaces_have_no_group", "surface", "group", "group - select objects first"},
    {"vertices_have_no_group", "vertex", "group", "group - select objects first"},
    {"nothing_to_group", "object", "group", "group - nothing selected"},
    {"nothing_to_ungroup", "tree", "ungroup", "ungroup - nothing selected"},
    {"nothing_to_recentre", "object", "object_recentre", "recentre - nothing selected"},
    {"nothing_to_duplicate", "object", "duplicate", "duplicate - nothing selected"},
    {"no_surface_to_clone", "surface", "clone_selection", "clone - nothing selected"},
    {"nothing_to_copy", "tree", "clipboard_copy", "copy - nothing selected"},
    {"nothing_to_cut", "vertex", "clipboard_cut", "cut - nothing selected"},
    {"empty_clipboard", "tree", "clipboard_paste", "clipboard is empty"},
};
void PrintTo(const refusal &c, std::ostream *out) { *out << c.name; }
class TreeRefusals : public SceneTest, public testing::WithParamInterface<refusal> {};

TEST_P(TreeRefusals, SayWhyAndLeaveNoUndo)
{
    add_cube("cube");
    run("set_select_mode", GetParam().mode);
    const std::string undo = last_undo();
    const std::string before = scene_text();
    const std::string history = run("history_list");
    run(GetParam().command);
    EXPECT_EQ(last_message(), GetParam().message);
    EXPECT_EQ(last_undo(), undo);
    EXPECT_EQ(scene_text(), before);
    EXPECT_EQ(run("history_list"), history);
}
INSTANTIATE_TEST_SUITE_P(Commands, TreeRefusals, testing::ValuesIn(refusals));

class Centres : public SceneTest {};

TEST_F(Centres, AreTheMiddleOrTheLowestCornerOfTheBox)
{
    object_t *group = new_group();
    object_set_name(group, "group");
    object_add_child(vesk_get_world(), group);
    object_t *square = add_square(2);
    object_reparent(square, group);
    selection_add_objects({group});
    run("move", 1, 2, 3);

    run("object_recentre");
    EXPECT_EQ(run("object_get_centre", object_identity(group)), "1 2 3");
    EXPECT_EQ(last_undo(), "recentre");
    run("object_mincentre");
    EXPECT_EQ(run("object_get_centre", object_identity(group)), "-1 0 3");
    run("undo");
    EXPECT_EQ(run("object_get_centre", object_identity(named("group"))), "1 2 3");
}

// ---- random trees ----

class RandomTrees : public SceneTest, public testing::WithParamInterface<unsigned> {};

TEST_P(RandomTrees, KeepEveryObjectThroughAnySequence)
{
    std::mt19937 random(GetParam());
    const auto below = [&](std::size_t n) {
        return static_cast<std::size_t>(random() % static_cast<unsigned>(n));
    };
    for (int i = 0; i < 6; ++i)
        add_cube(("cube " + std::to_string(i)).c_str());
    const char *const commands[] = {"group",        "ungroup", "group",          "duplicate",
                                    "undo",         "redo",    "clipboard_copy", "clipboard_paste",
                                    "clipboard_cut"};
    for (int step = 0; step < 60; ++step) {
        std::vector<object_t *> all;
        for_each_object(vesk_get_world(), [&](object_t *object) { all.push_back(object); });
        clear_selection();
        for (int picks = 0; picks < 3 && all.size() > 1; ++picks)
            selection_add_objects({all[1 + below(all.size() - 1)]});
        if (all.size() > 60)
            run("delete");
        const std::string command = commands[below(std::size(commands))];
        const std::string before = scene_text();
        const std::string history = run("history_list");
        run(command.c_str());
        ASSERT_TRUE(world_check(vesk_get_world()).empty()) << command;
        for (const object_t *object : elements_of<object_t>(selection().objects))
            ASSERT_EQ(object_exists(object), 1) << command;
        if (command == "undo" || command == "redo" || run("history_list") == history)
            continue;
        run("undo");
        ASSERT_EQ(scene_text(), before) << command;
        run("redo");
    }
}
INSTANTIATE_TEST_SUITE_P(Seeds, RandomTrees, testing::Range(1u, 9u));

} // namespace
