// The bundled plug-in for OBJ and its neighbours, which knows the program by its public interface
// alone.

#include "edit/selection.h"
#include "model/bounds.h"
#include "model/each.h"
#include "model/normals.h"
#include "model/palette.h"
#include "model/world.h"
#include "plugin/importers.h"
#include "tests/plugin/interchange_fixture.h"

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

TEST_F(Interchange, DamagedObjFilesAreReadOrRefused)
{
    const std::string good = "mtllib m.mtl\no a\nv 0 0 0\nv 1 0 0\nv 1 1 0\nvt 0 0\nvt 1 1\n"
                             "usemtl x\nf 1/1/1 2/2 3//2\nl 1 2 3\nf -1 -2 -3\n";
    write_text(temporary_file("m.mtl"), "newmtl x\nKd 1 0\nmap_Kd -s\nnewmtl\n");
    std::mt19937 random(9);
    for (int i = 0; i < 500; ++i) {
        std::string bytes = good;
        for (int k = 0; k < 3; ++k)
            bytes[random() % bytes.size()] = "0123456789/-vflo \n\\"[random() % 19];
        load("damaged.obj", bytes);
        if (i % 50 == 0)
            run("clear_all");
    }
    for (const std::string &box : recording().boxes)
        ASSERT_TRUE(box.starts_with("can't read ")) << box;
}

} // namespace
