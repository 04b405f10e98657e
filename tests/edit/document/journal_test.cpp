#include "edit/document/journal.h"

#include "base/crash_guard.h"
#include "base/prefs.h"
#include "edit/document/model_restore.h"
#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo.h"
#include "edit/transform.h"
#include "fileio/vesk_writer.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/identity.h"
#include "model/object_tree.h"
#include "model/palette.h"
#include "model/world.h"
#include "model/world_check.h"
#include "tests/support/mesh_test.h"

#include <algorithm>
#include <map>
#include <random>

namespace {

std::vector<std::string> labels()
{
    std::vector<std::string> all;
    for (const journal_item &item : journal_items())
        all.push_back((item.current ? "*" : "") + std::string(item.label));
    return all;
}
using texts = std::vector<std::string>;
using words_t = std::vector<std::string>;

class Journal : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        add_cube("a");
        add_cube("b");
    }
};

// ---- places in the history ----

TEST_F(Journal, HasAStateForEveryCommandThatChangesTheModel)
{
    run("select_all");
    run("move", 1, 2, 3);
    run("get_counts");
    run("set_select_mode", "surface");
    run("redraw_all");
    run("new_cube");
    EXPECT_EQ(labels(), (texts{"start", "move", "*new cube"}));
    EXPECT_EQ(run("history_list"), R"(0\ start\ 0\ 0 1\ move\ 0\ 0 2\ new\\\ cube\ 1\ 0)");
}

TEST_F(Journal, UndoGivesBackWhatAFarPlaceRoundedAway)
{
    const std::string before = scene_text();
    const std::vector<std::vector<std::string>> calls = {
        {"move_to", "1e20", "0", "0"},
        {"move_with_undo", "3e9", "-1e30", "0"},
        {"rotate_about_with_undo", "0", "30", "0", "1e12", "0", "0"},
        {"size_to", "1e30", "1", "1"},
        {"scale", "1e-40", "1", "1"},
    };
    for (const std::vector<std::string> &call : calls) {
        run("select_all");
        run_words(call);
        ASSERT_NE(scene_text(), before) << call[0];
        run("undo");
        EXPECT_EQ(scene_text(), before) << call[0];
    }
}

TEST_F(Journal, GoesWhereItIsTold)
{
    run("select_all");
    texts seen = {scene_text()};
    for (const char *name : {"x", "y", "z"}) {
        run("object_set_name", object_identity(item_of<object_t>(vesk_get_world()->children)),
            name);
        run("new_cube");
        seen.push_back(scene_text());
    }
    for (const int step : {2, 0, 3, 1, 3}) {
        run("history_goto", 2 * step);
        EXPECT_EQ(scene_text(), seen[step]) << step;
    }
    run("history_goto", 99);
    EXPECT_EQ(last_message(), "no such place in the history: 99");
}

// What Ctrl+Z and Ctrl+Shift+Z see: the file and the selection.
std::string seen()
{
    return scene_text() + run("get_app_mode") + "|" + run("get_selected_objects") + "|" +
           run("get_selection_size") + "|" + run("selection_get_num_surfaces") + "|" +
           run("selection_get_num_vertices");
}

TEST_F(Journal, StepBackTakesTheNewestStepWhetherItOpenedARecordOrNot)
{
    run("select_all");
    texts before;
    for (const std::vector<std::string> &words :
         {words_t{"move_to", "1", "2", "3"}, words_t{"new_cube"}, words_t{"delete"},
          words_t{"set_palette_entry", "3", "1", "0", "0", "0", "0", "0", "0", "0", "0", "0", "0",
                  "0", "5", "0.5"},
          words_t{"material_set_name", "3", "red"}, words_t{"new_cube"}, words_t{"select_all"},
          words_t{"scale", "1", "0", "1"}}) {
        if (words[0] != "select_all")
            before.push_back(seen());
        run_words(words);
    }
    const std::string last = seen();
    for (int round = 0; round < 2; ++round) {
        texts after = {seen()};
        for (std::size_t i = before.size(); i-- > 0;) {
            run("step_back");
            EXPECT_EQ(seen(), before[i]) << round << " " << i;
        }
        EXPECT_EQ(run("undo_name"), "");
        for (std::size_t i = 0; i < before.size(); ++i)
            run("redo");
        EXPECT_EQ(seen(), last);
    }
}

TEST_F(Journal, AChangeOfTheSelectModeIsNoStepAndCostsNoRedo)
{
    run("set_select_mode", "surface");
    run("select_all");
    const std::string whole = seen();
    run("surface_bevel");
    const std::string bevelled = scene_text();
    run("set_select_mode", "tree");
    EXPECT_EQ(run("undo_name"), "bevel");
    run("step_back");
    EXPECT_EQ(seen(), whole) << "the selection comes back in its mode";
    run("set_select_mode", "object");
    run("redo");
    EXPECT_EQ(scene_text(), bevelled);
    EXPECT_EQ(run("get_app_mode"), "object move") << "nothing was selected then";
}

TEST_F(Journal, OneEditingSessionOfAMaterialIsOneStep)
{
    const auto transparency = [](const char *value) {
        run("set_palette_entry", 3, "1", "0", "0", "0", "0", "0", "0", "0", "0", "0", "0", "0", "5",
            value);
    };
    run("set_select_mode", "surface");
    run("select_all");
    run("set_col", 3);
    const std::string coloured = run("get_material", 3);
    for (const char *value : {"0.1", "0.2", "0.3"}) {
        recording().clock += 1;
        transparency(value);
    }
    const std::string dragged = run("get_material", 3);
    recording().clock += 10;
    transparency("0.9");
    EXPECT_EQ(labels(), (texts{"start", "set colour", "edit material", "*edit material"}));
    run("step_back");
    EXPECT_EQ(run("get_material", 3), dragged);
    run("step_back");
    EXPECT_EQ(run("get_material", 3), coloured);
    run("step_back");
    EXPECT_EQ(object_get_surface_at(item_of<object_t>(vesk_get_world()->children), 0)->material, 1);
}

TEST_F(Journal, StepBackGoesOnWhereAReversalDroppedAllRecords)
{
    run("clear_all");
    EXPECT_EQ(run("undo_name"), ""); // the scene is not brought back by a key
    run("new_cube");
    const std::string at_first = scene_text();
    run("select_all");
    run("move_to", 1, 2, 3);
    const std::string moved = scene_text();
    run("delete");
    EXPECT_EQ(run("undo_name"), "delete");
    run("step_back");
    EXPECT_EQ(scene_text(), moved);
    EXPECT_EQ(*undo_count_address(), 1); // the records are those of then
    EXPECT_EQ(run("undo_name"), "move to");
    run("step_back");
    EXPECT_EQ(last_message(), "undo done");
    EXPECT_EQ(scene_text(), at_first);
    run("redo");
    run("redo");
    EXPECT_EQ(vesk_get_world()->num_children, 0);
}

TEST_F(Journal, ANewChangeDropsWhatLiesAhead)
{
    run("select_all");
    run("move_to", 1, 2, 3);
    run("move_to", 4, 5, 6);
    run("undo");
    EXPECT_EQ(labels(), (texts{"start", "*move to", "move to"}));
    run("new_cube");
    EXPECT_EQ(labels(), (texts{"start", "move to", "*new cube"}));
    run("redo");
    EXPECT_EQ(last_message(), "nothing to redo.");
}

TEST_F(Journal, AnUndoAcrossUnrecordedChangesKeepsThem)
{
    run("select_all");
    run("scale", 2, 2, 2);
    run("new_cube"); // makes no undo record
    const std::string whole = scene_text();
    run("undo");
    EXPECT_EQ(labels(), (texts{"start", "size selection", "*undo size selection", "new cube"}));
    EXPECT_EQ(vesk_get_world()->num_children, 3);
    run("redo");
    EXPECT_EQ(scene_text(), whole);
    run("undo"); // the record is as good as before
    EXPECT_EQ(vesk_get_world()->num_children, 3);
    EXPECT_NE(scene_text(), whole);
}

TEST_F(Journal, UndoLeavesNoRoundingBehind)
{
    run("select_all");
    const point3_t before =
        item_of<vertex>(item_of<object_t>(vesk_get_world()->children)->vertices)->position;
    run("move_to", "1000.1", "33333.3", "0.7");
    run("undo");
    const point3_t after =
        item_of<vertex>(item_of<object_t>(vesk_get_world()->children)->vertices)->position;
    EXPECT_EQ(after.x, before.x);
    EXPECT_EQ(after.y, before.y);
    EXPECT_EQ(after.z, before.z);
}

TEST_F(Journal, AFlatteningThatUndoCannotReverseIsInTheHistory)
{
    run("select_all");
    const std::string whole = scene_text();
    run("scale", 1, 0, 1);
    run("undo"); // stays flat
    EXPECT_NE(scene_text(), whole);
    run("history_goto", 0);
    EXPECT_EQ(scene_text(), whole);
}

// ---- what a state holds ----

TEST_F(Journal, BringsBackObjectsUnderTheirIdentitiesWithTheSelection)
{
    run("select_by_name", "a");
    run("set_select_mode", "vertex");
    const std::string selected = run("selection_get_num_vertices");
    const int id = object_identity(item_of<object_t>(vesk_get_world()->children));
    vesk_add_command("lose", [] { object_delete(item_of<object_t>(vesk_get_world()->children)); });
    run("lose");
    EXPECT_EQ(object_by_identity(id), nullptr);
    run("set_select_mode", "tree");
    run("history_goto", 0);
    ASSERT_NE(object_by_identity(id), nullptr);
    EXPECT_STREQ(object_by_identity(id)->name, "a");
    EXPECT_EQ(run("selection_get_num_vertices"), selected);
    EXPECT_EQ(run("get_app_mode"), "vertex move");
    // The order of the selection is kept.
    EXPECT_EQ(item_of<vertex>(selection().vertices),
              item_of<vertex>(object_by_identity(id)->vertices));
}

// The selection of another time may name an object that the state does not have.
TEST_F(Journal, DoesNotSelectWhatGoesOnTheWay)
{
    run("set_select_mode", "object");
    const state_ptr state = model_state_capture();
    add_cube("c");
    run("select_all");
    const selection_image all = *model_state_capture()->selection;
    ASSERT_EQ(all.objects.size(), 3U);
    model_state_restore(state, &all);
    std::vector<object_t *> found;
    for (object_t *object : each<object_t>(selection().objects))
        found.push_back(object);
    EXPECT_EQ(found.size(), 2U);
    EXPECT_EQ(found, elements_of<object_t>(vesk_get_world()->children));
    expect_sound_scene();
}

TEST_F(Journal, BringsBackThePalette)
{
    const std::string before = run("get_material", 3);
    run("set_palette_entry", 3, "0.1", "0.2", "0.3", "0", "0", "0", "0", "0", "0", "0", "0", "0",
        "5", "0.5");
    run("material_set_name", 3, "glass");
    const std::string after = run("get_material", 3);
    EXPECT_NE(after, before);
    run("history_goto", 0);
    EXPECT_EQ(run("get_material", 3), before);
    run("history_goto", 2);
    EXPECT_EQ(run("get_material", 3), after);
}

TEST_F(Journal, LeavesUnchangedObjectsAsTheyAre)
{
    object_t *a = item_of<object_t>(vesk_get_world()->children);
    vertex *point = item_of<vertex>(a->vertices);
    run("new_cube");
    run("select_all");
    run("move", 1, 0, 0);
    run("history_goto", 0);
    EXPECT_EQ(item_of<object_t>(vesk_get_world()->children), a);
    EXPECT_EQ(item_of<vertex>(a->vertices), point); // written, not made anew
}

TEST_F(Journal, KeepsItsLimitOfBytes)
{
    run("select_all");
    const std::size_t one = model_state_bytes();
    run("move", 1, 0, 0);
    journal_set_limit(3 * one + 20000);
    for (int i = 0; i < 200; ++i) {
        run("move", 1, 0, 0);
        run("scale", 2, 2, 2);
        clear_all_undos();
    }
    EXPECT_LE(model_state_bytes(), journal_limit());
    EXPECT_GT(journal_items().size(), 1u);
    EXPECT_TRUE(journal_items().back().current);
}

// A state of ten million vertices holds more than the limit by itself.
TEST_F(Journal, KeepsTheNewestStepHoweverMuchItTakes)
{
    const auto x = [] {
        const auto *object = item_of<object_t>(vesk_get_world()->children);
        return item_of<vertex>(object->vertices)->position.x;
    };
    run("select_all");
    run("move", 1, 0, 0);
    run("move", 1, 0, 0);
    const float moved = x();
    journal_set_limit(1);
    EXPECT_EQ(journal_items().size(), 2U);
    for (int i = 0; i < 3; ++i) {
        run("step_back");
        EXPECT_EQ(x(), moved - 1);
        run("redo");
        EXPECT_EQ(x(), moved);
    }
    run("move", 2, 0, 0);
    run("step_back");
    EXPECT_EQ(x(), moved);
    journal_set_limit(journal_default_limit);
}

TEST_F(Journal, NumbersTheContentsOfTheModel)
{
    run("select_all");
    const std::string start = run("change_count");
    run("move_to", 1, 2, 3);
    const std::string moved = run("change_count");
    EXPECT_NE(moved, start);
    run("set_select_mode", "vertex"); // no change of the model
    EXPECT_EQ(run("change_count"), moved);
    run("undo");
    run("undo");
    EXPECT_EQ(run("change_count"), start);
    run("redo");
    EXPECT_EQ(run("change_count"), moved);
}

TEST_F(Journal, RepeatsTheLastCommand)
{
    run("repeat_last");
    EXPECT_EQ(last_message(), "nothing to repeat.");
    run("select_all");
    run("move", 1, 0, 0);
    run("get_counts");
    run("repeat_last");
    run("repeat_last");
    EXPECT_EQ(run("get_selection_centre"), "3 0 0");
    run("history_goto", 1);
    EXPECT_EQ(run("get_selection_centre"), "1 0 0");
}

// ---- faults ----

TEST_F(Journal, AFaultedCommandIsTakenBack)
{
    crash_guard::forget_faults_for_test();
    run("select_all");
    run("move", 1, 0, 0);
    const std::string before = scene_text();
    EXPECT_EQ(run("take_back"), "0");
    vesk_add_command("fault", fault_half_way);
    run("fault");
    EXPECT_NE(scene_text(), before);
    EXPECT_EQ(last_undo(), ""); // its record never was filled
    EXPECT_EQ(run("take_back"), "1");
    EXPECT_EQ(scene_text(), before);
    EXPECT_TRUE(world_check(vesk_get_world()).empty());
}

} // namespace
