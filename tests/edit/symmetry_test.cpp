#include "base/prefs.h"
#include "edit/document/edge_selection.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_internal.h"
#include "edit/drag_transform.h"
#include "edit/soft_selection.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/vec3d.h"
#include "model/world.h"
#include "model/world_check.h"
#include "tests/edit/mesh_corpus.h"
#include "tests/support/mesh_test.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <tuple>

namespace {

class Symmetry : public SceneTest {
protected:
    void TearDown() override
    {
        EXPECT_TRUE(world_check(vesk_get_world()).empty());
        SceneTest::TearDown();
    }
};

// n x n x n quads on the sides of a cube from -1 to 1.
object_t *add_block(int n)
{
    std::vector<point3_t> points;
    faces_t faces;
    const auto place = [&](const point3_t &p) {
        const auto at = std::find_if(points.begin(), points.end(), [&](const point3_t &q) {
            return length(between(p, q)) < 1e-6;
        });
        if (at != points.end())
            return static_cast<int>(at - points.begin());
        points.push_back(p);
        return static_cast<int>(points.size()) - 1;
    };
    for (int axis = 0; axis < 3; ++axis) {
        for (const float side : {-1.0f, 1.0f}) {
            const auto corner = [&](int i, int j) {
                const float a = static_cast<float>(2 * i) / static_cast<float>(n) - 1;
                const float b = static_cast<float>(2 * j) / static_cast<float>(n) - 1;
                const float c[3] = {side, a, b};
                return place({c[(3 - axis) % 3], c[(4 - axis) % 3], c[(5 - axis) % 3]});
            };
            for (int i = 0; i < n; ++i) {
                for (int j = 0; j < n; ++j) {
                    std::vector<int> face = {corner(i, j), corner(i + 1, j), corner(i + 1, j + 1),
                                             corner(i, j + 1)};
                    if (side < 0)
                        std::reverse(face.begin(), face.end());
                    faces.push_back(face);
                }
            }
        }
    }
    return add_mesh(points, faces);
}

// Whether the mesh looks the same in the mirror: points and surfaces.
bool is_symmetric(const object_t *object)
{
    using triple = std::tuple<long, long, long>;
    const auto rounded = [](const point3_t &p, float sign) {
        return triple(std::lround(p.x * sign * 1e4f), std::lround(p.y * 1e4f),
                      std::lround(p.z * 1e4f));
    };
    const std::vector<point3_t> points = points_of(object);
    std::multiset<std::multiset<triple>> here, there;
    for (const std::vector<int> &face : faces_of(object)) {
        std::multiset<triple> a, b;
        for (const int v : face) {
            a.insert(rounded(points[v], 1));
            b.insert(rounded(points[v], -1));
        }
        here.insert(a);
        there.insert(b);
    }
    return here == there;
}

std::vector<int> places_where(const object_t *object, bool (*wanted)(const point3_t &))
{
    std::vector<int> places;
    const std::vector<point3_t> points = points_of(object);
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (wanted(points[i]))
            places.push_back(static_cast<int>(i));
    }
    return places;
}

// The surfaces whose corners all are where is said.
std::vector<int> surfaces_where(const object_t *object, bool (*wanted)(const point3_t &))
{
    std::vector<int> places;
    const std::vector<point3_t> points = points_of(object);
    const faces_t faces = faces_of(object);
    for (std::size_t i = 0; i < faces.size(); ++i) {
        if (std::all_of(faces[i].begin(), faces[i].end(), [&](int v) { return wanted(points[v]); }))
            places.push_back(static_cast<int>(i));
    }
    return places;
}

struct both_case {
    const char *name;
    const char *mode; // of the selection: vertices, edges or surfaces of the left side
    std::vector<std::string> words;
    bool closed = true, has_record = true;
};
// clang-format off
const both_case both_cases[] = {
    {"move",          "vertex",  {"move_with_undo", "-0.3", "0.1", "0.2"}},
    {"move_plain",    "vertex",  {"move", "-0.3", "0.1", "0.2"}, true, false},
    {"move_edges",    "edge",    {"move_with_undo", "-0.3", "0.1", "0.2"}},
    {"move_surfaces", "surface", {"move_with_undo", "-0.3", "0.1", "0.2"}},
    {"move_to",       "surface", {"move_to", "-3", "0", "0"}},
    {"rotate",        "surface", {"rotate_with_undo", "30", "20", "10"}},
    {"rotate_plain",  "vertex",  {"rotate", "30", "20", "10"}, true, false},
    {"scale",         "surface", {"scale", "1", "0.5", "0.25"}},
    {"extrude",       "surface", {"extrude_select", "1", "-0.5", "0.2", "0"}},
    {"extrude_up",    "surface", {"extrude_normal", "1", "0.5"}},
    {"extrude_each",  "surface", {"extrude_each", "0.2"}},
    {"inset",         "surface", {"inset", "0.1", "-0.1", "region"}},
    {"edge_bevel",    "edge",    {"edge_bevel", "0.1", "1", "0.5"}},
    {"delete",        "surface", {"delete"}, false},
    {"dissolve",      "edge",    {"dissolve"}},
    {"slide",         "vertex",  {"slide", "0.3"}},
    {"smooth",        "vertex",  {"smooth_vertices", "0.5", "2"}},
    {"spike",         "surface", {"surface_spike"}},
    {"push",          "vertex",  {"push_normals", "0.2"}},
    {"noise",         "vertex",  {"noise", "0.1", "7"}},
    {"twist",         "surface", {"twist", "40", "x"}},
};
// clang-format on
void PrintTo(const both_case &c, std::ostream *out) { *out << c.name; }
class SymmetryMakes : public Symmetry, public testing::WithParamInterface<both_case> {};

TEST_P(SymmetryMakes, BothSidesAlike)
{
    object_t *block = add_block(4);
    ASSERT_TRUE(is_symmetric(block));
    const auto on_the_left = [](const point3_t &p) { return p.x == -1 && p.y > -0.6f; };
    run("symmetry", "x", "origin");
    if (GetParam().mode == std::string("surface")) {
        select_surfaces_at(block, surfaces_where(block, on_the_left));
    } else {
        const auto on_the_ridge = [](const point3_t &p) { return p.x == -1 && p.y == 1; };
        const bool edges = GetParam().mode == std::string("edge");
        select_vertices_at(block, edges ? places_where(block, on_the_ridge)
                                        : places_where(block, on_the_left));
        run("set_select_mode", GetParam().mode);
    }
    const int chosen = selection().num_vertices + selection().num_surfaces;
    if (GetParam().has_record)
        ASSERT_TRUE(run_and_expect_exact_undo(GetParam().words));
    else
        run_words(GetParam().words);
    EXPECT_TRUE(is_symmetric(block));
    for (const point3_t &p : points_of(block))
        EXPECT_TRUE(std::isfinite(p.x));
    if (GetParam().closed)
        expect_closed(block);
    // What is selected is on the side where one worked.
    EXPECT_GT(GetParam().closed ? chosen : 1, 0);
    if (selection().box_valid != 0) {
        EXPECT_LT(selection().box_max.x, 0);
    }
}
INSTANTIATE_TEST_SUITE_P(Commands, SymmetryMakes, testing::ValuesIn(both_cases));

TEST_F(Symmetry, WhatLiesOnThePlaneStaysOnIt)
{
    object_t *block = add_block(2);
    run("symmetry", "x", "origin");
    select_vertices_at(block, places_where(block, [](const point3_t &p) { return p.x >= 0; }));
    run("move_with_undo", 0.5f, 0.25f, 0);
    EXPECT_TRUE(is_symmetric(block));
    EXPECT_EQ(places_where(block, [](const point3_t &p) { return p.x == 0; }).size(), 8u);
    EXPECT_EQ(places_where(block, [](const point3_t &p) { return p.x == 1.5f; }).size(), 9u);
    EXPECT_EQ(places_where(block, [](const point3_t &p) { return p.x == -1.5f; }).size(), 9u);
}

TEST_F(Symmetry, LoopsAreCutOnBothSides)
{
    object_t *block = add_block(4);
    run("symmetry", "x", "origin");
    const auto along_x = [](const point3_t &p) { return p.x < -0.4f && p.y == 1 && p.z == 0; };
    const std::vector<int> ends = places_where(block, along_x);
    ASSERT_EQ(ends.size(), 2u);
    const std::string id = run("object_get_children", run("get_world"));
    ASSERT_TRUE(run_and_expect_exact_undo(
        {"loop_cut_at", id, std::to_string(ends[0]), std::to_string(ends[1]), "1", "0.4"}));
    EXPECT_EQ(block->num_surfaces, 96 + 2 * 16);
    EXPECT_TRUE(is_symmetric(block));
    expect_closed(block);
}

// ---- operations with a place of their own ----

TEST_F(Symmetry, AVertexIsInsertedOnBothSides)
{
    object_t *block = add_block(2);
    const std::string id = run("object_get_children", run("get_world"));
    run("symmetry", "x", "origin");
    const auto insert_between = [&](bool (*wanted)(const point3_t &), float share) {
        const std::vector<int> ends = places_where(block, wanted);
        ASSERT_EQ(ends.size(), 2u);
        const int before = block->num_vertices;
        ASSERT_TRUE(run_and_expect_exact_undo({"insert_vertex_at", id, std::to_string(ends[0]),
                                               std::to_string(ends[1]), std::to_string(share)}));
        EXPECT_GT(block->num_vertices, before);
        EXPECT_TRUE(is_symmetric(block));
        expect_closed(block);
    };
    insert_between([](const point3_t &p) { return p.x == 1 && p.y == 1 && p.z >= 0; }, 0.25f);
    EXPECT_EQ(block->num_vertices, 26 + 2);
    insert_between([](const point3_t &p) { return p.x == 0 && p.y == 1 && p.z >= 0; }, 0.25f);
    EXPECT_EQ(block->num_vertices, 26 + 3); // on the plane
    run("clear_all");
    object_t *cube = block = add_cube("cube");
    const std::string other = run("object_get_children", run("get_world"));
    const std::vector<int> ends =
        places_where(cube, [](const point3_t &p) { return p.y > 0 && p.z > 0; });
    ASSERT_EQ(ends.size(), 2u);
    run("insert_vertex_at", other, ends[0], ends[1], 0.25f); // across the plane
    EXPECT_EQ(cube->num_vertices, 10);
    EXPECT_TRUE(is_symmetric(cube));
    expect_closed(cube);
}

TEST_F(Symmetry, TheKnifeCutsOnBothSides)
{
    object_t *block = add_block(2);
    run("symmetry", "x", "origin");
    for (const char *line : {"0.2 1 1 0.4 0.5 1 0.9 0 1", // over two quads
                             "-1 0.3 0.45 -1 0.6 0.2",    // inside one
                             "-0.4 1 -0.7 0.7 1 -0.2"}) { // over the plane: to there
        ASSERT_TRUE(run_and_expect_exact_undo({"knife", line})) << line << last_message();
        EXPECT_TRUE(is_symmetric(block)) << line;
        expect_closed(block);
    }
    const int before = block->num_surfaces;
    run("knife", "-1 0.5 1 1 0.5 1"); // its own mirror image
    EXPECT_TRUE(is_symmetric(block));
    EXPECT_GT(block->num_surfaces, before);
}

TEST_F(Symmetry, ASliceCutsTheCounterpartsByTheMirroredPlane)
{
    const auto on_the_right = [](const point3_t &p) { return p.x >= 0 && p.z == 1; };
    for (const bool all : {false, true}) {
        run("clear_all");
        object_t *block = add_block(3);
        run("symmetry", "x", "origin");
        if (all)
            select_all_surfaces(block);
        else
            select_surfaces_at(block, surfaces_where(block, on_the_right));
        const int before = block->num_surfaces;
        ASSERT_TRUE(
            run_and_expect_exact_undo({"slice", "0.55", "0", "0", "2", "1", "0", "both", "0"}));
        EXPECT_GT(block->num_surfaces, before);
        EXPECT_TRUE(is_symmetric(block));
        expect_closed(block);
        EXPECT_GT(selection().num_surfaces, 0);
    }
}

TEST_F(Symmetry, BridgesAndSurfacesAreMadeOnBothSides)
{
    object_t *block = add_block(4);
    run("symmetry", "x", "origin");
    // Two opposite quads of the right half: a tunnel.
    const auto quads = surfaces_where(block, [](const point3_t &p) {
        return p.x >= 0.5f && p.x <= 1 && p.y >= 0 && p.y <= 0.5f && std::abs(p.z) == 1;
    });
    ASSERT_EQ(quads.size(), 2u);
    select_surfaces_at(block, quads);
    ASSERT_TRUE(run_and_expect_exact_undo({"bridge", "2"}));
    EXPECT_EQ(block->num_surfaces, 96 - 4 + 2 * 8);
    EXPECT_TRUE(is_symmetric(block));
    expect_closed(block);
    EXPECT_GT(selection().box_min.x, 0);

    run("clear_all");
    block = add_block(2);
    select_surfaces_at(block, surfaces_where(block, [](const point3_t &p) { return p.z == 1; }));
    run("delete");
    const auto right =
        places_where(block, [](const point3_t &p) { return p.z == 1 && p.x >= 0 && p.y >= 0; });
    EXPECT_EQ(right.size(), 3u);
    select_vertices_at(block, right);
    ASSERT_TRUE(run_and_expect_exact_undo({"createsurface", "0"}));
    EXPECT_EQ(block->num_surfaces, 20 + 2);
    EXPECT_TRUE(is_symmetric(block));
    // Both face the same way as their mirror images do.
    double area = 0;
    for (const surface_t *surface : each<surface_t>(block->surfaces))
        area += doubled_area_xy(surface);
    EXPECT_NEAR(std::abs(area), 8 - 2 * 1, 1e-5);
}

TEST_F(Symmetry, CountsWhatHasNoCounterpart)
{
    object_t *block = add_block(2);
    select_vertices_at(block, {0});
    run("move_with_undo", 0.1f, 0, 0);
    run("symmetry", "x", "origin");
    run("move_with_undo", 0, 1, 0);
    EXPECT_EQ(last_message(), "symmetry - 1 without a counterpart");
    run("symmetry", "off");
    run("symmetry", "w");
    EXPECT_EQ(prefs.symmetry_axis, 0);
}

TEST_F(Symmetry, GoesThroughTheObjectsCentre)
{
    object_t *block = add_block(2);
    run("set_select_mode", "tree");
    select_object(block);
    run("move", 5, 0, 0);
    run("symmetry", "x", "centre");
    select_vertices_at(block, places_where(block, [](const point3_t &p) { return p.x == 6; }));
    run("move_with_undo", 1, 0, 0);
    EXPECT_EQ(places_where(block, [](const point3_t &p) { return p.x == 3; }).size(), 9u);
    run("undo");
    EXPECT_EQ(places_where(block, [](const point3_t &p) { return p.x == 4; }).size(), 9u);
}

// ---- soft selection ----

TEST_F(Symmetry, SoftMovesFallOff)
{
    object_t *grid = add_squares(10, 10);
    run("soft_selection", 1, 3, "linear", "space");
    select_vertices_at(grid, {5 * 11 + 5});
    ASSERT_TRUE(run_and_expect_exact_undo({"move_with_undo", "0", "0", "1"}));
    for (const point3_t &p : points_of(grid)) {
        const float distance = std::hypot(p.x - 5, p.y - 5);
        EXPECT_NEAR(p.z, std::max(0.0f, 1 - distance / 3), 1e-6);
    }
    run("soft_selection", 0);
    run("move_with_undo", 0, 0, 1);
    EXPECT_NEAR(points_of(grid)[5 * 11 + 6].z, 2.0f / 3, 1e-6);
}

TEST_F(Symmetry, SoftMovesFollowTheNearestOfManyChosenOnes)
{
    object_t *grid = add_squares(40, 40);
    std::vector<int> chosen;
    for (int v = 0; v < 41 * 41; v += 37 + v % 5) // without a pattern that a tree could like
        chosen.push_back(v);
    const std::vector<point3_t> before = points_of(grid);
    run("soft_selection", 1, 4, "linear", "space");
    select_vertices_at(grid, chosen);
    run("move_with_undo", 0, 0, 1);
    const std::vector<point3_t> after = points_of(grid);
    for (std::size_t v = 0; v < before.size(); ++v) {
        double nearest = 4;
        for (const int one : chosen)
            nearest = std::min(nearest, length(between(before[v], before[one])));
        ASSERT_NEAR(after[v].z, 1 - nearest / 4, 1e-5) << v;
    }
}

TEST_F(Symmetry, SoftMovesAlongTheSurfaceLeaveWhatIsOnlyNear)
{
    // Two sheets a little apart, in one object.
    std::vector<point3_t> points;
    faces_t faces;
    for (int sheet = 0; sheet < 2; ++sheet) {
        const int first = static_cast<int>(points.size());
        for (int i = 0; i < 5; ++i) {
            for (int j = 0; j < 2; ++j)
                points.push_back({static_cast<float>(i), static_cast<float>(j), sheet * 0.1f});
        }
        for (int i = 0; i < 4; ++i)
            faces.push_back(
                {first + 2 * i, first + 2 * i + 2, first + 2 * i + 3, first + 2 * i + 1});
    }
    object_t *sheets = add_mesh(points, faces);
    run("soft_selection", 1, 2.5f, "even", "surface");
    select_vertices_at(sheets, {0});
    run("move_with_undo", 0, 0, 5);
    EXPECT_EQ(points_of(sheets)[4].z, 5);
    EXPECT_EQ(points_of(sheets)[6].z, 0);
    EXPECT_EQ(points_of(sheets)[10].z, 0.1f);
    run("soft_selection", 1, 2.5f, "even", "space");
    run("undo");
    select_vertices_at(sheets, {0});
    run("move_with_undo", 0, 0, 5);
    EXPECT_EQ(points_of(sheets)[10].z, 5.1f);
}

TEST_F(Symmetry, SoftTurnsTurnByAShareOfTheAngle)
{
    object_t *grid = add_squares(4, 1);
    run("soft_selection", 1, 4, "linear", "surface");
    select_vertices_at(grid, {0});
    run("rotate_about_with_undo", 0, 0, 90, 0, 0, 0);
    const point3_t p = points_of(grid)[2]; // two away: half the angle
    EXPECT_NEAR(p.x, std::sqrt(2.0), 1e-5);
    EXPECT_NEAR(p.y, std::sqrt(2.0), 1e-5);
}

TEST_F(Symmetry, CurvesRunFromOneToNothing)
{
    for (int curve = 0; curve < 5; ++curve) {
        EXPECT_EQ(soft_share(0, 2, curve), 1);
        EXPECT_EQ(soft_share(2, 2, curve), 0);
        EXPECT_GE(soft_share(0.5, 2, curve), soft_share(1.5, 2, curve));
    }
}

TEST_F(Symmetry, SoftAndSymmetricTogetherStaySymmetric)
{
    object_t *block = add_block(8);
    run("symmetry", "x", "origin");
    run("soft_selection", 1, 1.5f, "smooth", "space");
    select_vertices_at(block, places_where(block, [](const point3_t &p) {
                           return p.x == 0.5f && p.y == 1 && p.z == 0;
                       }));
    ASSERT_TRUE(run_and_expect_exact_undo({"move_with_undo", "0.2", "0.7", "0.1"}));
    EXPECT_TRUE(is_symmetric(block));
}

TEST_F(Symmetry, ADragOfManyVerticesKeepsUpAndGoesBackExactly)
{
    object_t *block = add_block(24);
    run("symmetry", "x", "origin");
    run("soft_selection", 1, 0.5f, "smooth", "space");
    select_vertices_at(block, places_where(block, [](const point3_t &p) { return p.x > 0.2f; }));
    const std::string before = scene_text();
    drag_transform_t drag;
    drag_change_t change;
    change.kind = drag_change_t::ROTATE;
    for (int i = 0; i < 20; ++i) {
        change.degrees = static_cast<float>(i);
        drag.step(change);
    }
    EXPECT_TRUE(is_symmetric(block));
    drag.take_back();
    EXPECT_EQ(scene_text(), before);
}

// ---- deformers ----

TEST_F(Symmetry, DeformersDoWhatTheyAreNamedFor)
{
    std::vector<point3_t> points;
    faces_t faces;
    for (int i = 0; i <= 8; ++i) { // a beam along x, 8 long
        const auto x = static_cast<float>(i);
        points.insert(points.end(), {{x, -1, 0}, {x, 1, 0}});
        if (i > 0)
            faces.push_back({2 * i - 2, 2 * i, 2 * i + 1, 2 * i - 1});
    }
    object_t *beam = add_mesh(points, faces);
    const auto anew = [&] {
        run("set_select_mode", "vertex");
        run("clear_selection");
        run("select_all");
    };
    anew();
    ASSERT_TRUE(run_and_expect_exact_undo({"taper", "0.5", "x"}));
    EXPECT_NEAR(points_of(beam)[1].y, 1, 1e-6);
    EXPECT_NEAR(points_of(beam)[17].y, 0.5, 1e-6);
    EXPECT_EQ(last_undo(), "taper");
    run("undo");
    anew();
    run("twist", 90, "x", "0,0,0");
    EXPECT_NEAR(points_of(beam)[1].y, 1, 1e-6);
    EXPECT_NEAR(points_of(beam)[17].z, 1, 1e-6);
    run("undo");
    anew();
    run("bend", 180, "z", "0,0,0"); // half a circle of radius 8 / pi
    const double radius = 8 / 3.14159265358979;
    EXPECT_NEAR(points_of(beam)[16].x, 0, 1e-5);
    EXPECT_NEAR(points_of(beam)[16].y, 2 * radius + 1, 1e-5);
    EXPECT_NEAR(points_of(beam)[17].y, 2 * radius - 1, 1e-5);
    run("undo");
    anew();
    run("inflate", 1, "4,0,5");
    for (const point3_t &p : points_of(beam))
        EXPECT_NEAR(length(to_vec3d(p) - vec3d{4, 0, 5}),
                    length(to_vec3d(points_of(beam)[0]) - vec3d{4, 0, 5}), 1e-5);
    run("undo");
    anew();
    run("noise", 0.1f, 3);
    const std::vector<point3_t> first = points_of(beam);
    run("undo");
    anew();
    run("noise", 0.1f, 3);
    EXPECT_EQ(points_of(beam), first);
    EXPECT_NE(first[0].x, 0);
    EXPECT_LE(std::abs(first[0].x), 0.1f);
}

} // namespace
