#include "edit/edge_mesh.h"

#include "base/prefs.h"
#include "base/progress.h"
#include "edit/check/model_check.h"
#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "edit/edge_mesh_internal.h"
#include "edit/primitives.h"
#include "edit/reduce.h"
#include "fileio/vesk_writer.h"
#include "model/change_marks_internal.h"
#include "model/normals.h"
#include "model/normals_internal.h"
#include "model/object_tree.h"
#include "model/vector.h"
#include "model/world.h"
#include "model/world_check.h"
#include "tests/support/mesh_test.h"

#include <cmath>
#include <map>
#include <random>
#include <set>

namespace {

// Open edges, crowded edges and flipped surfaces: all 0 for a closed, oriented surface.
std::vector<int> faults(object_t *object)
{
    const model_findings found = object_find_problems(object);
    return {found.total(model_problem::open_edge), found.total(model_problem::crowded_edge),
            found.total(model_problem::flipped), found.total(model_problem::unused_vertex)};
}
const std::vector<int> closed = {0, 0, 0, 0};

double polygon_area(const flat_mesh &mesh, int s)
{
    const auto corners = mesh.surface_corners(s);
    const auto at = [&](std::size_t i) { return mesh.position(corners[i]); };
    point3_t normal = {0, 0, 0};
    for (std::size_t i = 1; i + 1 < corners.size(); ++i)
        normal =
            point_add(normal, point_cross(point_sub(at(i), at(0)), point_sub(at(i + 1), at(0))));
    return point_length(normal) / 2;
}

// Area by material.
std::map<int, double> areas(object_t *object)
{
    const flat_ptr mesh = object_flat(object);
    std::map<int, double> sums;
    for (int s = 0; s < mesh->num_surfaces(); ++s)
        sums[mesh->surface(s).material] += polygon_area(*mesh, s);
    return sums;
}

object_t *add_tetrahedron()
{
    object_t *object = new_object(OBJECT_POLY);
    for (const point3_t &p :
         {point3_t{1, 1, 1}, point3_t{-1, -1, 1}, point3_t{-1, 1, -1}, point3_t{1, -1, -1}})
        object_add_new_vertex(object, p.x, p.y, p.z);
    const int triangles[4][3] = {{0, 2, 1}, {0, 1, 3}, {0, 3, 2}, {1, 2, 3}};
    for (const auto &t : triangles)
        vesk_object_add_triangle(object, t[0], t[1], t[2]);
    object_calc_normals_force(object);
    object_add_child(vesk_get_world(), object);
    return object;
}

object_t *add_ico()
{
    object_t *ico = create_ico();
    object_add_child(vesk_get_world(), ico);
    return ico;
}

// A flat grid of quads in z = 0 with texture coordinates of its places; the surfaces right of the
// middle have material 2.
object_t *add_flat_grid(int side)
{
    std::vector<float> xyz, uv;
    std::vector<int> corners, offsets = {0};
    for (int i = 0; i < side * side; ++i)
        xyz.insert(xyz.end(), {float(i % side), float(i / side), 0});
    for (int y = 0; y + 1 < side; ++y) {
        for (int x = 0; x + 1 < side; ++x) {
            const int i = y * side + x;
            for (const int v : {i, i + 1, i + side + 1, i + side}) {
                corners.push_back(v);
                uv.insert(uv.end(), {float(v % side) / 64, float(v / side) / 64});
            }
            offsets.push_back(static_cast<int>(corners.size()));
        }
    }
    object_t *object = new_object(OBJECT_POLY);
    vesk_object_add_vertices_from_float_array(object, xyz.data(), side * side);
    vesk_object_add_surfaces_from_arrays(object, (side - 1) * (side - 1), offsets.data(),
                                         corners.data(), uv.data(), 1);
    for (surface_t *surface : each<surface_t>(object->surfaces)) {
        if (item_of<svertex>(surface->refs)->vertex->position.x >= float(side / 2))
            surface_set_col(surface, 2);
    }
    object_calc_normals_force(object);
    object_add_child(vesk_get_world(), object);
    return object;
}

class EdgeMesh : public SceneTest {
protected:
    void TearDown() override
    {
        EXPECT_TRUE(world_check(vesk_get_world()).empty());
        SceneTest::TearDown();
    }
};

// ---- the exported interface ----

TEST_F(EdgeMesh, HasTheObjectsPolygonsAndTheirEdges)
{
    object_t *cube = add_cube("cube");
    surface_set_type(object_get_surface_at(cube, 5), SURFACE_LINE);
    object_mark(cube, CHANGED_ATTRIBUTES);
    vesk_mesh_t *mesh = vesk_object_to_mesh(cube);
    EXPECT_EQ(vesk_mesh_num_vertices(mesh), 8);
    EXPECT_EQ(vesk_mesh_num_faces(mesh), 5);
    EXPECT_EQ(vesk_mesh_num_edges(mesh), 12);
    int between_two = 0;
    for (int e = 0; e < 12; ++e) {
        int vertices[2], faces[2];
        between_two += vesk_mesh_edge(mesh, e, vertices, faces) == 2 ? 1 : 0;
    }
    EXPECT_EQ(between_two, 8);
    const float peak[3] = {0, 0, 5};
    const int v = vesk_mesh_add_vertices(mesh, peak, 1);
    EXPECT_EQ(v, 8);
    const int face[3] = {0, 1, v}, wrong[3] = {0, 1, 9};
    EXPECT_EQ(vesk_mesh_add_face(mesh, face, 3, nullptr, 0), 5);
    EXPECT_EQ(vesk_mesh_add_face(mesh, wrong, 3, nullptr, 0), -1);
    vesk_mesh_to_object(mesh, cube);
    vesk_mesh_free(mesh);
    EXPECT_EQ(cube->num_surfaces, 7) << "the line, five squares, a triangle";
    EXPECT_EQ(cube->num_vertices, 9);
    EXPECT_EQ(object_get_surface_at(cube, 0)->type, SURFACE_LINE);
}

// The arrays of a mesh that is handed over are what its records say, lines and lost vertices or not.
TEST_F(EdgeMesh, ArraysHandedOverAreThoseOfTheRecords)
{
    for (const bool loses : {false, true}) {
        object_t *cube = add_cube("cube");
        const std::unique_ptr<vesk_mesh_t> mesh(vesk_object_to_mesh(cube));
        const float peak[3] = {0, 0, 5};
        const int face[3] = {0, 1, vesk_mesh_add_vertices(mesh.get(), peak, 1)};
        vesk_mesh_add_face(mesh.get(), face, 3, nullptr, 0);
        if (loses)
            std::replace(mesh->corners.begin(), mesh->corners.end(), 7, 0);
        mesh_into_object(std::move(*mesh), cube);
        EXPECT_EQ(cube->num_vertices, loses ? 8 : 9);
        object_renew_normals(cube);
        EXPECT_EQ(flat_compare(cube, *object_flat(cube)), 0U);
    }
}

struct cut_case {
    const char *name;
    std::vector<point3_t> outline;
    double area;
};
// clang-format off
const cut_case cuts[] = {
    {"quad_by_the_shorter_diagonal", {{0, 0, 0}, {3, 0, 0}, {4, 1, 0}, {1, 1, 0}}, 3},
    {"arrow_by_the_one_inside",      {{0, 0, 0}, {2, -1, 0}, {0.5f, 0, 0}, {2, 1, 0}}, 0.5},
    {"arrow_from_its_notch",         {{2, -1, 0}, {0.5f, 0, 0}, {2, 1, 0}, {0, 0, 0}}, 0.5},
    {"hexagon", {{2, 0, 0}, {1, 1, 0}, {-1, 1, 0}, {-2, 0, 0}, {-1, -1, 0}, {1, -1, 0}}, 6},
    {"letter_l", {{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {1, 1, 0}, {1, 3, 0}, {0, 3, 0}}, 4},
};
// clang-format on
void PrintTo(const cut_case &c, std::ostream *out) { *out << c.name; }
class Triangles : public EdgeMesh, public testing::WithParamInterface<cut_case> {};

TEST_P(Triangles, CoverTheirPolygonAndFaceAsItDid)
{
    vesk_mesh_t mesh;
    mesh.points = GetParam().outline;
    const auto n = GetParam().outline.size();
    for (std::size_t i = 0; i < n; ++i)
        mesh.add_corner(static_cast<int>(i), {0, 0});
    mesh.end_face(-1);
    mesh_triangulate(&mesh);
    ASSERT_EQ(static_cast<std::size_t>(mesh.num_faces()), n - 2);
    double area = 0;
    for (int i = 0; i < mesh.num_faces(); ++i) {
        const auto t = mesh.face(i);
        const auto at = [&](std::size_t k) { return mesh.points[t[k]]; };
        const point3_t cross = point_cross(point_sub(at(1), at(0)), point_sub(at(2), at(0)));
        EXPECT_GT(cross.z, 0);
        area += std::fabs(cross.z) / 2.0;
    }
    EXPECT_NEAR(area, GetParam().area, 1e-6);
}
INSTANTIATE_TEST_SUITE_P(Outlines, Triangles, testing::ValuesIn(cuts));

// ---- Loop ----

TEST_F(EdgeMesh, LoopOfATetrahedronIsTheWorkedExample)
{
    object_t *object = add_tetrahedron();
    select_object(object);
    run("surface_loop_subdivision", "1.0");
    EXPECT_EQ(object->num_vertices, 10);
    EXPECT_EQ(object->num_surfaces, 16);
    // Three neighbours: weight 3/16 each, 7/16 for the vertex itself. Their sum is minus it.
    const point3_t corner = object_get_vertex_at(object, 0)->position;
    EXPECT_NEAR(corner.x, 7.0 / 16 - 3.0 / 16, 1e-6);
    // Middle of 0-1: 3/8 of both, 1/8 of the others; x and y vanish, z is 3/4 - 1/4.
    const point3_t middle = object_get_vertex_at(object, 4)->position;
    EXPECT_NEAR(middle.x, 0, 1e-6);
    EXPECT_NEAR(middle.z, 0.5, 1e-6);
    EXPECT_EQ(faults(object), closed);
    EXPECT_EQ(last_undo(), "loop subdivision");
}

TEST_F(EdgeMesh, LoopWithFactorZeroOnlyCutsTheTriangles)
{
    object_t *grid = add_flat_grid(5);
    select_object(grid);
    const auto before = areas(grid);
    const std::string text = scene_text();
    run("surface_loop_subdivision", "0");
    EXPECT_EQ(grid->num_surfaces, 16 * 8);
    EXPECT_EQ(grid->num_vertices, 25 + 56); // vertices and edges of the triangles
    EXPECT_EQ(areas(grid), before);
    for (const surface_t *surface : each<surface_t>(grid->surfaces)) {
        for (const svertex *corner : each<svertex>(surface->refs)) {
            EXPECT_EQ(corner->u, corner->vertex->position.x / 64);
            EXPECT_EQ(corner->v, corner->vertex->position.y / 64);
        }
    }
    run("undo");
    EXPECT_EQ(scene_text(), text);
}

TEST_F(EdgeMesh, LoopKeepsAFlatGridsBordersStraight)
{
    object_t *grid = add_flat_grid(4);
    select_object(grid);
    run("surface_loop_subdivision", "1");
    point3_t min = {9, 9, 9}, max = {-9, -9, -9};
    for (const vertex *point : each<vertex>(grid->vertices)) {
        min = {std::min(min.x, point->position.x), std::min(min.y, point->position.y), 0};
        max = {std::max(max.x, point->position.x), std::max(max.y, point->position.y), 0};
        EXPECT_EQ(point->position.z, 0);
    }
    EXPECT_EQ(min.x, 0);
    EXPECT_EQ(max.y, 3);
}

// ---- every mesh operation on closed surfaces ----

struct closed_case {
    const char *name;
    object_t *(*make)();
};
object_t *make_cube() { return add_cube("cube"); }
object_t *make_sphere()
{
    const point3_t at = {0, 0, 0};
    object_t *sphere = create_regular_sphere(&at);
    object_add_child(vesk_get_world(), sphere);
    return sphere;
}
const closed_case closed_cases[] = {
    {"tetrahedron", add_tetrahedron}, {"cube", make_cube}, {"icosahedron", add_ico}};
void PrintTo(const closed_case &c, std::ostream *out) { *out << c.name; }
class ClosedSurfaces : public EdgeMesh, public testing::WithParamInterface<closed_case> {};

TEST_P(ClosedSurfaces, StayClosedAndOfTheirKind)
{
    object_t *object = GetParam().make();
    run("set_select_mode", "object");
    selection_add_objects({object});
    ASSERT_EQ(faults(object), closed);
    for (const std::vector<std::string> &command :
         {std::vector<std::string>{"surface_loop_subdivision", "1"},
          {"surface_doosabin"},
          {"surface_loop_subdivision", "0.5"},
          {"surface_doosabin"},
          {"reduce", "60"},
          {"reduce", "50"}}) {
        const std::string before = scene_text();
        const int vertices = object->num_vertices;
        run_words(command);
        EXPECT_EQ(faults(object), closed) << command[0];
        EXPECT_EQ(euler_characteristic(object), 2) << command[0];
        if (command[0] == "reduce") {
            const double wanted = vertices * (1 - std::stoi(command[1]) / 100.0);
            EXPECT_NEAR(object->num_vertices, wanted, std::max(4.0, 0.05 * vertices));
            EXPECT_EQ(last_message(), "reduced " + std::to_string(vertices) + " to " +
                                          std::to_string(object->num_vertices) + " vertices");
        }
        const std::string after = scene_text();
        run("undo");
        EXPECT_EQ(scene_text(), before) << command[0];
        run("redo");
        EXPECT_EQ(scene_text(), after) << command[0];
    }
}
INSTANTIATE_TEST_SUITE_P(Shapes, ClosedSurfaces, testing::ValuesIn(closed_cases));

TEST_F(EdgeMesh, DooSabinOfACubeIsTheWorkedExample)
{
    object_t *cube = add_cube("cube");
    select_object(cube);
    run("surface_doosabin");
    EXPECT_EQ(cube->num_vertices, 24);
    EXPECT_EQ(cube->num_surfaces, 6 + 12 + 8);
    // Of a square: 9/16 of the corner, 3/16 of its neighbours, 1/16 of the one across.
    EXPECT_NEAR(std::fabs(object_get_vertex_at(cube, 0)->position.x), 0.25, 0.2501);
    std::multiset<int> corners;
    for (const surface_t *surface : each<surface_t>(cube->surfaces))
        corners.insert(surface->num_refs);
    EXPECT_EQ(corners.count(3), 8u);
    EXPECT_EQ(corners.count(4), 18u);
    for (const vertex *point : each<vertex>(cube->vertices)) {
        int quarter = 0, half = 0;
        for (const float x : {point->position.x, point->position.y, point->position.z}) {
            quarter += std::fabs(std::fabs(x) - 0.25f) < 1e-6f ? 1 : 0;
            half += std::fabs(std::fabs(x) - 0.5f) < 1e-6f ? 1 : 0;
        }
        EXPECT_EQ(quarter, 2);
        EXPECT_EQ(half, 1);
    }
}

TEST_F(EdgeMesh, DooSabinOfAGridLeavesItsBorderOpen)
{
    object_t *grid = add_flat_grid(4);
    select_object(grid);
    run("surface_doosabin");
    EXPECT_EQ(grid->num_surfaces, 9 + 12 + 4);
    EXPECT_EQ(grid->num_vertices, 36);
    EXPECT_EQ(faults(grid)[1], 0);
    EXPECT_EQ(faults(grid)[2], 0);
    EXPECT_EQ(euler_characteristic(grid), 1);
}

// ---- reduce ----

TEST_F(EdgeMesh, ReduceKeepsBordersOfMaterialsAndOutlines)
{
    object_t *grid = add_flat_grid(21);
    select_object(grid);
    const auto before = areas(grid);
    run("reduce", 80);
    EXPECT_NEAR(grid->num_vertices, 441 * 0.2, 20);
    const auto after = areas(grid);
    ASSERT_EQ(after.size(), 2u);
    EXPECT_NEAR(after.at(1), before.at(1), 1e-3);
    EXPECT_NEAR(after.at(2), before.at(2), 1e-3);
    // Texture coordinates stay those of their places.
    for (const surface_t *surface : each<surface_t>(grid->surfaces)) {
        for (const svertex *corner : each<svertex>(surface->refs))
            EXPECT_EQ(corner->u, corner->vertex->position.x / 64);
    }
}

TEST_F(EdgeMesh, ReduceKeepsSeamsOfTextureCoordinates)
{
    object_t *grid = add_flat_grid(21);
    // Above the middle row the coordinates are others: a seam along it.
    for (surface_t *surface : each<surface_t>(grid->surfaces)) {
        if (item_of<svertex>(surface->refs)->vertex->position.y < 10)
            continue;
        for (svertex *corner : each<svertex>(surface->refs))
            corner->v += 0.5f;
    }
    object_mark(grid, CHANGED_TEXTURE_COORDS);
    select_object(grid);
    run("reduce", 75);
    EXPECT_LT(grid->num_vertices, 160);
    for (const surface_t *surface : each<surface_t>(grid->surfaces)) {
        float low = 99, high = -99;
        bool upper = false;
        for (const svertex *corner : each<svertex>(surface->refs)) {
            low = std::min(low, corner->vertex->position.y);
            high = std::max(high, corner->vertex->position.y);
            upper = upper || corner->v > corner->vertex->position.y / 64 + 0.25f;
        }
        EXPECT_TRUE(high <= 10 || low >= 10) << "no triangle crosses the seam";
        EXPECT_EQ(upper, low >= 10);
    }
}

TEST_F(EdgeMesh, ReduceCanKeepTheOriginal)
{
    object_t *sphere = make_sphere();
    select_object(sphere);
    const int vertices = sphere->num_vertices;
    prefs.reduce_keep_original = 1;
    const std::string before = scene_text();
    run("reduce", 50);
    ASSERT_EQ(vesk_get_world()->num_children, 2);
    EXPECT_EQ(sphere->num_vertices, vertices);
    const object_t *reduced = object_get_kid_at(vesk_get_world(), 1);
    EXPECT_LT(reduced->num_vertices, vertices);
    EXPECT_EQ(item_of<object_t>(selection().objects), reduced);
    run("undo");
    EXPECT_EQ(scene_text(), before);
}

TEST_F(EdgeMesh, ReduceRefusesWhatIsNoPercentage)
{
    select_object(add_cube("cube"));
    for (const int percent : {-5, 0, 100, 1000}) {
        run("reduce", percent);
        EXPECT_EQ(last_message(), "reduce - give a percentage from 1 to 99");
    }
    EXPECT_EQ(last_undo(), "");
}

TEST_F(EdgeMesh, LinesAndTheirVerticesSurviveEverything)
{
    object_t *grid = add_flat_grid(9);
    surface_t *line = new_surface();
    surface_set_type(line, SURFACE_LINE);
    for (const int v : {0, 12, 24, 40, 77})
        surface_add_vertex(line, object_get_vertex_at(grid, v), 0, 0);
    object_add_surface(grid, line);
    object_add_new_vertex(grid, 50, 50, 50); // of nothing before: stays
    select_object(grid);
    for (const std::vector<std::string> &command : {std::vector<std::string>{"reduce", "90"},
                                                    {"surface_loop_subdivision", "1"},
                                                    {"surface_doosabin"}}) {
        run_words(command);
        const surface_t *first = object_get_surface_at(grid, 0);
        EXPECT_EQ(first->type, SURFACE_LINE) << command[0];
        EXPECT_EQ(first->num_refs, 5) << command[0];
        EXPECT_EQ(object_find_problems(grid).total(model_problem::unused_vertex), 1);
    }
}

// ---- long work ----

TEST_F(EdgeMesh, CancelLeavesTheModelAsItWas)
{
    object_t *grid = add_flat_grid(160);
    select_object(grid);
    const std::string before = scene_text();
    recording().clock_step = 0.2; // each look at the clock: time for events
    recording().while_pumping = [] { progress_cancel(); };
    for (const std::vector<std::string> &command :
         {std::vector<std::string>{"surface_loop_subdivision", "1"}, {"surface_doosabin"}}) {
        run_words(command);
        EXPECT_NE(last_message().find("- cancelled"), std::string::npos) << command[0];
        EXPECT_TRUE(scene_text() == before);
        EXPECT_EQ(last_undo(), "");
    }
}

} // namespace
