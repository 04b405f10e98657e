// Files of other formats: what comes of them, and what comes of damaged ones.

#include "base/crash_guard.h"
#include "base/file_report.h"
#include "base/home.h"
#include "base/prefs.h"
#include "model/bounds.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/lights.h"
#include "model/object_tree.h"
#include "model/palette.h"
#include "model/textures/textures.h"
#include "model/world.h"
#include "tests/fileio/foreign_files.h"
#include "tests/model/textures/image_writer.h"
#include "tests/support/damage.h"
#include "tests/support/places.h"
#include "tests/support/scene_test.h"

#include <random>
#include <sstream>

namespace {

struct counts_t {
    int objects = 0, surfaces = 0, vertices = 0, lights = 0;
    bool operator==(const counts_t &) const = default;
};
void PrintTo(const counts_t &c, std::ostream *out)
{
    *out << c.objects << " objects, " << c.surfaces << " surfaces, " << c.vertices << " vertices, "
         << c.lights << " lights";
}

counts_t counts_of_world()
{
    counts_t counts;
    for_each_object(vesk_get_world(), [&](const object_t *object) {
        counts.objects += object->type == OBJECT_POLY ? 1 : 0;
        counts.lights += object->type == OBJECT_LIGHT ? 1 : 0;
        counts.surfaces += object->num_surfaces;
        counts.vertices += object->num_vertices;
    });
    return counts;
}

class Import : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        crash_guard::forget_faults_for_test();
        home_ = vesk_get_vesk_homedir() == nullptr ? "" : vesk_get_vesk_homedir();
        vesk_set_homedir(built_file("home").c_str());
        textures_reset_for_test();
        vesk_register_builtin_texture_loaders();
        write_text(temporary_file("wood.bmp"), write_bmp(sample_picture(4, 4, 0), {}));
    }
    void TearDown() override
    {
        vesk_set_homedir(home_.c_str());
        SceneTest::TearDown();
        textures_reset_for_test();
    }

    static std::string load(const std::string &name, const std::string &bytes)
    {
        const std::string file = temporary_file(name);
        write_text(file, bytes);
        return run("file_load", file);
    }
    static std::string world_size()
    {
        run("select_all");
        return run("get_selection_size");
    }
    static object_t *find(const std::string &name)
    {
        object_t *found = nullptr;
        for_each_object(vesk_get_world(), [&](object_t *object) {
            if (name == object->name && found == nullptr)
                found = object;
        });
        return found;
    }

private:
    std::string home_;
};

struct import_case {
    const char *name;
    const char *file;
    std::string bytes;
    counts_t counts;
    const char *size; // of everything
};
void PrintTo(const import_case &c, std::ostream *out) { *out << c.name; }

std::vector<import_case> import_cases()
{
    // clang-format off
    return {
        {"3ds",       "a.3ds", make_3ds(),   {1, 2, 4, 0},  "2 1 0"},
        {"dxf",       "a.dxf", make_dxf(),   {1, 2, 5, 0},  "5 0 1"},
        {"lwo",       "a.lwo", make_lwo(),   {1, 1, 4, 0},  "2 1 0"},
        {"lwob",      "a.lwo", make_lwob(),  {1, 1, 4, 0},  "2 1 0"},
        {"md2",       "a.md2", make_md2(),   {1, 2, 4, 0},  "2 1 0"},
        {"bsp",       "a.bsp", make_bsp(),   {2, 18, 29, 0}, "2 1 2"},
        {"triangles", "a.tri", "# two\n0 0 0 2 0 0 2 1 0 0xff8000\n0 0 0  2 1 0\n0 1 0\nsecond one\n0 0 0 1 0 0 0 0 3\n1 2",
                                             {2, 3, 7, 0},  "2 1 3"},
        {"vector",    "a.vec", "3\n0 0\n2 0\n2 1\n\n0,0,0\n1,0,0\n1,1,0\n0,0,0\nend\n7 7\n",
                                             {1, 2, 6, 0},  "2 1 0"},
        {"vector2",   "a.r2v", "0 0 1\n5 0 1\n", {1, 1, 2, 0}, "5 0 0"},
    };
    // clang-format on
}

class ImportFormats : public Import, public testing::WithParamInterface<import_case> {};

TEST_P(ImportFormats, GiveTheirGeometry)
{
    const import_case &c = GetParam();
    ASSERT_EQ(load(c.file, c.bytes), "1")
        << (recording().boxes.empty() ? "" : recording().boxes.back());
    EXPECT_EQ(counts_of_world(), c.counts);
    EXPECT_EQ(world_size(), c.size);
}

TEST_P(ImportFormats, RefuseWhatIsNoSuchFile)
{
    const import_case &c = GetParam();
    object_t *square = add_square(1);
    for (const std::string &bytes :
         {std::string(), std::string("nonsense"), c.bytes.substr(0, 12)}) {
        const size_t boxes = recording().boxes.size();
        if (load(c.file, bytes) == "1")
            continue; // the beginning of a text may be one
        ASSERT_EQ(recording().boxes.size(), boxes + 1);
        EXPECT_TRUE(
            recording().boxes.back().starts_with("can't read " + temporary_file(c.file) + "\n"))
            << recording().boxes.back();
        EXPECT_EQ(object_get_kid_at(vesk_get_world(), 0), square);
    }
    EXPECT_EQ(run("file_load", temporary_file("none") + c.file), "0");
}
INSTANTIATE_TEST_SUITE_P(All, ImportFormats, testing::ValuesIn(import_cases()));

// ---- what belongs to one format ----

TEST_F(Import, A3dsFileHasMaterialsTexturesAndAxes)
{
    ASSERT_EQ(load("a.3ds", make_3ds()), "1");
    object_t *wall = find("wall");
    ASSERT_NE(wall, nullptr);
    const auto *surface = item_of<surface_t>(wall->surfaces);
    const material *paint = vesk_palette_get_material(surface->material);
    EXPECT_STREQ(paint->name, "paint");
    EXPECT_NEAR(paint->diffuse[1], 128 / 255.0, 1e-3);
    EXPECT_EQ(wall->has_texture, 1);
    const auto *corner = item_of<svertex>(surface->refs->next);
    EXPECT_EQ(corner->u, 1);
    EXPECT_EQ(corner->vertex->position.x, 2);

    run("clear_all");
    prefs.swap_3ds_yz = 0;
    ASSERT_EQ(load("a.3ds", make_3ds()), "1");
    EXPECT_EQ(world_size(), "2 0 1");
}

TEST_F(Import, A3dsFileThatIsWrittenIsReadBack)
{
    object_t *cube = add_cube("box");
    object_set_init_texture(cube, temporary_file("wood.bmp").c_str(), "wood.bmp");
    surface_set_type(item_of<surface_t>(add_square(2)->surfaces), SURFACE_LINE);
    object_t *lamp = new_light();
    vesk_object_set_centre(lamp, 1, 2, 3);
    object_add_child(vesk_get_world(), lamp);
    std::string name = "a name that is long";
    material paint;
    material_init(&paint);
    paint.name = name.data();
    paint.emissive[0] = paint.diffuse[1] = 0.5f;
    for (surface_t *surface : each<surface_t>(cube->surfaces))
        surface_set_col(surface, vesk_palette_get_new_material_index(&paint));
    object_mark_tree(vesk_get_world(), CHANGED_ALL);
    const std::string file = temporary_file("written.3ds");
    run("write_3ds", file);
    EXPECT_EQ(last_message(),
              "written file " + file +
                  " - 1 line, 1 glowing colour were left out: 3DS has no lines, glowing colours");
    run("clear_all");
    ASSERT_EQ(run("file_load", file), "1");
    EXPECT_EQ(counts_of_world(), (counts_t{1, 12, 8, 1}));
    EXPECT_NE(find("box")->has_texture, 0);
    EXPECT_STREQ(vesk_material_get_name_index(item_of<surface_t>(find("box")->surfaces)->material),
                 "a name that is l");
    ASSERT_NE(world_lights(), nullptr);
    EXPECT_EQ(item_of<object_t>(world_lights())->centre.y, 2);
    // Other readers refuse a light that has no node.
    EXPECT_NE(read_text(file).find(std::string("\x05\xB0")), std::string::npos);
    recording().answers["get_exportfilename"] = temporary_file("asked.3ds");
    run("export_3ds");
    EXPECT_EQ(read_text(temporary_file("asked.3ds")).substr(0, 2), "MM");
}

// What the format has a place for, to the bit.
TEST_F(Import, A3dsFileKeepsTreeSidesShadingAndLooks)
{
    object_t *house = new_group();
    object_set_name(house, "house");
    object_add_child(vesk_get_world(), house);
    object_t *ball = add_cube("ball");
    object_reparent(ball, house);
    object_t *inner = add_cube("inner");
    object_reparent(inner, ball);
    object_t *lamp = new_light();
    object_set_name(lamp, "lamp");
    object_add_child(house, lamp);
    object_set_init_texture(ball, temporary_file("wood.bmp").c_str(), "wood.bmp");
    object_set_texture_repeat(ball, 2, 3);
    object_set_texture_offset(ball, 0.25f, -0.5f);
    std::string name = "glow";
    material paint;
    material_init(&paint);
    paint.name = name.data();
    paint.shininess = 10;
    paint.transparency = 0.123f;
    for (int i = 0; i < 3; ++i) {
        paint.diffuse[i] = 0.123f * static_cast<float>(i);
        paint.emissive[i] = 0.5f * paint.diffuse[i];
    }
    const int entry = vesk_palette_get_new_material_index(&paint);
    for (surface_t *surface : each<surface_t>(ball->surfaces)) {
        surface_set_col(surface, entry);
        surface_set_shading(surface, 1);
        surface_set_twosided(surface, 0);
    }
    object_mark_tree(vesk_get_world(), CHANGED_ALL);
    const std::string file = temporary_file("kept.3ds");
    run("write_3ds", file);
    EXPECT_TRUE(last_file_report().losses.empty());
    run("clear_all");
    ASSERT_EQ(run("file_load", file), "1");
    ball = find("ball");
    ASSERT_NE(ball, nullptr);
    EXPECT_STREQ(ball->parent->name, "house");
    EXPECT_STREQ(find("inner")->parent->name, "ball");
    EXPECT_STREQ(find("lamp")->parent->name, "house");
    EXPECT_EQ(ball->num_vertices, 8);
    EXPECT_EQ(ball->texture_repeat_y, 3);
    EXPECT_EQ(ball->texture_offset_x, 0.25f);
    EXPECT_EQ(ball->texture_offset_y, -0.5f);
    for (const surface_t *surface : each<surface_t>(ball->surfaces))
        EXPECT_EQ(vesk_surface_get_flags(surface), SURFACE_SMOOTH);
    for (const surface_t *surface : each<surface_t>(find("inner")->surfaces))
        EXPECT_EQ(surface->shading, 0);
    const material *read = vesk_palette_get_material(item_of<surface_t>(ball->surfaces)->material);
    EXPECT_EQ(read->shininess, 10);
    EXPECT_EQ(read->transparency, 0.123f);
    EXPECT_EQ(read->diffuse[1], 0.123f);
    EXPECT_NEAR(read->emissive[2], 0.123f, 1e-6);
}

// A mesh with a frame, a pivot and a turned, scaled, moved place, below it a turned child, beside
// them a mirrored one: the numbers are those of another reader.
TEST_F(Import, A3dsFilesKeysPlaceItsMeshes)
{
    prefs.swap_3ds_yz = 1;
    ASSERT_EQ(load("k.3ds", make_3ds_with_keys()), "1");
    const auto near = [](const char *name, const point3_t &wanted) {
        const point3_t &p = item_of<vertex>(find(name)->vertices->next)->position;
        EXPECT_NEAR(p.x, wanted.x, 1e-5) << name;
        EXPECT_NEAR(p.y, wanted.y, 1e-5) << name;
        EXPECT_NEAR(p.z, wanted.z, 1e-5) << name;
    };
    near("one", {-1.80673027f, 20, -27.5895405f});
    near("two", {15.2654953f, 30, -17.1234474f});
    near("mirrored", {4, 0, 0});
    EXPECT_STREQ(find("two")->parent->name, "one");
    EXPECT_GT(item_of<surface_t>(find("mirrored")->surfaces)->normal.y, 0);
}

TEST_F(Import, ALightwaveSceneLoadsItsObjects)
{
    const std::string object = temporary_file("part.lwo");
    for (const std::string &bytes : {make_lwob(), make_lwo()}) {
        run("clear_all");
        write_text(object, bytes);
        ASSERT_EQ(load("a.lws", make_lws("Objects\\part.lwo")), "1");
        EXPECT_EQ(counts_of_world(), (counts_t{1, 1, 4, 0}));
        EXPECT_EQ(world_size(), "2 4 0"); // turned and doubled
        // x = 10 .. 12 becomes y = 5 + 20 .. 24
        EXPECT_EQ(run("get_selection_centre"), "-1 27 0");
        EXPECT_STREQ(find("base")->children == nullptr ? "" : "child", "child");
    }
}

// Each version tells by its first words how it writes motions.
TEST_F(Import, LightwaveScenesOfLaterVersionsAreReadOrRefused)
{
    write_text(temporary_file("part.lwo"), make_lwob());
    const auto channels = [](const char *values) {
        std::string text = "NumChannels 9\n";
        std::istringstream words(values);
        std::string word;
        for (int i = 0; words >> word; ++i)
            text += "Channel " + std::to_string(i) + "\n{ Envelope\n  1\n  Key " + word +
                    " 0 0 0 0 0 0 0 0\n  Behaviors 1 1\n}\n";
        return text;
    };
    for (const char *version : {"2", "3", "5"}) {
        run("clear_all");
        const std::string id = *version == '5' ? "10000000 " : "";
        const std::string text =
            "LWSC\n" + std::string(version) + "\n\nLoadObjectLayer 1 " + id +
            "part.lwo\nObjectMotion\n" + channels("10 0 0 1.5707963 0 0 1 1 1") +
            "ParentItem 10000001\nPivotPosition 1 0 0\n" + "AddNullObject " +
            (*version == '5' ? "10000001 " : "") + "base\nObjectMotion\n" +
            channels("0 5 0 0 0 0 2 2 2") + "AddLight\nLightName key light\nLightMotion\n" +
            channels("1 2 3 0 0 0 1 1 1") + "AddCamera\nCameraMotion\n" +
            channels("7 7 7 0 0 0 1 1 1") + "PivotPosition 99 0 0\nParentItem 10000000\n";
        ASSERT_EQ(load("a.lws", text), "1") << recording().boxes.back();
        const object_t *base = find("base");
        ASSERT_NE(base, nullptr) << version;
        ASSERT_EQ(base->num_children, 1) << version; // its child stands before it in the file
        const object_t *part = item_of<object_t>(base->children);
        // x = -1 .. 1 from its pivot, turned to z, twice as large, about (20, 5, 0)
        EXPECT_NEAR(find_object_min(part).x, 20, 1e-5) << version;
        EXPECT_NEAR(find_object_min(part).z, -2, 1e-5) << version;
        EXPECT_NEAR(find_object_min(part).y, 5, 1e-5) << version;
        ASSERT_NE(find("key light"), nullptr);
        EXPECT_EQ(find("key light")->centre.z, -3);
    }
    // Version 2 has the keys of each channel for themselves.
    std::string table;
    for (const char *value : {"10", "0", "0", "90", "0", "0", "1", "1", "1"})
        table += "  2\n  " + std::string(value) + " 0 2 0 0 0\n  99 1 2 0 0 0\n";
    run("clear_all");
    ASSERT_EQ(load("a.lws", "LWSC\n2\n\nLoadObject part.lwo\nObjectMotion (unnamed)\n  9\n" +
                                table + "PivotPoint 1 0 0\n"),
              "1");
    EXPECT_NEAR(find_object_min(find("part")).x, 10, 1e-5);
    EXPECT_NEAR(find_object_min(find("part")).z, -1, 1e-5);
    EXPECT_EQ(last_file_report().warnings.back().text,
              "1 motions have more than one key; the first is taken");
    EXPECT_EQ(load("a.lws", "LWSC\n9\nAddNullObject x\n"), "0");
    EXPECT_TRUE(recording().boxes.back().ends_with("its version of the scene format is not known"));
    EXPECT_EQ(load("a.lws", "LWSC\n2\nAddNullObject x\nObjectMotion\n 1 2 3 4\n"), "0");
    EXPECT_TRUE(
        recording().boxes.back().ends_with("its motions stand in a form that is not known"));
    // A chain of null objects costs no more than its length; one that bites its tail is cut.
    std::string chain = "LWSC\n1\n";
    for (int i = 0; i < 20000; ++i)
        chain += "AddNullObject n\nParentObject " + std::to_string(i == 0 ? 20000 : i) + "\n";
    EXPECT_EQ(load("a.lws", chain), "1");
}

TEST_F(Import, OlderLightwaveObjectsHavePicturesSidesAndLight)
{
    ASSERT_EQ(load("a.lwo", make_lwob()), "1");
    const object_t *object = find("a");
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(object->has_texture, 1);
    const auto *surface = item_of<surface_t>(object->surfaces);
    EXPECT_EQ(surface->normal.z, 1); // outlines run clockwise there
    EXPECT_EQ(surface->twosided, 0);
    EXPECT_EQ(surface->shading, 1);
    const material *paint = vesk_palette_get_material(surface->material);
    EXPECT_FLOAT_EQ(paint->diffuse[0], 0.5f);
    EXPECT_FLOAT_EQ(paint->emissive[0], 0.25f);
    EXPECT_FLOAT_EQ(paint->specular[1], 1);
    EXPECT_EQ(paint->shininess, 64);
    EXPECT_EQ(paint->transparency, 0.5f);
    // A picture of 4 by 2 about (1, 0.5) along z.
    for (const svertex *corner : each<svertex>(surface->refs)) {
        EXPECT_FLOAT_EQ(corner->u, (corner->vertex->position.x - 1) / 4 + 0.5f);
        EXPECT_FLOAT_EQ(corner->v, (corner->vertex->position.y - 0.5f) / 2 + 0.5f);
    }
}

TEST_F(Import, LevelsHaveAnObjectForEachShader)
{
    ASSERT_EQ(load("a.bsp", make_bsp()), "1");
    object_t *brick = find("walls/brick");
    ASSERT_NE(brick, nullptr);
    const auto *corner = item_of<svertex>(item_of<surface_t>(brick->surfaces)->refs);
    EXPECT_EQ(corner->vertex->position.x, 2); // turned round, upright
    EXPECT_EQ(corner->vertex->position.y, 0);
    EXPECT_EQ(corner->u, 1);
    EXPECT_EQ(corner->v, 0);
    object_t *arch = find("curves/arch");
    ASSERT_NE(arch, nullptr);
    EXPECT_EQ(arch->num_surfaces, 16);
    EXPECT_FLOAT_EQ(find_object_size(arch).y, 1); // the curve stays below its control points
}

TEST_F(Import, TrianglesHaveColoursAndNames)
{
    ASSERT_EQ(load("a.tri", "0 0 0 2 0 0 2 1 0 0xff8000\npart two\n0 0 0 1 0 0 0 0 3\n"), "1");
    EXPECT_NE(find("part two"), nullptr);
    bool orange = false;
    for (int i = 0; i < vesk_get_num_palette(); ++i)
        orange =
            orange || index_to_rgb(i) == 0xFF8000 || std::string(index_to_string(i)) == "#ff8000";
    EXPECT_TRUE(orange);
    const auto *plain = item_of<surface_t>(find("part two")->surfaces);
    EXPECT_FLOAT_EQ(vesk_palette_get_material(plain->material)->diffuse[0], 0.8f); // not black
}

TEST_F(Import, VrmlWorldsKeepStateHierarchyAndNames)
{
    ASSERT_EQ(load("a.wrl", make_vrml1()), "1")
        << (recording().boxes.empty() ? "" : recording().boxes.back());
    object_t *house = find("house");
    ASSERT_NE(house, nullptr);
    EXPECT_EQ(house->num_surfaces, 1); // the lines, which have no name of their own
    object_t *wall = find("wall");
    ASSERT_NE(wall, nullptr);
    EXPECT_EQ(wall->num_surfaces, 2); // the third has no points
    EXPECT_EQ(wall->num_vertices, 4);
    EXPECT_EQ(wall->has_texture, 1);
    EXPECT_EQ(wall->texture_repeat_y, 3);
    EXPECT_EQ(find_object_min(wall).x, 10);
    const material *first = vesk_palette_get_material(item_of<surface_t>(wall->surfaces)->material);
    EXPECT_EQ(first->diffuse[2], 1); // the second material
    EXPECT_EQ(first->transparency, 0.25f);

    object_t *box = find("box");
    ASSERT_NE(box, nullptr);
    const point3_t size = find_object_size(box);
    EXPECT_NEAR(size.x, 2, 1e-5); // scaled along x, then turned onto y
    EXPECT_NEAR(size.y, 6, 1e-5);
    EXPECT_NEAR(find_object_min(box).y, 0, 1e-5); // moved by 1 before the scale

    const counts_t counts = counts_of_world();
    EXPECT_EQ(counts.lights, 2);
    EXPECT_EQ(counts.objects, 6);                        // wall, lines, two boxes, cone, cylinder
    EXPECT_LT(find_object_size(vesk_get_world()).x, 30); // the sphere was not chosen
    ASSERT_EQ(last_file_report().warnings.size(), 1);
    EXPECT_EQ(last_file_report().warnings[0].text,
              "1 PerspectiveCamera have no counterpart here and were left out");
}

TEST_F(Import, VrmlTellsWhatItCannotRead)
{
    EXPECT_EQ(load("a.wrl", "#VRML V2.0 utf8\nShape { }"), "0");
    EXPECT_TRUE(recording().boxes.back().ends_with("there is no geometry in it"));
    EXPECT_EQ(load("a.wrl", "#X3D V3.0 utf8\nShape { }"), "0");
    EXPECT_TRUE(recording().boxes.back().ends_with(
        "it begins neither with \"#VRML V2.0\" nor \"#VRML V1.0\""));
    EXPECT_EQ(load("a.wrl", "#VRML V1.0 ascii\nSeparator { Cube { }"), "0");
    EXPECT_TRUE(recording().boxes.back().ends_with("its nodes are damaged"));
    EXPECT_EQ(load("a.wrl", "#VRML V1.0 ascii\nDEF a Separator { USE a Cube { } }"), "0");
    std::string deep = "#VRML V1.0 ascii\n";
    for (int i = 0; i < 100000; ++i)
        deep += "Separator { ";
    EXPECT_EQ(load("a.wrl", deep), "0");
    std::string doubling = "#VRML V1.0 ascii\nDEF n0 Group { Cube { } }\n";
    for (int i = 1; i < 60; ++i)
        doubling += "DEF n" + std::to_string(i) + " Group { USE n" + std::to_string(i - 1) +
                    " USE n" + std::to_string(i - 1) + " }\n";
    EXPECT_EQ(load("a.wrl", doubling), "0");
}

TEST_F(Import, ImportersStandInTheirOrder)
{
    const std::string text = run("get_importer_info");
    size_t at = 0;
    for (const char *row :
         {".vesk\t\tVESK files", ".3ds\t\t3D Studio files", ".dxf\t\tAutocad DXF files",
          ".lws\t\tLightwave scene files", ".lwo\t\tLightwave object files",
          ".tri\t\tAlias/Triangle files", ".wrl\t\tVRML 1.0 files", ".vec .r2v\t\tVector files",
          ".md2\t\tMD2 files", ".bsp\t\tQuake3 BSP files"}) {
        const size_t found = text.find(row, at);
        ASSERT_NE(found, std::string::npos) << row;
        at = found;
    }
}

// ---- damage ----

struct damage_case {
    const char *file;
    std::string bytes;
    int share = 1; // of the number of files: a process for each takes its time
};
void PrintTo(const damage_case &c, std::ostream *out) { *out << c.file; }

class DamagedImports : public Import, public testing::WithParamInterface<damage_case> {};

TEST_P(DamagedImports, AreReadOrRefused)
{
    const damage_case &c = GetParam();
    std::mt19937 random(static_cast<unsigned>(damage_setting("VESK_DAMAGE_SEED", 3)));
    const int files = damage_setting("VESK_DAMAGE_FILES", 500) / c.share;
    for (int i = 0; i < files; ++i) {
        const std::string bytes = damaged(c.bytes, random);
        load(c.file, bytes);
        if (i % 100 == 0)
            run("clear_all");
    }
    for (const std::string &box : recording().boxes)
        // No fault. A damaged name of a picture is told by the textures.
        ASSERT_TRUE(box.starts_with("can't read ") || box.starts_with("texture_read:")) << box;
}
INSTANTIATE_TEST_SUITE_P(
    OwnReaders, DamagedImports,
    testing::Values(damage_case{"d.wrl", make_vrml1()}, damage_case{"d2.wrl", make_vrml2()},
                    damage_case{"d.3ds", make_3ds()}, damage_case{"d2.3ds", make_3ds_with_keys()},
                    damage_case{"d.bsp", make_bsp()}, damage_case{"d.lwo", make_lwob()},
                    damage_case{"d.lws", make_lws("none.lwo")},
                    damage_case{"d.tri",
                                "# x\n0 0 0 2 0 0 2 1 0 0xff8000\nname\n0 0 0 1 0 0 0 0 3\n"},
                    damage_case{"d.dxf", make_dxf()},
                    damage_case{"d.vec", "3\n0 0\n2 0\n2 1\n\n0 0 0\n1 0 0\n"}));
INSTANTIATE_TEST_SUITE_P(ByTheHelper, DamagedImports,
                         testing::Values(damage_case{"e.lwo", make_lwo(), 10},
                                         damage_case{"d.md2", make_md2(), 10}));

} // namespace
