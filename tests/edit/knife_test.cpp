#include "edit/check/model_check.h"
#include "edit/document/selection_internal.h"
#include "edit/document/undo_internal.h"
#include "edit/mesh/knife_cut.h"
#include "model/each.h"
#include "model/world.h"
#include "model/world_check.h"
#include "tests/support/mesh_test.h"
#include "tests/support/random_mesh.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace {

class Knife : public SceneTest {
protected:
    void TearDown() override
    {
        EXPECT_TRUE(world_check(vesk_get_world()).empty());
        SceneTest::TearDown();
    }
};

// Polygons that have no corner twice.
void expect_simple(const object_t *object)
{
    for (const auto &face : faces_of(object)) {
        EXPECT_GE(face.size(), 3u);
        EXPECT_EQ(std::set<int>(face.begin(), face.end()).size(), face.size());
    }
}

void expect_picture_in_place(const object_t *object)
{
    for (const surface_t *surface : each<surface_t>(object->surfaces)) {
        for (const svertex *corner : each<svertex>(surface->refs)) {
            EXPECT_NEAR(corner->u, corner->vertex->position.x, 1e-5);
            EXPECT_NEAR(corner->v, corner->vertex->position.y, 1e-5);
        }
    }
}

struct line_case {
    const char *name, *line; // on three squares in a row, from 0 0 to 3 1
    int cut;                 // polygons
    int surfaces, vertices;  // in all, afterwards
};
// clang-format off
const line_case line_cases[] = {
    {"across_all",          "0 0.5 0  3 0.5 0",                      3, 6, 12},
    {"from_corner",         "0 0 0  1 1 0",                          1, 4, 8},
    {"through_corners",     "0 0 0  1 1 0  2 0 0  3 1 0",            3, 6, 8},
    {"side_to_side",        "0.5 0 0  1 0.5 0",                      1, 4, 10},
    {"bend_inside",         "0.5 0 0  0.5 0.5 0  1 0.5 0",           1, 4, 11},
    {"ends_inside",         "0.5 0 0  0.5 0.5 0",                    1, 4, 10},
    {"both_ends_inside",    "0.3 0.4 0  0.6 0.6 0",                  1, 4, 10},
    {"ends_in_the_last",    "0.5 0.2 0  2.5 0.7 0",                  3, 6, 12},
    {"ring_inside",         "0.3 0.3 0  0.6 0.3 0  0.6 0.6 0  0.3 0.6 0  0.3 0.3 0", 1, 5, 12},
    {"crosses_itself",      "0 0.2 0  1 0.8 0  2 0.5 0  1 0.2 0  0 0.8 0", 2, 8, 14},
    {"along_an_edge",       "1 0 0  1 1 0  2 0.5 0",                 1, 4, 9},
};
// clang-format on
void PrintTo(const line_case &c, std::ostream *out) { *out << c.name; }
class KnifeLine : public Knife, public testing::WithParamInterface<line_case> {};

TEST_P(KnifeLine, CutsWhatItCrosses)
{
    const line_case &c = GetParam();
    object_t *squares = add_squares(3, 1);
    select_object(squares);
    const std::string before = scene_text();
    run("knife", c.line);
    EXPECT_EQ(last_message(), "knife - " + std::to_string(c.cut) + " surfaces");
    EXPECT_EQ(squares->num_surfaces, c.surfaces);
    EXPECT_EQ(squares->num_vertices, c.vertices);
    expect_sound(squares);
    expect_simple(squares);
    expect_picture_in_place(squares);
    EXPECT_NEAR(area_xy(squares), 3, 1e-5);
    const model_findings found = object_find_problems(squares);
    EXPECT_EQ(found.totals[0], static_cast<int>(found.problems.size())) << "open edges only";
    const std::string after = scene_text();
    run("undo");
    EXPECT_EQ(scene_text(), before);
    run("redo");
    EXPECT_EQ(scene_text(), after);
}
INSTANTIATE_TEST_SUITE_P(Lines, KnifeLine, testing::ValuesIn(line_cases));

TEST_F(Knife, GoesRoundASolid)
{
    object_t *cube = add_cube("cube");
    run("set_select_mode", "object");
    select_object(cube);
    point3_t low = points_of(cube).front();
    for (const point3_t &p : points_of(cube))
        low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
    const auto at = [&](float x, float y, float z) {
        return std::to_string(low.x + x) + " " + std::to_string(low.y + y) + " " +
               std::to_string(low.z + z) + "  ";
    };
    run("knife", at(0.5f, 0, 0.5f) + at(0.5f, 1, 0.5f));
    EXPECT_EQ(last_message(), "knife - no way over the surface to point 2");
    run("knife", at(0.4f, 0.5f, 0) + at(1, 0.5f, 0.5f) + at(0.4f, 0.5f, 1) + at(0, 0.5f, 0.5f) +
                     at(0.4f, 0.5f, 0));
    EXPECT_EQ(last_message(), "knife - 4 surfaces");
    EXPECT_EQ(cube->num_surfaces, 10);
    EXPECT_EQ(object_find_problems(cube).problems.size(), 0u);
    EXPECT_NEAR(std::fabs(volume(cube)), 1, 1e-5);
}

TEST_F(Knife, OfSurfacesGivesNeighboursTheNewVertices)
{
    object_t *squares = add_squares(3, 1);
    select_surfaces_at(squares, {1});
    run("knife", "1 0.5 0 2 0.25 0");
    EXPECT_EQ(squares->num_surfaces, 4);
    EXPECT_EQ(object_find_problems(squares).total(model_problem::t_vertex), 0);
    EXPECT_EQ(count_edges(squares).once, 8);
    EXPECT_EQ(selected_surfaces_of(squares), (std::vector<int>{2, 3}));
}

TEST_F(Knife, RefusesWithAReason)
{
    const unsigned serial = undo_last_serial();
    run("knife", "0 0 0 1 1 0");
    EXPECT_EQ(last_message(), "knife - there is nothing to cut");
    add_squares(2, 1); // without a selection everything may be cut
    run("knife", "0 0 0 1");
    EXPECT_EQ(last_message(), "knife - x y z of two points or more are needed");
    run("knife", "0 0 0 5 5 0");
    EXPECT_EQ(last_message(), "knife - point 2 lies on no surface");
    run("knife", "0 0 0 1 0 0");
    EXPECT_EQ(last_message(), "knife - the line cuts nothing");
    EXPECT_EQ(undo_last_serial(), serial);
}

// Random lines over a rough sheet: area, picture and borders stay.
TEST_F(Knife, CutsRandomSheetsWithoutCracks)
{
    int drawn = 0;
    for (std::uint32_t seed = 1; seed <= 40; ++seed) {
        SCOPED_TRACE(seed);
        random_source random(seed);
        object_t *sheet = add_random_sheet(random, 8);
        select_object(sheet);
        run("surface_triangulate");
        const auto points = points_of(sheet);
        const int border = count_edges(sheet).once;
        std::string line;
        for (int i = 0; i < 4; ++i) {
            const auto faces = faces_of(sheet);
            const auto &face = faces[random.below(static_cast<int>(faces.size()))];
            const float a = random.between(0.1f, 0.8f), b = random.between(0, 1) * (1 - a);
            const auto mix = [&](float p, float q, float r) {
                return std::to_string(a * p + b * q + (1 - a - b) * r) + " ";
            };
            const point3_t &p = points[face[0]], &q = points[face[1]], &r = points[face[2]];
            line += mix(p.x, q.x, r.x) + mix(p.y, q.y, r.y) + mix(p.z, q.z, r.z);
        }
        select_object(sheet);
        run("knife", line);
        if (last_undo() == "knife") {
            ++drawn;
            expect_sound(sheet);
            EXPECT_EQ(object_find_problems(sheet).total(model_problem::t_vertex), 0);
            EXPECT_EQ(object_find_problems(sheet).total(model_problem::crowded_edge), 0);
            EXPECT_EQ(object_find_problems(sheet).total(model_problem::flipped), 0);
            EXPECT_EQ(count_edges(sheet).once, border);
        }
        run("clear_all");
    }
    EXPECT_GT(drawn, 20);
}

} // namespace
