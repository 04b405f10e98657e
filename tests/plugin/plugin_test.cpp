// Importers and plug-ins, loaded into the test program as into the real one.

#include "tests/plugin/plugin_test.h"

#include "edit/selection.h"
#include "model/world.h"
#include "plugin/dialogs.h"
#include "plugin/importers.h"

#include <dlfcn.h>
#include <fstream>

namespace {

TEST_F(Plugins, ASampleInCAddsACommandAndAnImporter)
{
    const std::string path = plugin_file("sample_plugin");
    ASSERT_EQ(plugin_load(path.c_str()), 1);

    EXPECT_EQ(run("get_plugin_list"), "\"" + path + "\" \n");
    EXPECT_EQ(run("get_plugin_info", path), "sample plug-in, version 1");
    EXPECT_EQ(run("get_plugin_about", "unknown"), "");
    EXPECT_EQ(run("file_load", "/some/where.sample"), "1");
    ASSERT_NE(get_current_object(), nullptr);
    EXPECT_STREQ(get_current_object()->name, "where.sample");
}

TEST_F(Plugins, ForeignChangesToTheModelAreFound)
{
    ASSERT_EQ(plugin_load(plugin_file("sample_plugin").c_str()), 1);
    object_t *square = add_square(1);
    select_object(square);
    const std::string before = run("model_state");

    EXPECT_EQ(run("sample_vandalise"), "done");

    EXPECT_NE(run("model_state"), before);
    EXPECT_NE(run("get_counts"), "");
}

TEST_F(Plugins, AFaultInOneCostsADialogOnly)
{
    ASSERT_EQ(plugin_load(plugin_file("sample_plugin").c_str()), 1);
    EXPECT_EQ(run("sample_fault"), "");
    ASSERT_FALSE(recording().boxes.empty()) << recording().console;
    EXPECT_TRUE(recording().boxes.back().starts_with("Exception occured in command sample_fault"));
}

struct refused_case {
    const char *name;
    const char *file;
    const char *reason;
};
// clang-format off
const refused_case refused_cases[] = {
    {"without_exit",  "plugin_without_exit", "VESKPluginExit not found in plugin file "},
    {"refusing",      "plugin_refusing",     "Initialisation of plugin "},
    {"faulting",      "plugin_faulting",     "EXCEPTION_ACCESS_VIOLATION"},
    {"missing",       "no_such_plugin",      "No such file"},
};
// clang-format on
void PrintTo(const refused_case &c, std::ostream *out) { *out << c.name; }
class RefusedPlugin : public Plugins, public testing::WithParamInterface<refused_case> {};

TEST_P(RefusedPlugin, IsToldAndNotListed)
{
    const std::string path = plugin_file(GetParam().file);

    EXPECT_EQ(plugin_load(path.c_str()), 0);

    ASSERT_FALSE(recording().boxes.empty());
    EXPECT_TRUE(recording().boxes.back().starts_with("Error loading plugin - " + path));
    EXPECT_NE(recording().boxes.back().find(GetParam().reason), std::string::npos);
    EXPECT_EQ(run("get_plugin_list"), "\n");
}
INSTANTIATE_TEST_SUITE_P(Files, RefusedPlugin, testing::ValuesIn(refused_cases));

object_t *load_nothing(const char *) { return nullptr; }
[[gnu::no_sanitize("undefined")]] object_t *load_fault(const char *)
{
    volatile int *volatile nowhere = nullptr;
    *nowhere = 1;
    return nullptr;
}

TEST_F(Plugins, ImportersAreFoundBySuffix)
{
    vesk_register_file_importer(".vec .r2v", "Vector files", load_nothing, nullptr);

    EXPECT_STREQ(vesk_get_file_importer_by_suffix(".VESK")->suffix, ".vesk");
    EXPECT_STREQ(vesk_get_file_importer_by_suffix(".r2v")->suffix, ".vec .r2v");
    EXPECT_EQ(vesk_get_file_importer_by_suffix(".xyz"), nullptr);
    EXPECT_EQ(vesk_replace_importer_function(".Vec .r2v", load_fault)->load, load_fault);
    EXPECT_EQ(run("get_importer_info"),
              "Importers:\n\n.vesk\t\tVESK files\t\tinternal importer, version 3.6\n"
              ".vec .r2v\t\tVector files\t\t-\n");
}

TEST_F(Plugins, AFailedImportTouchesNothing)
{
    vesk_register_file_importer(".bad", "Bad files", load_fault, nullptr);
    object_t *square = add_square(1);
    select_object(square);

    EXPECT_EQ(run("file_load", "x.bad"), "0");
    EXPECT_EQ(run("file_load", "noname"), "0");
    EXPECT_EQ(recording().boxes.back(),
              "import file: I need a filename with a suffix (e.g. file.vesk) - got 'noname'");
    EXPECT_EQ(run("file_load", "x.xyz"), "0");
    EXPECT_EQ(recording().boxes.back(),
              "Sorry, there is no geometry importer for .xyz files\nI can import these files:\n"
              ".vesk (VESK files)\n.bad (Bad files)\n");
    EXPECT_EQ(get_current_object(), square);
}

TEST_F(Plugins, DialogsGetTheirFiltersAsAList)
{
    recording().answers["get_importfilename"] = "";
    vesk_file_select_import("Load [it]");
    EXPECT_EQ(recording().scripts.back(),
              "get_importfilename \"Load \\[it\\]\" \"\\{Geometry\\\\ files .vesk\\} "
              "\\{VESK\\\\ files .vesk\\} \\{All\\\\ files *\\}\"");
}

} // namespace
