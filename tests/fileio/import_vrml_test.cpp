// VRML worlds of both versions: what comes of them, what of those that this program wrote, and what
// of those that were made to do harm.

#include "base/file_report.h"
#include "base/prefs.h"
#include "model/angle.h"
#include "model/bounds.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/lights.h"
#include "model/object_tree.h"
#include "model/palette.h"
#include "model/textures/textures.h"
#include "model/vertex_colours.h"
#include "model/world.h"
#include "tests/fileio/file_cases.h"
#include "tests/fileio/foreign_files.h"
#include "tests/model/textures/image_writer.h"
#include "tests/support/scene_test.h"

#include <algorithm>
#include <cmath>
#include <zlib.h>

namespace {

const std::string head = "#VRML V2.0 utf8\n";

class Vrml : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        textures_reset_for_test();
        vesk_register_builtin_texture_loaders();
        write_text(temporary_file("wood.bmp"), write_bmp(sample_picture(4, 4, 0), {}));
    }
    void TearDown() override
    {
        SceneTest::TearDown();
        textures_reset_for_test();
    }

    static std::string load(const std::string &bytes, const char *name = "a.wrl")
    {
        run("clear_all");
        const std::string file = temporary_file(name);
        write_text(file, bytes);
        return run("file_load", file);
    }
    static std::string refusal()
    {
        return recording().boxes.empty() ? "" : recording().boxes.back();
    }
    static object_t *find(const std::string &name)
    {
        object_t *found = nullptr;
        for_each_object(vesk_get_world(), [&](object_t *object) {
            if (found == nullptr && name == object->name)
                found = object;
        });
        return found;
    }
    static surface_t *first_surface(const char *name)
    {
        object_t *object = find(name);
        return object == nullptr || object->surfaces == nullptr
                   ? nullptr
                   : item_of<surface_t>(object->surfaces);
    }
    static const material &material_of(const char *name)
    {
        return *vesk_palette_get_material(first_surface(name)->material);
    }
    static bool warned(const std::string &text)
    {
        const auto &all = last_file_report().warnings;
        return std::any_of(all.begin(), all.end(),
                           [&](const auto &complaint) { return complaint.text == text; });
    }
    // Of a closed mesh of which the outlines run counter-clockwise outside: above 0.
    static double volume(const object_t *object)
    {
        double sum = 0;
        for (const surface_t *surface : each<surface_t>(object->surfaces)) {
            const point3_t &a = item_of<svertex>(surface->refs)->vertex->position;
            const point3_t *b = nullptr;
            for (const svertex *corner : each<svertex>(surface->refs->next)) {
                const point3_t &c = corner->vertex->position;
                if (b != nullptr)
                    sum += a.x * (b->y * c.z - b->z * c.y) + a.y * (b->z * c.x - b->x * c.z) +
                           a.z * (b->x * c.y - b->y * c.x);
                b = &c;
            }
        }
        return sum / 6;
    }
    // Everything of the world but materials' places in the palette.
    static std::string world_text()
    {
        std::string text;
        for (const object_t *child : each<object_t>(vesk_get_world()->children))
            text += describe(child) + "\n";
        for (size_t at = 0; (at = text.find(" m", at)) != std::string::npos;)
            text.erase(at, text.find_first_of(" ]", at + 1) - at);
        return text;
    }
};

// ---- nodes of version 2.0 ----

TEST_F(Vrml, AWorldOfManyNodesIsRead)
{
    ASSERT_EQ(load(make_vrml2()), "1") << refusal();
    const object_t *house = find("house");
    ASSERT_NE(house, nullptr);
    EXPECT_EQ(house->type, OBJECT_GROUP);
    EXPECT_STREQ(house->url, "http://example.org/\"house\"");

    const object_t *wall = find("wall");
    ASSERT_NE(wall, nullptr);
    EXPECT_EQ(wall->num_surfaces, 2) << world_text();
    EXPECT_EQ(wall->num_vertices, 4); // of the five in the list
    EXPECT_EQ(find_object_min(wall).x, 10);
    EXPECT_EQ(wall->has_texture, 1);
    EXPECT_EQ(wall->texture_repeat_x, 2);
    EXPECT_EQ(wall->texture_offset_y, 1.5f); // moved by 0.5, then scaled by 3
    const surface_t *first = first_surface("wall");
    EXPECT_EQ(vesk_surface_get_flags(first), 0); // one-sided and flat
    EXPECT_EQ(material_of("wall").diffuse[2], 1);
    EXPECT_EQ(material_of("wall").transparency, 0.25f);
    EXPECT_FLOAT_EQ(material_of("wall").shininess, 64);
    EXPECT_EQ(item_of<svertex>(first->refs->next)->u, 1);

    const object_t *box = find("box");
    ASSERT_NE(box, nullptr);
    EXPECT_NEAR(find_object_size(box).x, 2, 1e-5); // scaled along x, then turned onto y
    EXPECT_NEAR(find_object_size(box).y, 6, 1e-5);
    EXPECT_NEAR(box->centre.y, 3, 1e-5);
    EXPECT_GT(volume(box), 0);

    EXPECT_STREQ(find("lamp") == nullptr ? "" : "lamp", "lamp");
    EXPECT_EQ(find("lamp")->centre.z, 4);
    for (const char *line : {"1 Text have no counterpart here and were left out",
                             "1 Viewpoint have no counterpart here and were left out",
                             "1 TimeSensor have no counterpart here and were left out",
                             "1 Elsewhere have no counterpart here and were left out",
                             "1 ROUTE have no counterpart here and were left out",
                             "1 children of Switch and LOD that are not shown were left out"})
        EXPECT_TRUE(warned(line)) << line;
}

TEST_F(Vrml, LinesPointsAndColours)
{
    ASSERT_EQ(load(head + R"(
DEF lines Shape {
  appearance Appearance { material Material { emissiveColor 1 0 0 } }
  geometry IndexedLineSet { coord Coordinate { point [ 0 0 0 1 0 0 1 1 0 ] }
                            coordIndex [ 0 1 2 0 -1 0 1 -1 ] } }
DEF cloud Shape { geometry PointSet { coord Coordinate { point [ 0 0 0, 5 5 5 ] } } }
DEF faces Shape {
  geometry IndexedFaceSet { coord Coordinate { point [ 0 0 0 1 0 0 1 1 0 0 1 0 ] }
    coordIndex [ 0 1 2 -1 0 2 3 ] ccw FALSE solid FALSE creaseAngle 3
    color Color { color [ 1 0 0, 0 1 0 ] } colorPerVertex FALSE colorIndex [ 1 0 ] } }
DEF corners Shape {
  geometry IndexedFaceSet { coord Coordinate { point [ 0 0 0 1 0 0 1 1 0 ] }
    coordIndex [ 0 1 2 -1 ] color Color { color [ 1 0 0, 1 0 0, 0 0 1 ] } } }
)"),
              "1")
        << refusal();
    EXPECT_EQ(first_surface("lines")->type, SURFACE_CLOSED_LINE);
    EXPECT_EQ(first_surface("lines")->num_refs, 3);
    EXPECT_EQ(material_of("lines").diffuse[0], 1);
    EXPECT_EQ(material_of("lines").emissive[0], 0);
    EXPECT_EQ(find("cloud")->num_vertices, 2);
    EXPECT_EQ(material_of("faces").diffuse[1], 1);
    EXPECT_EQ(vesk_surface_get_flags(first_surface("faces")), SURFACE_SMOOTH | SURFACE_TWOSIDED);
    EXPECT_EQ(item_of<svertex>(first_surface("faces")->refs)->vertex->position.x,
              1); // turned round
    // Colours of points stay with them, there and back.
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(material_of("corners").diffuse[1], 1); // multiplied by them
        const unsigned char *rgb = vesk_object_get_vertex_colours(find("corners"));
        ASSERT_NE(rgb, nullptr);
        EXPECT_TRUE(rgb[0] == 255 && rgb[1] == 0 && rgb[6] == 0 && rgb[8] == 255);
        const std::string file = temporary_file("colours.wrl");
        run("export_model", file);
        EXPECT_TRUE(last_file_report().losses.empty());
        run("clear_all");
        ASSERT_EQ(run("file_load", file), "1");
    }
}

// Closed, and the outside outside: also in a mirror.
TEST_F(Vrml, SolidsGridsAndExtrusionsFaceOutwards)
{
    ASSERT_EQ(load(head + R"(
DEF sphere Shape { geometry Sphere { } } DEF cone Shape { geometry Cone { } }
DEF cylinder Shape { geometry Cylinder { height 4 } }
DEF bar Shape { geometry Extrusion { } }
DEF bent Shape { geometry Extrusion { spine [ 0 0 0, 0 2 0, 2 2 0 ] solid FALSE } }
Transform { scale -1 1 1 children DEF mirrored Shape { geometry Extrusion { } } }
DEF ground Shape { geometry ElevationGrid { xDimension 3 zDimension 2 xSpacing 2
                                            height [ 0 1 0, 0 1 0 ] } }
)"),
              "1")
        << refusal();
    EXPECT_NEAR(volume(find("sphere")), 4.0 / 3 * pi, 0.4);
    EXPECT_NEAR(volume(find("cone")), 2.0 / 3 * pi, 0.1);
    EXPECT_NEAR(volume(find("cylinder")), 4 * pi, 0.5);
    EXPECT_NEAR(volume(find("bar")), 4, 1e-5);
    EXPECT_NEAR(volume(find("bent")), 12, 2); // about 4 times its length, the corner cut
    EXPECT_NEAR(std::abs(volume(find("mirrored"))), 4, 1e-5);
    const object_t *ground = find("ground");
    EXPECT_EQ(ground->num_surfaces, 2);
    EXPECT_EQ(find_object_size(ground).x, 4);
    EXPECT_GT(first_surface("ground")->normal.y, 0);
}

TEST_F(Vrml, PrototypesTakeTheirInstancesValues)
{
    ASSERT_EQ(load(head + R"(
PROTO Leg [ field SFVec3f at 0 0 0  exposedField SFColor tint 1 0 0  eventIn SFBool go ] {
  Transform { translation IS at children Shape {
    appearance Appearance { material Material { diffuseColor IS tint } } geometry Box { } } } }
PROTO Table [ field MFNode more [ ]  field SFColor wood 0 1 0 ] {
  Group { children [ Leg { tint IS wood } Leg { at 4 0 0 } Group { children IS more } ] } }
DEF table Table { more DEF extra Transform { children Shape { geometry Sphere { radius 9 } } } }
)"),
              "1")
        << refusal();
    const object_t *table = find("table");
    ASSERT_NE(table, nullptr);
    ASSERT_EQ(table->num_children, 3);
    const auto colour = [](const object_t *object) {
        return vesk_palette_get_material(item_of<surface_t>(object->surfaces)->material)->diffuse;
    };
    EXPECT_EQ(colour(object_get_kid_at(table, 0))[1], 1);
    EXPECT_EQ(colour(object_get_kid_at(table, 1))[0], 1);
    EXPECT_EQ(find_object_min(object_get_kid_at(table, 1)).x, 3);
    EXPECT_NE(find("extra"), nullptr);
}

TEST_F(Vrml, InlinedWorldsLieBesideTheirs)
{
    write_text(temporary_file("part.wrl"),
               head + "Shape { geometry Box { } } Inline { url \"a.wrl\" }");
    ASSERT_EQ(load(head + "Transform { translation 5 0 0 children Inline { url \"part.wrl\" } }\n"
                          "Inline { url \"../../etc/passwd\" } Inline { url \"/dev/zero\" }"),
              "1")
        << refusal();
    EXPECT_EQ(find_object_min(vesk_get_world()).x, 4);
    EXPECT_TRUE(find("part") != nullptr);
    // Those two, and the one in which the file names itself once too often.
    EXPECT_FALSE(last_file_report().warnings.empty());
}

TEST_F(Vrml, PackedWorldsAreUnpacked)
{
    const std::string text = head + "DEF box Shape { geometry Box { } }";
    const std::string file = temporary_file("packed.wrl");
    gzFile packed = gzopen(file.c_str(), "wb");
    gzwrite(packed, text.data(), static_cast<unsigned>(text.size()));
    gzclose(packed);
    const std::string bytes = read_text(file);
    for (const char *name : {"packed.wrl", "packed.wrz", "packed.wrl.gz"}) {
        ASSERT_EQ(load(bytes, name), "1") << name << refusal();
        EXPECT_NE(find("box"), nullptr);
    }
    EXPECT_EQ(load(bytes.substr(0, bytes.size() - 12), "packed.wrz"), "0");
    EXPECT_TRUE(refusal().ends_with("its packed bytes are damaged"));
}

// ---- there and back ----

class VrmlRoundTrip : public Vrml, public testing::WithParamInterface<const char *> {
protected:
    // Objects with all that both versions hold.
    static void build_scene()
    {
        object_t *house = new_group();
        object_set_name(house, "house");
        object_set_url(house, "http://x/\"a\"");
        object_add_child(vesk_get_world(), house);
        object_t *wall = add_cube("the wall, \"old\"");
        object_reparent(wall, house);
        std::string names[] = {"oak", "glass"};
        int entries[2];
        for (int i = 0; i < 2; ++i) {
            material m;
            material_init(&m);
            m.name = names[i].data();
            m.diffuse[0] = 0.25f * static_cast<float>(i + 1);
            for (int k = 0; k < 3; ++k) {
                m.ambient[k] = 0.5f * m.diffuse[k];
                m.specular[k] = 0.125f * static_cast<float>(k);
            }
            m.shininess = 32;
            m.transparency = 0.5f * static_cast<float>(i);
            entries[i] = vesk_palette_get_new_material_index(&m);
        }
        int number = 0; // surfaces of each kind, in the order in which they are written
        for (surface_t *surface : each<surface_t>(wall->surfaces)) {
            surface_set_col(surface, entries[number / 3]);
            surface_set_shading(surface, number % 3 == 0 ? 1 : 0);
            surface_set_twosided(surface, number % 3 == 1 ? 1 : 0);
            ++number;
        }
        object_set_init_texture(wall, temporary_file("wood.bmp").c_str(), "wood.bmp");
        object_t *wire = new_object(OBJECT_POLY);
        object_set_name(wire, "wire");
        for (const int type : {SURFACE_LINE, SURFACE_CLOSED_LINE}) {
            surface_t *line = new_surface();
            surface_set_type(line, type);
            surface_set_col(line, entries[0]);
            for (int i = 0; i < 3; ++i)
                surface_add_vertex(line,
                                   object_add_new_vertex(wire, static_cast<float>(i),
                                                         static_cast<float>(i * type), 7),
                                   0, 0);
            object_add_surface(wire, line);
        }
        object_add_child(wall, wire);
        object_t *cloud = new_object(OBJECT_POLY);
        object_set_name(cloud, "cloud");
        object_add_new_vertex(cloud, 1, 2, 3);
        object_add_new_vertex(cloud, 4, 5, 6);
        object_set_url(cloud, "cloud.html");
        object_add_child(vesk_get_world(), cloud);
        object_t *lamp = new_light();
        object_set_name(lamp, "lamp");
        vesk_object_set_centre(lamp, 1, 2.5f, -3);
        object_add_child(house, lamp);
        object_t *hollow = new_group();
        object_set_name(hollow, "hollow");
        object_add_child(vesk_get_world(), hollow);
        object_mark_tree(vesk_get_world(), CHANGED_ALL);
    }
    // Surfaces of an object, sorted: they come back in the order of their kinds.
    static std::string sorted_world()
    {
        std::string text = world_text();
        std::vector<std::string> parts;
        std::string out;
        for (size_t at = 0; at < text.size();) {
            if (text[at] != '[') {
                std::sort(parts.begin(), parts.end());
                for (const std::string &part : parts)
                    out += part;
                parts.clear();
                out += text[at++];
                continue;
            }
            const size_t end = text.find(']', at) + 1;
            parts.push_back(text.substr(at, end - at));
            at = end;
        }
        return out;
    }
};

TEST_P(VrmlRoundTrip, KeepsTreeNamesSidesShadingLinesAndPoints)
{
    build_scene();
    const std::string before = sorted_world();
    const std::string file = temporary_file("back.wrl");
    run(GetParam(), file);
    run("clear_all");
    ASSERT_EQ(run("file_load", file), "1") << refusal();
    EXPECT_EQ(sorted_world(), before);
    const material &first = material_of("the wall, \"old\"");
    EXPECT_STREQ(first.name, "oak");
    EXPECT_FLOAT_EQ(first.diffuse[0], 0.25f);
    EXPECT_FLOAT_EQ(first.ambient[1], 0.5f);
    EXPECT_FLOAT_EQ(first.specular[2], 0.25f);
    EXPECT_FLOAT_EQ(first.shininess, 32);
    EXPECT_EQ(find("the wall, \"old\"")->has_texture, 1);
    EXPECT_EQ(find("lamp")->centre.y, 2.5f);
    EXPECT_STREQ(material_of("wire").name, "oak"); // the entry that the wall has
    EXPECT_TRUE(last_file_report().warnings.empty());

    // In the order in which they now are, to the letter.
    const std::string again = temporary_file("again.wrl");
    run(GetParam(), again);
    run("clear_all");
    ASSERT_EQ(run("file_load", again), "1") << refusal();
    run(GetParam(), file);
    EXPECT_EQ(read_text(again), read_text(file));
}
INSTANTIATE_TEST_SUITE_P(Versions, VrmlRoundTrip,
                         testing::Values("write_vrml", "write_vrml2_tree"));

TEST_F(Vrml, TexturesComeBackWithTheirPlacing)
{
    object_t *cube = add_cube("cube");
    object_set_init_texture(cube, temporary_file("wood.bmp").c_str(), "wood.bmp");
    object_set_texture_repeat(cube, 2, 4);
    object_set_texture_offset(cube, 0.5f, -1);
    vesk_object_set_centre(cube, 1, 2, 3);
    const std::string file = temporary_file("placed.wrl");
    run("export_model", file);
    run("clear_all");
    ASSERT_EQ(run("file_load", file), "1") << refusal();
    cube = find("cube");
    EXPECT_EQ(cube->texture_repeat_y, 4);
    EXPECT_EQ(cube->texture_offset_x, 0.5f);
    EXPECT_EQ(cube->texture_offset_y, -1);
    EXPECT_EQ(cube->centre.z, 3);
}

// The older form has names in comments alone, and no tree.
TEST_F(Vrml, TheOlderFormComesBackWithItsNames)
{
    for (const char *command : {"write_vrml2", "write_vrml2_proto"}) {
        run("clear_all");
        object_t *cube = add_cube("cube");
        surface_set_type(item_of<surface_t>(cube->surfaces), SURFACE_LINE);
        surface_set_col(item_of<surface_t>(cube->surfaces), 2);
        add_cube("ball");
        object_t *lamp = new_light();
        object_set_name(lamp, "lamp");
        vesk_object_set_centre(lamp, 1, 2, 3);
        object_add_child(vesk_get_world(), lamp);
        object_mark_tree(vesk_get_world(), CHANGED_ALL);
        const std::string file = temporary_file("older.wrl");
        run(command, file);
        run("clear_all");
        ASSERT_EQ(run("file_load", file), "1") << command << refusal();
        ASSERT_NE(find("cube"), nullptr) << command;
        EXPECT_EQ(find("cube")->num_surfaces, 6) << command;
        EXPECT_EQ(find("cube")->num_vertices, 8) << command;
        ASSERT_NE(find("ball"), nullptr) << command;
        EXPECT_FLOAT_EQ(material_of("ball").shininess, 10) << command;
        ASSERT_NE(find("lamp"), nullptr) << command;
        EXPECT_EQ(find("lamp")->centre.z, 3) << command;
    }
}

// ---- version 1.0 ----

TEST_F(Vrml, TheFirstVersionsBindingsAndHints)
{
    ASSERT_EQ(load(R"(#VRML V1.0 ascii
Separator {
  Material { diffuseColor [ 1 0 0, 0 1 0, 0 0 1 ] }
  MaterialBinding { value PER_PART }
  DEF can Separator { Cylinder { } }
  DEF box Separator { MaterialBinding { value PER_FACE } Cube { } }
  Coordinate3 { point [ 0 0 0, 1 0 0, 1 1 0, 0 1 0 ] }
  ShapeHints { vertexOrdering CLOCKWISE shapeType SOLID creaseAngle 2 }
  MaterialBinding { value PER_VERTEX_INDEXED }
  DEF face IndexedFaceSet { coordIndex [ 0 1 2 3 -1 ] materialIndex [ 2 2 2 2 -1 ] }
  DEF odd IndexedFaceSet { coordIndex [ 0 1 2 -1 ] materialIndex [ 0 1 1 -1 ] }
})"),
              "1")
        << refusal();
    const auto colour = [](const surface_t *surface) {
        return vesk_palette_get_material(surface->material)->diffuse;
    };
    const object_t *can = find("can");
    EXPECT_EQ(colour(object_get_surface_at(can, 0))[0], 1);  // the side
    EXPECT_EQ(colour(object_get_surface_at(can, 16))[1], 1); // the top
    EXPECT_EQ(colour(object_get_surface_at(can, 17))[2], 1); // the bottom
    EXPECT_EQ(colour(object_get_surface_at(find("box"), 1))[1], 1);
    EXPECT_EQ(vesk_surface_get_flags(first_surface("face")), SURFACE_SMOOTH);
    EXPECT_EQ(item_of<svertex>(first_surface("face")->refs)->vertex->position.y, 1); // turned round
    EXPECT_EQ(material_of("face").diffuse[2], 1);
    EXPECT_TRUE(warned("1 surfaces have corners of several colours; they have the mean now"));
}

// ---- files made to do harm ----

struct harm_case {
    const char *name;
    std::string text;
    const char *reason; // the end of the message; "" when it may be read
};
void PrintTo(const harm_case &c, std::ostream *out) { *out << c.name; }

std::string repeated(const std::string &text, int times)
{
    std::string all;
    for (int i = 0; i < times; ++i)
        all += text;
    return all;
}

std::string doubling(const char *begin, const char *middle)
{
    std::string text = head + begin;
    for (int i = 1; i < 60; ++i) {
        std::string line = middle;
        for (size_t at = 0; (at = line.find_first_of("<>", at)) != std::string::npos;)
            line.replace(at, 1, "n" + std::to_string(line[at] == '<' ? i - 1 : i));
        text += line;
    }
    return text;
}

std::vector<harm_case> harm_cases()
{
    const char *deep = "its nodes lie in more than 1000 others";
    const char *grown = "its nodes repeat each other beyond what can be held";
    const std::string points = repeated("0.125 ", 600000);
    return {
        {"depth", head + repeated("Group { children ", 500000), ""},
        {"protos_in_protos", head + repeated("PROTO a [ ] { ", 500000), ""},
        {"uses",
         doubling("DEF n0 Shape { geometry Box { } }\n",
                  "DEF > Group { children [ USE < USE < ] }\n") +
             "USE n59",
         grown},
        {"protos",
         doubling("PROTO n0 [ ] { Shape { geometry Box { } } }\n",
                  "PROTO > [ ] { Group { children [ < { } < { } ] } }\n") +
             "n59 { }",
         grown},
        {"empty_protos",
         doubling("PROTO n0 [ ] { Group { } }\n",
                  "PROTO > [ ] { Group { children [ < { } < { } ] } }\n") +
             "n59 { }",
         grown},
        {"proto_of_itself", head + "PROTO a [ ] { a { } } a { } Shape { geometry Box { } }", "1"},
        {"fields_of_fields",
         head + "PROTO a [ field SFNode x IS x ] { Group { children IS x } } a { }", ""},
        {"long_lists_again",
         head +
             "Group { children [ DEF s Shape { geometry IndexedFaceSet { coord Coordinate { point "
             "[" +
             points + "] } coordIndex [ ] } } " + repeated("USE s ", 100000) + "] }",
         grown},
        {"heights",
         head + "Shape { geometry ElevationGrid { xDimension 2000000000 zDimension 2000000000 "
                "height [ 1 2 3 4 ] } }",
         "there is no geometry in it"},
        {"spine",
         head + "Shape { geometry Extrusion { crossSection [" + points + "] spine [" + points +
             "] } }",
         grown},
        {"indices",
         head +
             "Shape { geometry IndexedFaceSet { coord Coordinate { point [ 0 0 0 1 0 0 0 1 0 ] } "
             "coordIndex [ 0 1 2 -1 99999999999 1 2 -1 2147483647 -5 0 ] } }",
         "1"},
        {"unclosed_list", head + "Shape { geometry Box { size [ 1 2" + points, ""},
        {"unclosed_text", head + "Anchor { url \"" + points, ""},
        {"routes", head + repeated("ROUTE a . b TO c . d ", 100000), ""},
        {"scripts",
         head + repeated("Script { field SFNode x DEF a Group { } eventIn SFBool y } ", 50000), ""},
        {"deep_by_protos",
         [] {
             std::string text = head + "PROTO n0 [ ] { Shape { geometry Box { } } }\n";
             for (int i = 1; i < 20000; ++i)
                 text += "PROTO n" + std::to_string(i) + " [ ] { Group { children n" +
                         std::to_string(i - 1) + " { } } }\n";
             return text + "n19999 { }";
         }(),
         deep},
    };
}

class HarmfulVrml : public Vrml, public testing::WithParamInterface<harm_case> {};

TEST_P(HarmfulVrml, IsReadOrRefused)
{
    const harm_case &c = GetParam();
    const std::string came = load(c.text);
    if (std::string(c.reason) == "1") {
        EXPECT_EQ(came, "1") << refusal();
    } else if (*c.reason != '\0') {
        EXPECT_EQ(came, "0");
        EXPECT_TRUE(refusal().ends_with(c.reason)) << refusal();
    } else if (came != "1") {
        EXPECT_TRUE(refusal().starts_with("can't read ")) << refusal();
    }
}
INSTANTIATE_TEST_SUITE_P(Files, HarmfulVrml, testing::ValuesIn(harm_cases()),
                         [](const auto &each_case) { return each_case.param.name; });

// Every beginning of a file, too.
TEST_F(Vrml, TruncatedWorldsAreReadOrRefused)
{
    for (const std::string &whole : {make_vrml2(), make_vrml1()})
        for (size_t size = 0; size < whole.size(); size += 7)
            load(whole.substr(0, size));
    for (const std::string &box : recording().boxes)
        ASSERT_TRUE(box.starts_with("can't read ") || box.starts_with("texture_read:")) << box;
}

} // namespace
