// Properties of several objects at once, and their places in the tree.

#include "edit/document/selection.h"
#include "edit/document/undo.h"
#include "model/each.h"
#include "model/identity.h"
#include "model/object_internal.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "tests/support/scene_test.h"

namespace {

class ObjectProperties : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        for (const char *name : {"a", "b", "c"}) {
            ids.push_back(std::to_string(object_identity(add_cube(name))));
        }
    }
    static object_t *object(const std::string &id) { return object_by_identity(std::stoi(id)); }
    // Names below the world, depth first, a group's children in brackets.
    static std::string tree(const object_t *top = vesk_get_world())
    {
        std::string text;
        for (const object_t *child : each<object_t>(top->children)) {
            text += child->name;
            if (child->children != nullptr) {
                text += "(" + tree(child) + ")";
            }
        }
        return text;
    }
    std::vector<std::string> ids;
};

struct property_case {
    const char *key, *value, *label;
};
// clang-format off
const property_case property_cases[] = {
    {"name",    "x \"y\" [z]", "rename"},
    {"url",     "http://example.net/", "set url"},
    {"data",    "some data",   "set data"},
    {"visible", "0",           "hide or show"},
    {"locked",  "1",           "lock or unlock"},
};
// clang-format on
void PrintTo(const property_case &c, std::ostream *out) { *out << c.key; }
class ObjectProperty : public ObjectProperties, public testing::WithParamInterface<property_case> {
protected:
    std::string now(const std::string &id) const
    {
        const std::string info = run("object_info", id);
        const std::string key = std::string(GetParam().key) + " ";
        return info.substr(info.find(key));
    }
};

TEST_P(ObjectProperty, IsSetForAllWithOneRecordAndUndone)
{
    const property_case &c = GetParam();
    const std::string before[] = {now(ids[0]), now(ids[1]), now(ids[2])};
    run("objects_set", ids[0] + " " + ids[2] + " 99999", c.key, c.value);
    EXPECT_NE(now(ids[0]), before[0]);
    EXPECT_EQ(now(ids[1]), before[1]);
    EXPECT_NE(now(ids[2]), before[2]);
    EXPECT_EQ(*undo_count_address(), 1);
    EXPECT_EQ(last_undo(), c.label);
    run("objects_set", ids[0], c.key, c.value); // has it already
    EXPECT_EQ(*undo_count_address(), 1);
    run("undo");
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(now(ids[i]), before[i]);
    }
    run("redo");
    EXPECT_NE(now(ids[2]), before[2]);
}
INSTANTIATE_TEST_SUITE_P(Keys, ObjectProperty, testing::ValuesIn(property_cases));

TEST_F(ObjectProperties, AnUnknownKeyIsTold)
{
    run("objects_set", ids[0], "colour", "1");
    EXPECT_EQ(last_message(), "objects_set - no property named 'colour'");
    EXPECT_EQ(*undo_count_address(), 0);
}

TEST_F(ObjectProperties, HidingReachesWhatIsBelowAndLeavesTheSelection)
{
    object_reparent(object(ids[1]), object(ids[0]));
    select_object(object(ids[0]));
    run("objects_set", ids[0], "visible", "0");
    EXPECT_EQ(object(ids[1])->visible, 0);
    EXPECT_TRUE(nothing_is_selected());
    run("undo");
    EXPECT_NE(object(ids[1])->visible, 0);
}

TEST_F(ObjectProperties, ObjectsMoveInTheTreeInTheOrderTheyAreNamed)
{
    const std::string world = run("get_world");
    EXPECT_EQ(run("objects_place", ids[2] + " " + ids[0], world, ids[1]), "2");
    EXPECT_EQ(tree(), "cab");
    EXPECT_EQ(last_undo(), "move in the tree");
    EXPECT_EQ(*undo_count_address(), 1);
    run("undo");
    EXPECT_EQ(tree(), "abc");
    EXPECT_EQ(run("objects_place", ids[0], world, "0"), "1"); // to the end
    EXPECT_EQ(tree(), "bca");
    EXPECT_EQ(run("objects_place", ids[1] + " " + ids[2], ids[0], "0"), "2");
    EXPECT_EQ(tree(), "a(bc)");
    EXPECT_EQ(run("objects_place", ids[0], ids[1], "0"), "0");    // not below itself
    EXPECT_EQ(run("objects_place", ids[1], ids[0], ids[1]), "1"); // before itself: the next
    EXPECT_EQ(tree(), "a(bc)");
    EXPECT_EQ(run("get_selection_size"), "0 0 0");
}

TEST_F(ObjectProperties, AfterClearAllNothingIsHiddenOrLocked)
{
    run("select_all");
    run("lock_selected");
    run("unlock");
    run("select_all");
    run("hide_selected");
    EXPECT_EQ(objects_marks().hidden, 1);
    run("clear_all");
    EXPECT_EQ(objects_marks().hidden, 0);
    EXPECT_EQ(objects_marks().locked, 0);
}

} // namespace
