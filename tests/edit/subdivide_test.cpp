// Operations that give surfaces more vertices, or make new ones: what they make, what their
// neighbours get, and that undo brings everything back.

#include "base/prefs.h"
#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "edit/mesh/outline.h"
#include "model/each.h"
#include "model/normals.h"
#include "model/vector.h"
#include "model/world.h"
#include "tests/support/mesh_test.h"
#include "tests/support/random_mesh.h"

#include <algorithm>
#include <cmath>

namespace {

class Subdivide : public SceneTest {};

const svertex *corner_at(const object_t *object, int surface, int corner)
{
    return static_cast<const svertex *>(
        list_get_item(object_get_surface_at(object, surface)->refs, corner));
}

// Texture coordinates of add_mesh are the positions: wherever they were interpolated they still are.
void expect_coordinates_follow(const object_t *object)
{
    for (const surface_t *surface : each<surface_t>(object->surfaces)) {
        for (const svertex *corner : each<svertex>(surface->refs)) {
            EXPECT_NEAR(corner->u, corner->vertex->position.x, 1e-6);
            EXPECT_NEAR(corner->v, corner->vertex->position.y, 1e-6);
        }
    }
}

TEST_F(Subdivide, QuadsBecomeQuadsAboutTheirMiddle)
{
    object_t *object = add_squares(1, 1);
    surface_set_col(object_get_surface_at(object, 0), 4);
    select_all_surfaces(object);
    run("surface_subdivide");
    // The square is 0 1 3 2; its middles 4 to 7 follow its edges, 8 is the centre.
    EXPECT_EQ(faces_of(object), (faces_t{{0, 4, 8, 7}, {1, 5, 8, 4}, {3, 6, 8, 5}, {2, 7, 8, 6}}));
    EXPECT_EQ(points_of(object).at(8), (point3_t{0.5f, 0.5f, 0}));
    EXPECT_DOUBLE_EQ(area_xy(object), 1);
    expect_coordinates_follow(object);
    EXPECT_EQ(object_get_surface_at(object, 2)->material, 4);
    EXPECT_EQ(selected_surfaces_of(object), (std::vector<int>{0, 1, 2, 3}));
    EXPECT_EQ(last_undo(), "subdivide");
    EXPECT_EQ(last_message(), "subdivide - 1 surfaces");
}

TEST_F(Subdivide, ASpikeStandsOnTheOutlineThoughItBeginsWithCornersOnALine)
{
    object_t *object =
        add_mesh({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}}, {{0, 1, 2, 3, 4}});
    select_all_surfaces(object);
    prefs.spike_factor = 1;
    run("surface_spike");
    EXPECT_GT(points_of(object).at(5).z, 1);
}

TEST_F(Subdivide, TrianglesBecomeFour)
{
    object_t *object = add_mesh({{0, 0, 0}, {2, 0, 0}, {0, 2, 0}}, {{0, 1, 2}});
    select_all_surfaces(object);
    run("surface_subdivide");
    EXPECT_EQ(faces_of(object), (faces_t{{0, 3, 5}, {1, 4, 3}, {2, 5, 4}, {3, 4, 5}}));
    EXPECT_DOUBLE_EQ(area_xy(object), 2);
    expect_coordinates_follow(object);
}

TEST_F(Subdivide, NeighboursGetTheMiddlesSoThatNoCrackOpens)
{
    object_t *object = add_squares(2, 1);
    const surface_t *neighbour = object_get_surface_at(object, 1);
    select_surfaces_at(object, {0});
    run("surface_subdivide");
    EXPECT_EQ(object->num_surfaces, 5);
    EXPECT_EQ(object_get_surface_at(object, 0), neighbour) << "keeps its record";
    EXPECT_EQ(faces_of(object).at(0), (std::vector<int>{1, 2, 5, 4, 7}));
    EXPECT_EQ(count_edges(object).once, 6 + 3);
    expect_coordinates_follow(object);
    expect_sound(object);
}

TEST_F(Subdivide, LinesGetTheirMiddles)
{
    object_t *line = add_mesh({{0, 0, 0}, {2, 0, 0}, {2, 2, 0}}, {{0, 1, 2}}, SURFACE_LINE);
    select_all_surfaces(line);
    run("surface_subdivide");
    EXPECT_EQ(faces_of(line), (faces_t{{0, 3, 1, 4, 2}}));
    EXPECT_EQ(selected_surfaces_of(line), (std::vector<int>{0}));
}

TEST_F(Subdivide, SpikesRiseByTheFactorOfTheMeanDistance)
{
    prefs.spike_factor = 0.5;
    object_t *object = add_squares(1, 1);
    select_all_surfaces(object);
    run("surface_spike");
    EXPECT_EQ(faces_of(object), (faces_t{{0, 1, 4}, {1, 3, 4}, {3, 2, 4}, {2, 0, 4}}));
    const point3_t apex = points_of(object).back();
    EXPECT_EQ(apex.x, 0.5f);
    EXPECT_NEAR(apex.z, 0.5 * std::sqrt(0.5), 1e-6);
    EXPECT_DOUBLE_EQ(area_xy(object), 1);
    expect_coordinates_follow(object);
    EXPECT_EQ(last_message(), "spike - 1 surfaces");
}

TEST_F(Subdivide, CurvesGoThroughTheirVertices)
{
    prefs.spline_steps = 4;
    const std::vector<point3_t> points = {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {2, 1, 0}};
    object_t *line = add_mesh(points, {{0, 1, 2, 3}}, SURFACE_LINE);
    object_t *ring = add_mesh(points, {{0, 1, 2, 3}}, SURFACE_CLOSED_LINE);
    add_squares(1, 1);
    run("set_select_mode", "surface");
    run("select_all");
    run("surface_spline");
    EXPECT_EQ(last_message(), "spline - 2 surfaces");
    EXPECT_EQ(faces_of(line), (faces_t{{0, 4, 5, 6, 1, 7, 8, 9, 2, 10, 11, 12, 3}}));
    EXPECT_EQ(object_get_surface_at(ring, 0)->num_refs, 16);
    // Evenly along the straight first segment: it goes on straight beyond the end.
    EXPECT_EQ(points_of(line).at(4), (point3_t{0.25f, 0, 0}));
    // Half way in the second: (-p0 + 9 p1 + 9 p2 - p3) / 16.
    EXPECT_EQ(points_of(line).at(8), (point3_t{1.5625f, -0.0625f, 0}));
    EXPECT_EQ(corner_at(line, 0, 2)->u, 0.5f);
    expect_sound_scene();
}

TEST_F(Subdivide, InsertedVerticesLieBetweenTheSelectedEnds)
{
    object_t *object = add_squares(2, 1);
    select_vertices_at(object, {1, 4, 5});
    run("insert_vertex");
    EXPECT_EQ(faces_of(object), (faces_t{{0, 1, 6, 4, 3}, {1, 2, 5, 7, 4, 6}}));
    EXPECT_EQ(points_of(object).at(6), (point3_t{1, 0.5f, 0}));
    EXPECT_EQ(selected_vertices_of(object), (std::vector<int>{6, 7}));
    EXPECT_EQ(last_message(), "insert vertex - 2 vertices");
    EXPECT_EQ(last_undo(), "insert vertex");
    expect_coordinates_follow(object);
    expect_sound(object);
}

TEST_F(Subdivide, InsertedVerticesOfASurfaceGoIntoItsNeighboursToo)
{
    object_t *object = add_squares(2, 1);
    select_surfaces_at(object, {0});
    run("insert_vertex");
    EXPECT_EQ(faces_of(object), (faces_t{{0, 6, 1, 7, 4, 8, 3, 9}, {1, 2, 5, 4, 7}}));
    EXPECT_EQ(selected_surfaces_of(object), (std::vector<int>{0}));
}

struct refusal_case {
    const char *name, *command, *mode, *message;
};
// clang-format off
const refusal_case refusal_cases[] = {
    {"subdivide",     "surface_subdivide",     "surface", "subdivide - nothing selected"},
    {"spike",         "surface_spike",         "object",  "spike - nothing selected"},
    {"spline",        "surface_spline",        "surface", "spline - nothing selected"},
    {"insert",        "insert_vertex",         "vertex",  "insert vertex - nothing selected"},
    {"insert_by_surface", "insert_vertex",     "surface", "insert vertex - nothing selected"},
    {"create_object", "surface_create_object", "surface", "create object - nothing selected"},
    {"inituv",        "inituv",                "object",  "initial texture coordinates - nothing selected"},
};
// clang-format on
void PrintTo(const refusal_case &c, std::ostream *out) { *out << c.name; }
class Refused : public Subdivide, public testing::WithParamInterface<refusal_case> {};

TEST_P(Refused, WithoutAnythingUsableItOnlySaysSo)
{
    add_mesh({{0, 0, 0}, {1, 0, 0}}, {}, SURFACE_LINE);
    run("set_select_mode", GetParam().mode);
    const std::string undo = last_undo();
    run(GetParam().command);
    EXPECT_EQ(last_message(), GetParam().message);
    run("select_all"); // vertices without an edge, objects without a surface
    run(GetParam().command);
    EXPECT_EQ(last_message(), GetParam().message);
    EXPECT_EQ(last_undo(), undo);
}
INSTANTIATE_TEST_SUITE_P(Commands, Refused, testing::ValuesIn(refusal_cases));

// ---- one surface from vertices ----

struct create_case {
    const char *name;
    int type;
    std::vector<int> selected, made;
};
// clang-format off
const create_case create_cases[] = { // of the grid 3 4 5 over 0 1 2
    {"in_the_order_of_selection", 0, {4, 3, 0, 1},    {4, 3, 0, 1}},
    {"bow_tie_goes_round",        0, {0, 1, 3, 4},    {0, 1, 4, 3}},
    {"concave_stays",             0, {0, 2, 5, 1},    {0, 2, 5, 1}},
    {"lines_may_cross",           2, {0, 4, 1, 3},    {0, 4, 1, 3}},
    {"closed_line",               1, {2, 1, 0},       {2, 1, 0}},
    {"line_of_two",               2, {5, 0},          {5, 0}},
};
// clang-format on
void PrintTo(const create_case &c, std::ostream *out) { *out << c.name; }
class CreateSurface : public Subdivide, public testing::WithParamInterface<create_case> {};

TEST_P(CreateSurface, GoesThroughTheSelectedVertices)
{
    object_t *object = add_squares(2, 1);
    select_vertices_at(object, GetParam().selected);
    run("createsurface", GetParam().type);
    ASSERT_EQ(object->num_surfaces, 3);
    const surface_t *made = object_get_surface_at(object, 2);
    EXPECT_EQ(made->type, GetParam().type);
    EXPECT_EQ(made->twosided, 1);
    std::vector<int> corners = corners_of(object, made);
    if (GetParam().name == std::string("bow_tie_goes_round")) // from any corner
        std::rotate(corners.begin(), std::find(corners.begin(), corners.end(), 0), corners.end());
    EXPECT_EQ(corners, GetParam().made);
    expect_coordinates_follow(object);
    EXPECT_EQ(last_undo(), "create surface");
    run("undo");
    EXPECT_EQ(object->num_surfaces, 2);
}
INSTANTIATE_TEST_SUITE_P(Surfaces, CreateSurface, testing::ValuesIn(create_cases));

TEST_F(Subdivide, SurfacesNeedEnoughVerticesOfOneObject)
{
    object_t *object = add_squares(1, 1);
    object_t *other = add_squares(1, 1);
    select_vertices_at(object, {0, 1});
    run("createsurface", 0);
    EXPECT_EQ(last_message(), "select at least 3 vertices of one object");
    owned_list more;
    more.add(object_get_vertex_at(other, 0));
    select_vertices(more.get());
    run("createsurface", 2);
    EXPECT_EQ(last_message(), "select at least 2 vertices of one object");
    run("set_select_mode", "object");
    run("createsurface", 0);
    EXPECT_EQ(last_message(), "select at least 3 vertices of one object");
    EXPECT_EQ(object->num_surfaces + other->num_surfaces, 2);
}

// Every pair of sides.
bool crosses_by_definition(const std::vector<plane_point> &outline)
{
    const auto turn = [](const plane_point &a, const plane_point &b, const plane_point &c) {
        const double t = (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
        return t > 0 ? 1 : t < 0 ? -1 : 0;
    };
    const auto within = [](const plane_point &a, const plane_point &b, const plane_point &p) {
        return std::min(a.x, b.x) <= p.x && p.x <= std::max(a.x, b.x) &&
               std::min(a.y, b.y) <= p.y && p.y <= std::max(a.y, b.y);
    };
    const std::size_t n = outline.size();
    for (std::size_t i = 0; i < n; ++i) {
        const plane_point &a = outline[i], &b = outline[(i + 1) % n];
        for (std::size_t j = i + 1; j < n; ++j) {
            const plane_point &c = outline[j], &d = outline[(j + 1) % n];
            if (a.x == c.x && a.y == c.y)
                return true;
            const bool follows = j == i + 1, precedes = (j + 1) % n == i;
            if (follows || precedes) {
                const plane_point &shared = follows ? b : a, &p = follows ? a : b,
                                  &q = follows ? d : c;
                if (turn(p, shared, q) == 0 &&
                    (p.x - shared.x) * (q.x - shared.x) + (p.y - shared.y) * (q.y - shared.y) > 0)
                    return true;
                continue;
            }
            if (turn(a, b, c) * turn(a, b, d) < 0 && turn(c, d, a) * turn(c, d, b) < 0)
                return true;
            if ((turn(a, b, c) == 0 && within(a, b, c)) ||
                (turn(a, b, d) == 0 && within(a, b, d)) ||
                (turn(c, d, a) == 0 && within(c, d, a)) || (turn(c, d, b) == 0 && within(c, d, b)))
                return true;
        }
    }
    return false;
}

TEST_F(Subdivide, CrossingOutlinesAreThoseOfTheDefinition)
{
    int crossing = 0;
    for (std::uint32_t seed = 0; seed < 20000; ++seed) {
        random_source random(seed);
        std::vector<plane_point> outline;
        const int n = 3 + random.below(seed % 4 == 0 ? 12 : 4);
        const bool lattice = random.below(2) == 0, star = random.below(2) == 0;
        for (int i = 0; i < n; ++i) {
            if (star) { // mostly does not cross
                const double angle = 6.28318 * i / n, radius = 1 + random.below(3);
                outline.push_back({std::round(4 * radius * std::cos(angle)),
                                   std::round(4 * radius * std::sin(angle))});
            } else if (lattice) {
                outline.push_back(
                    {static_cast<double>(random.below(5)), static_cast<double>(random.below(5))});
            } else {
                outline.push_back({random.between(0, 1), random.between(0, 1)});
            }
        }
        const bool expected = crosses_by_definition(outline);
        crossing += expected ? 1 : 0;
        ASSERT_EQ(outline_crosses_itself(outline), expected) << seed;
    }
    EXPECT_GT(crossing, 2000);
    EXPECT_LT(crossing, 18000);
}

// ---- objects from surfaces ----

TEST_F(Subdivide, CopiesOfSurfacesBecomeAnObject)
{
    object_t *object = add_squares(2, 2);
    object_set_name(object, "grid");
    select_surfaces_at(object, {0, 1});
    run("surface_create_object");
    ASSERT_EQ(vesk_get_world()->num_children, 2);
    const auto *made = item_of<object_t>(vesk_get_world()->children->next);
    EXPECT_STREQ(made->name, "grid");
    EXPECT_EQ(made->num_surfaces, 2);
    EXPECT_EQ(made->num_vertices, 6);
    EXPECT_EQ(object->num_surfaces, 4);
    EXPECT_EQ(selected_surfaces_of(made), (std::vector<int>{0, 1}));
    expect_coordinates_follow(made);
    EXPECT_EQ(last_undo(), "create object");
    run("undo");
    EXPECT_EQ(vesk_get_world()->num_children, 1);
}

TEST_F(Subdivide, SurfacesOfSeveralObjectsBecomeOne)
{
    add_squares(1, 1);
    add_squares(2, 1);
    run("set_select_mode", "surface");
    run("select_all");
    run("surface_create_object");
    ASSERT_EQ(vesk_get_world()->num_children, 3);
    const auto *made = item_of<object_t>(vesk_get_world()->children->next->next);
    EXPECT_EQ(made->num_surfaces, 3);
    EXPECT_EQ(made->num_vertices, 10);
    expect_sound_scene();
}

TEST_F(Subdivide, SurfacesLeaveTheirObjectForOneOfTheirOwn)
{
    object_t *object = add_squares(2, 2);
    object_set_name(object, "grid");
    select_surfaces_at(object, {0, 1});
    const std::string before = scene_text();
    run("surfaces_separate");
    ASSERT_EQ(vesk_get_world()->num_children, 2);
    object_t *made = item_of<object_t>(vesk_get_world()->children->next);
    EXPECT_EQ(made->num_surfaces, 2);
    EXPECT_EQ(object->num_surfaces, 2);
    EXPECT_EQ(selected_surfaces_of(made), (std::vector<int>{0, 1}));
    run("undo");
    EXPECT_EQ(scene_text(), before);
    EXPECT_EQ(vesk_get_world()->num_children, 1);
}

// ---- texture coordinates ----

TEST_F(Subdivide, InitialTextureCoordinatesFillTheUnitSquare)
{
    object_t *object = add_mesh({{0, 0, 5}, {9, 0, 0}, {9, 9, 0}, {0, 9, 0}, {-5, 5, 0}},
                                {{0, 1, 2}, {0, 1, 2, 3}, {0, 1, 2, 3, 4}});
    const std::string before = scene_text();
    select_object(object);
    run("inituv");
    EXPECT_EQ(corner_at(object, 0, 2)->u, 0);
    EXPECT_EQ(corner_at(object, 0, 2)->v, 1);
    EXPECT_EQ(corner_at(object, 1, 2)->u, 1);
    EXPECT_EQ(corner_at(object, 1, 2)->v, 1);
    EXPECT_EQ(corner_at(object, 2, 0)->u, 1);
    EXPECT_EQ(corner_at(object, 2, 0)->v, 0.5f);
    for (const svertex *corner : each<svertex>(object_get_surface_at(object, 2)->refs))
        EXPECT_NEAR(std::hypot(corner->u - 0.5f, corner->v - 0.5f), 0.5, 1e-6);
    EXPECT_EQ(last_undo(), "initial texture coordinates");
    run("undo");
    EXPECT_EQ(scene_text(), before);
}

// ---- any mesh ----

struct operation_case {
    const char *name;
    const char *command;
    bool closed_stays; // every edge of a shell is still used twice
    bool same_volume;
    int euler; // of a shell
};
// clang-format off
const operation_case operation_cases[] = {
    {"subdivide",     "surface_subdivide", true,  false, 2},
    {"spike",         "surface_spike",     true,  false, 2},
    {"insert",        "insert_vertex",     true,  true,  2},
    {"triangulate",   "surface_triangulate", true, false, 2},
};
// clang-format on
void PrintTo(const operation_case &c, std::ostream *out) { *out << c.name; }
class OnAnyMesh : public Subdivide, public testing::WithParamInterface<operation_case> {};

std::vector<int> some_places(random_source &random, int n)
{
    std::vector<int> places;
    for (int i = 0; i < n; ++i) {
        if (random.below(2) == 0)
            places.push_back(i);
    }
    return places;
}

TEST_P(OnAnyMesh, ShellsStayClosed)
{
    for (std::uint32_t seed = 1; seed < 15; ++seed) {
        random_source random(seed);
        object_t *shell = add_random_shell(random, 3);
        const double inside = volume(shell);
        const std::string before = scene_text();
        select_surfaces_at(shell, some_places(random, shell->num_surfaces));
        run(GetParam().command);
        EXPECT_EQ(euler_characteristic(shell), GetParam().euler) << seed;
        EXPECT_EQ(count_edges(shell).once, 0) << seed;
        EXPECT_EQ(count_edges(shell).more, 0) << seed;
        if (GetParam().same_volume) {
            EXPECT_NEAR(volume(shell), inside, 0.2 * inside);
        }
        expect_sound(shell);
        run("undo");
        EXPECT_EQ(scene_text(), before) << seed;
        run("clear_all");
    }
}

TEST_P(OnAnyMesh, SoupsSurviveAndComeBack)
{
    for (std::uint32_t seed = 1; seed < 15; ++seed) {
        random_source random(seed);
        object_t *soup = add_random_soup(random, 30, 40);
        const std::string before = scene_text();
        const bool whole = random.below(3) == 0;
        if (whole) {
            run("set_select_mode", "object");
            run("select_all");
        } else {
            select_surfaces_at(soup, some_places(random, soup->num_surfaces));
        }
        run(GetParam().command);
        expect_sound(soup);
        run("undo");
        EXPECT_EQ(scene_text(), before) << seed;
        run("clear_all");
    }
}
INSTANTIATE_TEST_SUITE_P(Operations, OnAnyMesh, testing::ValuesIn(operation_cases));

TEST_F(Subdivide, CancelledWorkLeavesModelAndUndoAsTheyWere)
{
    object_t *object = add_squares(40, 40);
    select_all_surfaces(object);
    const std::string before = scene_text();
    recording().clock_step = 1;
    recording().while_pumping = [] { run("cancel"); };
    for (const auto &[command, what] :
         {std::pair("surface_subdivide", "subdivide"), std::pair("surface_spike", "spike"),
          std::pair("insert_vertex", "insert vertex")}) {
        run(command);
        EXPECT_EQ(last_message(), std::string(what) + " - cancelled");
        EXPECT_EQ(last_undo(), "selection");
        EXPECT_EQ(scene_text(), before);
    }
}

} // namespace
