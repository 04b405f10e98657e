// Commands for scripts that no window needs: what they answer, and what they leave behind.

#include "base/crash_guard.h"
#include "edit/document/journal.h"
#include "edit/document/selection_internal.h"
#include "edit/document/undo_internal.h"
#include "model/identity.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "tests/support/mesh_test.h"
#include "view/views_internal.h"

namespace {

using words_t = std::vector<std::string>;

class AddedCommands : public SceneTest {
protected:
    static std::string box()
    {
        return run("get_selection_centre") + ", " + run("get_selection_size");
    }
    static int id_of(const object_t *object) { return object_identity(object); }
};

// ---- transforms ----

TEST_F(AddedCommands, TurningEachKeepsTheirMiddlesAndIsTakenBackToTheBit)
{
    for (const char *x : {"0", "4", "9"}) {
        const std::string right = std::to_string(std::stoi(x) + 2);
        run_words({"create", "box", "0", x, "0", "0", right, "1", "1"});
    }
    run("set_select_mode", "tree");
    run("select_all");
    const std::string before = scene_text();
    run("rotate_each_with_undo", 0, 90);
    EXPECT_EQ(box(), "5.5 0.5 0.5, 10 2 1"); // 2 by 1 each, upright now
    EXPECT_EQ(last_undo(), "rotate");
    run("undo");
    EXPECT_EQ(scene_text(), before);
    run("redo");
    EXPECT_EQ(box(), "5.5 0.5 0.5, 10 2 1");
    run("rotate_each_with_undo", 3, 90);
    EXPECT_EQ(last_message(), "rotate - there is no flat view 3");
}

struct resize_case {
    const char *name;
    words_t corners;
    const char *box;
};
void PrintTo(const resize_case &c, std::ostream *out) { *out << c.name; }
class Resized : public AddedCommands, public testing::WithParamInterface<resize_case> {};

TEST_P(Resized, FillsTheBoxAndComesBackToTheBit)
{
    add_squares(2, 1);
    run("select_all");
    const std::string before = scene_text();
    words_t words = GetParam().corners;
    words.insert(words.begin(), "resize_with_undo");
    run_words(words);
    EXPECT_EQ(box(), GetParam().box);
    EXPECT_EQ(last_undo(), "resize");
    run("undo");
    EXPECT_EQ(scene_text(), before);
}
// clang-format off
INSTANTIATE_TEST_SUITE_P(Boxes, Resized, testing::Values(
    resize_case{"moved_and_larger", {"1", "1", "0", "5", "2", "0"}, "3 1.5 0, 4 1 0"},
    resize_case{"flat_axis_is_moved", {"0", "0", "3", "2", "1", "7"}, "1 0.5 3, 2 1 0"},
    resize_case{"turned_round", {"2", "0", "0", "0", "1", "0"}, "1 0.5 0, 2 1 0"},
    resize_case{"to_a_line", {"1", "0", "0", "1", "1", "0"}, "1 0.5 0, 0 1 0"},
    resize_case{"far_away", {"1e9", "0", "0", "2e9", "1", "0"}, "1.5e+09 0.5 0, 1e+09 1 0"}));
// clang-format on

TEST_F(AddedCommands, AScalingAboutAPointKeepsThePoint)
{
    add_squares(2, 1);
    run("select_all");
    run("transform_begin", "scale");
    run("transform_about", 2, 1, 0);
    run("transform_to", 3, 0.5, 1);
    run("transform_end");
    EXPECT_EQ(box(), "-1 0.75 0, 6 0.5 0");
}

// ---- lights ----

TEST_F(AddedCommands, ALightIsListedMovedAndTakenBack)
{
    add_cube("cube");
    run("create_light", 1, 2, 3);
    const std::string id = run("get_lights");
    EXPECT_EQ(run("object_get_centre", id), "1 2 3");
    EXPECT_EQ(run("get_selected_objects"), id);
    run("move_with_undo", 1, 0, 0);
    EXPECT_EQ(run("object_get_centre", id), "2 2 3");
    run("undo");
    EXPECT_EQ(run("object_get_centre", id), "1 2 3");
    EXPECT_EQ(last_undo(), "add light");
    run("undo");
    EXPECT_EQ(run("get_lights"), "");
    EXPECT_EQ(run("get_counts").substr(0, 3), "0 1");
    run("redo");
    EXPECT_EQ(run("object_get_centre", run("get_lights")), "1 2 3");
}

// ---- the history ----

TEST_F(AddedCommands, ANotedSelectionIsTheOneThatComesBack)
{
    add_cube("a");
    add_cube("b");
    run("select_by_name", "a");
    run("move_with_undo", 1, 0, 0);
    run("clear_selection");
    run("select_by_name", "b");
    run("history_note");
    const std::string noted = run("get_selected_objects");
    const int place = static_cast<int>(journal_items().size()) - 1;
    run("move_with_undo", 0, 5, 0);
    run("clear_selection");
    run("history_goto", place);
    EXPECT_EQ(run("get_selected_objects"), noted);
}

TEST_F(AddedCommands, ALowLimitOfTheHistoryKeepsThePresentState)
{
    object_t *big = add_squares(150, 150);
    run("select_all");
    for (int i = 0; i < 12; ++i)
        run("move_with_undo", 1, 0, 0);
    const std::string now = scene_text();
    const std::size_t before = journal_items().size();
    run("history_limit", 0); // no limit at all
    run("history_limit", -5);
    EXPECT_EQ(journal_items().size(), before);
    run("history_limit", 1);
    EXPECT_LT(journal_items().size(), before);
    EXPECT_TRUE(journal_items().back().current);
    EXPECT_EQ(scene_text(), now);
    run("history_goto", 0); // the oldest that is left
    EXPECT_EQ(big->num_surfaces, 150 * 150);
    run("history_limit", 512);
}

TEST_F(AddedCommands, WhatAFaultLeftIsTakenBackUntilTheNextChange)
{
    add_cube("cube");
    vesk_add_command("fault", fault_half_way);
    const std::string before = scene_text();
    EXPECT_EQ(run("can_take_back"), "0");
    run("fault");
    EXPECT_EQ(run("can_take_back"), "1");
    EXPECT_EQ(run("take_back"), "1");
    EXPECT_EQ(scene_text(), before);
    EXPECT_EQ(run("can_take_back"), "0");
    crash_guard::forget_faults_for_test();
    run("fault");
    run("new_cube");
    EXPECT_EQ(run("can_take_back"), "0");
    EXPECT_EQ(run("take_back"), "0");
}

// ---- queries ----

TEST_F(AddedCommands, WhatLiesUnderAPlaceIsToldButNotTheHiddenAndLocked)
{
    const object_t *cube = add_cube("cube");
    views_reset_for_test();
    handle_resize(VIEW_XY, 400, 300);
    const auto at_middle = [] { return run("object_at", 0, 200, 150); };
    EXPECT_EQ(at_middle(), std::to_string(id_of(cube)));
    EXPECT_EQ(run("object_at", 4, 0, 0), "");
    EXPECT_EQ(run("object_at", -1, 0, 0), "");
    run("object_lock", id_of(cube));
    EXPECT_EQ(at_middle(), "");
    run("object_unlock", id_of(cube));
    run("object_hide", id_of(cube));
    EXPECT_EQ(at_middle(), "");
}

TEST_F(AddedCommands, OutlinesAreAsManyAsAskedForAndTellWhatIsChosen)
{
    add_squares(3, 1);
    run("set_select_mode", "surface");
    run("select_all");
    const auto elements = [](const std::string &list) {
        std::size_t count = list.empty() ? 0 : 1;
        for (std::size_t at = list.find(' '); at != std::string::npos; at = list.find(' ', at + 1))
            count += list[at - 1] == '\\' ? 0 : 1;
        return count;
    };
    EXPECT_EQ(elements(run("uv_outlines", 100)), 3U);
    EXPECT_EQ(elements(run("uv_outlines", 2)), 2U);
    EXPECT_EQ(run("uv_outlines", 0), "");
    EXPECT_EQ(run("uv_outlines", -1), "");
    EXPECT_EQ(run("uv_texture"), "-1");
}

TEST_F(AddedCommands, MeasuringIsToldOnlyWhenAskedFor)
{
    const object_t *squares = add_squares(2, 1);
    select_vertices_at(squares, {0, 2});
    const std::size_t told = recording().scripts.size();
    const std::string measures = run("get_measures");
    EXPECT_EQ(recording().scripts.size(), told);
    EXPECT_NE(measures.find("distance 2"), std::string::npos);
    EXPECT_EQ(run("measure"), measures);
    EXPECT_EQ(last_message(), measures);
    run("clear_selection");
    EXPECT_EQ(run("get_measures"), "");
}

TEST_F(AddedCommands, TheTreeIsListedParentsFirstWithMarksAndAnyName)
{
    EXPECT_EQ(run("object_tree"), "");
    object_t *group = new_group();
    object_set_name(group, "two words");
    object_add_child(vesk_get_world(), group);
    object_t *cube = add_cube("[exit] {");
    object_reparent(cube, group);
    object_t *hidden = add_cube("");
    object_set_visible(hidden, 0);
    object_set_locked(hidden, 1);
    const auto id = [](const object_t *object) { return std::to_string(object_identity(object)); };
    const std::string world = id(vesk_get_world());
    EXPECT_EQ(run("object_tree"), id(group) + " " + world + " group two\\ words 0 1 0 " + id(cube) +
                                      " " + id(group) + " poly \\[exit\\]\\ \\{ 6 1 0 " +
                                      id(hidden) + " " + world + " poly {} 6 0 1");
}

// The panel's rows: number, anew, objects, hidden, locked, rows with the surfaces below added.
TEST_F(AddedCommands, RowsTellWhatDiffersFromTheLastTime)
{
    const auto id = [](const object_t *object) { return std::to_string(object_identity(object)); };
    const auto asked = [](const std::string &answer) { return answer.substr(0, answer.find(' ')); };
    const auto rest = [](const std::string &answer) { return answer.substr(answer.find(' ') + 1); };
    object_t *group = new_group();
    object_add_child(vesk_get_world(), group);
    object_t *inner = add_cube("inner");
    object_reparent(inner, group);
    object_t *last = add_cube("last");
    const std::string place = " " + id(vesk_get_world()) + " ";
    const std::string row_of_last = " " + id(last) + place + "poly last 6 1 0";
    std::string answer = run("object_rows", 0);
    EXPECT_EQ(rest(answer), "1 3 0 0 " + id(group) + place + "group {} 6 1 0 " + id(inner) + " " +
                                id(group) + " poly inner 6 1 0" + row_of_last);
    answer = run("object_rows", asked(answer));
    EXPECT_EQ(rest(answer), "0 3 0 0");

    // A surface fewer is one of the group's too.
    run("set_select_mode", "surface");
    select_surface(object_get_surface_at(inner, 0));
    run("delete");
    object_set_visible(last, 0);
    const std::string before = asked(answer);
    answer = run("object_rows", before);
    EXPECT_EQ(rest(answer), "0 3 1 0 " + id(group) + place + "group {} 5 1 0 " + id(inner) + " " +
                                id(group) + " poly inner 5 1 0 " + id(last) + place +
                                "poly last 6 0 0");

    // Who was told something else, and another order: everything.
    EXPECT_EQ(rest(run("object_rows", before)).substr(0, 2), "1 ");
    object_reparent(last, group);
    EXPECT_EQ(rest(run("object_rows", std::stoi(asked(answer)) + 1)).substr(0, 2), "1 ");

    // In pieces the same rows, until there is another answer.
    const std::string whole = run("object_rows", 0);
    answer = run("object_rows_begin", 0);
    EXPECT_EQ(rest(answer), rest(whole).substr(0, std::string("1 3 1 0").size()) + " 3");
    const std::string number = asked(answer);
    EXPECT_EQ(run("object_rows_begin", number), number + " 0 3 1 0 0");
    EXPECT_EQ("1 3 1 0" + run("object_rows_part", number, 0, 2) +
                  run("object_rows_part", number, 2, 2),
              rest(whole));
    EXPECT_EQ(run("object_rows_part", number, 3, 2), "");
    object_set_visible(last, 1);
    EXPECT_EQ(rest(run("object_rows_begin", number)), "0 3 0 0 1");
    EXPECT_EQ(run("object_rows_part", number, 0, 3), "");
}

} // namespace
