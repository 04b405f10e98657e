#include "base/prefs.h"

#include "base/messages.h"
#include "base/prefs_file.h"
#include "tests/support/scene_test.h"

#include <cstdlib>
#include <filesystem>
#include <sys/stat.h>

namespace {

class Prefs : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        const std::string folder = temporary_file("profile");
        std::filesystem::create_directory(folder);
        setenv("USERPROFILE", folder.c_str(), 1);
        file = folder + "/veskprefs.txt";
        std::filesystem::remove(file);
    }
    void TearDown() override
    {
        unsetenv("USERPROFILE");
        SceneTest::TearDown();
    }
    void read(const std::string &text)
    {
        write_text(file, text);
        init_prefs();
    }
    std::string file;
};

TEST_F(Prefs, TableHasItsRowsAndTheTwiceBoundKey)
{
    EXPECT_EQ(prefs_table().size(), 190U); // three of our own after the fixed ones
    EXPECT_STREQ(prefs_table()[0].key, "num_surface_div");
    EXPECT_STREQ(prefs_table()[36].key, "cpwin_width");
    EXPECT_STREQ(prefs_table()[149].key, "extrude_cap_end");
    EXPECT_EQ(prefs_table()[149].address, prefs_table()[158].address);
    EXPECT_STREQ(prefs_table()[180].key, "snap_together_distance");
}

TEST_F(Prefs, EverythingSurvivesSavingAndReading)
{
    prefs.grid = 0.12345678;
    prefs.col_box = 0xABCDEF;
    prefs.gridsnap = 1;
    prefs.fov = -7;
    prefs_set_string(&prefs.pov_file_header, "a \"quoted\" \\ text [exit] $x");
    const std::string render = prefs.render_command;

    run("save_settings");
    prefs_set_defaults();
    init_prefs();

    EXPECT_DOUBLE_EQ(prefs.grid, 0.123457); // six decimals
    EXPECT_EQ(prefs.col_box, 0xABCDEF);
    EXPECT_EQ(prefs.gridsnap, 1);
    EXPECT_EQ(prefs.fov, -7);
    EXPECT_STREQ(prefs.pov_file_header, "a \"quoted\" \\ text [exit] $x");
    EXPECT_EQ(prefs.render_command, render);
    EXPECT_TRUE(read_text(file).starts_with("VESKPR 12\nnum_surface_div 12\n"));
}

TEST_F(Prefs, ValuesAreReadLeniently)
{
    read("VESKPR 12\n# a comment\n\nGRID 2.5\ngridsnap 1\nsphere_triangles 0.7\nfov 49.9\n"
         "col_line 0xFF00ff\nno_such_key 5\nmeshx 3\n\r\ncol_box FF\r\nmeshy 5\r\n");

    EXPECT_EQ(prefs.grid, 2.5);
    EXPECT_EQ(prefs.gridsnap, 1);
    EXPECT_EQ(prefs.sphere_triangles, 0);
    EXPECT_EQ(prefs.fov, 49);
    EXPECT_EQ(prefs.col_line, 0xFF00FF);
    EXPECT_EQ(prefs.meshx, 3);
    EXPECT_NE(prefs.col_box, 0xFF); // not as it is written: the setting stays
    EXPECT_EQ(prefs.meshy, 5);
    EXPECT_NE(recording().console.find("prefs token 'no_such_key' in prefs file (line 8) - ignored "
                                       "(it's probably no longer used)\n"),
              std::string::npos);
}

TEST_F(Prefs, TextsOfAnyLengthAndContentCostNothingBelowThem)
{
    const std::string header = "two\nlines, \\n, \"quoted\"\r" + std::string(1000, '\\');
    prefs_set_string(&prefs.pov_file_header, header.c_str());
    prefs.fov = 31;
    run("save_settings");
    prefs_set_defaults();
    init_prefs();
    EXPECT_EQ(prefs.pov_file_header, header);
    EXPECT_EQ(prefs.fov, 31);
    for (const vesk_pref_t &row : prefs_table()) // each stands below some other
        if (row.kind == PREF_STRING)
            prefs_set_string(static_cast<char **>(row.address), header.c_str());
    prefs.meshx = 77;
    run("save_settings");
    prefs_set_defaults();
    init_prefs();
    EXPECT_EQ(prefs.meshx, 77);
    EXPECT_EQ(prefs.render_command, header);
}

TEST_F(Prefs, ALineThatIsNoPairStopsTheReading)
{
    read("VESKPR 12\nmeshx 3\nmeshy\nfov 20\n");

    EXPECT_EQ(prefs.meshx, 3);
    EXPECT_EQ(prefs.fov, 50);
    EXPECT_NE(recording().console.find("error reading prefs file (line 2) - expected token value "
                                       "pair - actually found 1 items 'meshy\n'\n"),
              std::string::npos);
}

struct header_case {
    const char *name;
    const char *line;
    const char *box; // how it begins, behind the quoted file name if it has one
};
// clang-format off
const header_case header_cases[] = {
    {"old_magic",   "VESK3P 12\n", "is a prefs file from an old version of VESK.\nsave-settings to replace it.\n."},
    {"foreign",     "hello\n",     "is not a valid VESK prefs file."},
    {"old_version", "VESKPR 11\n", "The prefs file is from an older version of VESK.\nsave-settings to replace it.\n."},
};
// clang-format on
void PrintTo(const header_case &c, std::ostream *out) { *out << c.name; }
class PrefsHeader : public Prefs, public testing::WithParamInterface<header_case> {};

TEST_P(PrefsHeader, OfAnotherKindIsToldAndIgnored)
{
    read(std::string(GetParam().line) + "meshx 3\n");

    EXPECT_EQ(prefs.meshx, 8);
    ASSERT_EQ(recording().boxes.size(), 1U);
    EXPECT_NE(recording().boxes[0].find(GetParam().box), std::string::npos);
}
INSTANTIATE_TEST_SUITE_P(Lines, PrefsHeader, testing::ValuesIn(header_cases));

TEST_F(Prefs, AFailedSaveIsToldAndKeepsTheOldFile)
{
    const std::string folder = temporary_file("nowhere/deeper");
    setenv("USERPROFILE", folder.c_str(), 1);

    run("save_settings");

    EXPECT_EQ(recording().boxes.back(), "can't open preferences file '" + folder +
                                            "/veskprefs.txt' for writing - settings not saved\n");
}

TEST_F(Prefs, GettersTellUnknownKeysAndOtherKinds)
{
    testing::internal::CaptureStderr();
    EXPECT_EQ(vesk_prefs_get_int("grid"), -1);
    EXPECT_EQ(vesk_prefs_get_double("nothing"), -1.0);
    EXPECT_EQ(vesk_prefs_get_key("nothing"), nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "vesk_prefs_get_int: pref grid is not type 'int' (actually type 1)\n"
              "vesk_prefs_get_double: nothing not found in preferences\n"
              "vesk_prefs_get_string: nothing not found in preferences\n");
    EXPECT_EQ(vesk_prefs_get_hex("COL_BOX"), 0x00FF00);
    EXPECT_STREQ(vesk_prefs_get_string("plugin_dir"), "$VESK_HOME/plugins");
    EXPECT_EQ(prefs_key_code("Space"), 32);
    EXPECT_EQ(prefs_key_code("nonsense"), 0);
}

} // namespace
