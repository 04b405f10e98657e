// Every command with any arguments, in every select mode, with all, something, or nothing selected:
// nothing faults, nothing hangs, the scene stays sound, and undo and the history lead back.

#include "base/crash_guard.h"
#include "edit/document/journal.h"
#include "edit/document/selection_internal.h"
#include "edit/document/undo_internal.h"
#include "model/change_marks.h"
#include "model/lights.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "model/world_check.h"
#include "tests/support/mesh_test.h"

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <set>
#include <sstream>

namespace {

constexpr int num_groups = 8;
constexpr const char *modes[] = {"tree", "object", "surface", "vertex", "light"};
constexpr const char *extents[] = {"all", "something", "nothing"};

// clang-format off
const std::vector<std::string> whole_numbers = {
    "0", "1", "-1", "2", "3", "7", "2147483647", "-2147483648", "99999999999999", "abc", "", "0x10"};
const std::vector<std::string> numbers = {
    "0", "1", "-1", "0.5", "-0", "1e38", "-1e38", "nan", "inf", "-inf", "1e-45", "1e999", "x", ""};
const std::vector<std::string> texts = {
    "", "a", "[exit 3]", "$x \"q\" \\", "{a b", "l\xc3\xa4mp", "\xff\xfe\x80", "/nonexistent/x.vesk",
    ".", "..", "0", "1 2 3", "-1 99999999999 4", "3 {4", "1e38", "tree", "vertex", "move", "box",
    "all", "linked", "corner", "u", "left", "visible", "open_edge", "unused_vertex", "%s%n%d",
    "nan nan nan nan nan nan", "0 0 0 0 0 0", "a.vesk", "a.wrl", "a.obj", "a.",
    std::string(5000, 'x'), std::string(300, '{')};
// clang-format on

// What must not be called here: it starts programs or ends what the tests stand on.
const std::set<std::string> left_out = {"execute", "plugin_load", "save_settings"};
// Deliberate: a scaling to nothing stays flat when it is undone.
const std::set<std::string> flatten = {"scale", "size_to"};

std::vector<std::string> every_command()
{
    std::istringstream lines(run("list"));
    std::vector<std::string> names;
    for (std::string line; std::getline(lines, line);)
        names.push_back(line.substr(0, line.find(' ')));
    return names;
}

// Which zero a coordinate is, no one sees.
std::string scene()
{
    std::string text = scene_text();
    for (std::size_t at = text.find("-0"); at != std::string::npos; at = text.find("-0", at + 1)) {
        if (text[at + 2] == ' ' || text[at + 2] == '\n')
            text.erase(at, 1);
    }
    return text;
}

class AbsurdArguments : public SceneTest, public testing::WithParamInterface<int> {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        folder_ = std::filesystem::current_path();
        const std::string work = temporary_file("absurd");
        std::filesystem::create_directories(work);
        std::filesystem::current_path(work);
    }
    void TearDown() override
    {
        std::filesystem::current_path(folder_);
        run("history_limit", 512);
        run("set_backup_versions", 1);
        run("set_images_folder", "");
        run("uv_keep", 0);

        SceneTest::TearDown();
    }

    // More than the usual calls: VESK_TEST_SEED=1, 2, ...
    static unsigned seed()
    {
        const char *given = std::getenv("VESK_TEST_SEED");
        return given == nullptr ? 4711U : static_cast<unsigned>(std::atoi(given));
    }

    const std::string &any_of(const std::vector<std::string> &values)
    {
        return values[random_() % values.size()];
    }

    std::vector<std::string> any_call(const std::string &name)
    {
        const vesk_command_t *command = find_command(name.c_str());
        std::vector<std::string> words = {name};
        for (int i = 0; i < command->nargs; ++i) {
            const char letter = command->argtypes != nullptr ? command->argtypes[i] : 's';
            words.push_back(any_of(letter == 'd'   ? whole_numbers
                                   : letter == 'f' ? numbers
                                   : i % 2 == 0    ? texts
                                                   : numbers));
        }
        if (random_() % 16 == 0) // also too many and too few
            words.resize(random_() % 22 + 1, "1");
        return words;
    }

    // A group, a light, a line, a hidden and a locked object, a smooth one.
    static void build_scene()
    {
        run("history_limit", 512);
        run("clear_all");
        run("set_select_mode", "tree");
        run("create", "box", "0", "0", "0", "0", "1", "1", "1");
        run("create", "circle", "2", "3", "0", "0", "4", "1", "0");
        run("select_all");
        run("group");
        run("create", "ico", "0", "-3", "0", "0", "-2", "1", "1");
        add_squares(2, 2);
        object_t *light = new_light();
        object_add_child(vesk_get_world(), light);
        run("create", "rect", "0", "5", "5", "0", "6", "6", "0");
        run("hide_selected");
        run("create", "disk", "0", "8", "5", "0", "9", "6", "0");
        run("lock_selected");
        run("clear_selection");
    }

    static void select(const char *mode, const char *extent)
    {
        run("set_select_mode", mode);
        if (*extent == 'a')
            run("select_all");
        if (*extent == 's') {
            const std::string first = run("object_get_children", run("get_world"));
            run("object_select", first.substr(0, first.find(' ')));
        }
    }

    void try_call(const std::vector<std::string> &words)
    {
        const std::string before = scene();
        const int present = present_place();
        const unsigned serial = undo_last_serial();

        run_words(words);

        for (const std::string &box : recording().boxes)
            EXPECT_EQ(box.find("Exception occured"), std::string::npos) << box;
        recording().boxes.clear();
        for (const world_fault &fault : world_check(vesk_get_world()))
            ADD_FAILURE() << fault.text;
        expect_sound_scene();
        EXPECT_EQ(marks_check("call"), 0) << recording().console;
        expect_finite_selection();
        if (command_kind_of(find_command(words[0].c_str())) == command_kind::edit &&
            words[0] != "clear_all")
            expect_way_back(words, before, present, serial);
    }

    static int present_place()
    {
        const std::vector<journal_item> items = journal_items();
        for (std::size_t i = 0; i < items.size(); ++i) {
            if (items[i].current)
                return static_cast<int>(i);
        }
        return -1;
    }

    static void expect_finite_selection()
    {
        std::istringstream size(run("get_selection_size") + " " + run("get_selection_centre"));
        for (std::string word; size >> word;)
            EXPECT_TRUE(std::isfinite(std::stod(word))) << word;
    }

    static void expect_way_back(const std::vector<std::string> &words, const std::string &before,
                                int present, unsigned serial)
    {
        const std::string after = scene();
        const bool one_record = undo_last_serial() == serial + 1;
        if (one_record && !undo_records().empty() && !flatten.contains(words[0])) {
            run("undo");
            EXPECT_EQ(scene(), before) << "undone";
            run("redo");
            EXPECT_EQ(scene(), after) << "made again";
        }
        const bool is_jump = words[0] == "undo" || words[0] == "redo" ||
                             words[0] == "history_goto" || words[0] == "take_back";
        if (!is_jump) {
            run("history_goto", present);
            EXPECT_EQ(scene(), before) << "by the history";
        }
    }

    std::mt19937 random_{seed()};
    int failures_ = 0;

private:
    std::filesystem::path folder_;
};

std::string shown(const std::vector<std::string> &words)
{
    std::string text;
    for (const std::string &word : words)
        text += " '" + word.substr(0, 60) + "'";
    return text;
}

TEST_P(AbsurdArguments, CostNothing)
{
    const std::vector<std::string> names = every_command();
    ASSERT_GT(names.size(), 250U);
    for (std::size_t i = static_cast<std::size_t>(GetParam()); i < names.size(); i += num_groups) {
        if (left_out.contains(names[i]))
            continue;
        for (const char *mode : modes) {
            for (const char *extent : extents) {
                crash_guard::forget_faults_for_test();
                run("transform_cancel");
                build_scene();
                select(mode, extent);
                const std::vector<std::string> words = any_call(names[i]);
                SCOPED_TRACE(std::string(mode) + ", " + extent + ":" + shown(words));
                try_call(words);
                if (HasFailure() && failures_++ > 20)
                    return;
            }
        }
        run("clear_all"); // and with nothing there at all
        const std::vector<std::string> words = any_call(names[i]);
        SCOPED_TRACE("empty:" + shown(words));
        try_call(words);
    }
}
INSTANTIATE_TEST_SUITE_P(Groups, AbsurdArguments, testing::Range(0, num_groups));

} // namespace
