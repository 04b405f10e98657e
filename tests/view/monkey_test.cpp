// A user without a plan: gestures of every tool, keys amid drags, commands, undo, the history, files,
// plug-ins and faults, in any order. After each step the scene is sound, and a file that nobody named is
// as it was.
//   VESK_MONKEY_STEPS (default 2000), VESK_TEST_SEED (default: another each day)

#include "base/crash_guard.h"
#include "edit/document/journal.h"
#include "edit/document/selection_internal.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/world.h"
#include "model/world_check.h"
#include "tests/plugin/plugin_test.h"
#include "tests/support/damage.h"
#include "tests/support/mesh_test.h"
#include "tests/view/tool_fixture.h"

#include <ctime>
#include <filesystem>
#include <random>
#include <set>
#include <sstream>

namespace {

constexpr int most_vertices = 1200;
constexpr const char *precious_text = "not yours";
using words_t = std::vector<std::string>;

// What is not called: it starts programs, ends what the test stands on, or writes where it is told.
const std::set<std::string> left_out = {
    "execute",       "plugin_load",       "save_settings",       "history_limit",  "quit",
    "plugins_skip",  "set_images_folder", "set_backup_versions", "command_port",   "recovery_drop",
    "history_clear", "autosave",          "clear_all",           "set_debug_mode", "fault"};

class Monkey : public Tools {
protected:
    void SetUp() override
    {
        Tools::SetUp();
        crash_guard::forget_faults_for_test();
        vesk_add_command("fault", fault_half_way);
        plugin_load(plugin_file("sample_plugin").c_str());
        folder_ = std::filesystem::current_path();
        const std::string work = temporary_file("monkey");
        std::filesystem::create_directories(work);
        std::filesystem::current_path(work);
        write_text("precious.vesk", precious_text);
        std::istringstream lines(run("list"));
        for (std::string line; std::getline(lines, line);) {
            const std::string name = line.substr(0, line.find(' '));
            const bool writes = name.starts_with("write_") || name.starts_with("save_") ||
                                name.starts_with("export") || name.starts_with("file_");
            if (!writes && !left_out.contains(name) && !name.starts_with("sample_"))
                names_.push_back(name);
        }
    }
    void TearDown() override
    {
        interaction_cancel();
        std::filesystem::current_path(folder_);
        plugins_exit();
        Tools::TearDown();
    }

    int pick(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
    template <std::size_t N>
    const char *one_of(const char *const (&values)[N])
    {
        return values[pick(static_cast<int>(N))];
    }
    std::string number() { return std::to_string(0.25 * (pick(17) - 8)); }

    void step()
    {
        // clang-format off
        switch (pick(16)) {
        case 0: case 1: case 2: case 3: gesture(); break;
        case 4: case 5: select(); break;
        case 6: say({"undo"}); break;
        case 7: say({pick(2) == 0 ? "redo" : "undo"}); break;
        case 8: say({"history_goto", std::to_string(pick(static_cast<int>(journal_items().size())))}); break;
        case 9: file(); break;
        case 10: fault(); break;
        case 11: say({"set_view_tool", any_tool()}); break;
        default: command(); break;
        }
        // clang-format on
        if (num_vertices() > most_vertices)
            run("clear_all");
        if (num_vertices() == 0)
            add_by_command();
    }

    static int num_vertices()
    {
        int vertices = 0;
        for_each_object(vesk_get_world(),
                        [&](object_t *object) { vertices += object->num_vertices; });
        return vertices;
    }
    static void add_by_command()
    {
        run("create", "box", "0", "0", "0", "0", "1", "1", "1");
        run("create", "mesh", "2", "-1", "-1", "0", "1", "0", "1");
    }

    void say(const words_t &words)
    {
        last_ = "";
        for (const std::string &word : words)
            last_ += word + " ";
        run_words(words);
    }

    const char *any_tool()
    {
        static constexpr const char *tools[] = {
            "none",          "loop_cut", "knife",        "slice", "slide",
            "bevel",         "inset",    "extrude_each", "shell", "extrude_normals",
            "extrude_edges", "measure",  "zoom",         "place", "extrude"};
        return one_of(tools);
    }

    void select()
    {
        static constexpr const char *modes[] = {"tree", "object", "surface",
                                                "edge", "vertex", "light"};
        static constexpr const char *ways[] = {"select_all",  "clear_selection", "select_invert",
                                               "select_grow", "select_linked",   "select_loop",
                                               "select_ring", "select_shrink",   "select_boundary"};
        if (pick(3) == 0)
            say({"set_select_mode", one_of(modes)});
        else if (pick(3) == 0)
            say({"select_random", std::to_string(pick(100)), std::to_string(pick(9))});
        else
            say({one_of(ways)});
    }

    // Press, some motions with a key or a turn of the wheel between them, release.
    void gesture()
    {
        static constexpr const char *keys[] = {"Escape", "Return", "BackSpace", "1",
                                               "period", "minus",  "Tab",       "x",
                                               "space",  "5",      "Control_L"};
        const int view = pick(4), state = pick(8), button = pick(6) == 0 ? 1 + pick(3) : 1;
        const auto x = [&] { return 100 + pick(200); };
        const auto y = [&] { return 75 + pick(150); };
        last_ = "gesture with " + last_;
        interaction_press({view, x(), y(), button, state, seconds += pick(2) == 0 ? 0.1 : 1});
        for (int motions = pick(5); motions > 0; --motions) {
            move(view, x(), y(), state);
            if (pick(6) == 0)
                key(one_of(keys));
            if (pick(10) == 0)
                interaction_wheel(view, pick(2) == 0 ? 1 : -1);
            if (pick(30) == 0)
                interaction_cancel();
            if (pick(30) == 0)
                run("undo");
        }
        if (pick(25) != 0)
            interaction_release({view, x(), y(), button, state, seconds += 0.1});
        if (pick(8) == 0)
            key(one_of(keys));
    }

    // Any command, with arguments of a size that a user gives.
    void command()
    {
        static constexpr const char *texts[] = {
            "a",   "box",         "union", "x",      "all",    "y",      "both", "each",
            "min", "0 0 0 1 1 1", "front", "smooth", "normal", "corner", "first"};
        const std::string &name = names_[random_() % names_.size()];
        const vesk_command_t *found = find_command(name.c_str());
        words_t words = {name};
        for (int i = 0; i < found->nargs; ++i) {
            const char letter = found->argtypes != nullptr ? found->argtypes[i] : 's';
            words.push_back(letter == 'd'   ? std::to_string(pick(6) - 1)
                            : letter == 'f' ? number()
                            : pick(2) == 0  ? number()
                                            : one_of(texts));
        }
        if (pick(3) == 0) // words that may be left out
            words.push_back(pick(2) == 0 ? std::to_string(pick(4)) : one_of(texts));
        say(words);
    }

    void file()
    {
        static constexpr const char *suffixes[] = {".obj", ".ply", ".dxf", ".wrl", ".vesk"};
        const std::string name = std::string("work") + one_of(suffixes);
        switch (pick(3)) {
        case 0:
            say({name.ends_with(".vesk") ? "file_save" : "export_model", name});
            break;
        case 1:
            say({"file_load", name});
            break;
        default:
            say({"import_file", name});
            break;
        }
    }

    void fault()
    {
        crash_guard::forget_faults_for_test();
        say({"fault"});
        if (pick(2) == 0)
            say({"take_back"});
    }

    void check()
    {
        for (const world_fault &fault : world_check(vesk_get_world()))
            ADD_FAILURE() << fault.text;
        EXPECT_EQ(marks_check("step"), 0) << recording().console;
        expect_sound_scene();
        EXPECT_EQ(list_count(selection().vertices), selection().num_vertices);
        EXPECT_EQ(read_text("precious.vesk"), precious_text);
        for (const std::string &box : recording().boxes) {
            const bool is_asked_for = box.find("fault") != std::string::npos;
            EXPECT_TRUE(is_asked_for || box.find("EXCEPTION_") == std::string::npos) << box;
        }
        recording().boxes.clear();
        recording().scripts.clear();
        recording().console.clear();
    }

    std::mt19937 random_;
    std::vector<std::string> names_;
    std::string last_;

private:
    std::filesystem::path folder_;
};

TEST_F(Monkey, BreaksNothing)
{
    const int seed = damage_setting("VESK_TEST_SEED", static_cast<int>(std::time(nullptr) / 86400));
    const int steps = damage_setting("VESK_MONKEY_STEPS", 2000);
    std::printf("monkey: seed %d, %d steps\n", seed, steps);
    random_.seed(static_cast<unsigned>(seed));
    for (int i = 0; i < steps; ++i) {
        step();
        check();
        ASSERT_FALSE(HasFailure()) << "seed " << seed << ", step " << i << ": " << last_;
    }
}

} // namespace
