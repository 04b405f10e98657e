#include "edit/primitives.h"

#include "base/prefs.h"
#include "edit/primitives_flat.h"
#include "edit/uv/uvmap.h"
#include "model/identity.h"
#include "model/normals.h"
#include "model/world.h"
#include "tests/support/mesh_test.h"

#include <cmath>

namespace {

constexpr float tolerance = 1e-5f;
const point3_t low = {-1, -2, -3};
const point3_t high = {3, 4, 5};

class Primitives : public SceneTest {};

point3_t at(const object_t *object, int index)
{
    return object_get_vertex_at(object, index)->position;
}

void expect_point(const point3_t &p, float x, float y, float z)
{
    EXPECT_NEAR(p.x, x, tolerance);
    EXPECT_NEAR(p.y, y, tolerance);
    EXPECT_NEAR(p.z, z, tolerance);
}

std::vector<svertex *> references(const surface_t *surface)
{
    std::vector<svertex *> result;
    for (const listitem *item = surface->refs; item != nullptr; item = item->next)
        result.push_back(reinterpret_cast<svertex *>(item->data));
    return result;
}

std::vector<surface_t *> surfaces(const object_t *object)
{
    std::vector<surface_t *> result;
    for (const listitem *item = vesk_object_get_surfacelist(object); item != nullptr;
         item = item->next)
        result.push_back(reinterpret_cast<surface_t *>(item->data));
    return result;
}

point3_t middle_of(const surface_t *surface)
{
    point3_t sum = {0, 0, 0};
    const std::vector<svertex *> corners = references(surface);
    for (const svertex *corner : corners) {
        sum.x += corner->vertex->position.x / static_cast<float>(corners.size());
        sum.y += corner->vertex->position.y / static_cast<float>(corners.size());
        sum.z += corner->vertex->position.z / static_cast<float>(corners.size());
    }
    return sum;
}

// Every polygon of a convex shape faces away from its middle.
void expect_outward(const object_t *object, const point3_t &middle)
{
    for (const surface_t *surface : surfaces(object)) {
        const point3_t p = middle_of(surface);
        EXPECT_GT(surface->normal.x * (p.x - middle.x) + surface->normal.y * (p.y - middle.y) +
                      surface->normal.z * (p.z - middle.z),
                  0);
    }
}

void expect_texture_coordinates_in_range(const object_t *object)
{
    for (const surface_t *surface : surfaces(object)) {
        for (const svertex *corner : references(surface)) {
            EXPECT_TRUE(corner->u >= -tolerance && corner->u <= 1 + tolerance);
            EXPECT_TRUE(corner->v >= -tolerance && corner->v <= 1 + tolerance);
        }
    }
}

object_t *in_world(object_t *object)
{
    object_add_child(vesk_get_world(), object);
    return object;
}

struct shape_case {
    const char *name; // of the object too, where it gets one
    object_t *(*make)();
    int vertices, surfaces;
    int euler; // of its polygons; 2 for a closed shape
    bool outward;
};
// clang-format off
const shape_case shape_cases[] = {
    {"rect",     [] { return add_rect(0, &low, &high); }, 4, 1, 1, false},
    {"grid",     [] { return add_grid(2, &low, &high); }, 2 * (11 + 11), 11 + 11, 0, false},
    {"mesh",     [] { return add_mesh(1, &low, &high); }, 11 * 11, 100, 1, false},
    {"ellipse",  [] { return add_circle(0, &low, &high); }, 10, 1, 0, false},
    {"arc",      [] { return new_arc(0, 1, 0, 90, 8); }, 3, 1, 0, false},
    {"disk",     [] { return add_disk(2, &low, &high); }, 11, 10, 1, false},
    {"cube",     [] { return add_cube(0, &high, &low); }, 8, 6, 2, true},
    {"sphere",   [] { return add_sphere(0, &low, &high); }, 10 * 9 + 2, 8 * 10 + 2 * 10, 2, true},
    {"cylinder", [] { return new_cylinder(0); }, 20, 22, 2, true},
    {"cone",     [] { return create_cone(1, &low, &high); }, 11, 11, 2, false},
    {"",         [] { return create_ico(); }, 12, 20, 2, false}, // two-sided, faces inwards
};
// clang-format on
void PrintTo(const shape_case &c, std::ostream *out) { *out << c.name; }

class Shape : public SceneTest, public testing::WithParamInterface<shape_case> {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        for (int *count : {&prefs.meshx, &prefs.meshy, &prefs.grid_object_x, &prefs.grid_object_y,
                           &prefs.ellipse_segments, &prefs.disk_segments, &prefs.num_surface_div,
                           &prefs.cylinder_segments})
            *count = 10;
        prefs.cylinder_has_ends = 1;
        prefs.mesh_triangles = 0;
    }
};

} // namespace

TEST_P(Shape, HasTheCountsAndTheFormOfItsKind)
{
    const shape_case &c = GetParam();
    object_t *object = in_world(c.make());
    if (*c.name != '\0') {
        EXPECT_STREQ(vesk_object_get_name(object), c.name);
    }
    expect_sound(object);
    EXPECT_EQ(vesk_object_get_num_vertices(object), c.vertices);
    EXPECT_EQ(vesk_object_get_num_surfaces(object), c.surfaces);
    if (c.euler != 0) {
        EXPECT_EQ(euler_characteristic(object), c.euler);
    }
    if (c.euler == 2) {
        EXPECT_EQ(count_edges(object).twice, count_edges(object).all());
    }
    point3_t middle = {0, 0, 0};
    if (std::string(c.name) == "cube" || std::string(c.name) == "sphere")
        middle = vesk_object_get_centre(object);
    if (c.outward) {
        expect_outward(object, middle);
        EXPECT_GT(volume(object), 0);
    }
    expect_texture_coordinates_in_range(object);
}
INSTANTIATE_TEST_SUITE_P(Kinds, Shape, testing::ValuesIn(shape_cases));

TEST_F(Primitives, FlatOnesLieInTheirPlane)
{
    prefs.meshx = 2;
    prefs.meshy = 3;
    prefs.mesh_triangles = 0;
    prefs.grid_object_x = 0; // counts as 1
    prefs.grid_object_y = 2;
    for (int plane = 0; plane < 3; ++plane) {
        const object_t *rect = add_rect(plane, &low, &high);
        const point3_t depth = {low.x, low.y, low.z};
        for (int i = 0; i < 4; ++i) {
            const point3_t p = at(rect, i);
            EXPECT_EQ(plane == 0   ? p.z
                      : plane == 1 ? p.x
                                   : p.y,
                      plane == 0   ? depth.z
                      : plane == 1 ? depth.x
                                   : depth.y);
        }
        EXPECT_EQ(at(rect, 0), low);
        expect_point(vesk_object_get_centre(rect), 1, 1, 1);
        EXPECT_EQ(corners_of(rect, surfaces(rect)[0]), (std::vector<int>{3, 2, 1, 0}));
    }
    const object_t *mesh = add_mesh(2, &low, &high);
    expect_point(at(mesh, 4), 1, low.y, low.z + 8.0f / 3); // row 1, column 1
    EXPECT_EQ(corners_of(mesh, surfaces(mesh)[0]), (std::vector<int>{0, 3, 4, 1}));
    const object_t *grid = add_grid(1, &low, &high);
    EXPECT_EQ(vesk_object_get_num_surfaces(grid), 2 + 3);
    expect_point(at(grid, 0), low.x, low.y, low.z); // z is stepped, y spanned
    expect_point(at(grid, 1), low.x, high.y, low.z);
    expect_point(at(grid, 2), low.x, low.y, high.z);
    expect_point(at(grid, 6), low.x, 1, low.z); // the second line along z
    for (const surface_t *line : surfaces(grid))
        EXPECT_EQ(line->type, SURFACE_LINE);
    // Another plane places nothing.
    EXPECT_EQ(at(add_rect(7, &low, &high), 2), (point3_t{0, 0, 0}));
}

TEST_F(Primitives, AMeshIsACheckerboardWhoseDiagonalsAlternate)
{
    prefs.meshx = prefs.meshy = 2;
    prefs.mesh_triangles = 0;
    const object_t *quads = add_mesh(0, &low, &high);
    std::vector<int> materials;
    for (const surface_t *surface : surfaces(quads)) {
        materials.push_back(surface->material);
        EXPECT_EQ(surface->shading, 1);
    }
    EXPECT_EQ(materials, (std::vector<int>{0, 1, 1, 0}));

    prefs.mesh_triangles = 1;
    const object_t *triangles = add_mesh(0, &low, &high);
    const faces_t expected = {{0, 3, 4}, {0, 4, 1}, {1, 4, 2}, {2, 4, 5},
                              {3, 6, 4}, {4, 6, 7}, {4, 7, 8}, {4, 8, 5}};
    EXPECT_EQ(faces_of(triangles), expected);

    prefs.meshx = 0;
    EXPECT_EQ(vesk_object_get_num_vertices(add_mesh(0, &low, &high)), 0);
}

TEST_F(Primitives, RoundOutlinesBeginOnTheFirstAxis)
{
    prefs.ellipse_segments = 4;
    const object_t *ellipse = add_circle(1, &low, &high); // z, y: radii 4 and 3
    expect_point(at(ellipse, 0), 0, 0, 4);
    expect_point(at(ellipse, 1), 0, 3, 0);
    EXPECT_EQ(surfaces(ellipse)[0]->type, SURFACE_CLOSED_LINE);

    prefs.disk_segments = 8;
    const object_t *disk = create_regular_disk(0);
    expect_point(at(disk, 2), 0, 0.5f, 0);
    expect_point(at(disk, 8), 0, 0, 0);
    EXPECT_EQ(corners_of(disk, surfaces(disk)[7]), (std::vector<int>{7, 0, 8}));

    // From 90 to 0 goes the long way, from -270.
    const object_t *arc = new_arc(0, 2, 90, 0, 4);
    expect_point(at(arc, 0), 0, 2, 0);
    expect_point(at(arc, 1), -2, 0, 0);
    EXPECT_EQ(surfaces(arc)[0]->type, SURFACE_LINE);
    EXPECT_GE(vesk_object_get_num_vertices(new_arc(0, 2, 30, 30, 4)), 4); // the whole turn
    for (int segments = 8; segments <= 360; segments *= 3) {
        for (int parts = 1; parts <= 7; ++parts) {
            const float end =
                17 + 360.0f * static_cast<float>(parts) / static_cast<float>(segments);
            EXPECT_EQ(vesk_object_get_num_vertices(new_arc(0, 2, 17, end, segments)), parts + 1)
                << segments << ": the end is there";
        }
    }
}

TEST_F(Primitives, TooFewSegmentsAreTold)
{
    prefs.ellipse_segments = prefs.disk_segments = prefs.num_surface_div = 2;
    EXPECT_EQ(vesk_object_get_num_vertices(add_circle(0, &low, &high)), 3);
    EXPECT_EQ(vesk_object_get_num_vertices(add_disk(0, &low, &high)), 4);
    EXPECT_EQ(recording().console, "3 is the minimum. Making a 3 sided shape\n"
                                   "3 is the minimum segments");
    EXPECT_EQ(add_sphere(0, &low, &high), nullptr);
    EXPECT_EQ(recording().boxes,
              (std::vector<std::string>{"Please set sphere segments to 3 or above"}));
    for (const int bad : {-5, 0, 1, 2}) { // the filler makes what it can
        prefs.num_surface_div = bad;
        object_t *object = new_object(OBJECT_POLY);
        object_add_sphere_view(object, 1);
        expect_sound(object);
    }
}

TEST_F(Primitives, BoxesHaveTheirOwnOrders)
{
    const object_t *cube = add_cube(0, &high, &low); // in any order
    expect_point(at(cube, 0), low.x, low.y, low.z);
    expect_point(at(cube, 2), high.x, high.y, low.z);
    expect_point(at(cube, 7), high.x, low.y, high.z);
    expect_point(vesk_object_get_centre(cube), 1, 1, 1);
    const surface_t *right = surfaces(cube)[1];
    EXPECT_EQ(corners_of(cube, right), (std::vector<int>{6, 7, 3, 2}));
    EXPECT_EQ(references(right)[2]->u, 1);
    EXPECT_EQ(references(right)[2]->v, 0);
    EXPECT_EQ(right->twosided, 0);

    object_t *view = new_object(OBJECT_POLY);
    object_add_cube_view(view, 2, 4, 6);
    expect_point(at(view, 0), -1, -2, -3);
    expect_point(at(view, 4), -1, 2, 3);
    EXPECT_EQ(faces_of(view)[5], (std::vector<int>{5, 2, 1, 6}));
    expect_outward(view, {0, 0, 0});
    EXPECT_NEAR(volume(view), 2 * 4 * 6, tolerance);
}

TEST_F(Primitives, SpheresOfOddAndEvenCounts)
{
    for (const int n : {3, 4, 7, 12}) {
        prefs.num_surface_div = n;
        for (const int triangles : {0, 1}) {
            prefs.sphere_triangles = triangles;
            const object_t *sphere = add_sphere(0, &low, &high);
            EXPECT_EQ(vesk_object_get_num_vertices(sphere), n * (n - 1) + 2);
            EXPECT_EQ(euler_characteristic(sphere), 2);
            expect_outward(sphere, {1, 1, 1});
            expect_texture_coordinates_in_range(sphere);
            expect_point(at(sphere, 0), 1, low.y, 1); // poles on y
            expect_point(at(sphere, n * (n - 1) + 1), 1, high.y, 1);
            // The body comes backwards here, the last cell first, and forwards from the filler.
            const std::vector<svertex *> first = references(surfaces(sphere)[0]);
            EXPECT_GT(first[0]->v, static_cast<float>(n - 2.5) / static_cast<float>(n));
            EXPECT_EQ(surfaces(sphere)[0]->shading, 1);

            object_t *filled = new_object(OBJECT_POLY);
            object_add_sphere_view(filled, 2);
            EXPECT_EQ(vesk_object_get_num_surfaces(filled), vesk_object_get_num_surfaces(sphere));
            EXPECT_LT(references(surfaces(filled)[0])[0]->v, 2.5f / static_cast<float>(n));
        }
    }
}

TEST_F(Primitives, ConesAndCylindersStandOnTheirPlane)
{
    prefs.num_surface_div = 6;
    for (int plane = 0; plane < 3; ++plane) {
        const object_t *cone = new_cone(plane, 1, 1, 4, 8);
        const point3_t apex = at(cone, 8);
        expect_point(apex, plane == 1 ? 2.0f : 0, plane == 2 ? 2.0f : 0, plane == 0 ? 2.0f : 0);
        EXPECT_EQ(euler_characteristic(cone), 2);
        // The texture step is that of the sphere preference.
        EXPECT_NEAR(references(surfaces(cone)[8])[2]->u, 8.0f / 6, tolerance);
    }
    prefs.cylinder_segments = 4;
    for (int plane = 0; plane < 3; ++plane) {
        object_t *cylinder = new_object(OBJECT_POLY);
        object_add_cylinder_view(cylinder, plane, 2, 6, 1, 1);
        // The first pair sits at a quarter turn; the first ring is below in the front view only.
        const float depth = plane == 0 ? -3.0f : 3.0f;
        const point3_t expected[] = {{0, 2, depth}, {depth, 2, 0}, {0, depth, 2}};
        expect_point(at(cylinder, 0), expected[plane].x, expected[plane].y, expected[plane].z);
        expect_outward(cylinder, {0, 0, 0});
        EXPECT_EQ(corners_of(cylinder, surfaces(cylinder)[8]), (std::vector<int>{3, 2, 1, 0}));
        EXPECT_EQ(corners_of(cylinder, surfaces(cylinder)[9]), (std::vector<int>{4, 5, 6, 7}));
        object_t *open = new_object(OBJECT_POLY);
        object_add_cylinder_view(open, plane, 2, 6, 0, 0);
        EXPECT_EQ(euler_characteristic(open), 0);
    }
}

TEST_F(Primitives, TheIcosahedronIsRegular)
{
    const object_t *ico = create_ico();
    for (const surface_t *surface : surfaces(ico)) {
        const std::vector<svertex *> corners = references(surface);
        for (size_t i = 0; i < 3; ++i) {
            const point3_t &p = corners[i]->vertex->position;
            const point3_t &q = corners[(i + 1) % 3]->vertex->position;
            EXPECT_NEAR(std::hypot(p.x, p.y, p.z), 1, tolerance);
            EXPECT_NEAR(std::hypot(p.x - q.x, p.y - q.y, p.z - q.z), 2 * 0.5257311, tolerance);
        }
    }
}

TEST_F(Primitives, TheCommandMakesACubeWithoutAnUndoRecord)
{
    const std::string id = run("new_cube");
    const object_t *cube = object_by_identity(std::stoi(id));
    ASSERT_NE(cube, nullptr);
    EXPECT_EQ(object_parent(cube), vesk_get_world());
    EXPECT_NEAR(volume(cube), 1, tolerance);
    EXPECT_EQ(last_undo(), "");
}

// ---- texture mapping of one object ----

TEST_F(Primitives, PlanarMappingFillsTheUnitSquareOfEachView)
{
    for (int plane = 0; plane < 3; ++plane) {
        object_t *cube = add_cube(0, &low, &high);
        calc_texture_coors(cube, plane);
        for (const surface_t *surface : surfaces(cube)) {
            for (const svertex *corner : references(surface)) {
                const point3_t &p = corner->vertex->position;
                const float x = (p.x - low.x) / 4, y = (p.y - low.y) / 6, z = (p.z - low.z) / 8;
                EXPECT_NEAR(corner->u, plane == 1 ? z : x, tolerance);
                EXPECT_NEAR(corner->v, plane == 2 ? 1 - z : y, tolerance);
            }
        }
    }
}
