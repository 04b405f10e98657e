// The bundled plug-in for OBJ and its neighbours, which knows the program by its public interface
// alone.

#include "base/file_report.h"
#include "edit/document/selection.h"
#include "model/bounds.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/normals.h"
#include "model/palette.h"
#include "model/vertex_colours.h"
#include "model/world.h"
#include "plugin/importers.h"
#include "tests/plugin/interchange_fixture.h"
#include "tests/support/damage.h"

#include <filesystem>
#include <random>

namespace {

TEST_F(Interchange, AnObjFileComesWithMaterialsTexturesAndShading)
{
    write_text(temporary_file("paint.mtl"),
               "# two\nnewmtl red\nKd 1 0 0\nd 0.25\nNs 20\n\nnewmtl wood\nKd 1 1 1\n"
               "map_Kd -s 2 3 1 -clamp on wood.bmp\n");
    ASSERT_EQ(load("a.obj", "# a house\nmtllib paint.mtl\nv 0 0 0\nv 2 0 0\nv 2 1 0\nv 0 1 0\r\n"
                            "v 0 0 5\nvt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\no wall\nusemtl wood\ns 1\n"
                            "f 1/1 2/2 3/3 4/4\nusemtl red\ns off\nf 1//9 2//9 \\\n -1//9\n"
                            "o edge one\nl 1 2 5\nf 1 2\nf 1 2 99\n"),
              "1");
    const std::vector<object_t *> found = parts();
    ASSERT_EQ(found.size(), 3U); // the wall has two, for it has two pictures
    const object_t *wood = found[0];
    EXPECT_STREQ(wood->name, "wall");
    EXPECT_EQ(wood->num_vertices, 4);
    EXPECT_EQ(wood->has_texture, 1);
    EXPECT_EQ(wood->texture_repeat_y, 3);
    const auto *surface = item_of<surface_t>(wood->surfaces);
    EXPECT_EQ(vesk_surface_get_flags(surface), SURFACE_SMOOTH | SURFACE_TWOSIDED);
    EXPECT_EQ(item_of<svertex>(surface->refs->next)->u, 1);
    const auto *plain = item_of<surface_t>(found[1]->surfaces);
    EXPECT_EQ(vesk_surface_get_flags(plain), SURFACE_TWOSIDED);
    EXPECT_EQ(plain->num_refs, 3);
    EXPECT_EQ(vesk_palette_get_material(plain->material)->transparency, 0.75f);
    EXPECT_STREQ(found[2]->name, "edge one");
    EXPECT_EQ(found[2]->num_surfaces, 1);
    EXPECT_EQ(item_of<surface_t>(found[2]->surfaces)->type, SURFACE_LINE);
}

TEST_F(Interchange, WhatIsWrittenIsReadBack)
{
    object_t *cube = add_cube("a cube");
    object_set_init_texture(cube, temporary_file("wood.bmp").c_str(), "wood.bmp");
    object_set_texture_offset(cube, 0.5f, 0);
    object_set_surface_shading(cube, 1);
    object_t *square = add_square(3);
    surface_set_type(item_of<surface_t>(square->surfaces), SURFACE_CLOSED_LINE);
    surface_set_col(item_of<surface_t>(square->surfaces), 4);
    run("recalc_normals_all");
    select_objectlist(vesk_get_world()->children);
    find_bounding_box();
    const std::string size = run("get_selection_size");
    const std::string file = temporary_file("written.obj");

    EXPECT_EQ(run("write_obj", file), "1");
    EXPECT_EQ(last_message(), "written file " + file);
    run("clear_all");
    ASSERT_EQ(run("file_load", file), "1");

    const std::vector<object_t *> found = parts();
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0]->num_vertices, 8);
    EXPECT_EQ(found[0]->num_surfaces, 6);
    EXPECT_EQ(found[0]->has_texture, 1);
    EXPECT_EQ(found[0]->texture_offset_x, 0.5f);
    EXPECT_NE(item_of<surface_t>(found[0]->surfaces)->shading, 0);
    EXPECT_EQ(item_of<surface_t>(found[1]->surfaces)->material, 4);
    EXPECT_EQ(item_of<surface_t>(found[1]->surfaces)->num_refs, 4);
    EXPECT_EQ(item_of<surface_t>(found[1]->surfaces)->type, SURFACE_CLOSED_LINE);
    run("select_all");
    EXPECT_EQ(run("get_selection_size"), size);
    EXPECT_EQ(run("write_obj", "/nowhere/x.obj"), "0");
}

TEST_F(Interchange, MissingFilesAndDoubtfulLinesStandInTheReport)
{
    ASSERT_EQ(load("a.obj", "mtllib none.mtl\nv 0 0 0\nv 1 0 0\nv 1 1\nv 0 1 0\nusemtl gone\n"
                            "f 1 2 3\nf 1 2 \\\n 9\ncurv 1 2\nf 1 2 4\n"),
              "1");
    EXPECT_EQ(complaints(), "1 the materials none.mtl were not found\n"
                            "4 3 numbers are needed\n"
                            "6 the material gone is not described\n"
                            "9 a face has corners that are not there\n"
                            "10 lines that begin with curv are not read\n");
    EXPECT_NE(run("import_report").find(" surfaces 2 "), std::string::npos);
    EXPECT_EQ(recording().scripts.back().starts_with("show_import_report"), true);
    EXPECT_NE(run("report_json").find("{\"line\": 9, \"text\": \"a face has"), std::string::npos);

    write_text(temporary_file("gone.mtl"), "newmtl gone\nmap_Kd nowhere \"x\".png\n");
    ASSERT_EQ(load("b.obj", "mtllib gone.mtl\nv 0 0 0\nv 1 0 0\nv 1 1 0\nusemtl gone\nf 1 2 3\n"),
              "1");
    EXPECT_NE(run("report_json").find("{\"name\": \"nowhere \\\"x\\\".png\", \"found\": null}"),
              std::string::npos)
        << run("report_json");
    EXPECT_EQ(run("export_model", "nosuffix"), "0");
    EXPECT_EQ(run("export_model", "a.xyz"), "0");
    EXPECT_TRUE(recording().boxes.back().starts_with(
        "Sorry, there is no geometry exporter for .xyz files\nI can export these files:\n.vesk"));
}

TEST_F(Interchange, PlyFilesComeInAllTheirForms)
{
    const std::string head = "ply\nformat ascii 1.0\nelement vertex 4\nproperty float x\nproperty "
                             "float y\nproperty float z\n";
    const std::string square = "0 0 0\n2 0 0\n2 1 0\n0 1 0\n";
    const std::string face = "element face 1\nproperty list uchar int vertex_indices\n";
    // Per-vertex coordinates and colours, a strip, edges that make a closed line, big-endian bytes.
    ASSERT_EQ(
        load("a.ply", head +
                          "property float s\nproperty float t\nproperty uchar red\nproperty "
                          "uchar green\nproperty uchar blue\n" +
                          face +
                          "end_header\n0 0 0 0 0 255 0 0\n2 0 0 1 0 255 0 0\n2 1 0 1 1 255 0 0\n"
                          "0 1 0 0 1 255 0 0\n4 0 1 2 3\n"),
        "1");
    const auto *surface = item_of<surface_t>(parts().back()->surfaces);
    EXPECT_EQ(item_of<svertex>(surface->refs->next)->u, 1);
    EXPECT_EQ(std::string(index_to_string(surface->material)), "#ff0000");
    run("clear_all");
    ASSERT_EQ(load("b.ply", head +
                                "element tristrips 1\nproperty list int int vertex_indices\n"
                                "end_header\n" +
                                square + "7 0 1 3 2 -1 0 1\n"),
              "1");
    EXPECT_EQ(parts()[0]->num_surfaces, 2);
    run("recalc_normals_all");
    EXPECT_EQ(item_of<surface_t>(parts()[0]->surfaces)->normal.z,
              object_get_surface_at(parts()[0], 1)->normal.z); // every second one is turned
    run("clear_all");
    ASSERT_EQ(load("c.ply", head +
                                "element edge 5\nproperty int vertex1\nproperty int vertex2\n"
                                "end_header\n" +
                                square + "0 1\n1 2\n2 0\n0 3\n9 1\n"),
              "1");
    EXPECT_EQ(parts()[0]->num_surfaces, 2);
    EXPECT_EQ(item_of<surface_t>(parts()[0]->surfaces)->type, SURFACE_CLOSED_LINE);
    run("clear_all");
    std::string big = head + face + "end_header\n";
    big.replace(big.find("ascii"), 5, "binary_big_endian");
    for (const char *xyz : {"\0\0\0", "\x40\0\0", "\x40\x3f\0", "\0\x3f\0"})
        for (int i = 0; i < 3; ++i)
            big += {xyz[i], xyz[i] == '\x3f' ? '\x80' : '\0', '\0', '\0'};
    big += std::string("\4\0\0\0\0\0\0\0\1\0\0\0\2\0\0\0\3", 17);
    ASSERT_EQ(load("d.ply", big), "1");
    EXPECT_EQ(find_object_size(parts()[0]).x, 2);
    EXPECT_EQ(find_object_size(parts()[0]).y, 1);
    // Fewer rows than announced: what is there, and a complaint with its line.
    run("clear_all");
    ASSERT_EQ(load("e.ply", head +
                                "element face 2\nproperty list uchar int vertex_indices\n"
                                "end_header\n" +
                                square + "4 0 1 2 3\n3 0 1"),
              "1");
    EXPECT_EQ(complaints(), "14 the file ends within its face table\n");
}

TEST_F(Interchange, StlFilesAreToldApartByTheirSize)
{
    std::string bytes = "solid that is none";
    bytes.resize(80, ' ');
    bytes += std::string("\1\0\0\0", 4) + std::string(50, '\0');
    bytes[84 + 12 + 14] = bytes[84 + 12 + 15] = '\x40';
    bytes[84 + 24 + 6] = bytes[84 + 24 + 7] = '\x40';
    ASSERT_EQ(load("a.stl", bytes), "1");
    EXPECT_EQ(parts()[0]->num_surfaces, 1);
    run("clear_all");
    ASSERT_EQ(load("b.stl",
                   "solid one thing\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\n"
                   "vertex 1 0 0\nvertex 0 x 0\nendloop\nendfacet\nfacet\nouter loop\n"
                   "vertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\nendloop\nendfacet\nendsolid\n"
                   "solid two\nfacet\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\n"
                   "endloop\nendfacet\n"),
              "1");
    ASSERT_EQ(parts().size(), 2U);
    EXPECT_STREQ(parts()[0]->name, "one thing");
    EXPECT_EQ(parts()[0]->num_surfaces, 1);
    EXPECT_EQ(complaints(), "6 a corner needs three numbers\n"
                            "7 a triangle with too few corners was left out\n");
}

struct cut_file {
    const char *name, *bytes;
};

TEST_F(Interchange, FilesThatEndTooEarlyAreRefused)
{
    const cut_file files[] = {
        {"head.ply", "ply\nformat binary_little_endian 1.0\nelement vertex 3\nproperty float x\n"
                     "end_header"},
        {"word.ply", "ply"},
        {"huge.ply", "ply\nformat ascii 1.0\nelement vertex 4000000000\nproperty float x\n"
                     "element face 4000000000\nproperty list uchar int vertex_indices\n"
                     "end_header\n1 2 3"},
        {"none.stl", "solid a\nfacet normal 0 0 1\nouter loop\nvertex 1"},
        {"head.obj", "vt 1 2 3\\"},
        {"none.3mf", "PK\5\6"},
    };
    for (const cut_file &file : files)
        EXPECT_EQ(load(file.name, file.bytes), "0") << file.name;
    EXPECT_EQ(recording().boxes.size(), std::size(files));
    for (const std::string &box : recording().boxes)
        EXPECT_TRUE(box.starts_with("can't read ")) << box;
}

TEST_F(Interchange, FoldersAndOtherTextsAreRefusedInPlainWords)
{
    std::filesystem::create_directory(temporary_file("folder.obj"));
    const std::string text("\xFF\xFEv\0 \0"
                           "1\0",
                           8);
    for (const char *suffix : {".obj", ".ply", ".dxf", ".vesk", ".gltf"}) {
        EXPECT_EQ(load(std::string("wide") + suffix, text), "0");
        EXPECT_EQ(last_file_report().error, "it is a text in UTF-16: save it as UTF-8");
    }
    EXPECT_EQ(run("file_load", temporary_file("folder.obj")), "0");
    EXPECT_EQ(last_file_report().error, "it is a folder");
}

// Where no relative name leads to a picture it is copied; those that are not there lose the folders
// that only another machine had.
TEST_F(Interchange, PicturesAreNeverNamedByAbsolutePaths)
{
    ASSERT_EQ(plugin_load(bundled_plugin("images").c_str()), 1);
    for (const std::string &picture :
         {source_file("tests/data/blender/wood.png"), std::string("/gone/wood.png")}) {
        run("clear_all");
        object_t *square = add_square(1);
        const bool there = picture != "/gone/wood.png";
        ASSERT_EQ(search_and_set_texture(square, "", picture.c_str()), there ? 1 : 0);
        std::filesystem::remove(temporary_file("wood.png")); // that of another test
        object_mark_tree(vesk_get_world(), CHANGED_ALL);
        for (const char *suffix : {".obj", ".ply", ".gltf", ".dae", ".fbx", ".wrl"}) {
            const std::string file = temporary_file(std::string("named") + suffix);
            ASSERT_EQ(run("export_model", file), "1");
            std::string bytes = read_text(file);
            if (std::string(suffix) == ".obj")
                bytes += read_text(temporary_file("named.mtl"));
            EXPECT_EQ(bytes.find(picture), std::string::npos) << suffix;
            EXPECT_NE(bytes.find("wood.png"), std::string::npos) << suffix << picture;
            // From a folder that both have the way leads by a relative name.
            EXPECT_TRUE(!there || bytes.find("../") != std::string::npos ||
                        std::filesystem::exists(temporary_file("wood.png")))
                << suffix;
        }
        EXPECT_TRUE(there || !std::filesystem::exists(temporary_file("wood.png")));
    }
}

TEST_F(Interchange, AnArchiveWhoseBytesAreNotThoseThatWerePackedIsRefused)
{
    add_cube("packed");
    const std::string file = temporary_file("packed.3mf");
    ASSERT_EQ(run("export_model", file), "1");
    std::string bytes = read_text(file);
    const std::size_t vertex = bytes.find("<vertex x=\"");
    ASSERT_NE(vertex, std::string::npos);
    bytes[vertex + 3] ^= 1;
    EXPECT_EQ(load("damaged.3mf", bytes), "0");
    EXPECT_NE(recording().boxes.back().find("its model is damaged"), std::string::npos);
}

std::string little_endian(unsigned long value, int bytes)
{
    std::string out;
    for (int i = 0; i < bytes; ++i)
        out += static_cast<char>(value >> 8 * i & 0xFF);
    return out;
}

// An archive with the model of a 3MF file alone, stored as it is.
std::string packed_model(const std::string &text)
{
    unsigned long sum = 0xFFFFFFFF;
    for (const char c : text) {
        sum ^= static_cast<unsigned char>(c);
        for (int bit = 0; bit < 8; ++bit)
            sum = sum >> 1 ^ ((sum & 1) != 0 ? 0xEDB88320UL : 0);
    }
    const std::string name = "3D/3dmodel.model";
    const std::string common = little_endian(20, 2) + std::string(8, '\0') +
                               little_endian(sum ^ 0xFFFFFFFF, 4) + little_endian(text.size(), 4) +
                               little_endian(text.size(), 4) + little_endian(name.size(), 2) +
                               little_endian(0, 2);
    const std::string file = "PK\3\4" + common + name + text;
    const std::string entry =
        "PK\1\2" + little_endian(20, 2) + common + std::string(14, '\0') + name;
    return file + entry + "PK\5\6" + std::string(4, '\0') + little_endian(1, 2) +
           little_endian(1, 2) + little_endian(entry.size(), 4) + little_endian(file.size(), 4) +
           little_endian(0, 2);
}

std::string threemf_of_levels(int levels, int repeats)
{
    std::string text = "<model><resources><object id=\"0\"><mesh><vertices><vertex x=\"0\" y=\"0\" "
                       "z=\"0\"/><vertex x=\"1\" y=\"0\" z=\"0\"/><vertex x=\"0\" y=\"1\" "
                       "z=\"0\"/></vertices><triangles><triangle v1=\"0\" v2=\"1\" v3=\"2\"/>"
                       "</triangles></mesh></object>";
    for (int level = 1; level <= levels; ++level) {
        text += "<object id=\"" + std::to_string(level) + "\"><components>";
        for (int i = 0; i < repeats; ++i)
            text += "<component objectid=\"" + std::to_string(level - 1) + "\"/>";
        text += "</components></object>";
    }
    return packed_model(text + "</resources><build><item objectid=\"" + std::to_string(levels) +
                        "\"/></build></model>");
}

TEST_F(Interchange, AFileThatGrowsBeyondAllMeasureIsRefused)
{
    EXPECT_EQ(load("repeated.3mf", threemf_of_levels(4, 2)), "1") << recording().boxes.back();
    run("clear_all");
    EXPECT_EQ(load("doubling.3mf", threemf_of_levels(60, 2)), "0");
    EXPECT_NE(recording().boxes.back().find("it repeats its parts more often than can be held"),
              std::string::npos);
    EXPECT_EQ(run("get_counts").substr(0, 2), "0 ");
}

// Each tag is looked at by itself: with a look at all that follows, this would take an hour.
TEST_F(Interchange, TagsWithoutBlanksCostNoMoreThanOthers)
{
    std::string text;
    for (int i = 0; i < 1000000; ++i)
        text += "<a>";
    EXPECT_EQ(load("nested.3mf", packed_model(text)), "0");
}

// Without "s" the normals tell it; with it they do not count.
TEST_F(Interchange, ObjNormalsTellTheShadingWhereTheFileDoesNot)
{
    const std::string points =
        "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvn 0 0 1\nvn 1 0 1\nvn 0 0 -2\n";
    const struct {
        const char *faces;
        int shading;
    } cases[] = {{"f 1//1 2//1 3//1 4//1\n", 0},      {"f 1//1 2//2 3//1 4//1\n", 1},
                 {"f 1//3 2//3 3//3 4//3\n", 0},      {"s off\nf 1//1 2//2 3//1 4//1\n", 0},
                 {"s 1\nf 1//1 2//1 3//1 4//1\n", 1}, {"f 1 2 3 4\n", 0}};
    for (const auto &one : cases) {
        run("clear_all");
        ASSERT_EQ(load("shaded.obj", points + one.faces), "1");
        ASSERT_EQ(parts().size(), 1U) << one.faces;
        EXPECT_EQ(item_of<surface_t>(parts()[0]->surfaces)->shading != 0, one.shading != 0)
            << one.faces;
    }
}

// Rounded as the library rounds them, also where a double stands amid two floats.
TEST_F(Interchange, ObjNumbersAreTheNearestFloats)
{
    const char *const numbers[] = {"0.1",
                                   "+16777217",
                                   "16777217.0000001",
                                   "1e-3",
                                   "-.5",
                                   "5.",
                                   "0.30000001192092896",
                                   "1.0000001788",
                                   "123456.789012",
                                   "8388608.5",
                                   "8388609.5",
                                   "0.000000000000001",
                                   "1e-46",
                                   "3.4e38",
                                   "-0"};
    for (const char *number : numbers) {
        run("clear_all");
        ASSERT_EQ(load("n.obj", std::string("v 0 0 ") + number + "\nv 1 0 0\nv 0 1 0\nf 1 2 3\n"),
                  "1");
        const auto *first = item_of<vertex>(parts()[0]->vertices);
        EXPECT_EQ(first->position.z, std::strtof(number, nullptr)) << number;
    }
}

TEST_F(Interchange, OtherFormatsComeByTheProgramsReader)
{
    EXPECT_EQ(load("a.ply", "ply\nformat ascii 1.0\nelement vertex 4\nproperty float x\nproperty "
                            "float y\nproperty float z\nelement face 1\nproperty list uchar int "
                            "vertex_indices\nend_header\n0 0 0\n2 0 0\n2 1 0\n0 1 0\n4 0 1 2 3\n"),
              "1");
    ASSERT_EQ(parts().size(), 1U);
    EXPECT_EQ(parts()[0]->num_surfaces, 1);
    EXPECT_EQ(parts()[0]->num_vertices, 4);
    EXPECT_EQ(load("a.stl", "solid a\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 0 0\n"
                            "vertex 0 1 0\nendloop\nendfacet\nendsolid a\n"),
              "1");
    EXPECT_EQ(load("a.glb", "nonsense"), "0");
    EXPECT_TRUE(recording().boxes.back().starts_with("can't read "));
}

// ---- what other programs' files have and the model file has not ----

// It writes the names of materials as they are, and all in lines of limited length.
TEST_F(Interchange, NamesDoNotBreakTheModelFile)
{
    const std::string longest(400, 'x');
    write_text(temporary_file("names.mtl"), "newmtl \"a\" b\\\nKd 0.25 0 0\nnewmtl " + longest +
                                                "\nKd 0 0.25 0\nnewmtl last\nKd 0 0 0.25\n");
    ASSERT_EQ(load("names.obj", "mtllib names.mtl\nv 0 0 0\nv 1 0 0\nv 1 1 0\no \"one\"\nusemtl "
                                "\"a\" b\\\t\nf 1 2 3\nusemtl " +
                                    longest + "\nf 1 2 3\no kids " + longest +
                                    "\nusemtl last\nf 1 2 3\n"),
              "1");
    EXPECT_EQ(complaints(), "0 1 names are too long and were shortened\n");
    const std::string file = temporary_file("names.vesk");
    ASSERT_EQ(run("export_model", file), "1");
    run("clear_all");
    ASSERT_EQ(run("file_load", file), "1");
    EXPECT_EQ(complaints(), "");
    std::string colours;
    for (const object_t *part : parts())
        for (const surface_t *surface : each<surface_t>(part->surfaces))
            for (int i = 0; i < 3; ++i)
                colours +=
                    vesk_palette_get_material(surface->material)->diffuse[i] == 0.25f ? '1' : '0';
    EXPECT_EQ(colours, "100010001");
    EXPECT_STREQ(parts()[0]->name, "\"one\"");
    EXPECT_TRUE(std::string(parts()[1]->name).starts_with("kids xxx"));
}

TEST_F(Interchange, ALibraryOfMaterialsIsReadOnce)
{
    write_text(temporary_file("bumpy.mtl"), "newmtl a\nmap_Bump b.png\n");
    ASSERT_EQ(load("bumpy.obj", "mtllib bumpy.mtl\nv 0 0 0\nv 1 0 0\nv 1 1 0\nusemtl a\nmtllib "
                                "bumpy.mtl\nf 1 2 3\nmtllib bumpy.mtl\nf 1 2 3\n"),
              "1");
    EXPECT_EQ(complaints(), "1 pictures by map_Bump in bumpy.mtl are not read\n");
}

TEST_F(Interchange, TexturesThatAreMissingKeepTheirNames)
{
    write_text(temporary_file("lost.mtl"), "newmtl p\nmap_Kd some where/oak.png\n");
    ASSERT_EQ(load("lost.obj", "mtllib lost.mtl\nv 0 0 0\nv 1 0 0\nv 1 1 0\nvt 0 0\nvt 1 1\n"
                               "usemtl p\nf 1/1 2/2 3/1\n"),
              "1");
    const struct {
        const char *file, *texts, *name;
    } files[] = {{"out.obj", "out.mtl", "map_Kd some where/oak.png\n"},
                 {"out.gltf", "out.gltf", "\"some%20where/oak.png\""},
                 {"out.dae", "out.dae", "<init_from>some%20where/oak.png<"},
                 {"out.3ds", "out.3ds", "some where/oak.png"},
                 {"out.ply", "out.ply", "TextureFile some where/oak.png\n"}};
    for (const auto &file : files) {
        ASSERT_EQ(run("export_model", temporary_file(file.file)), "1");
        EXPECT_NE(read_text(temporary_file(file.texts)).find(file.name), std::string::npos)
            << file.file;
    }
    for (const char *packed : {"out.3mf", "out.glb"}) {
        ASSERT_EQ(run("export_model", temporary_file(packed)), "1");
        EXPECT_NE(last_message().find(" - 1 texture was"), std::string::npos) << last_message();
    }
}

TEST_F(Interchange, WhatObjFilesSayInVainIsTold)
{
    const std::string points = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 5 5 5\n";
    ASSERT_EQ(load("vain.obj", points + "o a\ng a\ns 1\nf 1 2 3\ng b\ng c\ns 2\nf 3 2 1\n"
                                        "cstype bezier\ncurv 0 1 1 2\n"),
              "1");
    EXPECT_EQ(complaints(), "9 groups within objects are not read\n"
                            "11 smooth parts became one: edges between them are soft\n"
                            "13 lines that begin with cstype are not read\n"
                            "14 lines that begin with curv are not read\n"
                            "0 1 points of no surface were left out\n");
}

// What a modeller has besides shapes.
TEST_F(Interchange, AddressesTextsAndSidesAreCounted)
{
    object_t *square = add_square(1);
    object_set_url(square, "http://x/");
    object_set_userdata(square, "text");
    surface_set_twosided(item_of<surface_t>(square->surfaces), 0);
    object_mark_tree(vesk_get_world(), CHANGED_ALL);
    for (const char *suffix : {".obj", ".ply", ".stl", ".glb", ".dae", ".fbx", ".3mf"}) {
        ASSERT_EQ(run("export_model", temporary_file(std::string("square") + suffix)), "1");
        EXPECT_NE(last_message().find("1 address, 1 data text"), std::string::npos);
        const std::string told = run("report_json");
        const bool sides = std::string(suffix) == ".glb" || std::string(suffix) == ".dae";
        EXPECT_NE(told.find("surfaces of one side") != std::string::npos, sides) << told;
    }
}

TEST_F(Interchange, WhatOtherProgramsKnowBesidesIsTold)
{
    const std::string file =
        R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0, 1]}],
        "nodes": [{"mesh": 0}, {"camera": 0}],
        "cameras": [{"type": "perspective", "perspective": {"yfov": 1, "znear": 1}}],
        "meshes": [{"primitives": [{"attributes": {"POSITION": 0, "COLOR_0": 0}, "material": 0},
            {"attributes": {"POSITION": 0}, "mode": 0}]}],
        "materials": [{"normalTexture": {"index": 0}}], "textures": [{"source": 0}],
        "images": [{"uri": "bumps.png"}],
        "accessors": [{"bufferView": 0, "componentType": 5126, "count": 3, "type": "VEC3"}],
        "bufferViews": [{"buffer": 0, "byteLength": 36}],
        "buffers": [{"byteLength": 36, "uri": "data:application/octet-stream;base64,)"
        "AAAAAAAAAAAAAAAAAACAPwAAAAAAAAAAAAAAAAAAgD8AAAAA"
        R"("}]})";
    ASSERT_EQ(load("more.gltf", file), "1") << recording().boxes.back();
    EXPECT_EQ(complaints(), "0 1 materials' pictures for bumps, shine and the like were left out\n"
                            "0 1 cameras were left out\n");
    write_text(temporary_file("more.mtl"), "\xEF\xBB\xBFnewmtl a\rKd 0.25 0 0\rmap_Bump x.png\r");
    ASSERT_EQ(load("more.obj", "\xEF\xBB\xBFmtllib more.mtl\rv 0 0 0\rv 1 0 0\rv 1 1 0\rusemtl a\r"
                               "f 1 2 3\r"),
              "1");
    EXPECT_EQ(complaints(), "1 pictures by map_Bump in more.mtl are not read\n");
}

// Fans of triangles are polygons only where the file says so of each mesh.
TEST_F(Interchange, GltfPolygonsAreFansOfTriangles)
{
    add_square(1);
    const std::string fork = "v 0 0 0\nv 3 0 0\nv 3 3 0\nv 2 3 0\nv 2 1 0\nv 1 1 0\n"
                             "v 1 3 0\nv 0 3 0\nf 1 2 3 4 5 6 7 8\n"; // no corner sees all
    ASSERT_EQ(load("fork.obj", fork + "v 9 9 9\ns 1\nf 1 2 9\nf 1 9 8 7\nf 1 3 9\n"), "1");
    const std::string file = temporary_file("fans.gltf");
    ASSERT_EQ(run("export_model", file), "1");
    EXPECT_NE(run("report_json").find("{\"count\": 1, \"what\": \"polygons cut into triangles\"}"),
              std::string::npos);
    const auto surfaces = [](const std::string &name) {
        run("clear_all");
        EXPECT_EQ(run("file_load", name), "1");
        std::vector<int> corners;
        for (const object_t *part : parts())
            for (const surface_t *surface : each<surface_t>(part->surfaces))
                corners.push_back(surface->num_refs);
        return corners;
    };
    EXPECT_EQ(surfaces(file), (std::vector<int>{4, 3, 3, 3, 3, 3, 3, 3, 4, 3}));
    std::string text = read_text(file);
    const std::string told = "\"extensions\": {\"FB_ngon_encoding\": {}}, \"mode\"";
    text.replace(text.find(told), told.size(), "\"mode\"");
    write_text(file, text);
    EXPECT_EQ(surfaces(file).size(), 11U); // the square, which has it no more
}

// Forms that this program does not write itself.
TEST_F(Interchange, DamagedTextsAreReadOrRefused)
{
    const std::string head = "ply\nformat ascii 1.0\nelement vertex 4\nproperty float x\n"
                             "property float y\nproperty float z\nproperty uchar red\n"
                             "property uchar green\nproperty uchar blue\nproperty float s\n"
                             "property float t\n";
    const std::string rows = "0 0 0 1 2 3 0 0\n1 0 0 1 2 3 1 0\n1 1 0 1 2 3 1 1\n0 1 0 9 9 9 0 1\n";
    write_text(temporary_file("m.mtl"), "newmtl x\nKd 1 0\nmap_Kd -s\nnewmtl\n");
    const std::pair<const char *, std::string> files[] = {
        {"d.obj", "mtllib m.mtl\no a\nv 0 0 0\nv 1 0 0\nv 1 1 0\nvt 0 0\nvt 1 1\nvn 0 1 1\n"
                  "usemtl x\nf 1/1/1 2/2 3//2\nl 1 2 3\nf -1 -2 -3\nf 1//1 2//1 3//1\np 1 2 -1\n"},
        {"d.ply", head +
                      "element tristrips 1\nproperty list int int vertex_indices\nelement edge 2\n"
                      "property int vertex1\nproperty int vertex2\nend_header\n" +
                      rows + "7 0 1 3 2 -1 0 1\n0 1\n1 2\n"},
        {"e.ply", head +
                      "element face 2\nproperty list uchar int vertex_indices\n"
                      "property list uchar float texcoord\nend_header\n" +
                      rows + "4 0 1 2 3 8 0 0 1 0 1 1 0 1\n3 0 1 2 6 0 0 1 0 1 1\n"},
        {"d.stl", "solid a\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 0 0\n"
                  "vertex 0 1 0\nendloop\nendfacet\nendsolid a\nsolid b\nfacet\n"},
    };
    std::mt19937 random(static_cast<unsigned>(damage_setting("VESK_DAMAGE_SEED", 9)));
    for (int i = damage_setting("VESK_DAMAGE_FILES", 300); i > 0; --i) {
        for (const auto &[name, good] : files)
            load(name, damaged(good, random));
        if (i % 20 == 0)
            run("clear_all");
    }
    expect_refusals_only();
}

} // namespace
