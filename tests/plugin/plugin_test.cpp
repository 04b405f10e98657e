// Importers and plug-ins, loaded into the test program as into the real one.

#include "tests/plugin/plugin_test.h"

#include "base/home.h"
#include "base/messages.h"
#include "edit/document/selection.h"
#include "model/each.h"
#include "model/object_tree.h"
#include "model/textures/textures.h"
#include "model/world.h"
#include "model/world_check.h"
#include "plugin/dialogs.h"
#include "plugin/filters.h"
#include "plugin/importers.h"

#include <algorithm>
#include <filesystem>
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
    vesk_register_file_importer(".own", "Own files", load_nothing, nullptr);

    EXPECT_STREQ(vesk_get_file_importer_by_suffix(".VESK")->suffix, ".vesk");
    EXPECT_STREQ(vesk_get_file_importer_by_suffix(".r2v")->suffix, ".vec .r2v");
    EXPECT_EQ(vesk_get_file_importer_by_suffix(".xyz"), nullptr);
    EXPECT_EQ(vesk_replace_importer_function(".Vec .r2v", load_fault)->load, load_fault);
    EXPECT_TRUE(run("get_importer_info")
                    .starts_with("Importers:\n\n.vesk\t\tVESK files\t\tinternal importer, "
                                 "version 3.6\n.3ds\t\t3D Studio files\t\t"));
    EXPECT_TRUE(run("get_importer_info").ends_with(".own\t\tOwn files\t\t-\n"));
}

TEST_F(Plugins, AFaultOfAnImporterTouchesNothing)
{
    vesk_register_file_importer(".bad", "Bad files", load_fault, nullptr);
    object_t *square = add_square(1);
    select_object(square);

    EXPECT_EQ(run("file_load", "x.bad"), "0");
    EXPECT_EQ(run("file_load", "noname"), "0");
    EXPECT_EQ(recording().boxes.back(),
              "import file: I need a filename with a suffix (e.g. file.vesk) - got 'noname'");
    EXPECT_EQ(run("file_load", "x.xyz"), "0");
    EXPECT_TRUE(recording().boxes.back().starts_with(
        "Sorry, there is no geometry importer for .xyz files\nI can import these files:\n"
        ".vesk (VESK files)\n.3ds (3D Studio files)\n"));
    EXPECT_TRUE(recording().boxes.back().ends_with(".bad (Bad files)\n"));
    EXPECT_EQ(get_current_object(), square);
}

TEST_F(Plugins, DialogsGetTheirFiltersAsAList)
{
    recording().answers["get_importfilename"] = "";
    vesk_file_select_import("Load [it]");
    const std::string script = recording().scripts.back();
    EXPECT_TRUE(script.starts_with("get_importfilename \"Load \\[it\\]\" \"\\{Geometry\\\\ files "
                                   ".vesk\\\\ .3ds\\\\ .dxf"))
        << script;
    EXPECT_TRUE(script.ends_with("\\{All\\\\ files *\\}\"")) << script;
}

// ---- what plug-ins throw, shadow and replace ----

TEST_F(Plugins, ExceptionsOfOneCostDialogs)
{
    const std::string path = plugin_file("plugin_throwing");
    EXPECT_EQ(plugin_load(path.c_str()), 0);
    EXPECT_EQ(recording().boxes.back(), "Error loading plugin - " + path +
                                            "\nfault in VESKPluginInit: an initialisation that "
                                            "throws");
    crash_guard::forget_faults_for_test();
    EXPECT_EQ(plugin_load(path.c_str()), 1);
    EXPECT_NE(recording().boxes.back().find("an info that throws"), std::string::npos);
    EXPECT_EQ(run("sample_throw"), "");
    EXPECT_NE(recording().boxes.back().find("a command that throws"), std::string::npos);
    EXPECT_EQ(run("get_plugin_about", path), "");
    crash_guard::forget_faults_for_test();
    plugins_exit();
    EXPECT_NE(recording().boxes.back().find("fault in VESKPluginExit"), std::string::npos);
}

TEST_F(Plugins, ListsThatRunIntoThemselvesAreCut)
{
    ASSERT_EQ(plugin_load(plugin_file("plugin_looping").c_str()), 1);
    const object_t *first = add_cube("first");
    add_cube("second");
    run("close_rings");
    EXPECT_EQ(last_message(),
              "close_rings left a list that runs into itself - the model was repaired");
    EXPECT_FALSE(world_has_ring(vesk_get_world()));
    EXPECT_EQ(vesk_get_world()->num_children, 1);
    EXPECT_EQ(first->num_vertices, 8);
    EXPECT_EQ(run("file_save", temporary_file("cut.vesk")), "1");

    const std::string file = temporary_file("endless.ring");
    std::ofstream(file) << "nothing";
    EXPECT_EQ(run("file_load", file), "1");
    EXPECT_EQ(last_message(),
              "Ring files left a list that runs into itself - the model was repaired");
    const object_t *read = get_current_object();
    EXPECT_EQ(read->num_surfaces, 6);
    run("execute_surface_filter", "surface_filter_1"); // of what was read, the selection
    EXPECT_EQ(last_message(), "Endless left a list that runs into itself - the model was repaired");
    EXPECT_FALSE(world_has_ring(vesk_get_world()));
    EXPECT_EQ(item_of<surface_t>(read->surfaces)->num_refs, 4);
    filters_reset_for_test();
}

class BusyPlugin : public Plugins {
protected:
    void SetUp() override
    {
        Plugins::SetUp();
        filters_reset_for_test();
        textures_reset_for_test();
        ASSERT_EQ(plugin_load(plugin_file("plugin_busy").c_str()), 1);
    }
    void TearDown() override
    {
        Plugins::TearDown();
        filters_reset_for_test();
        textures_reset_for_test();
    }
};

TEST_F(BusyPlugin, ShadowsCommandsAndReplacesImporters)
{
    EXPECT_EQ(run("get_platform"), "mine");
    EXPECT_EQ(run("file_load", "a.vesk"), "0");
    EXPECT_EQ(last_message(), "not today: a.vesk");
    EXPECT_EQ(run("add_new_texture", "x.grey"), "0");
    EXPECT_EQ(texture_id_to_image(0)->data[3], 180);
}

TEST_F(BusyPlugin, AddsMenuEntries)
{
    const std::vector<std::string> wanted = {
        "add_surface_menu_item \"Fan\" \"vesk execute_surface_filter surface_filter_1\" \"Makes "
        "triangles.\"",
        "add_surface_menu_item \"Count \\[x\\]\" \"vesk execute_surface_filter "
        "surface_filter_2\" \"\"",
        "add_export_menu_item \"Grey...\" \"vesk filter_calls\"",
        ".mbar.file.menu add command -label \"A \\\"label\\\"\" -command \"vesk filter_calls\"",
    };
    for (const std::string &script : wanted)
        EXPECT_EQ(std::count(recording().scripts.begin(), recording().scripts.end(), script), 1)
            << script;
    EXPECT_TRUE(recording().boxes[0].starts_with(
        "vesk_add_import_menu_item has been called from a plugin\n\nthis function is no longer"));
}

TEST_F(BusyPlugin, FiltersRunOnSurfacesAndObjects)
{
    run("execute_surface_filter", "surface_filter_1");
    EXPECT_EQ(last_message(), "no surfaces selected");
    run("execute_surface_filter", "nothing");
    EXPECT_EQ(recording().boxes.back(), "No surface filter named 'nothing' found.");

    object_t *square = add_square(1);
    add_cube("cube");
    run("set_select_mode", "surface");
    select_surface(item_of<surface_t>(square->surfaces));
    const auto calls = [] { return std::stoi(run("filter_calls")); };
    const int before = calls(); // of other tests of this process
    run("execute_surface_filter", "surface_filter_2");
    EXPECT_EQ(calls() - before, 1);
    EXPECT_EQ(last_undo(), "selection"); // of the change of mode
    EXPECT_EQ(last_message(), "Count \\[x\\] - done");

    run("execute_surface_filter", "surface_filter_1"); // removes what it is called for
    EXPECT_EQ(square->num_surfaces, 2);
    EXPECT_EQ(last_undo(), "Fan");

    run("set_select_mode", "object");
    run("select_all");
    run("execute_surface_filter", "surface_filter_2");
    EXPECT_EQ(calls() - before, 9); // two triangles and six sides
    run("execute_surface_filter", "surface_filter_1");
    EXPECT_EQ(get_current_object(), nullptr);
    EXPECT_EQ(run("get_counts").substr(0, 5), "2 2 1");
    run("undo");
    EXPECT_EQ(run("get_counts").substr(0, 5), "0 2 0");
}

TEST_F(BusyPlugin, AFaultInAFilterCostsADialogAndKeepsTheModel)
{
    select_object(add_cube("cube"));
    run("execute_surface_filter", "surface_filter_3");
    EXPECT_TRUE(recording().boxes.back().starts_with(
        "Exception occured in command execute_surface_filter"));
    EXPECT_EQ(run("model_state").empty(), false);
    EXPECT_EQ(object_get_kid_at(vesk_get_world(), 0)->num_surfaces, 6);
}

TEST_F(Plugins, ThoseOfTheHomeFolderAreLoadedByName)
{
    const std::string home = temporary_file("home");
    std::filesystem::create_directories(home + "/plugins");
    const std::string before = vesk_get_vesk_homedir();
    vesk_set_homedir(home.c_str());
    set_debug_mode(true);
    load_all_plugins();
    EXPECT_NE(recording().console.find("can't open any plugins " + home + "/plugins\n"),
              std::string::npos);
    const auto put = [&](const char *plugin, const char *name) {
        std::filesystem::copy_file(plugin_file(plugin), home + "/plugins/" + name);
    };
    put("sample_plugin", "b.p");
    put("plugin_without_exit", "a.p");
    put("plugin_busy", "c.p");
    write_text(home + "/plugins/d.p", "no library");
    write_text(home + "/plugins/readme.txt", "no plug-in");
    load_all_plugins();
    set_debug_mode(false);
    vesk_set_homedir(before.c_str());
    filters_reset_for_test();
    textures_reset_for_test();

    EXPECT_EQ(run("get_plugin_list"),
              "\"" + home + "/plugins/b.p\" \"" + home + "/plugins/c.p\" \n");
    EXPECT_NE(recording().console.find("plugin " + home + "/plugins/b.p OK!\n"), std::string::npos);
    EXPECT_NE(recording().console.find("file too short"), std::string::npos);
    EXPECT_EQ(recording().boxes.size(), 3U); // without exit, retired menu call, no library
}

} // namespace
