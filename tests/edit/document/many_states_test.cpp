// The history of many objects takes and writes what the marks name: a state must hold every change, whichever
// objects it touched, and going to it must bring the whole model of that time.

#include "edit/document/journal.h"
#include "edit/document/selection_scan.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/identity.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "tests/support/mesh_test.h"

#include <random>

namespace {

constexpr int num_objects = 300; // some blocks of a state, the last one not full

class ManyStates : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        for (int i = 0; i < num_objects; ++i)
            object_set_name(add_square(1), ("square " + std::to_string(i)).c_str());
        run("set_select_mode", "object");
        run("redraw_all");
    }

    int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
    std::string any_object()
    {
        std::vector<int> all;
        for_each_object(vesk_get_world(), [&](const object_t *object) {
            if (object->parent != nullptr)
                all.push_back(object_identity(object));
        });
        return std::to_string(all[static_cast<std::size_t>(below(static_cast<int>(all.size())))]);
    }
    void select_some()
    {
        std::string ids;
        for (int n = 1 + below(4); n > 0; --n)
            ids += any_object() + " ";
        run("objects_select", ids);
    }

    // Something that changes the model; what it is named.
    std::string change_something()
    {
        const std::vector<std::vector<std::string>> of_selected = {
            {"move", "0.25", "0", "1"},
            {"rotate", "0", "0", "90"},
            {"duplicate"},
            {"delete"},
            {"group"},
            {"hide_selected"},
            {"lock_selected"},
            {"surface_triangulate"},
            {"surface_loop_subdivision", "1"},
            {"rotate_with_undo", "0", "0", "30"},
            {"set_col", "2"},
        };
        const std::vector<std::vector<std::string>> others = {
            {"objects_set", any_object(), "name", "called " + std::to_string(below(1000))},
            {"unhide"},
            {"unlock"},
            {"objects_place", any_object(), std::to_string(object_identity(vesk_get_world())), "0"},
            {"new_cube"},
        };
        const auto n = static_cast<int>(of_selected.size() + others.size());
        const auto which = static_cast<std::size_t>(below(n));
        if (which >= of_selected.size()) {
            const auto &words = others[which - of_selected.size()];
            run_words(words);
            return words.front();
        }
        if (below(5) == 0)
            run("select_all");
        else
            select_some();
        if (of_selected[which].front() == "delete" && below(3) != 0)
            select_some(); // few of the deletions are of everything
        run_words(of_selected[which]);
        return of_selected[which].front();
    }

    static int present()
    {
        const std::vector<journal_item> items = journal_items();
        int i = 0;
        while (!items[static_cast<std::size_t>(i)].current)
            ++i;
        return i;
    }

    std::mt19937 random_{20};
};

} // namespace

TEST_F(ManyStates, EveryStateBringsTheWholeModelBack)
{
    std::vector<std::string> texts = {scene_text()}; // of each place in the history
    run("new_cube");
    ASSERT_EQ(present(), 1);
    texts.push_back(scene_text());
    for (int step = 0; step < 300; ++step) {
        const int before = present();
        std::string what;
        switch (below(8)) {
        case 0:
            what = "step_back";
            run("step_back");
            break;
        case 1:
            what = "redo";
            run("redo");
            break;
        case 2:
            what = "history_goto";
            run("history_goto", below(static_cast<int>(texts.size())));
            break;
        default:
            what = change_something();
            const std::string now = scene_text();
            if (present() == before) { // nothing was there to be changed
                EXPECT_EQ(now, texts[static_cast<std::size_t>(before)]) << what;
                continue;
            }
            texts.resize(static_cast<std::size_t>(present()));
            texts.push_back(now);
            if (below(3) == 0) {
                run("undo");
                what += ", undo";
                // Of what no state was like, it stands before the state that was undone.
                if (journal_items().size() > texts.size())
                    texts.insert(texts.begin() + present(), scene_text());
            }
        }
        ASSERT_EQ(journal_items().size(), texts.size()) << what;
        ASSERT_EQ(scene_text(), texts[static_cast<std::size_t>(present())])
            << "after " << what << ", step " << step;
    }
    expect_sound_scene();
}

// Foreign code names nothing: all objects are looked at, in whichever it wrote.
TEST_F(ManyStates, WhatNobodyMarkedIsFoundAfterForeignCode)
{
    const std::vector<object_t *> objects = elements_of<object_t>(vesk_get_world()->children);
    journal_step("start");
    const std::string before = scene_text();
    for (const std::size_t i : {0U, 127U, 128U, 299U})
        item_of<vertex>(objects[i]->vertices)->position.z = 7;
    mark_all_suspect();
    EXPECT_TRUE(journal_step("foreign"));
    const std::string after = scene_text();
    EXPECT_NE(after, before);
    run("step_back");
    EXPECT_EQ(scene_text(), before);
    run("redo");
    EXPECT_EQ(scene_text(), after);
}

// The address of an object that is gone may be that of the next: its image is not the old one.
TEST_F(ManyStates, AnObjectInThePlaceOfAFreedOneIsAnother)
{
    run("new_cube");
    const std::string before = scene_text();
    const auto *last = static_cast<object_t *>(list_last_item(vesk_get_world()->children));
    run("objects_select", object_identity(last));
    run("delete");
    run("new_cube");
    const std::string after = scene_text();
    run("history_goto", present() - 2);
    EXPECT_EQ(scene_text(), before);
    run("history_goto", present() + 2);
    EXPECT_EQ(scene_text(), after);
}
