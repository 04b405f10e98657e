// Models that other programs wrote (tests/data/blender/make.py): a turned cube of two materials with
// a smooth ball below it, and a concave polygon with a texture.

#include "base/file_report.h"
#include "model/bounds.h"
#include "model/palette.h"
#include "tests/plugin/interchange_fixture.h"
#include "tests/support/damage.h"
#include "tests/support/places.h"

#include <cmath>
#include <set>

namespace {

struct foreign_model {
    const char *file;
    int cube_surfaces, ball_surfaces; // triangles or polygons
    bool names, hierarchy, colours, texture, smooth, z_up;
};
void PrintTo(const foreign_model &m, std::ostream *out) { *out << m.file; }

// clang-format off
const foreign_model models[] = {
    //  file        cube ball names  child  colour text   smooth z up
    {"b.glb",        12,  48, true,  true,  true,  true,  true,  false},
    {"b.gltf",       12,  48, true,  true,  true,  true,  true,  false},
    {"b.fbx",         6,  32, true,  true,  true,  true,  true,  false},
    {"packed.fbx",    6,  32, true,  true,  true,  true,  true,  false},
    {"b.dae",        12,  48, true,  true,  true,  true,  true,  false},
    {"b.obj",         6,  32, false, false, true,  true,  true,  false},
    {"b.ply",         0,   0, false, false, false, false, false, true},
    {"b.stl",         0,   0, false, false, false, false, false, true},
    {"a.3mf",         0,   0, false, false, false, false, false, true}, // a vertex for each corner
};
// clang-format on

class ForeignModels : public Interchange, public testing::WithParamInterface<foreign_model> {
protected:
    void SetUp() override
    {
        Interchange::SetUp();
        ASSERT_EQ(plugin_load(bundled_plugin("images").c_str()), 1);
        run("set_images_folder", temporary_file("."));
        ASSERT_EQ(run("file_load", source_file("tests/data/blender/") + GetParam().file), "1")
            << recording().boxes.back();
    }
    void TearDown() override
    {
        run("set_images_folder", "");
        Interchange::TearDown();
    }
    // The part with that many vertices: 8 the cube, 26 the ball, 6 the polygon.
    static object_t *part_of(int vertices)
    {
        for (object_t *part : parts())
            if (part->num_vertices == vertices)
                return part;
        return nullptr;
    }
};

TEST_P(ForeignModels, StandWhereTheyStood)
{
    const point3_t size = find_object_size(vesk_get_world());
    EXPECT_NEAR(size.x, 3.357, 1e-3);
    EXPECT_NEAR(GetParam().z_up ? size.z : size.y, 7.5, 1e-3);
    EXPECT_NEAR(GetParam().z_up ? size.y : size.z, 3.357, 1e-3);
}

TEST_P(ForeignModels, KeepPartsColoursAndTextures)
{
    const foreign_model &m = GetParam();
    if (m.cube_surfaces == 0)
        return;
    object_t *cube = part_of(8);
    object_t *ball = part_of(26);
    object_t *polygon = part_of(6);
    ASSERT_TRUE(cube != nullptr && ball != nullptr && polygon != nullptr);
    EXPECT_EQ(cube->num_surfaces, m.cube_surfaces);
    EXPECT_EQ(ball->num_surfaces, m.ball_surfaces);
    if (m.names) {
        EXPECT_STREQ(cube->name, "cube one");
        EXPECT_STREQ(ball->name, "ball");
        EXPECT_STREQ(polygon->name, "hexagon");
    }
    if (m.hierarchy) {
        EXPECT_EQ(ball->parent, cube);
        EXPECT_NEAR(cube->centre.y, 3, 1e-4);
        EXPECT_NEAR(cube->centre.z, -2, 1e-4);
    }
    std::set<std::string> colours;
    for (const surface_t *surface : each<surface_t>(cube->surfaces)) {
        EXPECT_EQ(surface->shading, 0);
        const material *paint = vesk_palette_get_material(surface->material);
        colours.insert(paint->diffuse[0] > paint->diffuse[2] ? "red" : "blue");
    }
    EXPECT_EQ(colours.size(), m.colours ? 2U : 1U);
    EXPECT_EQ(item_of<surface_t>(ball->surfaces)->shading != 0, m.smooth);
    EXPECT_EQ(polygon->has_texture != 0, m.texture);
    for (const surface_t *surface : each<surface_t>(polygon->surfaces)) {
        for (const svertex *corner : each<svertex>(surface->refs)) {
            if (!m.texture)
                break;
            const point3_t &p = corner->vertex->position; // was x, z, -y
            EXPECT_NEAR(corner->u, p.x / 3, 1e-4);
            EXPECT_NEAR(corner->v, -p.z / 2, 1e-4);
        }
    }
    EXPECT_EQ(last_file_report().warnings_in_all, 0U);
}
// In the forms that other programs write, as packed archives and normals of corners.
TEST_P(ForeignModels, AreReadOrRefusedWhenDamaged)
{
    const std::string name = GetParam().file;
    const std::string good = read_text(source_file("tests/data/blender/") + name);
    const bool read_here = GetParam().cube_surfaces == 0 || name == "b.obj";
    std::mt19937 random(static_cast<unsigned>(damage_setting("VESK_DAMAGE_SEED", 7)));
    const int files = damage_setting("VESK_DAMAGE_FILES", 300) / (read_here ? 3 : 30);
    const std::string file = temporary_file(name);
    for (int i = 0; i < files; ++i) {
        write_text(file, damaged(good, random));
        run("file_load", file);
        if (i % 20 == 0)
            run("clear_all");
    }
    expect_refusals_only();
}
INSTANTIATE_TEST_SUITE_P(Blender, ForeignModels, testing::ValuesIn(models));

} // namespace
