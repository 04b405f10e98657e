// Plug-ins that write into the records and go on within the same command: the program never works
// with what it knew before. And what else they may do that needs a guard.

#include "edit/document/selection.h"
#include "model/each.h"
#include "model/object_tree.h"
#include "model/palette.h"
#include "model/world.h"
#include "plugin/filters.h"
#include "plugin/importers.h"
#include "tests/plugin/plugin_test.h"

#include <algorithm>
#include <filesystem>
#include <sstream>

namespace {

class DirectPlugin : public Plugins {
protected:
    void SetUp() override
    {
        Plugins::SetUp();
        ASSERT_EQ(plugin_load(plugin_file("plugin_direct").c_str()), 1);
        square_ = add_square(1);
        select_object(square_);
    }
    object_t *square_ = nullptr;
};

// The lines of a file that another has not.
std::string new_lines(const std::string &before, const std::string &after)
{
    std::string fresh;
    std::istringstream lines(after);
    for (std::string line; std::getline(lines, line);)
        if (("\n" + before).find("\n" + line + "\n") == std::string::npos)
            fresh += line + "|";
    return fresh;
}

TEST_F(DirectPlugin, WhatItWritesIsTheModelAsItIs)
{
    const std::string folder = temporary_file("direct");
    std::filesystem::create_directories(folder);
    run("direct_writes", folder);

    std::string texts[5];
    for (int i = 0; i < 5; ++i)
        texts[i] = read_text(folder + "/" + std::to_string(i) + ".vesk");
    EXPECT_EQ(new_lines(texts[0], texts[1]), "7 8 9|");
    const std::string changed = new_lines(texts[1], texts[2]);
    EXPECT_NE(changed.find("veskmat3"), std::string::npos);
    EXPECT_NE(changed.find("SURF 0x11|"), std::string::npos);
    EXPECT_EQ(new_lines(texts[2], texts[3]), "refs 5|0 0.5 0.5|");
    EXPECT_NE(new_lines(texts[3], texts[4]), "");
}

TEST_F(DirectPlugin, ArraysAndUndoRecordsAreOfTheMoment)
{
    EXPECT_EQ(run("direct_arrays").substr(2), " 21") << run("direct_arrays");
    run("direct_undos");
    run("undo");
    const object_t *restored = item_of<object_t>(vesk_get_world()->children);
    EXPECT_EQ(item_of<vertex>(restored->vertices)->position.x, 10);
}

TEST_F(DirectPlugin, OurCommandsWithinItsOwnSeeItsChangesAndItSeesTheirs)
{
    run("direct_loop");
    const object_t *part = item_of<object_t>(vesk_get_world()->children);
    EXPECT_GT(part->num_surfaces, 4);
    float farthest = 0;
    for (const vertex *point : each<vertex>(part->vertices))
        farthest = std::max(farthest, point->position.x);
    EXPECT_EQ(farthest, 200);
    EXPECT_GT(std::count_if(each<vertex>(part->vertices).begin(),
                            each<vertex>(part->vertices).end(),
                            [](const vertex *v) { return v->position.x > 20; }),
              1); // the subdivision spread what was moved before it
}

TEST_F(DirectPlugin, ASelectionCallbackMayChangeTheModel)
{
    run("direct_listen");
    const std::string before = run("model_state");
    run("clear_selection");
    run("set_select_mode", "object");
    run("select_all");
    EXPECT_NE(run("model_state"), before);
    run("direct_arrays");
    EXPECT_GT(item_of<vertex>(square_->vertices)->position.z, 0);
}

TEST_F(DirectPlugin, AnImportThatIsLinkedAlreadyStaysOnce)
{
    const auto children = [] {
        std::vector<object_t *> all;
        for (object_t *child : each<object_t>(vesk_get_world()->children))
            all.push_back(child);
        return all;
    };
    EXPECT_EQ(run("load_file", "a.world"), "");
    EXPECT_EQ(children().size(), 2U);
    EXPECT_EQ(children()[0], square_);
    EXPECT_EQ(run("file_load", "a.linked"), "1");
    EXPECT_EQ(children().size(), 3U);
    EXPECT_EQ(get_current_object(), children()[2]);
    EXPECT_EQ(run("file_load", "a.child"), "1");
    EXPECT_EQ(children().size(), 4U);
    EXPECT_EQ(children()[3]->parent, vesk_get_world());
    EXPECT_EQ(run("file_load", "a.freed"), "0");
    EXPECT_EQ(children().size(), 4U);
    EXPECT_EQ(vesk_get_world()->num_children, 4);
    run("history_goto", 0);
    EXPECT_EQ(children().size(), 1U);
}

TEST_F(DirectPlugin, ItsCommandsComeBeforeTheProgramsAdditions)
{
    EXPECT_EQ(run("measure"), "mine");
}

TEST_F(DirectPlugin, CommandsOfWordsCanBeReplacedAndGivenBack)
{
    EXPECT_EQ(run("direct_replace"), "1");
    EXPECT_EQ(run("create", "box", 0, 0, 0, 0, 1, 1, 1), "8 words, box");
    run("direct_restore");
    EXPECT_NE(run("create", "box", 0, 0, 0, 0, 1, 1, 1), "8 words, box");
    EXPECT_EQ(vesk_get_world()->num_children, 2);
}

TEST_F(DirectPlugin, FaultsOfPlugInsDoNotEndTheProgram)
{
    ASSERT_EQ(plugin_load(plugin_file("sample_plugin").c_str()), 1);
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(plugin_load(plugin_file("plugin_faulting").c_str()), 0);
        EXPECT_EQ(run("sample_fault"), "");
    }
    EXPECT_EQ(last_call("plugin_faulted"), "sample_plugin.p");
}

TEST_F(DirectPlugin, FiltersWorkBelowSelectedGroups)
{
    filters_reset_for_test();
    ASSERT_EQ(plugin_load(plugin_file("plugin_busy").c_str()), 1);
    add_cube("cube");
    run("set_select_mode", "object");
    run("select_all");
    run("group");
    object_t *group = item_of<object_t>(vesk_get_world()->children);
    ASSERT_EQ(group->type, OBJECT_GROUP);
    clear_selection();
    select_object(group);
    const int calls = std::stoi(run("filter_calls"));
    run("execute_surface_filter", "surface_filter_2");
    EXPECT_EQ(std::stoi(run("filter_calls")) - calls, 7);

    object_t *light = new_object(OBJECT_LIGHT);
    object_add_child(vesk_get_world(), light);
    clear_selection();
    select_object(light);
    const std::string undo = last_undo();
    run("execute_surface_filter", "surface_filter_1");
    EXPECT_EQ(last_message(), "no surfaces selected");
    EXPECT_EQ(last_undo(), undo);
    filters_reset_for_test();
}

} // namespace
