// Undo of names, links, flags and the palette, and what leaves no step in the history.

#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "fileio/vesk_writer.h"
#include "model/identity.h"
#include "model/object_internal.h"
#include "model/object_tree.h"
#include "model/palette.h"
#include "model/world.h"
#include "program/command_table.h"
#include "tests/support/scene_test.h"

#include <algorithm>

namespace {

// The saved text of the scene, and the flags and materials that are not in it.
std::string everything()
{
    std::string text = vesk_object_text(vesk_get_world());
    for_each_object(vesk_get_world(), [&](const object_t *object) {
        text += std::to_string(object->visible) + std::to_string(object->locked) + "\n";
    });
    for (int i = 0; i < vesk_get_num_palette(); ++i)
        text += run("get_material", i) + "\n";
    return text;
}

int id_of(const std::string &name)
{
    return object_identity(find_object_where(
        vesk_get_world(), [&](const object_t *object) { return name == object->name; }));
}

struct state_case {
    const char *name;
    std::vector<std::string> words; // "@a" is the identity of object a
    const char *label;
};
// clang-format off
const state_case cases[] = {
    {"name_of_the_current", {"set_current_object_name", "new"}, "set name"},
    {"url_of_the_current",  {"set_current_object_url", "http://x"}, "set url"},
    {"data_of_the_current", {"set_current_object_data", "text"}, "set data"},
    {"name",            {"object_set_name", "@b", "new"}, "set name"},
    {"url",             {"object_set_url", "@b", "x"}, "set url"},
    {"data",            {"object_set_data", "@b", "x"}, "set data"},
    {"to_head",         {"object_move_to_head", "@c"}, "move to head"},
    {"reparent",        {"object_reparent", "@a", "@c"}, "reparent"},
    {"reorder",         {"object_move_before", "@c", "@world", "@a"}, "reparent"},
    {"hide",            {"hide_selected"}, "hide"},
    {"hide_others",     {"hide_unselected"}, "hide"},
    {"unhide",          {"unhide"}, "unhide"},
    {"hide_one",        {"object_hide", "@b"}, "hide"},
    {"lock",            {"lock_selected"}, "lock"},
    {"lock_others",     {"lock_unselected"}, "lock"},
    {"lock_one",        {"object_lock", "@b"}, "lock"},
    {"material",        {"set_palette_entry", "3", "1", "0", "0", "0", "0", "0", "0", "0", "0",
                         "0", "0", "0", "0.5", "0.25"}, "edit material"},
    {"material_name",   {"material_set_name", "3", "brass"}, "name material"},
};
// clang-format on
void PrintTo(const state_case &c, std::ostream *out) { *out << c.name; }

class StateUndo : public SceneTest, public testing::WithParamInterface<state_case> {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        for (const char *name : {"a", "b", "c", "hidden"})
            add_cube(name);
        object_set_visible(object_by_identity(id_of("hidden")), 0);
        run("move", 0, 0, 0);
        select_object(object_by_identity(id_of("a")));
        run("move_to", 1, 2, 3); // an older record
    }
    static std::string run_case()
    {
        std::vector<std::string> words = GetParam().words;
        for (std::string &word : words) {
            if (word == "@world")
                word = run("get_world");
            else if (word[0] == '@')
                word = std::to_string(id_of(word.substr(1)));
        }
        return run_words(words);
    }
};

TEST_P(StateUndo, ComesBackAndLeavesOlderRecords)
{
    const std::string start = everything();
    run_case();
    const std::string after = everything();
    EXPECT_NE(after, start);
    EXPECT_EQ(last_undo(), GetParam().label);

    run("undo");
    EXPECT_EQ(everything(), start);
    EXPECT_EQ(last_undo(), "move to") << "still there";
    run("redo");
    EXPECT_EQ(everything(), after);
    run("undo");
    EXPECT_EQ(everything(), start);
    EXPECT_EQ(objects_marks().hidden, 1) << "as many as are hidden";

    run("undo");
    EXPECT_EQ(object_by_identity(id_of("a"))->centre.x, 0);
}
INSTANTIATE_TEST_SUITE_P(Commands, StateUndo, testing::ValuesIn(cases));

class NoSteps : public SceneTest {};

TEST_F(NoSteps, TheSameTextAgainIsNoChange)
{
    select_object(add_cube("a"));
    const std::string history = run("history_list");
    run("set_current_object_name", "a");
    run("set_current_object_url", "");
    EXPECT_EQ(last_undo(), "");
    EXPECT_EQ(run("history_list"), history);
}

TEST_F(NoSteps, DraggingASliderIsOneRecord)
{
    const auto set = [](const char *red) {
        run("set_palette_entry", 3, red, "0", "0", "0", "0", "0", "0", "0", "0", "0", "0", "0", "0",
            "0");
    };
    const std::string before = run("get_material", 3);
    for (const char *red : {"0.1", "0.2", "0.3"})
        set(red);
    recording().clock += 10;
    set("0.9");
    run("undo");
    EXPECT_EQ(run("get_material", 3).substr(0, 12), "veskmat3 0.3");
    run("undo");
    EXPECT_EQ(run("get_material", 3), before);
}

// Keys that move nothing leave no step.
TEST_F(NoSteps, OfKeysThatChangeNothing)
{
    select_object(add_cube("a"));
    run("move_to", 1, 2, 3);
    const std::string history = run("history_list");
    for (const char *key : {"x", "Escape", "Return", "BackSpace", "KP_Enter"}) {
        run("tool_key", key);
        ASSERT_EQ(run("history_list"), history) << key;
    }
    for (const char *key : {"Up", "Down", "plus", "minus", "f", "x"}) {
        for (int view = 0; view < 4; ++view)
            run("keypress", view, key, 0);
        ASSERT_EQ(run("history_list"), history) << key;
    }
}

TEST_F(NoSteps, OfRefusedEdits)
{
    run("set_select_mode", "object");
    add_cube("a");
    const std::string history = run("history_list");
    for (const char *name :
         {"delete", "hide_selected", "lock_selected", "unhide", "unlock", "group", "ungroup",
          "duplicate", "clipboard_paste", "object_merge", "object_fragment", "surface_doosabin",
          "surface_flip_normals", "object_recentre", "removesurface"}) {
        run(name);
        EXPECT_EQ(run("history_list"), history) << name;
    }
}

// ---- names, and whose step it is ----

class MadeObjects : public SceneTest, public testing::WithParamInterface<const char *> {};

TEST_P(MadeObjects, HaveANameHoweverTheyAreMade)
{
    for (const char *corner : {"0", "1"}) { // a click, and a drag
        const std::string id =
            run("create", GetParam(), "0", "0", "0", "0", corner, corner, corner);
        EXPECT_NE(run("object_get_name", id), "") << corner;
    }
    // Place, label, present, plug-in's: none is a plug-in's.
    const std::string history = run("history_list");
    EXPECT_EQ(history.find(" 1 1}"), std::string::npos) << history;
    EXPECT_EQ(history.find(" 0 1}"), std::string::npos) << history;
    run("undo");
    run("undo");
    EXPECT_EQ(vesk_get_world()->num_children, 0);
}
INSTANTIATE_TEST_SUITE_P(Kinds, MadeObjects,
                         testing::Values("circle", "disk", "rect", "grid", "mesh", "box",
                                         "cylinder", "sphere", "cone", "ico"));

} // namespace
