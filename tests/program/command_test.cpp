// The dispatcher, the table and what scripts are told.

#include "base/command_result.h"
#include "base/crash_guard.h"
#include "base/messages.h"
#include "base/session_state.h"
#include "edit/document/selection.h"
#include "edit/document/undo_internal.h"
#include "program/command_table.h"
#include "program/own_commands.h"
#include "tests/support/mesh_test.h"

#include <cstring>
#include <filesystem>
#include <map>
#include <stdexcept>

namespace {

class Commands : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        crash_guard::forget_faults_for_test();
    }
};

TEST_F(Commands, TableHasEveryRowInOrderWithTheCountedTemplates)
{
    const auto rows = command_table();
    ASSERT_EQ(rows.size(), 171U);
    EXPECT_STREQ(rows.front().row.name, "add_text");
    EXPECT_STREQ(rows[51].row.name, "load_file");
    EXPECT_STREQ(rows.back().row.name, "zoomview");
    std::map<std::string, int> templates;
    for (const own_command_t &own : rows)
        ++templates[own.row.argtypes == nullptr ? "" : own.row.argtypes];
    EXPECT_EQ(templates["s"], 32);
    EXPECT_EQ(templates["d"], 30);
    EXPECT_EQ(templates["fff"], 5);
    EXPECT_EQ(templates["dffffffffffffff"], 1);
    EXPECT_STREQ(find_command("unhide")->help, "undo");
    EXPECT_STREQ(find_command("load_background_image")->help,
                 "Load named picture file into the bcakground of window");
}

TEST_F(Commands, RefusalsAreToldAndRaiseNothing)
{
    EXPECT_EQ(run("no_such_thing"), "command not found");
    EXPECT_EQ(recording().console, "\acommand no_such_thing not found!\n");
    EXPECT_EQ(run("move", 1, 2), "incorrect number of args for move (should be 3, got 2) - usage:\n"
                                 "    <float x> <float y> <float z>");
    const std::string palette = run("set_palette_entry");
    EXPECT_TRUE(palette.ends_with("<float shininess> <float transp>")); // told at full length
    EXPECT_EQ(run_words(std::vector<std::string>(21, "move")), "");
    EXPECT_EQ(do_command(0, nullptr), 1);
}

int given_int;
float given_floats[15];
std::string given_text;
void take_many(int i, float a, float b, float c, float d, float e, float f, float g, float h,
               float j, float k, float l, float m, float n, float o)
{
    given_int = i;
    const float all[] = {a, b, c, d, e, f, g, h, j, k, l, m, n, o};
    std::copy(std::begin(all), std::end(all), given_floats);
}
void take_text(int i, const char *text, int j)
{
    given_int = i * 100 + j;
    given_text = text;
}
template <class F>
vesk_command_func_t erased(F *f)
{
    return reinterpret_cast<vesk_command_func_t>(f);
}

TEST_F(Commands, ArgumentsAreConvertedByTheirLetters)
{
    vesk_add_command_full("many", erased(take_many), 15, "dffffffffffffff", nullptr, nullptr);
    vesk_add_command_full("text", erased(take_text), 3, "dsd", nullptr, nullptr);

    run("many", "7x", 1.5, "abc", 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, "14.25");
    EXPECT_EQ(given_int, 7);
    EXPECT_EQ(given_floats[0], 1.5f);
    EXPECT_EQ(given_floats[1], 0.0f);
    EXPECT_EQ(given_floats[13], 14.25f);

    run("text", 2, "a b $x [exit]", -3);
    EXPECT_EQ(given_int, 197);
    EXPECT_EQ(given_text, "a b $x [exit]");
}

TEST_F(Commands, NumbersThatAFloatCannotHoldAreToldAndAreZero)
{
    vesk_add_command_full("many", erased(take_many), 15, "dffffffffffffff", nullptr, nullptr);
    run("many", 7, "inf", "nan", "1e39", "-1e39", "3e38", 6, 7, 8, 9, 10, 11, 12, 13, 14);
    const float expected[] = {0, 0, 0, 0, 3e38f, 6};
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(given_floats[i], expected[i]) << i;
    EXPECT_EQ(recording().console,
              "many: argument 2, 'inf', is no number that can be used - 0 is taken\n"
              "many: argument 3, 'nan', is no number that can be used - 0 is taken\n"
              "many: argument 4, '1e39', is no number that can be used - 0 is taken\n"
              "many: argument 5, '-1e39', is no number that can be used - 0 is taken\n");
}

TEST_F(Commands, ResultsThatNoFloatHoldsAreTakenBack)
{
    select_object(add_cube("cube"));
    run("rotate", 3.4e38, 0, 0); // a turn like any other
    run("move", 0, 1, 0);
    run("move", 3e38, 0, 0);
    const std::string before = run("get_selection_centre") + run("get_selection_size");
    for (const std::vector<std::string> &words :
         {std::vector<std::string>{"move", "3e38", "0", "0"},
          {"rotate_about", "45", "45", "0", "-3e38", "3e38", "-3e38"},
          {"move_with_undo", "3e38", "0", "0"}}) {
        const std::string undo = last_undo();
        run_words(words);
        EXPECT_TRUE(last_message().ends_with(
            "the result is beyond what coordinates can hold: nothing was changed"))
            << words[0];
        EXPECT_EQ(run("get_selection_centre") + run("get_selection_size"), before) << words[0];
        EXPECT_EQ(last_undo(), undo);
    }
    EXPECT_EQ(selection_get_num_objects(), 1);
}

TEST_F(Commands, UnknownTemplatesAndLettersAreTold)
{
    vesk_add_command_full("odd", erased(take_text), 2, "fs", nullptr, nullptr);
    vesk_add_command_full("letter", erased(take_text), 1, "q", nullptr, nullptr);
    const char *odd[] = {"odd", "1", "x"};
    const char *letter[] = {"letter", "1"};

    EXPECT_EQ(do_command(3, odd), 1); // Deliberate: counts as done
    EXPECT_NE(recording().console.find("\aunknown arg template fs for command odd\ntemplates are: "
                                       "d, f, s, sd, ff, fff, ffffff, dffffffffffffff\n"),
              std::string::npos);
    EXPECT_EQ(do_command(2, letter), 0);
}

void say_mine() { command_result_set("mine"); }
void say_other() { command_result_set("other"); }

TEST_F(Commands, AddedOnesShadowAndReplacedOnesStay)
{
    vesk_add_command_full("delete", say_mine, 0, nullptr, "usage", nullptr);
    vesk_add_command("delete", say_other);
    EXPECT_EQ(run("delete"), "mine");
    const vesk_command_func_t original = find_command("get_platform")->func;
    EXPECT_EQ(vesk_replace_command_function("get_platform", say_other), 1);
    EXPECT_EQ(run("get_platform"), "other");
    EXPECT_EQ(vesk_replace_command_function("nothing", say_other), 0);

    const std::string list = run("list");
    EXPECT_NE(list.find("\ndelete usage \ndelete  user command\n"), std::string::npos);
    EXPECT_LT(list.find("delete usage"), list.find("add_text"));
    EXPECT_NE(list.find("\nlist  \n"), std::string::npos);
    vesk_replace_command_function("get_platform", original);
}

volatile int *volatile nowhere = nullptr;
[[gnu::no_sanitize("undefined")]] void crash() { *nowhere = 1; }
void throw_text() { throw std::runtime_error("broken"); }
void throw_other() { throw 'x'; } // neither an exception with a text nor a code

TEST_F(Commands, AFaultCostsADialogAndTheSessionStateComesBack)
{
    vesk_add_command("crash", crash);
    vesk_add_command("throw", throw_text);
    vesk_add_command("throw_other", throw_other);

    EXPECT_EQ(run("crash"), "");
    EXPECT_EQ(recording().boxes.back(),
              "Exception occured in command crash\ncode: 0xc0000005\ntype: "
              "EXCEPTION_ACCESS_VIOLATION\n\nPlease report this to Dovan");
    EXPECT_EQ(session().command_depth, 0);
    EXPECT_EQ(command_result_get(), nullptr);
    run("throw");
    EXPECT_TRUE(recording().boxes.back().starts_with(
        "Exception occured in command throw\nException what()=broken\nLast Error: "));
    crash_guard::forget_faults_for_test();
    run("throw_other");
    EXPECT_NE(recording().boxes.back().find("(not necessarily then problem)"), std::string::npos);
    EXPECT_EQ(run("get_platform"), "Windows");
}

std::string inner_edit, inner_query;
void run_from_inside()
{
    inner_edit = run("move", 1, 1, 1);
    inner_query = run("get_platform");
    recording().while_pumping = nullptr;
}
void pump() { handle_tcl_events(); }
void nest() { inner_edit = run("object_set_name", 999, "x"); }

TEST_F(Commands, EditsFromInsideAPumpAreRefusedAndNestedCallsAreNot)
{
    vesk_add_command("pump", pump);
    vesk_add_command("nest", nest);
    recording().while_pumping = run_from_inside;
    run("pump");
    EXPECT_EQ(inner_edit, "busy");
    EXPECT_EQ(inner_query, "Windows");

    run("nest");
    EXPECT_EQ(inner_edit, "");
    EXPECT_EQ(session().pumps_in_commands, 0);
}

TEST_F(Commands, EveryRowTellsItsArguments)
{
    for (const own_command_t &own : command_table()) {
        const vesk_command_t &row = own.row;
        EXPECT_NE(row.func, nullptr) << row.name;
        EXPECT_TRUE(run("command_info", row.name).starts_with(std::to_string(row.nargs) + ' '))
            << row.name;
    }
    EXPECT_EQ(run("command_info", "no_such_command"), "");
}

// Every command of ours: the fixed table and the lists of topics.
std::vector<own_command_t> all_own_commands()
{
    std::vector<own_command_t> all(command_table().begin(), command_table().end());
    for (const auto &list :
         {model_commands(), check_commands(), file_commands(), history_commands(), panel_commands(),
          preference_commands(), recovery_commands(), uv_commands()})
        all.insert(all.end(), list.begin(), list.end());
    return all;
}

// Model, history and a running transform stay, whatever queries and views are given; queries change
// no count either.
TEST_F(Commands, QueriesAndViewsLeaveTheModelAndARunningDrag)
{
    select_object(add_cube("a"));
    for (const own_command_t &own : all_own_commands()) {
        if (own.kind != command_kind::query && own.kind != command_kind::view)
            continue;
        run("transform_begin", "move");
        run("transform_to", 1, 2, 3);
        const std::string moved = run("get_selection_centre");
        const std::string state = run("model_state");
        for (const char *argument : {"0", "1", "3", "none"}) {
            const bool names_file =
                own.row.usage != nullptr && std::strstr(own.row.usage, "file") != nullptr;
            std::vector<std::string> words(static_cast<std::size_t>(own.row.nargs),
                                           names_file ? temporary_file(argument) : argument);
            words.insert(words.begin(), own.row.name);
            run_words(words);
            const std::string after = run("model_state");
            if (own.kind == command_kind::query) {
                EXPECT_EQ(after, state) << own.row.name;
            }
            EXPECT_EQ(run("get_selection_centre"), moved) << own.row.name;
        }
        run("transform_cancel");
        EXPECT_EQ(run("get_selection_centre"), "0 0 0") << own.row.name;
        EXPECT_EQ(run("undo_name"), "") << own.row.name;
    }
}

// ---- texts to scripts ----

struct hostile_case {
    const char *name;
    const char *text;
    const char *quoted;
};
// clang-format off
const hostile_case hostile_cases[] = {
    {"plain",       "written file a.vesk", "written file a.vesk"},
    {"command",     "[exit]",              "\\[exit\\]"},
    {"variable",    "$x",                  "\\$x"},
    {"quote",       "a\"b",                "a\\\"b"},
    {"backslash",   "c:\\d",               "c:\\\\d"},
    {"brace",       "{",                   "\\{"},
    {"lines",       "a\nb",                "a\nb"},
    {"per_cent",    "100%s",               "100%s"},
};
// clang-format on
void PrintTo(const hostile_case &c, std::ostream *out) { *out << c.name; }
class HostileText : public SceneTest, public testing::WithParamInterface<hostile_case> {};

TEST_P(HostileText, StandsForItselfInEveryScript)
{
    const hostile_case &c = GetParam();
    display_message("<%s> %d %.2f", c.text, 5, 0.5);
    EXPECT_EQ(recording().scripts.back(),
              std::string("display_message \"<") + c.quoted + "> 5 0.50\"");
    set_undo_string(c.text);
    EXPECT_EQ(recording().scripts.back(), std::string("set_undo_string \"") + c.quoted + "\"");
}
INSTANTIATE_TEST_SUITE_P(Texts, HostileText, testing::ValuesIn(hostile_cases));

TEST_F(Commands, LongMessagesAreCutBeforeTheyAreQuoted)
{
    const std::string brackets(5000, '[');
    display_message("%s", brackets.c_str());
    const std::string &script = recording().scripts.back();
    EXPECT_EQ(script.size(), std::strlen("display_message \"\"") + 2 * 2047);
    EXPECT_TRUE(script.ends_with("\\[\""));
}

// ---- refusals ----

struct refusal_case {
    const char *name;
    std::vector<std::string> words;
    const char *message;
};
void PrintTo(const refusal_case &c, std::ostream *out) { *out << c.name; }
class Refusals : public SceneTest, public testing::WithParamInterface<refusal_case> {};

TEST_P(Refusals, AreToldAndLeaveEverythingAsItIs)
{
    add_cube("cube");
    run("select_all");
    const std::string before = scene_text();
    const unsigned serial = undo_last_serial();
    EXPECT_EQ(run_words(GetParam().words), "");
    EXPECT_EQ(last_message(), GetParam().message);
    EXPECT_EQ(scene_text(), before);
    EXPECT_EQ(undo_last_serial(), serial);
    EXPECT_EQ(selection_get_num_objects(), 1);
}
// clang-format off
INSTANTIATE_TEST_SUITE_P(Words, Refusals, testing::Values(
    refusal_case{"create_kind", {"create", "ball", "0", "0", "0", "0", "1", "1", "1"}, "create - no kind named 'ball'"},
    refusal_case{"create_plane", {"create", "disk", "3", "0", "0", "0", "1", "1", "1"}, "create - no plane 3"},
    refusal_case{"outline_kind", {"create_outline", "arc", "0 0 0 1 1 1"}, "create outline - no kind named 'arc'"},
    refusal_case{"surface_type", {"createsurface", "3"}, "create surface - no type 3"},
    refusal_case{"surface_vertices", {"createsurface", "2"}, "select at least 2 vertices of one object"},
    refusal_case{"type", {"set_surface_type", "-1"}, "set surface type - no type -1"},
    refusal_case{"colour", {"set_col", "99"}, "set colour - no palette entry 99"},
    refusal_case{"material", {"material_select", "-1"}, "select material - no palette entry -1"},
    refusal_case{"material_name", {"material_set_name", "99", "x"}, "name material - no palette entry 99"},
    refusal_case{"texture", {"set_texture", "0"}, "set texture - there is no texture 0"},
    refusal_case{"percentage", {"reduce", "100"}, "reduce - give a percentage from 1 to 99"},
    refusal_case{"mode", {"set_select_mode", "corner"}, "no select mode named 'corner'"},
    refusal_case{"elements", {"select_elements", "keep", "2"}, "select elements - set, add or remove, not 'keep'"},
    refusal_case{"property", {"objects_set", "2", "colour", "red"}, "objects_set - no property named 'colour'"},
    refusal_case{"history", {"history_goto", "-1"}, "no such place in the history: -1"},
    refusal_case{"problem", {"check_fix_all", "ugly"}, "check - no such problem"},
    refusal_case{"background", {"clear_background_image", "3"}, "background image - there is no flat view 3"},
    refusal_case{"uv_tool", {"uv_tool", "bend"}, "uv tool - no tool 'bend'"},
    refusal_case{"uv_option", {"uv_option", "colour", "1"}, "uv option - no option 'colour'"},
    refusal_case{"uv_option_value", {"uv_option", "checker"}, "uv option - 'checker' needs a value"},
    refusal_case{"uv_projection", {"uv_project", "cone"}, "project texture coordinates - no projection 'cone'"},
    refusal_case{"uv_choice", {"uv_select", "some"}, "uv select - no choice 'some'"}));
// clang-format on

} // namespace
