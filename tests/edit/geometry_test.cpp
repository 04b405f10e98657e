// Operations that replace surfaces and vertices: what they make, what they leave, and that undo
// brings everything back.

#include "base/prefs.h"
#include "edit/document/edit_support.h"
#include "edit/document/modes.h"
#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "edit/holes.h"
#include "edit/primitives.h"
#include "edit/triangulate.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/flat_mesh.h"
#include "model/identity.h"
#include "model/vector.h"
#include "model/world.h"
#include "tests/support/mesh_test.h"

#include <algorithm>
#include <cmath>
#include <unordered_set>

namespace {

using Geometry = SceneTest;

void select_surfaces_of(const object_t *object, int count)
{
    run("set_select_mode", "surface");
    clear_selection();
    for (int i = 0; i < count; ++i)
        select_surface(object_get_surface_at(object, i));
}

// ---- holes and bevels ----

struct hole_case {
    const char *name;
    int percent;
    double ring_area;
};
// clang-format off
const hole_case hole_cases[] = {
    {"half_size",        50, 0.75},
    {"down_to_a_point",   0, 1.0},
    {"zero_width_ring", 100, 0.0},
    {"outside_reversed", 150, 1.25},
};
// clang-format on
void PrintTo(const hole_case &c, std::ostream *out) { *out << c.name; }
class MakeHole : public Geometry, public testing::WithParamInterface<hole_case> {};

TEST_P(MakeHole, RingOfFourSidesFacesAsTheSquareDid)
{
    object_t *square = add_square(0.5f);
    select_object(square);
    prefs.hole_percent = GetParam().percent;
    run("surface_make_hole");

    EXPECT_EQ(square->num_surfaces, 4);
    EXPECT_EQ(square->num_vertices, 8);
    EXPECT_NEAR(area_xy(square), GetParam().ring_area, 1e-5);
    EXPECT_EQ(last_undo(), "make hole");
    EXPECT_EQ(last_message(), "make hole - done");
    EXPECT_TRUE(nothing_is_selected());
    expect_sound(square);
}
INSTANTIATE_TEST_SUITE_P(Percent, MakeHole, testing::ValuesIn(hole_cases));

TEST_F(Geometry, RefusedHolesChangeNothing)
{
    run("surface_make_hole");
    EXPECT_EQ(last_message(), "surface make hole - no surfaces selected");

    object_t *square = add_square(0.5f);
    select_object(square);
    prefs.hole_percent = -1;
    run("surface_make_hole");
    EXPECT_EQ(square->num_surfaces, 1);
    EXPECT_EQ(last_undo(), "make hole");
    ASSERT_EQ(recording().boxes.size(), 1u);
    EXPECT_EQ(recording().boxes[0],
              "the hole % setting is less than zero - please set to a positive number");
}

// Plug-ins may mix them up.
TEST_F(Geometry, ASurfaceOfAnotherObjectIsLeftAlone)
{
    object_t *own = add_cube("own");
    object_t *other = add_cube("other");
    surface_t *foreign = item_of<surface_t>(other->surfaces);
    const std::string before = scene_text();
    EXPECT_EQ(surface_make_hole(own, foreign, 0.5f, 0), nullptr);
    EXPECT_EQ(surface_bevel(own, foreign), nullptr);
    EXPECT_EQ(surface_triangulate(own, foreign), nullptr);
    EXPECT_EQ(scene_text(), before);
    const float height = item_of<svertex>(foreign->refs)->vertex->position.z;
    const point3_t up = {0, 0, 2};
    surface_translate_vertices(foreign, &up);
    EXPECT_EQ(item_of<svertex>(foreign->refs)->vertex->position.z, height + 2);
}

TEST_F(Geometry, OperationsOfTheInterfaceSelectWhatTheyMake)
{
    struct row_t {
        const char *command;
        int surfaces; // selected afterwards
    };
    for (const row_t &row : {row_t{"hole_select", 8}, row_t{"bevel_select", 2},
                             row_t{"surface_spike", 8}, row_t{"surface_subdivide", 8}}) {
        SCOPED_TRACE(row.command);
        object_t *object = add_squares(3, 1);
        select_surfaces_at(object, {0, 1});
        run(row.command);
        EXPECT_EQ(selection().num_surfaces, row.surfaces);
        EXPECT_NE(selection().box_valid, 0);
        run("set_select_mode", "object");
        run("objects_select", object_identity(object));
        run(row.command);
        EXPECT_EQ(selected_objects(), std::vector{object});
    }
    prefs.hole_percent = -1;
    const std::string undo = last_undo();
    run("hole_select");
    EXPECT_EQ(last_undo(), undo) << "a refusal costs no step";
}

TEST_F(Geometry, BevelMovesCornersAlongBisectorAndNormal)
{
    object_t *square = add_square(1.0f);
    const point3_t old = object_get_vertex_at(square, 0)->position;
    prefs.bevel_size = 0.1;
    select_object(square);
    run("surface_bevel");

    EXPECT_EQ(last_message(), "surfaces beveled: 1");
    EXPECT_EQ(square->num_surfaces, 5);
    const point3_t moved = object_get_vertex_at(square, 4)->position;
    const double diagonal = std::sqrt(0.5) * 0.1;
    EXPECT_NEAR(std::fabs(moved.x), std::fabs(old.x) - diagonal, 1e-6);
    EXPECT_NEAR(std::fabs(moved.y), std::fabs(old.y) - diagonal, 1e-6);
    EXPECT_NEAR(std::fabs(moved.z), 0.1, 1e-6);
    expect_sound(square);
}

// ---- deleting ----

TEST_F(Geometry, DeletedSurfacesTakeOnlyTheirOwnVerticesAlong)
{
    object_t *cube = add_cube("cube");
    const int vertices = cube->num_vertices;
    select_surfaces_of(cube, 1);
    run("delete");
    EXPECT_EQ(cube->num_surfaces, 5);
    EXPECT_EQ(cube->num_vertices, vertices); // all shared with the other sides
    expect_sound(cube);

    select_surfaces_of(cube, 5);
    run("delete");
    EXPECT_EQ(cube->num_surfaces, 0);
    EXPECT_EQ(cube->num_vertices, 0);
    EXPECT_EQ(last_undo(), "delete");
}

TEST_F(Geometry, RemovedSurfacesLeaveTheirVertices)
{
    object_t *cube = add_cube("cube");
    select_surfaces_of(cube, 6);
    run("removesurface");
    EXPECT_EQ(cube->num_surfaces, 0);
    EXPECT_EQ(cube->num_vertices, 8);
    expect_sound(cube);
}

TEST_F(Geometry, DeletedVertexShortensSurfacesUntilTheyAreTooSmall)
{
    object_t *square = add_square(1.0f);
    run("set_select_mode", "vertex");
    const auto delete_first = [&] {
        owned_list one;
        one.add(object_get_vertex_at(square, 0));
        select_vertices(one.get());
        run("delete");
    };
    delete_first();
    EXPECT_EQ(square->num_vertices, 3);
    EXPECT_EQ(object_get_surface_at(square, 0)->num_refs, 3);
    expect_sound(square);
    delete_first();
    EXPECT_EQ(square->num_surfaces, 0);
    EXPECT_EQ(square->num_vertices, 0);
}

TEST_F(Geometry, DeletedObjectsComeBack)
{
    add_cube("one");
    run("select_all");
    const std::string before = scene_text();
    run("delete");
    EXPECT_EQ(vesk_get_world()->num_children, 0);
    EXPECT_TRUE(nothing_is_selected());
    run("undo");
    EXPECT_EQ(scene_text(), before);
}

// ---- triangulation ----

object_t *add_polygon(const std::vector<point3_t> &points, int type)
{
    object_t *object = new_object(OBJECT_POLY);
    surface_t *surface = new_surface();
    surface_set_type(surface, type);
    for (const point3_t &p : points)
        surface_add_vertex(surface, object_add_new_vertex(object, p.x, p.y, p.z), p.x, p.y);
    object_add_surface(object, surface);
    object_add_child(vesk_get_world(), object);
    return object;
}

using points_t = std::vector<point3_t>;
struct triangulation_case {
    const char *name;
    points_t points;
    int type;
    int surfaces;
    double area; // signed, kept
    const char *box;
};
// clang-format off
const triangulation_case triangulation_cases[] = {
    {"triangle",     {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, 0, 1, 0.5, ""},
    {"convex_quad",  {{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {0, 1, 0}}, 0, 2, 2, ""},
    {"clockwise",    {{0, 1, 0}, {2, 1, 0}, {2, 0, 0}, {0, 0, 0}}, 0, 2, -2, ""},
    {"l_shape",      {{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {1, 1, 0}, {1, 2, 0}, {0, 2, 0}}, 0, 4, 3, ""},
    {"bow_tie",      {{0, 0, 0}, {1, 1, 0}, {1, 0, 0}, {0, 1, 0}}, 0, 1, 0,
     "polys not triangulated: 1\nlines/polylines ignored: 0"},
    {"all_collinear", {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}}, 0, 1, 0,
     "polys not triangulated: 1\nlines/polylines ignored: 0"},
    {"closed_line",  {{0, 0, 0}, {2, 0, 0}, {3, 1, 0}, {2, 2, 0}, {0, 2, 0}}, 1, 1, 5,
     "polys not triangulated: 0\nlines/polylines ignored: 1"},
};
// clang-format on
void PrintTo(const triangulation_case &c, std::ostream *out) { *out << c.name; }
class Triangulate : public Geometry, public testing::WithParamInterface<triangulation_case> {};

TEST_P(Triangulate, CoversThePolygonAndKeepsWhatItCarries)
{
    const triangulation_case &c = GetParam();
    object_t *object = add_polygon(c.points, c.type);
    surface_set_col(object_get_surface_at(object, 0), 5);
    select_object(object);
    run("surface_triangulate");

    EXPECT_EQ(object->num_surfaces, c.surfaces);
    EXPECT_EQ(object->num_vertices, static_cast<int>(c.points.size()));
    EXPECT_NEAR(area_xy(object), c.area, 1e-6);
    for (const surface_t *surface : each<surface_t>(object->surfaces)) {
        EXPECT_EQ(surface->material, 5);
        for (const svertex *reference : each<svertex>(surface->refs))
            EXPECT_EQ(reference->u, reference->vertex->position.x);
    }
    EXPECT_EQ(last_undo(), "triangluate");
    const std::string boxes = recording().boxes.empty() ? "" : recording().boxes.back();
    EXPECT_NE(boxes.find(c.box), std::string::npos) << boxes;
    expect_sound(object);
}
INSTANTIATE_TEST_SUITE_P(Polygons, Triangulate, testing::ValuesIn(triangulation_cases));

// The tessellator does not survive them.
TEST_F(Geometry, CornersThatAreNoNumbersAreNotTriangulated)
{
    object_t *object = add_polygon({{0, 0, 0}, {2, 0, 0}, {3, 1, 0}, {2, 2, 0}, {0, 2, 0}}, 0);
    select_object(object);
    for (const float wrong : {NAN, INFINITY}) {
        for (vertex *point : each<vertex>(object->vertices))
            point->position.x = wrong;
        mark_all_suspect();
        run("surface_triangulate");
        EXPECT_EQ(object->num_surfaces, 1);
        EXPECT_NE(recording().boxes.back().find("polys not triangulated: 1"), std::string::npos);
    }
}

// ---- attributes ----

TEST_F(Geometry, FlippedPolygonsFaceTheOtherWay)
{
    object_t *square = add_square(1.0f);
    select_surfaces_of(square, 1);
    const double area = area_xy(square);
    run("surface_change_vertex_order");
    EXPECT_EQ(area_xy(square), area);
    run("surface_flip_normals");
    EXPECT_EQ(area_xy(square), -area);
    EXPECT_EQ(object_get_surface_at(square, 0)->normal.z, area > 0 ? -1 : 1);
}

// ---- every operation ----

struct undo_case {
    const char *name;
    const char *command;
    const char *argument; // null for none
    const char *mode;
};
// clang-format off
const undo_case undo_cases[] = {
    {"hole",         "surface_make_hole", nullptr, "surface"},
    {"bevel",        "surface_bevel",     nullptr, "surface"},
    {"delete",       "delete",            nullptr, "surface"},
    {"delete_points", "delete",           nullptr, "vertex"},
    {"remove",       "removesurface",     nullptr, "surface"},
    {"triangulate",  "surface_triangulate", nullptr, "surface"},
    {"triangulate_objects", "surface_triangulate", nullptr, "object"},
    {"flip",         "surface_flip_normals", nullptr, "surface"},
    {"order",        "surface_change_vertex_order", nullptr, "object"},
    {"shading",      "surface_set_shaded", "1", "surface"},
    {"sides",        "surface_set_twosided", "0", "object"},
    {"type",         "set_surface_type",  "1", "surface"},
    {"colour",       "set_col",           "3", "object"},
};
// clang-format on
void PrintTo(const undo_case &c, std::ostream *out) { *out << c.name; }
class UndoOf : public Geometry, public testing::WithParamInterface<undo_case> {};

TEST_P(UndoOf, BringsTheSavedTextBack)
{
    add_cube("cube");
    run("select_all");
    run("move", 1, 2, 3);
    const std::string before = scene_text();
    run("set_select_mode", GetParam().mode);
    run("select_all");
    if (GetParam().argument != nullptr)
        run(GetParam().command, GetParam().argument);
    else
        run(GetParam().command);
    EXPECT_NE(scene_text(), before);
    for_each_object(vesk_get_world(), expect_sound);
    run("undo");
    EXPECT_EQ(scene_text(), before);
}
INSTANTIATE_TEST_SUITE_P(Commands, UndoOf, testing::ValuesIn(undo_cases));

} // namespace
