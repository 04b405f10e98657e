#include "fileio/vesk_reader.h"

#include "base/current_file.h"
#include "base/messages.h"
#include "model/object_tree.h"
#include "model/palette.h"
#include "model/textures/texture_search.h"
#include "model/textures/textures.h"
#include "model/world.h"
#include "tests/fileio/file_cases.h"
#include "tests/model/textures/image_writer.h"
#include "tests/support/scene_test.h"

#include <sstream>

namespace {

struct read_case {
    const char *name;
    const char *text;
    const char *tree;     // "" for nothing loaded
    const char *messages; // the complaints
};

// A quad with its vertices, in an object.
#define QUAD_VERTICES "numvert 4\n0 0 0\n1 0 0\n1 1 0\n0 1 0\n"
#define QUAD_TREE "(0 0 0)(1 0 0)(1 1 0)(0 1 0)"
#define QUAD_SURFACE "numsurf 1\nSURF 0x20\nmat 0\nrefs 3\n0 0 0\n1 0 0\n2 0 0\n"
#define RED                                                                                        \
    "MATERIAL \"r\" rgb 1 0 0  amb 0.2 0.2 0.2  emis 0 0 0  spec 0.5 0.5 0.5  shi 10  trans 0\n"

// clang-format off
const read_case read_cases[] = {
    // ---- objects ----
    {"smallest", "VESKb\nOBJECT world\nkids 0\n", "world''", ""},
    {"upper_case_revision", "VESKB\nOBJECT poly\nkids 0\n", "poly''", ""},
    {"object_on_the_header_line", "  VESKb OBJECT group\nkids 0\n", "group''", ""},
    {"no_object", "VESKb\n", "", ""},
    {"no_last_newline", "VESKb\nOBJECT world\nname \"a\"\nkids 0", "world'a'", ""},
    {"returns_and_newlines", "VESKb\r\nOBJECT poly\r\nname \"a b\"\r\nnumvert 1\r\n1 2 3\r\nkids 0\r\n", "poly'a b'(1 2 3)", ""},
    {"unknown_type", "VESKb\nOBJECT blob\nkids 0\n", "poly''", ""},
    {"all_types", "VESKb\nOBJECT world\nkids 5\nOBJECT poly\nkids 0\nOBJECT group\nkids 0\nOBJECT light\nkids 0\nOBJECT cube\nkids 0\nOBJECT sphere\nkids 0\n",
     "world''{poly'',group'',light'light',cube'',sphere''}", ""},
    {"ends_before_kids", "VESKb\nOBJECT poly\n" QUAD_VERTICES, "poly''" QUAD_TREE, ""},
    {"kids_before_any_object", "VESKb\nkids 0\n", "", ""},
    {"words_before_any_object", "VESKb\nname \"x\"\nloc 1 1 1\nnumvert 3\nOBJECT poly\nkids 0\n", "poly''", ""},
    {"too_few_kids", "VESKb\nOBJECT world\nkids 3\nOBJECT poly\nkids 0\n", "world''{poly''}",
     "error reading expected child object 2 of 3 at line: 5\n"},
    {"claimed_kids", "VESKb\nOBJECT world\nkids 2147483647\n", "world''", "error reading expected child object 1 of 2147483647 at line: 3\n"},
    {"lines_after_the_tree", "VESKb\nOBJECT world\nkids 0\nOBJECT poly\nkids 0\n", "world''", ""},
    {"two_objects_in_a_block", "VESKb\nOBJECT world\nkids 1\nOBJECT poly\nloc 1 0 0\nOBJECT group\nnumvert 1\n0 0 0\nkids 0\n",
     "world''{poly'',group''(1 0 0)}", ""},
    {"two_objects_on_top", "VESKb\nOBJECT poly\nname \"lost\"\nOBJECT world\nkids 0\n", "world''", ""},
    {"unknown_lines", "VESKb\nOBJECT world\nfoo 1 2\nbar\nkids 0\n", "world''", "ignoring foo\nignoring bar\n"},
    {"blank_line_repeats_the_word", "VESKb\nOBJECT world\nname \"a\"\n\nfoo\n\nkids 0\n", "world'a'",
     "expected quoted name at line 4 (got 0 tokens)\nignoring foo\nignoring foo\n"},
    {"blank_lines_do_nothing_after_scanned_words", "VESKb\nOBJECT poly\n\nloc 1 2 3\n\nrot 1 0 0 0 1 0 0 0 1\n\nnumvert 0\n\nkids 0\n", "poly''", ""},
    // ---- texts ----
    {"escaped_name", "VESKb\nOBJECT poly\nname \"a \\\"quoted\\\" \\\\ word\"\nkids 0\n", "poly'a \"quoted\" \\ word'", ""},
    {"unquoted_name", "VESKb\nOBJECT poly\nname plain\nkids 0\n", "poly'plain'", ""},
    {"empty_name_wins", "VESKb\nOBJECT poly\nname \"a\"\nname \"\"\nkids 0\n", "poly''", ""},
    {"unterminated_name", "VESKb\nOBJECT poly\nname \"open\nkids 0\n", "poly'open'", ""},
    {"name_of_two_words", "VESKb\nOBJECT poly\nname a b\nkids 0\n", "poly''", "expected quoted name at line 3 (got 3 tokens)\n"},
    {"forty_words", "VESKb\nOBJECT poly\nname 1 2 3 4 5 6 7 8 9 0 1 2 3 4 5 6 7 8 9 0 1 2 3 4 5 6 7 8 9 0 1 2 3 4 5 6 7 8 9\nkids 0\n", "poly''",
     "expected quoted name at line 3 (got 40 tokens)\n"},
    {"data", "VESKb\nOBJECT poly\ndata 5\nab\ncd\nkids 0\n", "poly'' data=ab\ncd", ""},
    {"data_of_nothing_keeps_the_text", "VESKb\nOBJECT poly\ndata 1\nx\ndata 0\nkids 0\n", "poly'' data=x", ""},
    {"data_beyond_the_end", "VESKb\nOBJECT poly\ndata 2000000000\nabc", "poly'' data=abc", ""},
    {"data_without_number", "VESKb\nOBJECT poly\ndata\nkids 0\n", "poly''", "expected 'data <number>' at line 3\n"},
    {"data_that_looks_like_lines", "VESKb\nOBJECT poly\ndata 17\nOBJECT x\nkids 2\n\n\nkids 0\n", "poly'' data=OBJECT x\nkids 2\n\n", ""},
    {"url", "VESKb\nOBJECT poly\nurl \"http://x/ y\"\nkids 0\n", "poly'' url=http://x/ y", ""},
    // ---- geometry ----
    {"quad", "VESKb\n" RED "OBJECT poly\n" QUAD_VERTICES QUAD_SURFACE "kids 0\n", "poly''" QUAD_TREE "[20 m3 0 1 2]", ""},
    {"surface_lines_in_any_order", "VESKb\n" RED "OBJECT poly\n" QUAD_VERTICES "numsurf 1\nmat 0\nSURF 49\nrefs 2\n1 0.5 1\n2 0 0\nkids 0\n",
     "poly''" QUAD_TREE "[31 m3 1/0.5/1 2]", ""},
    {"surface_without_lines", "VESKb\nOBJECT poly\n" QUAD_VERTICES "numsurf 2\nrefs 0\nSURF 010\nrefs 0\nkids 0\n", "poly''" QUAD_TREE "[20 m1][8 m1]", ""},
    {"numbers_spread_over_lines", "VESKb\nOBJECT poly\nnumvert 2\n1 2\n3 4 5\n\n6\nnumsurf 1\nrefs 2\n0\n0.5 1 1 0\n0\nkids 0\n", "poly''(1 2 3)(4 5 6)[20 m1 0/0.5/1 1]", ""},
    {"missing_vertex", "VESKb\nOBJECT poly\n" QUAD_VERTICES "numsurf 1\nSURF 0x20\nmat 0\nrefs 3\n0 0 0\n7 0 0\n-1 0 0\nkids 0\n", "poly''" QUAD_TREE "[20 m1 0]",
     "line 10 Surface material index (0) out of range [palette is 0->-1]\nERROR in file line 13 - surface's vertex index invalid (7)\nERROR in file line 14 - surface's vertex index invalid (-1)\n"},
    {"material_out_of_range", "VESKb\n" RED "OBJECT poly\n" QUAD_VERTICES "numsurf 2\nSURF 0\nmat 1\nrefs 0\nmat -5\nrefs 0\nkids 0\n",
     "poly''" QUAD_TREE "[0 m1][20 m0]", "line 11 Surface material index (1) out of range [palette is 0->0]\n"},
    {"claimed_vertices", "VESKb\nOBJECT poly\nnumvert 2147483647\n1 2 3\n4\nname \"x\"\nkids 0\n", "poly'x'(1 2 3)(4 0 0)", ""},
    {"claimed_references", "VESKb\nOBJECT poly\n" QUAD_VERTICES "numsurf 1\nrefs 2147483647\n0 0 0\n1 0 0\nkids 0\n", "poly''" QUAD_TREE "[20 m1 0 1]", ""},
    {"claimed_surfaces", "VESKb\nOBJECT world\nkids 1\nOBJECT poly\nnumsurf 2147483647\nrefs 0\n", "world''{poly''[20 m1][20 m1]}",
     "error whilst reading surface at line: 6\nerror reading expected child object 1 of 1 at line: 6\n"},
    {"surfaces_cut_short_on_top", "VESKb\nOBJECT poly\nnumsurf 1\n", "", "error whilst reading surface at line: 3\n"},
    {"object_inside_a_surface", "VESKb\nOBJECT world\nkids 1\nOBJECT poly\nnumsurf 1\nSURF 0\nOBJECT poly\nname \"still the same\"\nkids 0\n",
     "world''{poly'still the same'[0 m1]}",
     "didn't expect 'OBJECT' before a surface had finished!\nIt looks like things may have gone a bit wrong here - giving up reading a surface\nand going back to toplevel parsing.\n"},
    {"surf_without_flags", "VESKb\nOBJECT poly\nnumsurf 1\nSURF\nbad\nrefs 0\nkids 0\n", "poly''[20 m1]", "SURF should be followed by one flags argument\nignoring bad\n"},
    {"strange_flags", "VESKb\nOBJECT poly\nnumsurf 2\nSURF zzz\nrefs 0\nSURF 0xFF\nrefs 0\nkids 0\n", "poly''[0 m1][3F m1]", ""},
    {"second_numvert_appends", "VESKb\nOBJECT poly\nnumvert 1\n1 1 1\nnumvert 1\n2 2 2\nnumsurf 1\nrefs 1\n1 0 0\nkids 0\n", "poly''(1 1 1)(2 2 2)[20 m1 1]", ""},
    {"huge_and_tiny_numbers", "VESKb\nOBJECT poly\nnumvert 1\n1e-50 -1e-3 0.000099999999\nkids 0\n", "poly''(0 -0.001 0.0001)", ""},
    {"object_mat_sets_what_is_there", "VESKb\n" RED "OBJECT poly\nmat 0\nnumsurf 1\nrefs 0\nmat 0\nnumsurf 1\nrefs 0\nmat 4\nkids 0\n", "poly''[20 m3][20 m1]",
     "line 10 object material index (4) out of range [palette is 0->0]\n"},
    {"material_of_21_words", "VESKb\nMATERIAL \"r\" rgb 1 0 0\nOBJECT poly\nkids 0\n", "poly''", "expected 21 params after \"MATERIAL\" - line 2\n"},
    {"cube_word", "VESKb\nOBJECT poly\ncube 2 4 6\nscale 1 0.5 1\nnumsurf 1\nrefs 1\n6 0 0\nkids 0\n",
     "poly''(-1 -1 -3)(1 -1 -3)(1 -1 3)(-1 -1 3)(-1 1 3)(1 1 3)(1 1 -3)(-1 1 -3)"
     "[20 m1 0 1/1/0 2/1/1 3/0/1]", nullptr},
    {"shape_words_without_numbers", "VESKb\nOBJECT poly\nsphere\ncube 1\nellipse 1\ncylinder 1\nscale 1\nkids 0\n", "poly''",
     "expected 'sphere <float>' at line 3\nexpected 'cube <float> <float> <float>' at line 4\nexpected 'ellipse <float> <float>' at line 5\n"
     "expected 'cylinder <float radius> <bool top(1 = true, 0 = false)> <bool bottom>' at line 6\nexpected 'scale <float> <float> <float>' at line 7\n"},
    // ---- frames ----
    {"location", "VESKb\nOBJECT world\nkids 1\nOBJECT group\nloc 1 0 0\nkids 1\nOBJECT poly\nloc 0 2 0\nnumvert 1\n0 0 3\nkids 0\n", "world''{group''{poly''(1 2 3)}}", ""},
    {"child_of_a_turned_parent", "VESKb\nOBJECT world\nkids 1\nOBJECT group\nrot 0 1 0 -1 0 0 0 0 1\nkids 1\nOBJECT poly\nloc 1 0 0\nnumvert 1\n1 0 0\nkids 0\n",
     "world''{group''{poly''(0 2 0)}}", ""},
    {"own_rotation_first", "VESKb\nOBJECT world\nkids 1\nOBJECT group\nrot 0 1 0 -1 0 0 0 0 1\nkids 1\nOBJECT poly\nrot 1 0 0 0 0 1 0 -1 0\nnumvert 1\n0 1 0\nkids 0\n",
     "world''{group''{poly''(0 0 1)}}", ""},
    {"top_object_is_not_moved", "VESKb\nOBJECT poly\nloc 5 5 5\nrot 0 1 0 -1 0 0 0 0 1\nnumvert 1\n1 0 0\nkids 0\n", "poly''(1 0 0)", ""},
    {"short_rotation", "VESKb\nOBJECT world\nkids 1\nOBJECT poly\nrot 0 1 0 -1 0\nnumvert 1\n1 0 2\nkids 0\n", "world''{poly''(0 1 2)}", ""},
};
// clang-format on
void PrintTo(const read_case &c, std::ostream *out) { *out << c.name; }

// The complaints on the console of debug mode; the echo of the lines is left out.
std::string complaints_of(const std::string &console)
{
    std::istringstream lines(console.substr(
        0, std::min(console.find("calculating normals"), console.find("no objects"))));
    std::string all;
    for (std::string line; std::getline(lines, line);) {
        bool wanted = line.find("material index (") != std::string::npos;
        for (const char *start : {"expected ", "ignoring ", "ERROR ", "error ", "didn't ",
                                  "It looks", "and going", "SURF should", "texture '"})
            wanted = wanted || line.starts_with(start);
        if (wanted)
            all += line + "\n";
    }
    return all;
}

class ReadFile : public SceneTest, public testing::WithParamInterface<read_case> {
protected:
    std::string load(const std::string &text)
    {
        const std::string file = temporary_file("model.vesk");
        write_text(file, text);
        object_t *top = readfile_vesk2(file.c_str());
        const std::string tree = top ? describe(top) : "";
        if (top)
            object_free(top);
        return tree;
    }
};
class Reader : public ReadFile {};

TEST_P(ReadFile, GivesItsTreeAndItsComplaints)
{
    const read_case &c = GetParam();
    const std::string quick = load(c.text); // blocks of surfaces at a stroke
    if (c.messages)
        EXPECT_EQ(quick, c.tree);
    else
        EXPECT_EQ(quick.find(c.tree), 0U) << quick;
    const std::string told = last_message();

    create_palette();
    set_debug_mode(true); // line by line, each one echoed
    recording().console.clear();
    EXPECT_EQ(load(c.text), quick);
    EXPECT_EQ(last_message(), told);
    const std::string complaints = complaints_of(recording().console);
    EXPECT_EQ(complaints, c.messages ? c.messages : "");
    EXPECT_EQ(told.find("problem") != std::string::npos, !complaints.empty() && *c.tree != 0);
}
INSTANTIATE_TEST_SUITE_P(Files, ReadFile, testing::ValuesIn(read_cases));

struct refusal_case {
    const char *name;
    const char *text;
    const char *box;
};
// clang-format off
const refusal_case refusal_cases[] = {
    {"other_magic",    "VESX1\n",              "is not a valid VESK file."},
    {"empty",          "",                     "is not a valid VESK file."},
    {"byte_order_mark","\xEF\xBB\xBFVESKb\n",  "is not a valid VESK file."},
    {"newer",          "VESKc\n",              "newer version of VESK.\nSee 'about'"},
    {"much_newer",     "VESKffffffffffff\n",   "newer version of VESK.\nSee 'about'"},
};
// clang-format on
void PrintTo(const refusal_case &c, std::ostream *out) { *out << c.name; }
class RefusedFile : public SceneTest, public testing::WithParamInterface<refusal_case> {};

TEST_P(RefusedFile, IsToldInABox)
{
    const std::string file = temporary_file("refused.vesk");
    write_text(file, GetParam().text);
    EXPECT_EQ(readfile_vesk2(file.c_str()), nullptr);
    ASSERT_EQ(recording().boxes.size(), 1U);
    EXPECT_EQ(recording().boxes[0].find("Load VESK file:\n"), 0U);
    EXPECT_NE(recording().boxes[0].find(GetParam().box), std::string::npos);
    EXPECT_EQ(current_file().file, "refused.vesk");
}
INSTANTIATE_TEST_SUITE_P(Header, RefusedFile, testing::ValuesIn(refusal_cases));

TEST_F(Reader, TellsOfAFileThatCannotBeOpened)
{
    EXPECT_EQ(readfile_vesk2("/nowhere/x.vesk"), nullptr);
    EXPECT_EQ(recording().boxes.at(0),
              "Load VESK file:\n\ncan't open file /nowhere/x.vesk for reading\n");
}

TEST_F(Reader, ShowsItsStagesAndNoTouchOfTheWorld)
{
    load("VESKb\nOBJECT poly\nkids 0\n");
    const std::vector<std::string> expected = {"display_message \"Loading VESK file...\"",
                                               "display_message \"calculating normals...\"",
                                               "display_message \"Done.\"", "set_progress_bar 0"};
    EXPECT_EQ(recording().scripts, expected);
    EXPECT_EQ(vesk_get_world()->num_children, 0);
    load("VESKb\nfoo\n");
    EXPECT_EQ(last_message(), "no objects loaded");
}

TEST_F(Reader, TellsHowManyLinesWereFaultyAndTheFirst)
{
    load("VESKb\nOBJECT poly\nfoo\nbar\nkids 0\n");
    EXPECT_EQ(last_message(), "2 problems in the file, the first: ignoring foo");
    load("VESKb\nOBJECT poly\nkids 0\n");
    EXPECT_EQ(last_message(), "Done.");
}

TEST_F(Reader, SplitsLongLinesAfter254Characters)
{
    const std::string name(247, 'n'); // with "name " and "fo" 254 characters
    EXPECT_EQ(load("VESKb\nOBJECT poly\nname " + name + "foo bar\nkids 0\n"),
              "poly'" + name + "fo'");
    EXPECT_EQ(last_message(), "1 problem in the file: ignoring o"); // "o bar" is a line of its own
}

TEST_F(Reader, TakesZeroForWhatIsNoNumber)
{
    EXPECT_EQ(load("VESKb\nOBJECT poly\nloc nan 0 0\nrot 1 0 0  0 inf 0  0 0 1\nnumvert 3\n"
                   "1 2 nan\n-inf 5 6\n7 1e39 9\nnumsurf 1\nSURF 0x0\nrefs 1\n0 inf 0.5\n"
                   "kids 0\n"),
              "poly''(1 2 0)(0 5 6)(7 0 9)[0 m1 0/0/0.5]");
    EXPECT_EQ(last_message(),
              "1 problem in the file: 5 numbers are none or too large - 0 is taken");
}

struct words_case {
    const char *lines; // of one object
    float repeat_x, repeat_y, offset_x, offset_y;
    const char *complaint; // the first; null for none
};

TEST_F(Reader, TakesTheWordsOfATextureWholeOrNotAtAll)
{
    // clang-format off
    const words_case rows[] = {
        {"texrep 2 3\ntexoff 0.5 -0.25\n", 2, 3, 0.5f, -0.25f, nullptr},
        {"texrep 2 3\ntexrep 4 5\n",       4, 5, 0, 0, nullptr},
        {"texrep 2\n",                     1, 1, 0, 0, "expected 'texrep <float> <float>' at line 3"},
        {"texrep 2 3 4\n",                 1, 1, 0, 0, "expected 'texrep <float> <float>' at line 3"},
        {"texoff 1\n",                     1, 1, 0, 0, "expected 'texoff <float> <float>' at line 3"},
        {"texoff 1 2 3\n",                 1, 1, 0, 0, "expected 'texoff <float> <float>' at line 3"},
        {"texrep a b\n",                   0, 0, 0, 0, nullptr}, // no numbers: 0, as everywhere
        {"texture a b\n",                  1, 1, 0, 0, "expected quoted texture name at line 3"},
        {"url \"a\" b\n",                  1, 1, 0, 0, "expected one arg to url at line 3 (got "},
    };
    // clang-format on
    const std::string file = temporary_file("words.vesk");
    for (const words_case &c : rows) {
        write_text(file, std::string("VESKb\nOBJECT poly\n") + c.lines + "kids 0\n");
        object_t *object = readfile_vesk2(file.c_str());
        ASSERT_NE(object, nullptr) << c.lines;
        EXPECT_EQ(object->texture_repeat_x, c.repeat_x) << c.lines;
        EXPECT_EQ(object->texture_repeat_y, c.repeat_y) << c.lines;
        EXPECT_EQ(object->texture_offset_x, c.offset_x) << c.lines;
        EXPECT_EQ(object->texture_offset_y, c.offset_y) << c.lines;
        const std::string told =
            c.complaint ? std::string("1 problem in the file: ") + c.complaint : "Done.";
        EXPECT_TRUE(last_message().starts_with(told)) << c.lines << last_message();
        object_free(object);
    }
}

TEST_F(Reader, KeepsBytesThatAreNoText)
{
    using namespace std::string_literals;
    EXPECT_EQ(load("VESKb\nOBJECT poly\nname \"\xFF\xC3\x28\"\ndata 4\na\0b\n\nkids 0\n"s),
              "poly'\xFF\xC3\x28' data=a");
    EXPECT_EQ(load("VESKb\nOBJECT poly\nna\0me \"x\"\nkids 0\n"s), "poly''");
    EXPECT_EQ(last_message(), "1 problem in the file: ignoring na");
}

TEST_F(Reader, MapsMaterialsToEqualPaletteEntries)
{
    const std::string twice =
        "VESKb\nMATERIAL \"new\" rgb 0.1 0.2 0.3  amb 1 0 0  emis 0 1 0  spec "
        "0 0 1  shi 72  trans 0.5\n" RED "OBJECT poly\nnumsurf 2\nmat 0\nrefs "
        "0\nmat 1\nrefs 0\nkids 0\n";
    EXPECT_EQ(load(twice), "poly''[20 m15][20 m3]");
    EXPECT_EQ(load(twice), "poly''[20 m15][20 m3]");
    const material *mat = vesk_palette_get_material(15);
    EXPECT_STREQ(mat->name, "new");
    EXPECT_EQ(mat->ambient[0], 1);
    EXPECT_EQ(mat->emissive[1], 1);
    EXPECT_EQ(mat->specular[2], 1);
    EXPECT_EQ(mat->transparency, 0.5f);
}

TEST_F(Reader, TenThousandNestedObjectsLoadAndDeeperOnesStopAtTheLimit)
{
    for (const int depth : {10000, 100005}) {
        std::string text = "VESKb\n";
        for (int i = 0; i < depth; ++i)
            text += "OBJECT group\nkids 1\n";
        text += "OBJECT poly\nkids 0\n";
        const std::string file = temporary_file("deep.vesk");
        write_text(file, text);
        object_t *top = readfile_vesk2(file.c_str());
        int n = 0;
        for_each_object(top, [&](object_t *) { ++n; });
        EXPECT_EQ(n, std::min(depth + 1, 100000));
        EXPECT_EQ(last_message().find("1 problem") == 0, depth > 100000) << last_message();
        object_free(top);
    }
}

TEST_F(Reader, SmallFilesOfCostlyWordsEndSoon)
{
    std::string text = "VESKb\nOBJECT poly\n";
    for (int i = 0; i < 5000; ++i)
        text += "cylinder 1 1 1\nmat 0\n";
    text += "kids 0\n";
    const std::string file = temporary_file("costly.vesk");
    write_text(file, text);
    object_t *top = readfile_vesk2(file.c_str());
    EXPECT_NE(last_message().find("problems in the file"), std::string::npos);
    EXPECT_GT(top->num_vertices, 1000);
    object_free(top);
}

// ---- textures by name ----

class Textures : public Reader {
protected:
    void TearDown() override
    {
        textures_reset_for_test();
        Reader::TearDown();
    }
    object_t *load_textured(const char *name)
    {
        const std::string file = temporary_file("textured.vesk");
        write_text(file, std::string("VESKb\nOBJECT poly\ntexture \"") + name +
                             "\"\ntexrep 2 3\ntexoff 0.5 0\nkids 0\n");
        return readfile_vesk2(file.c_str());
    }
};

TEST_F(Textures, AreFoundBesideTheModel)
{
    vesk_register_builtin_texture_loaders();
    write_text(temporary_file("wood.gif"), write_gif(sample_picture(2, 2, 4), {}));
    object_t *object = load_textured("maps/wood.gif");
    EXPECT_EQ(object->has_texture, 1);
    EXPECT_EQ(object->texture_repeat_y, 3);
    EXPECT_STREQ(texture_id_to_name(object->texture), temporary_file("wood.gif").c_str());
    EXPECT_STREQ(texture_id_to_origname(object->texture), "maps/wood.gif");
    object_t *again = load_textured("wood.gif");
    EXPECT_EQ(again->texture, object->texture);
    EXPECT_EQ(vesk_get_num_textures(), 1);
    const std::string model = temporary_file("m.vesk");
    EXPECT_STREQ(search_texture_save(model.c_str(), texture_id_to_name(0)), "wood.gif");
    EXPECT_STREQ(search_texture_save("/elsewhere/m.vesk", "/data/wood.gif"), "/data/wood.gif");
    EXPECT_STREQ(search_texture_save("/data/m.vesk", "/data/maps/wood.gif"), "maps/wood.gif");
    object_free(object);
    object_free(again);
}

TEST_F(Textures, ThatAreMissingKeepTheirNames)
{
    object_t *object = load_textured("gone.gif");
    EXPECT_EQ(object->has_texture, 0);
    EXPECT_STREQ(object_missing_texture(object), "gone.gif");
    EXPECT_EQ(last_message(), "1 problem in the file: texture 'gone.gif' not found - line 3");
    EXPECT_TRUE(recording().boxes.empty());
    object_texture_clear(object);
    EXPECT_EQ(object_missing_texture(object), nullptr);
    object_free(object);
}

} // namespace
