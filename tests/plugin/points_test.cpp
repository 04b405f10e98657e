// Points that stand alone, and colours of points, through the formats of the bundled plug-in.

#include "base/file_report.h"
#include "model/bounds.h"
#include "model/palette.h"
#include "model/vertex_colours.h"
#include "tests/plugin/interchange_fixture.h"

namespace {

// By "p" in OBJ, and in PLY files that promise no faces.
TEST_F(Interchange, PointsComeAndGo)
{
    const std::string head = "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\n"
                             "property float y\nproperty float z\n";
    ASSERT_EQ(load("cloud.ply", head + "end_header\n0 0 0\n1 0 0\n1 2 3\n"), "1");
    for (const char *suffix : {".ply", ".obj", ".glb", ".gltf"}) {
        const std::string file = temporary_file(std::string("points") + suffix);
        ASSERT_EQ(run("export_model", file), "1");
        EXPECT_TRUE(last_file_report().losses.empty());
        run("clear_all");
        ASSERT_EQ(run("file_load", file), "1") << suffix;
        EXPECT_EQ(complaints(), "");
        int points = 0;
        for_each_object(vesk_get_world(),
                        [&](const object_t *object) { points += object->num_vertices; });
        EXPECT_EQ(points, 3) << suffix;
        EXPECT_EQ(find_object_size(vesk_get_world()).z, 3);
    }
    for (const char *suffix : {".stl", ".dae", ".fbx", ".3mf", ".3ds"}) {
        ASSERT_EQ(run("export_model", temporary_file(std::string("points") + suffix)), "1");
        EXPECT_NE(last_message().find("3 loose points"), std::string::npos) << last_message();
    }
    EXPECT_EQ(load("faces.ply", head + "element face 1\nproperty list uchar int vertex_indices\n"
                                       "end_header\n0 0 0\n1 0 0\n1 2 3\n"),
              "0");
    EXPECT_EQ(load("p.obj", "v 0 0 0\np 1 2\n"), "1");
    EXPECT_EQ(complaints(), "2 a point is not there\n");
}

// Colours of points, through the formats that hold them, an edit and a model file.
TEST_F(Interchange, ColoursOfPointsAreKept)
{
    const std::string head = "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\n"
                             "property float y\nproperty float z\nproperty uchar red\n"
                             "property uchar green\nproperty uchar blue\n";
    const std::string points = "end_header\n0 0 0 1 2 3\n1 0 0 1 2 3\n1 2 3 9 9 200\n";
    const std::string faces =
        head + "element face 1\nproperty list uchar int vertex_indices\n" + points + "3 0 1 2\n";
    const std::string obj = "v 0 0 0 0.0039216 0.0078431 0.0117647\n"
                            "v 1 0 0 1 0.0039216 0.0078431 0.0117647\n" // with a weight
                            "v 1 2 3 0.0352941 0.0352941 0.7843137\n";
    const struct {
        const char *name;
        std::string bytes;
    } files[] = {{"cloud.ply", head + points},
                 {"faces.ply", faces},
                 {"cloud.obj", obj},
                 {"faces.obj", obj + "f 1 2 3\n"}};
    const auto colours = [] {
        std::string all;
        for_each_object(vesk_get_world(), [&](const object_t *object) {
            for (const unsigned char part : object_vertex_colours(object))
                all += std::to_string(int{part}) + " ";
        });
        return all;
    };
    const std::string wanted = "1 2 3 1 2 3 9 9 200 ";
    for (const auto &[name, bytes] : files) {
        SCOPED_TRACE(name);
        run("clear_all");
        ASSERT_EQ(load(name, bytes), "1");
        EXPECT_EQ(complaints(), "");
        EXPECT_EQ(colours(), wanted);
        for (const object_t *part : parts()) {
            const surface_t *face = object_get_surface_at(part, 0);
            const material *shade = vesk_palette_get_material(face->material);
            EXPECT_EQ(shade->diffuse[1], 0);            // of 2, 2 and 9
            EXPECT_NEAR(shade->diffuse[2], 0.2f, 1e-6); // of 3, 3 and 200
        }
        for (const char *suffix :
             {".ply", ".obj", ".gltf", ".glb", ".vesk", ".dae", ".fbx", ".wrl"}) {
            SCOPED_TRACE(suffix);
            const std::string of_faces = ".dae.fbx";
            if (parts().empty() && of_faces.find(suffix) != std::string::npos)
                continue; // no format for clouds
            const std::string file = temporary_file(std::string("coloured") + suffix);
            ASSERT_EQ(run("export_model", file), "1");
            EXPECT_TRUE(last_file_report().losses.empty());
            run("clear_all");
            ASSERT_EQ(run("file_load", file), "1");
            EXPECT_EQ(complaints(), "");
            EXPECT_EQ(colours(), wanted);
        }
        ASSERT_EQ(run("export_model", temporary_file("coloured.gltf")), "1");
        EXPECT_EQ(
            read_text(temporary_file("coloured.gltf")).find("\"baseColorFactor\": [1, 1, 1, 1]") !=
                std::string::npos,
            !parts().empty());
        for (const char *suffix : {".stl", ".3mf", ".3ds"}) {
            ASSERT_EQ(run("export_model", temporary_file(std::string("coloured") + suffix)), "1");
            EXPECT_NE(run("report_json").find("colours of points"), std::string::npos) << suffix;
        }
        for (const char *command : {"write_POV", "write_vrml", "write_dxf", "write_tri"}) {
            run(command, temporary_file("coloured"));
            EXPECT_NE(run("report_json").find("colours of points"), std::string::npos) << command;
        }
    }
}

// A file whose faces have one colour each has materials.
TEST_F(Interchange, PlyFacesOfOneColourHaveMaterials)
{
    const std::string head = "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\n"
                             "property float y\nproperty float z\nproperty uchar red\n"
                             "property uchar green\nproperty uchar blue\nproperty uchar alpha\n"
                             "element face 1\nproperty list uchar int vertex_indices\nend_header\n";
    ASSERT_EQ(
        load("one.ply", head + "0 0 0 0 51 0 255\n1 0 0 0 51 0 255\n1 2 3 0 51 0 9\n3 0 1 2\n"),
        "1");
    EXPECT_EQ(complaints(), "0 the transparency of 1 points was left out\n");
    const object_t *object = parts()[0];
    EXPECT_EQ(vesk_object_has_vertex_colours(object), 0);
    EXPECT_NEAR(vesk_palette_get_material(object_get_surface_at(object, 0)->material)->diffuse[1],
                0.2f, 1e-6);
}

} // namespace
