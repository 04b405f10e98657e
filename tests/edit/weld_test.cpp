// Welding, unsharing and cleaning: exactly what the plain definitions say, on any mesh.

#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "edit/mesh/vertex_use.h"
#include "edit/optimize.h"
#include "model/each.h"
#include "model/identity.h"
#include "model/object_tree.h"
#include "model/vector.h"
#include "model/world.h"
#include "tests/support/mesh_test.h"
#include "tests/support/random_mesh.h"

#include <algorithm>
#include <set>

namespace {

class Weld : public SceneTest {};

// The six sides of a cube, each with four vertices of its own.
object_t *add_loose_cube()
{
    object_t *cube = add_cube("cube");
    const std::vector<point3_t> corners = points_of(cube);
    std::vector<point3_t> points;
    faces_t faces;
    for (const std::vector<int> &face : faces_of(cube)) {
        faces.emplace_back();
        for (const int at : face) {
            faces.back().push_back(static_cast<int>(points.size()));
            points.push_back(corners[at]);
        }
    }
    object_delete(cube);
    object_t *loose = add_mesh(points, faces);
    object_set_name(loose, "loose");
    return loose;
}

TEST_F(Weld, SixLooseSidesBecomeACube)
{
    object_t *cube = add_loose_cube();
    const std::vector<surface_t *> before = elements_of<surface_t>(cube->surfaces);
    ASSERT_EQ(cube->num_vertices, 24);
    select_object(cube);
    run("optimize");
    EXPECT_EQ(cube->num_vertices, 8);
    EXPECT_EQ(elements_of<surface_t>(cube->surfaces), before) << "surfaces keep their identity";
    EXPECT_EQ(euler_characteristic(cube), 2);
    EXPECT_EQ(count_edges(cube).twice, 12);
    ASSERT_EQ(recording().boxes.size(), 1u);
    EXPECT_EQ(recording().boxes[0], "Vertex optimization finished - vertices removed = 16");
    EXPECT_EQ(last_message(), "optimize vertices done");
    EXPECT_EQ(recording().console, "16 duplicate vertices removed from object loose\n");
    EXPECT_EQ(last_undo(), "");
    expect_sound(cube);
}

TEST_F(Weld, OnlyExactlyEqualPlacesAreOne)
{
    object_t *object = add_mesh({{0, 0, 0}, {1e-7f, 0, 0}, {-0.0f, 0, 0}, {1, 0, 0}, {0, 0, 0}},
                                {{0, 1, 3}, {4, 2, 3}});
    EXPECT_EQ(object_optimize(object), 2);
    EXPECT_EQ(object->num_vertices, 3);
    EXPECT_EQ(faces_of(object), (faces_t{{0, 1, 2}, {0, 2}}));
    EXPECT_EQ(recording().console, "2 duplicate vertices removed from object \n"
                                   "1 duplicate vertex references removed from surfaces\n");
}

TEST_F(Weld, ChildrenAreWeldedEachForItself)
{
    object_t *parent = add_mesh({{0, 0, 0}, {0, 0, 0}}, {});
    object_t *child = add_mesh({{0, 0, 0}, {0, 0, 0}}, {});
    object_reparent(child, parent);
    EXPECT_EQ(object_optimize(parent), 2);
    EXPECT_EQ(parent->num_vertices, 1);
    EXPECT_EQ(child->num_vertices, 1);
}

struct repeat_case {
    const char *name;
    std::vector<int> from, to;
    int pairs;
};
// clang-format off
const repeat_case repeat_cases[] = {
    {"none",          {0, 1, 2},          {0, 1, 2}, 0},
    {"twice",         {0, 1, 0, 2},       {0, 1, 2}, 1},
    {"three_times",   {0, 1, 0, 2, 0},    {0, 1, 2}, 3},
    {"two_of_them",   {0, 1, 1, 0, 2},    {0, 1, 2}, 2},
    {"nothing_else",  {1, 1, 1, 1},       {1}, 6},
};
// clang-format on
void PrintTo(const repeat_case &c, std::ostream *out) { *out << c.name; }
class RepeatedCorners : public Weld, public testing::WithParamInterface<repeat_case> {};

TEST_P(RepeatedCorners, TheFirstOneStays)
{
    const std::vector<point3_t> points = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    object_t *one = add_mesh(points, {GetParam().from});
    EXPECT_EQ(object_optimize_surface_vertices(one), GetParam().pairs);
    EXPECT_EQ(faces_of(one), (faces_t{GetParam().to}));
    expect_sound(one);
    object_t *other = add_mesh(points, {GetParam().from});
    EXPECT_EQ(surface_optimize(object_get_surface_at(other, 0)), GetParam().pairs);
    EXPECT_EQ(faces_of(other), (faces_t{GetParam().to}));
    object_delete(other); // changed without a mark
}
INSTANTIATE_TEST_SUITE_P(Corners, RepeatedCorners, testing::ValuesIn(repeat_cases));

// ---- surfaces ----

struct clean_case {
    const char *name;
    faces_t from, to;
    int type, removed, vertices;
};
// clang-format off
const clean_case clean_cases[] = {
    {"reversed_duplicate",  {{0, 1, 2, 3}, {3, 2, 1, 0}},       {{0, 1, 2, 3}}, 0, 1, 5},
    {"three_of_them",       {{0, 1, 2}, {1, 2, 0}, {2, 1, 0}},  {{0, 1, 2}},    0, 2, 5},
    {"more_corners",        {{0, 1, 2}, {0, 1, 2, 3}},          {{0, 1, 2}, {0, 1, 2, 3}}, 0, 0, 5},
    {"repeats_within",      {{0, 0, 1, 1}, {0, 1, 2, 3}},       {{0, 0, 1, 1}}, 0, 1, 5},
    {"repeats_come_later",  {{0, 1, 2, 3}, {0, 0, 1, 1}},       {{0, 1, 2, 3}, {0, 0, 1, 1}}, 0, 0, 5},
    {"degenerate",          {{0, 1, 2}, {3}, {0, 4}},           {{0, 1, 2}},    0, 2, 3},
    {"lines_of_two_stay",   {{0, 1, 2}, {3, 4}},                {{0, 1, 2}, {3, 4}}, 2, 0, 5},
};
// clang-format on
void PrintTo(const clean_case &c, std::ostream *out) { *out << c.name; }
class CleanSurfaces : public Weld, public testing::WithParamInterface<clean_case> {};

TEST_P(CleanSurfaces, DuplicatesAndDegenerateOnesGo)
{
    const clean_case &c = GetParam();
    object_t *object =
        add_mesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}, {2, 2, 2}}, c.from, c.type);
    select_object(object);
    run("optimize_surfaces");
    EXPECT_EQ(faces_of(object), c.to);
    EXPECT_EQ(object->num_vertices, c.vertices);
    EXPECT_EQ(recording().boxes.back(),
              "Surface optimization finished.\n\nSurfaces removed :" + std::to_string(c.removed) +
                  "\nObjects (with no geometry or children) removed: 0");
    EXPECT_EQ(last_message(), "optimize surfaces done");
    EXPECT_TRUE(nothing_is_selected());
    expect_sound(object);
}
INSTANTIATE_TEST_SUITE_P(Surfaces, CleanSurfaces, testing::ValuesIn(clean_cases));

TEST_F(Weld, ObjectsLeftWithoutGeometryGoButNeverTheWorld)
{
    object_t *group = new_group();
    object_add_child(vesk_get_world(), group);
    object_t *degenerate = add_mesh({{0, 0, 0}, {1, 0, 0}}, {{0, 1}});
    object_reparent(degenerate, group);
    object_t *nested = new_group();
    object_add_child(group, nested);
    const int identity = object_identity(degenerate);
    run("select_all");
    run("optimize_surfaces");
    EXPECT_EQ(recording().console, "(1 surfaces with 1 or 2 vertices deleted from object )\n");
    EXPECT_EQ(recording().boxes.back(), "Surface optimization finished.\n\nSurfaces removed "
                                        ":1\nObjects (with no geometry or children) removed: 3");
    EXPECT_EQ(vesk_get_world()->num_children, 0);
    EXPECT_EQ(object_by_identity(identity), nullptr);
    EXPECT_EQ(object_optimize_surfaces(vesk_get_world()), 0);
    EXPECT_NE(vesk_get_world(), nullptr);
}

// ---- against the plain definitions ----

struct plain_mesh {
    std::vector<point3_t> points;
    faces_t faces;
};

int weld_by_definition(plain_mesh &mesh)
{
    std::vector<int> to(mesh.points.size());
    for (std::size_t w = 0; w < mesh.points.size(); ++w) {
        to[w] = static_cast<int>(w);
        for (std::size_t v = 0; v < w && to[w] == static_cast<int>(w); ++v) {
            if (point_equal(mesh.points[v], mesh.points[w]))
                to[w] = static_cast<int>(v);
        }
    }
    std::vector<int> number(mesh.points.size());
    plain_mesh result;
    for (std::size_t v = 0; v < mesh.points.size(); ++v) {
        number[v] = static_cast<int>(result.points.size());
        if (to[v] == static_cast<int>(v))
            result.points.push_back(mesh.points[v]);
    }
    for (const std::vector<int> &face : mesh.faces) {
        result.faces.emplace_back();
        for (const int corner : face) {
            const int at = number[to[corner]];
            std::vector<int> &kept = result.faces.back();
            if (std::find(kept.begin(), kept.end(), at) == kept.end())
                kept.push_back(at);
        }
    }
    const auto removed = mesh.points.size() - result.points.size();
    mesh = result;
    return static_cast<int>(removed);
}

TEST_F(Weld, SoupsAreWeldedAsTheDefinitionSays)
{
    for (std::uint32_t seed = 0; seed < 60; ++seed) {
        random_source random(seed);
        object_t *soup = add_random_soup(random, 20 + random.below(100), 80);
        plain_mesh plain = {points_of(soup), faces_of(soup)};
        EXPECT_EQ(object_optimize(soup), weld_by_definition(plain)) << seed;
        EXPECT_EQ(points_of(soup), plain.points) << seed;
        EXPECT_EQ(faces_of(soup), plain.faces) << seed;
        expect_sound(soup);
        run("clear_all");
    }
}

TEST_F(Weld, DuplicatesAreThoseOfTheDefinition)
{
    for (std::uint32_t seed = 0; seed < 60; ++seed) {
        random_source random(seed);
        // Few vertices: many surfaces over the same ones, many corners on the same vertex.
        object_t *soup = add_random_soup(random, 3 + random.below(6), 60);
        const std::vector<surface_t *> all = elements_of<surface_t>(soup->surfaces);
        std::vector<surface_t *> left;
        for (std::size_t t = 0; t < all.size(); ++t) {
            bool stays = true;
            for (std::size_t s = 0; s < t && stays; ++s)
                stays = surface_compare(all[s], all[t]) == 0;
            const bool small =
                all[t]->num_refs == 1 || (all[t]->num_refs == 2 && all[t]->type == 0);
            if (stays && !small)
                left.push_back(all[t]);
        }
        const int removed = static_cast<int>(all.size() - left.size());
        EXPECT_EQ(object_optimize_surfaces(soup), removed) << seed;
        if (!left.empty()) {
            EXPECT_EQ(elements_of<surface_t>(soup->surfaces), left) << seed;
            expect_sound(soup);
        }
        run("clear_all");
    }
}

// ---- unsharing ----

TEST_F(Weld, UnsharedVerticesStayWithTheFirstSurface)
{
    object_t *object = add_squares(2, 1);
    const std::string before = scene_text();
    select_vertices_at(object, {1, 0});
    run("unshare_vertices");
    EXPECT_EQ(faces_of(object), (faces_t{{0, 1, 4, 3}, {6, 2, 5, 4}}));
    EXPECT_EQ(object_get_vertex_at(object, 6)->position, (point3_t{1, 0, 0}));
    EXPECT_EQ(last_message(), "new vertices created: 1");
    EXPECT_EQ(last_undo(), "Unshare vertices");
    EXPECT_EQ(selected_vertices_of(object), (std::vector<int>{1, 0, 6}));
    const auto *moved = item_of<svertex>(object_get_surface_at(object, 1)->refs);
    EXPECT_EQ(moved->u, 1) << "texture coordinates stay with the corner";
    run("undo");
    EXPECT_EQ(scene_text(), before);
}

TEST_F(Weld, UnsharedVerticesAreClonedInTheOrderOfTheSelection)
{
    object_t *object = add_squares(2, 1); // 0 1 2 below, 3 4 5 above
    select_vertices_at(object, {4, 1});
    run("unshare_vertices");
    ASSERT_EQ(object->num_vertices, 8);
    EXPECT_EQ(points_of(object).at(6), points_of(object).at(4));
    EXPECT_EQ(points_of(object).at(7), points_of(object).at(1));
}

TEST_F(Weld, NothingToUnshareOpensNoUndo)
{
    run("unshare_vertices");
    EXPECT_EQ(last_message(), "unshare vertices - nothing selected");
    EXPECT_EQ(last_undo(), "");
}

TEST_F(Weld, UnsharedMeshesWeldBackToWhatTheyWere)
{
    for (std::uint32_t seed = 0; seed < 10; ++seed) {
        random_source random(seed);
        object_t *shell = add_random_shell(random, 3);
        const faces_t faces = faces_of(shell);
        const std::vector<point3_t> points = points_of(shell);
        run("set_select_mode", "vertex");
        run("select_all");
        run("unshare_vertices");
        EXPECT_EQ(shell->num_vertices, 4 * shell->num_surfaces);
        for (vertex *point : each<vertex>(shell->vertices)) {
            const owned_list surfaces(surfaces_of_vertex(point));
            EXPECT_EQ(list_count(surfaces.get()), 1);
        }
        expect_sound(shell);
        object_optimize(shell);
        EXPECT_EQ(faces_of(shell), faces) << seed;
        EXPECT_EQ(points_of(shell), points) << seed;
        run("clear_all");
    }
}

TEST_F(Weld, RedirectedCornersAreCounted)
{
    object_t *object = add_squares(2, 1);
    vertex *from = object_get_vertex_at(object, 1), *to = object_get_vertex_at(object, 0);
    const owned_list users(surfaces_of_object_vertex(object, from));
    EXPECT_EQ(list_count(users.get()), 2);
    EXPECT_EQ(object_replace_surfaceref(object, from, to), 2);
    EXPECT_EQ(faces_of(object), (faces_t{{0, 0, 4, 3}, {0, 2, 5, 4}}));
}

} // namespace
