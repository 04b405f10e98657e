// The text exports: one scene through every format. Each text must be well formed (a small check of
// brackets, quotes and comments), hold hand-checked fragments, and survive names that try to break
// out of it.

#include "base/prefs.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/lights.h"
#include "model/object_tree.h"
#include "model/palette.h"
#include "model/textures/textures.h"
#include "model/world.h"
#include "tests/model/textures/image_writer.h"
#include "tests/support/scene_test.h"
#include "view/camera_internal.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>

namespace {

constexpr const char *hostile_name = "M\xC3\xBCller \"x\" }\n]{ \\";

// "" when brackets pair up, quotes close and comments end with their line; else what is wrong.
std::string broken(const std::string &text, const std::string &comment)
{
    std::string open;
    bool quoted = false;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\n' && quoted)
            return "a line end within quotes";
        if (quoted) {
            i += c == '\\' ? 1 : 0;
            quoted = c != '"';
        } else if (text.compare(i, comment.size(), comment) == 0) {
            i = std::min(text.find('\n', i), text.size());
        } else if (c == '"') {
            quoted = true;
        } else if (c == '{' || c == '[') {
            open += c;
        } else if (c == '}' || c == ']') {
            if (open.empty() || open.back() != (c == '}' ? '{' : '['))
                return "unpaired at " + text.substr(i > 60 ? i - 60 : 0, 61);
            open.pop_back();
        }
    }
    return quoted ? "an open quote" : open.empty() ? "" : "open at the end: " + open;
}

struct format_case {
    const char *command;
    const char *comment;
    const char *head;
    const char *losses; // after "written file NAME"
    std::vector<const char *> holds;
};

const format_case formats[] = {
    {"write_vrml",
     "#",
     "#VRML V1.0 ascii\n\nSeparator {\nWWWAnchor {\n",
     " - 1 data text was left out: VRML 1.0 has no data texts",
     {"DEF lamp Separator {\nPointLight { location 1 2.5 -3 }\n}\n",
      "DEF house Separator {\nDEF wall Separator {\nSeparator {\nCoordinate3 {\n  point [\n"
      "0 0 0,\n1 0 0,\n0 1 0,\n",
      "Info { string \"M\xC3\xBCller \\\"x\\\" } ]{ \\\\\" }\n",
      "DEF M__ller__x________ Separator {", "  emissiveColor 0.25 0.5 1\n",
      "IndexedLineSet {\n  coordIndex [\n6, 7, 8, 6, -1,\n  ]\n}\n",
      "Texture2 { filename \"wood.bmp\" }\nTextureCoordinate2 {\n  point [\n0 0.5,\n2 0.5,\n0 1.5,",
      "shapeType SOLID", "shapeType UNKNOWN_SHAPE_TYPE",
      "Normal {\n  vector [\n0 0 1,\n  ]\n}\nNormalBinding { value PER_FACE }\n"
      "IndexedFaceSet {\n  coordIndex [\n0, 1, 2, -1,\n  ]\n"
      "  textureCoordIndex [\n0, 1, 2, -1,\n  ]\n}\n",
      "NormalBinding { value PER_VERTEX_INDEXED }",
      "WWWAnchor {\nname \"http://x/\\\"a\\\"\"\nDEF house Separator"}},
    {"write_inventor",
     "#",
     "#Inventor V2.1 ascii\n\nSeparator {\nWWWAnchor {\n",
     " - 1 data text was left out: Inventor has no data texts",
     {"DEF wall Separator {", "IndexedLineSet {\n"}},
    {"write_POV",
     "//",
     "#version 3.5;\ncamera {\n",
     " - 1 line, 1 address were left out: POV has no lines, addresses",
     {"  up <0, 1, 0>\n  right <-1.33, 0, 0>\n",
      "light_source { <1, 2.5, -3> color rgb <1, 1, 1> }",
      "object { // house\nunion { // wall\n  mesh2 {\n    vertex_vectors {\n      3,\n"
      "      <0, 0, 0>,\n      <1, 0, 0>,\n      <0, 1, 0>\n    }\n",
      "    face_indices {\n      1,\n      <0, 1, 2>\n    }\n",
      "uv_mapping\n      pigment { image_map { png \"scene_wood.png\" transmit all 0 } }",
      "    uv_vectors {\n      3,\n      <0, 0.5>,\n      <2, 0.5>,\n      <0, 1.5>\n    }\n",
      "    normal_vectors {\n      3,\n", "pigment { color rgb <0.25, 0.5, 1> transmit 0.5 }",
      "// line one\n// line two\n"}},
    {"write_rib",
     "#",
     "##RenderMan RIB-Structure 1.0\nversion 3.03\nDisplay \"vesk.tif\" \"file\" \"rgb\"\n",
     " - 1 address, 1 data text were left out: RIB has no addresses, data texts",
     {"WorldBegin\nLightSource \"ambientlight\" 0 \"intensity\" [0.2]\n",
      "LightSource \"pointlight\" 1 \"intensity\" [1] \"from\" [1 2.5 -3]\n",
      "AttributeBegin\nAttribute \"identifier\" \"name\" [\"house\"]\nAttributeBegin\n"
      "Attribute \"identifier\" \"name\" [\"wall\"]\n",
      "PointsGeneralPolygons [1]\n [3]\n [0 1 2]\n \"P\" [0 0 0 1 0 0 0 1 0]\n",
      "Color [0.25 0.5 1]\nOpacity [0.5 0.5 0.5]\n", "Sides 1\n", "Sides 2\n", "\"N\" [0 0 1 0 0 1",
      "Curves \"linear\" [3]\n \"periodic\" \"P\" [ 0 0 0 1 0 0 0 1 0]\n \"constantwidth\" "
      "[0.002]\n",
      "[\"M\xC3\xBCller \\\"x\\\" } ]{ \\\\\"]"}},
    {"write_dxf",
     nullptr, // pairs of lines
     "0\nSECTION\n2\nENTITIES\n0\n3DFACE\n8\nhouse\n62\n7\n10\n0\n20\n0\n30\n0\n11\n1\n",
     " - 1 light, 1 texture, 1 smooth surface, 1 address, 1 data text were left out: "
     "DXF has no lights, textures, smooth surfaces, addresses, data texts",
     {"0\nPOLYLINE\n8\n", "70\n9\n", "0\nSEQEND\n"}},
    {"write_tri",
     nullptr, // lines of names and numbers
     "wall\n0 0 0 1 0 0 0 1 0 0xffffff\n",
     " - 1 line, 1 light, 1 texture, 1 smooth surface, 1 address, 1 data text were left "
     "out: "
     "the triangle list has no lines, lights, textures, smooth surfaces, addresses, data texts",
     {"M\xC3\xBCller \"x\" } ]{ \\\n0 0 0 1 0 0 0 1 0 0x4080ff\n"}},
    {"write_dive",
     "#",
     "# VESK plain scene 1 for Dive\nmaterial {\n  index 0\n",
     "",
     {"light {\n  name \"lamp\"\n  position 1 2.5 -3\n}\n",
      "object {\nname \"house\"\ncentre 0 0 0\nurl \"http://x/\\\"a\\\"\"\n"
      "data \"line one line two\"\nobject {\nname \"wall\"\n",
      "closed_lines {\n  material ", "texture \"wood.bmp\"\nvertices 9 {\n  0 0 0  0 0 1\n",
      "  smooth 0\n  twosided 0\n  corners 3 0 0 0.5 1 2 0.5 2 0 1.5\n}\n"}},
    {"write_dvs", "#", "# VESK plain scene 1 for dVS\n", "", {"object {\nname \"wall\""}},
    {"write_massive", "#", "# VESK plain scene 1 for MASSIVE\n", "", {"object {\nname \"wall\""}},
};

class Exports : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        camera_reset_for_test();
        textures_reset_for_test();
        vesk_register_builtin_texture_loaders();
    }
    void TearDown() override
    {
        SceneTest::TearDown();
        textures_reset_for_test();
    }

    static surface_t *add_triangle(object_t *object, int type, int look)
    {
        surface_t *surface = new_surface();
        const float corners[3][2] = {{0, 0}, {1, 0}, {0, 1}};
        for (const auto &c : corners) {
            vertex *point = object_add_new_vertex(object, c[0], c[1], 0);
            point->normal = {0, 0, 1};
            surface_add_vertex(surface, point, c[0], c[1]);
        }
        vesk_surface_set_normal(surface, 0, 0, 1);
        surface_set_type(surface, type);
        surface_set_col(surface, look);
        object_add_surface(object, surface);
        return surface;
    }
    static object_t *add_child(object_t *parent, object_t *child, const char *name)
    {
        object_set_name(child, name);
        object_add_child(parent, child);
        return child;
    }

    // A group with a wall (a flat one-sided triangle, a smooth two-sided one, a closed line, a
    // texture) and a light, beside it an object of the hostile name in a second material.
    static void build_scene()
    {
        material *glass = vesk_palette_get_material(2);
        std::copy_n(std::to_array({0.25f, 0.5f, 1.0f}).data(), 3, glass->diffuse);
        glass->transparency = 0.5f;
        object_t *house = add_child(vesk_get_world(), new_group(), "house");
        object_set_url(house, "http://x/\"a\"");
        object_set_userdata(house, "line one\nline two");
        object_t *wall = add_child(house, new_object(OBJECT_POLY), "wall");
        surface_set_twosided(add_triangle(wall, SURFACE_POLYGON, 1), 0);
        surface_set_shading(add_triangle(wall, SURFACE_POLYGON, 1), 1);
        add_triangle(wall, SURFACE_CLOSED_LINE, 2);
        const std::string picture = temporary_file("wood.bmp");
        write_text(picture, write_bmp(sample_picture(2, 2, 0), {}));
        object_set_init_texture(wall, picture.c_str(), "wood.bmp");
        object_set_texture_repeat(wall, 2, 1);
        object_set_texture_offset(wall, 0, 0.5f);
        object_t *light = add_child(house, new_light(), "lamp");
        light->centre = {1, 2.5f, -3};
        object_t *other = add_child(vesk_get_world(), new_object(OBJECT_POLY), hostile_name);
        add_triangle(other, SURFACE_POLYGON, 2);
        object_mark_tree(vesk_get_world(), CHANGED_ALL);
    }

    static std::string written(const format_case &format)
    {
        const std::string file = temporary_file("scene.out");
        EXPECT_EQ(run(format.command, file), "");
        const std::string text = read_text(file);
        if (format.comment != nullptr) {
            EXPECT_EQ(broken(text, format.comment), "") << format.command << '\n' << text;
        }
        return text;
    }
    static std::string written(const char *command)
    {
        const auto *format =
            std::find_if(std::begin(formats), std::end(formats), [command](const format_case &f) {
                return std::string_view(f.command) == command;
            });
        return written(*format);
    }
    static bool holds(const std::string &text, const std::string &part)
    {
        return text.find(part) != std::string::npos;
    }
};

TEST_F(Exports, EachFormatHoldsTheScene)
{
    build_scene();
    for (const format_case &format : formats) {
        SCOPED_TRACE(format.command);
        const std::string text = written(format);
        EXPECT_EQ(last_message(), "written file " + temporary_file("scene.out") + format.losses);
        EXPECT_TRUE(text.starts_with(format.head)) << text.substr(0, 300);
        for (const char *part : format.holds)
            EXPECT_TRUE(holds(text, part)) << part << "\n--- is not in ---\n" << text;
    }
}

// Also of objects of which nothing is left.
TEST_F(Exports, WhatAFormatHasNoPlaceForIsCounted)
{
    object_t *lines = add_child(vesk_get_world(), new_object(OBJECT_POLY), "lines");
    add_triangle(lines, SURFACE_LINE, 1);
    object_t *points = add_child(vesk_get_world(), new_object(OBJECT_POLY), "points");
    object_add_new_vertex(points, 1, 2, 3);
    object_mark_tree(vesk_get_world(), CHANGED_ALL);
    for (const char *command : {"write_POV", "write_tri"}) {
        run(command, temporary_file("scene.out"));
        EXPECT_NE(last_message().find(" - 1 line, 1 loose point were left out"), std::string::npos)
            << last_message();
    }
}

TEST_F(Exports, ARendererGetsPicturesThatItCanRead)
{
    build_scene();
    written("write_POV");
    EXPECT_TRUE(read_text(temporary_file("scene_wood.png")).starts_with("\x89PNG"));
    object_t *wall = nullptr;
    for_each_object(vesk_get_world(),
                    [&wall](object_t *object) { wall = object->has_texture != 0 ? object : wall; });
    object_texture_clear(wall);
    search_and_set_texture(wall, temporary_file("scene.out").c_str(), "gone/oak.png");
    EXPECT_FALSE(holds(written("write_POV"), "image_map"));
    EXPECT_NE(last_message().find("1 texture"), std::string::npos) << last_message();
}

// Beside the folder of the file, and where it was not found.
TEST_F(Exports, TexturesAreNamedAsSeenFromTheFile)
{
    build_scene();
    std::filesystem::create_directory(temporary_file("there"));
    const std::string file = temporary_file("there/scene.iv");
    run("write_inventor", file);
    EXPECT_TRUE(holds(read_text(file), "filename \"../wood.bmp\""));
    object_t *wall = nullptr;
    for_each_object(vesk_get_world(),
                    [&wall](object_t *object) { wall = object->has_texture != 0 ? object : wall; });
    object_texture_clear(wall);
    search_and_set_texture(wall, file.c_str(), "gone/oak.bmp");
    run("write_inventor", file);
    EXPECT_TRUE(holds(read_text(file), "filename \"gone/oak.bmp\""));
}

struct counts_t {
    int surfaces = 0;
    int lines = 0;
    int lights = 0;
};

counts_t counts_of_world()
{
    counts_t counts;
    for_each_object(vesk_get_world(), [&counts](const object_t *object) {
        counts.lights += object->type == OBJECT_LIGHT ? 1 : 0;
        for (const surface_t *surface : each<surface_t>(object->surfaces)) {
            ++counts.surfaces;
            counts.lines += surface->type != SURFACE_POLYGON ? 1 : 0;
        }
    });
    return counts;
}

void expect_read_back(const char *command, const char *name, const counts_t &wanted)
{
    const std::string file = temporary_file(name);
    run(command, file);
    run("clear_all");
    ASSERT_EQ(run("file_load", file), "1") << command;
    const counts_t found = counts_of_world();
    EXPECT_EQ(found.surfaces, wanted.surfaces) << command;
    EXPECT_EQ(found.lines, wanted.lines) << command;
    EXPECT_EQ(found.lights, wanted.lights) << command;
    bool coloured = false;
    for_each_object(vesk_get_world(), [&coloured](const object_t *object) {
        for (const surface_t *surface : each<surface_t>(object->surfaces))
            coloured |= std::abs(vesk_palette_get_material(surface->material)->diffuse[0] - 0.25f) <
                        1 / 128.0f;
    });
    EXPECT_TRUE(coloured) << command;
}

TEST_F(Exports, WhatImportReadsComesBack)
{
    build_scene();
    expect_read_back("write_vrml", "back.wrl", {.surfaces = 4, .lines = 1, .lights = 1});
    run("clear_all");
    build_scene();
    expect_read_back("write_tri", "back.tri", {.surfaces = 3});
}

TEST_F(Exports, NumbersThatAreNoneBecomeZero)
{
    object_t *cube = add_cube("odd");
    item_of<vertex>(cube->vertices)->position = {NAN, INFINITY, -INFINITY};
    object_mark(cube, CHANGED_ALL);
    for (const format_case &format : formats) {
        const std::string text = written(format);
        EXPECT_FALSE(holds(text, "nan") || holds(text, "inf")) << format.command;
    }
}

TEST_F(Exports, AnEmptySceneIsAWholeFile)
{
    for (const format_case &format : formats)
        written(format);
    EXPECT_FALSE(holds(written("write_POV"), "union"));
    add_child(vesk_get_world(), new_group(), "hollow");
    EXPECT_FALSE(holds(written("write_POV"), "union")); // which must not be empty
    EXPECT_TRUE(holds(written("write_vrml"), "DEF hollow Separator {\n}\n"));
}

TEST_F(Exports, PovFollowsItsPreferences)
{
    build_scene();
    prefs_set_string(&prefs.pov_file_header, "global_settings { assumed_gamma 1 }");
    prefs.pov_up_aspect = 2;
    prefs.pov_right_aspect = -3;
    prefs.pov_active_pointer = 0;
    prefs.pov_object_data = 0;
    std::string text = written("write_POV");
    EXPECT_TRUE(text.starts_with("#version 3.5;\nglobal_settings { assumed_gamma 1 }\ncamera {\n"
                                 "  location <0.5, 0.5, 2>\n  up <0, 2, 0>\n  right <-3, 0, 0>\n"));
    EXPECT_FALSE(holds(text, "line one"));
    prefs.pov_use_object_data = 1;
    text = written("write_POV");
    EXPECT_TRUE(holds(text, "\nline one\nline two\n}\n"));
}

TEST_F(Exports, RibFollowsItsPreferences)
{
    build_scene();
    EXPECT_FALSE(holds(written("write_rib"), "wood.bmp"));
    prefs.output_rib_header = 0;
    prefs.rib_textures = 1;
    prefs.rib_use_object_data = 1;
    const std::string text = written("write_rib");
    EXPECT_FALSE(holds(text, "World") || holds(text, "Projection"));
    EXPECT_TRUE(holds(text, "\nline one\nline two\nAttributeBegin\n"));
    EXPECT_TRUE(holds(text, "\"texturename\" [\"wood.bmp\"]\n"));
    EXPECT_TRUE(holds(text, "\"facevarying float[2] st\" [ 0 0.5 2 0.5 0 -0.5]\n"));
}

TEST_F(Exports, ATreeOfAnyDepthIsClosed)
{
    object_t *parent = vesk_get_world();
    for (int i = 0; i < 20000; ++i)
        parent = add_child(parent, new_object(OBJECT_GROUP), "g");
    add_triangle(parent, SURFACE_POLYGON, 1);
    add_child(vesk_get_world(), new_group(), "next");
    object_mark_tree(vesk_get_world(), CHANGED_ALL);
    for (const format_case &format : formats)
        written(format);
    EXPECT_TRUE(holds(written("write_dive"), "}\n}\nobject {\nname \"next\""));
}

// One object of many surfaces, and a cancel amid it.
TEST_F(Exports, CancelWithinAnObjectLeavesTheFormerFile)
{
    object_t *object = add_child(vesk_get_world(), new_object(OBJECT_POLY), "many");
    std::vector<float> xyz;
    std::vector<int> corners;
    std::vector<int> offsets = {0};
    for (int i = 0; i < 5000; ++i) {
        const auto x = static_cast<float>(i);
        xyz.insert(xyz.end(), {x, 0, 0, x + 1, 0, 0, x, 1, 0});
        corners.insert(corners.end(), {3 * i, 3 * i + 1, 3 * i + 2});
        offsets.push_back(3 * i + 3);
    }
    vesk_object_add_vertices_from_float_array(object, xyz.data(), 15000);
    vesk_object_add_surfaces_from_arrays(object, 5000, offsets.data(), corners.data(), nullptr, 2);
    object_mark_tree(vesk_get_world(), CHANGED_ALL);
    const std::string file = temporary_file("kept.out");
    std::vector<std::string> commands = {"write_3ds", "write_vrml2"};
    for (const format_case &format : formats)
        commands.emplace_back(format.command);
    for (const std::string &command : commands) {
        for (const int patience : {1, 3}) {
            write_text(file, "before");
            cancel_at_look(patience);
            run(command.c_str(), file);
            EXPECT_TRUE(last_message().ends_with(" - cancelled")) << command << last_message();
            EXPECT_EQ(read_text(file), "before") << command;
        }
        cancel_at_look(0);
        run(command.c_str(), file);
        EXPECT_NE(read_text(file), "before") << command;
    }
}

TEST_F(Exports, AFormerFileSurvivesFailureAndCancel)
{
    for (const format_case &format : formats) {
        run(format.command, "/nowhere/at/all");
        EXPECT_EQ(last_message(), "/nowhere/at/all was not written: No such file or directory");
    }
    for (int i = 0; i < 500; ++i)
        add_child(vesk_get_world(), new_group(), "g");
    const std::string file = temporary_file("kept.wrl");
    write_text(file, "before");
    recording().clock_step = 1;
    recording().while_pumping = [] { run("cancel"); };
    run("write_vrml", file);
    EXPECT_EQ(last_message(), "write VRML 1.0 - cancelled");
    EXPECT_EQ(read_text(file), "before");
}

} // namespace
