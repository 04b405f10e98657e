#include "edit/check/model_check.h"
#include "edit/document/selection_internal.h"
#include "model/each.h"
#include "model/world.h"
#include "model/world_check.h"
#include "tests/edit/mesh_corpus.h"
#include "tests/support/mesh_test.h"
#include "tests/support/random_mesh.h"

#include <algorithm>
#include <cmath>

namespace {

std::vector<object_t *> objects()
{
    std::vector<object_t *> all;
    for (object_t *object : each<object_t>(vesk_get_world()->children))
        all.push_back(object);
    return all;
}

class Slice : public SceneTest {
protected:
    void TearDown() override
    {
        EXPECT_TRUE(world_check(vesk_get_world()).empty());
        SceneTest::TearDown();
    }
};

// A prism over an outline in the plane z = 0, one high, facing outwards.
object_t *add_prism(const std::vector<point3_t> &outline)
{
    const int n = static_cast<int>(outline.size());
    std::vector<point3_t> points = outline;
    for (const point3_t &p : outline)
        points.push_back({p.x, p.y, p.z + 1});
    faces_t faces(2);
    for (int i = 0; i < n; ++i) {
        faces[0].push_back(n - 1 - i);
        faces[1].push_back(n + i);
        faces.push_back({i, (i + 1) % n, n + (i + 1) % n, n + i});
    }
    return add_mesh(points, faces);
}

// Three teeth on a bar.
object_t *add_comb()
{
    return add_prism({{0, 0, 0},
                      {5, 0, 0},
                      {5, 2, 0},
                      {4, 2, 0},
                      {4, 1, 0},
                      {3, 1, 0},
                      {3, 2, 0},
                      {2, 2, 0},
                      {2, 1, 0},
                      {1, 1, 0},
                      {1, 2, 0},
                      {0, 2, 0}});
}

struct keep_case {
    const char *name, *keep;
    int cap;
    float y;                     // of the plane across the comb
    std::vector<double> volumes; // of each object that is left
    int surfaces;                // in all
    bool closed;
};
// clang-format off
const keep_case keep_cases[] = {
    {"both",            "both",  0, 1.5f, {8},        26, true},
    {"two_bodies",      "both",  1, 1.5f, {6.5, 1.5}, 14 + 18, true},
    {"front_teeth",     "front", 1, 1.5f, {1.5},      3 * 6, true},
    {"back",            "back",  1, 1.5f, {6.5},      14, true},
    {"open",            "back",  0, 1.5f, {-1},       11, false},
    {"along_the_bar",   "back",  1, 1.0f, {5},        10, true},
    {"teeth_alone",     "front", 1, 1.0f, {3},        18, true},
    {"everything",      "back",  1, 3.0f, {8},        14, true},
};
// clang-format on
void PrintTo(const keep_case &c, std::ostream *out) { *out << c.name; }
class SliceKeeps : public Slice, public testing::WithParamInterface<keep_case> {};

TEST_P(SliceKeeps, WhatTheWordSays)
{
    const keep_case &c = GetParam();
    select_object(add_comb());
    const std::string before = scene_text();
    run("slice", 0, c.y, 0, 0, 2, 0, c.keep, c.cap);
    int surfaces = 0;
    const auto left = objects();
    ASSERT_EQ(left.size(), c.volumes.size());
    for (std::size_t i = 0; i < left.size(); ++i) {
        surfaces += left[i]->num_surfaces;
        expect_sound(left[i]);
        if (c.volumes[i] >= 0) {
            EXPECT_NEAR(volume(left[i]), c.volumes[i], 1e-5);
        }
        if (c.closed) {
            EXPECT_EQ(object_find_problems(left[i]).problems.size(), 0u);
        }
    }
    EXPECT_EQ(surfaces, c.surfaces);
    if (last_undo().empty()) {
        EXPECT_EQ(scene_text(), before);
        return;
    }
    EXPECT_EQ(last_undo(), "slice");
    const std::string after = scene_text();
    run("undo");
    EXPECT_EQ(scene_text(), before);
    run("redo");
    EXPECT_EQ(scene_text(), after);
}
INSTANTIATE_TEST_SUITE_P(Words, SliceKeeps, testing::ValuesIn(keep_cases));

// A tube cut along its axis and across it: caps with a hole.
TEST_F(Slice, CapsOfATubeHaveAHole)
{
    std::vector<point3_t> points;
    faces_t faces;
    const int n = 12;
    for (int level = 0; level < 2; ++level) {
        for (const float r : {2.0f, 1.0f}) {
            for (int i = 0; i < n; ++i) {
                const double angle = 2 * 3.14159265358979 * i / n;
                points.push_back({r * static_cast<float>(std::cos(angle)),
                                  r * static_cast<float>(std::sin(angle)),
                                  static_cast<float>(level)});
            }
        }
    }
    for (int i = 0; i < n; ++i) {
        const int j = (i + 1) % n;
        faces.push_back({i, j, 2 * n + j, 2 * n + i});                 // outside
        faces.push_back({n + j, n + i, 3 * n + i, 3 * n + j});         // inside
        faces.push_back({j, i, n + i, n + j});                         // below
        faces.push_back({2 * n + i, 2 * n + j, 3 * n + j, 3 * n + i}); // above
    }
    object_t *tube = add_mesh(points, faces);
    const double whole = volume(tube);
    select_object(tube);
    run("slice", 0, 0, 0.25f, 0, 0, 1, "back", 1);
    EXPECT_NEAR(volume(tube), whole / 4, 1e-5);
    EXPECT_EQ(tube->num_surfaces, 3 * n + 1);
    EXPECT_EQ(object_find_problems(tube).problems.size(), 0u);
    run("slice", 0, 0.1f, 0, 0.1f, 1, 0.2f, "both", 1);
    ASSERT_EQ(objects().size(), 2u);
    EXPECT_NEAR(volume(objects()[0]) + volume(objects()[1]), whole / 4, 1e-5);
    for (object_t *object : objects())
        EXPECT_EQ(object_find_problems(object).total(model_problem::open_edge), 0);
}

TEST_F(Slice, OfSurfacesGivesNeighboursTheNewVertices)
{
    object_t *squares = add_squares(3, 3);
    select_surfaces_at(squares, {4});
    run("slice", 1.5f, 0, 0, 1, 0, 0, "both", 0);
    EXPECT_EQ(squares->num_surfaces, 10);
    EXPECT_EQ(squares->num_vertices, 18);
    EXPECT_EQ(count_edges(squares).once, 12);
    EXPECT_EQ(object_find_problems(squares).total(model_problem::t_vertex), 0);
    EXPECT_EQ(selected_surfaces_of(squares), (std::vector<int>{8, 9}));
    // Texture coordinates are the position's x and y.
    for (const surface_t *surface : each<surface_t>(squares->surfaces)) {
        for (const svertex *corner : each<svertex>(surface->refs)) {
            EXPECT_FLOAT_EQ(corner->u, corner->vertex->position.x);
            EXPECT_FLOAT_EQ(corner->v, corner->vertex->position.y);
        }
    }
}

TEST_F(Slice, OfNothingSaysSo)
{
    add_cube("a");
    run("slice", 0, 0, 0, 1, 0, 0, "both", 0);
    EXPECT_EQ(last_message(), "slice - nothing selected");
    run("select_all");
    run("slice", 0, 0, 0, 0, 0, 0, "both", 0);
    EXPECT_EQ(last_message(), "slice - the plane has no normal");
    run("slice", 0, 0, 0, 1, 0, 0, "left", 0);
    EXPECT_EQ(last_message(), "slice - keep both, front or back, not 'left'");
    run("slice", 5, 0, 0, 1, 0, 0, "both", 1);
    EXPECT_EQ(last_message(), "slice - the plane cuts nothing");
    EXPECT_EQ(last_undo(), "");
}

TEST_F(Slice, TakesAwayWhatLiesOnTheOtherSide)
{
    object_t *a = add_cube("a");
    select_object(a);
    run("slice", 5, 0, 0, 1, 0, 0, "front", 1);
    EXPECT_TRUE(objects().empty());
    run("undo");
    EXPECT_EQ(objects().size(), 1u);
}

// Over all kinds of meshes: sound, exactly undone, closed ones stay closed, the picture in place.
TEST_F(Slice, KeepsWhatHoldsOverTheCorpus)
{
    for (const corpus_mesh &mesh : mesh_corpus()) {
        for (const char *keep : {"both", "front", "back"}) {
            for (const int cap : {0, 1}) {
                SCOPED_TRACE(std::string(mesh.name) + " " + keep + " " + std::to_string(cap));
                object_t *object = mesh.add();
                run("set_select_mode", "object");
                select_object(object);
                point3_t low = points_of(object).front(), high = low;
                for (const point3_t &p : points_of(object)) {
                    low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
                    high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
                }
                run_and_expect_exact_undo({"slice", std::to_string((low.x + high.x) / 2),
                                           std::to_string((low.y + high.y) / 2),
                                           std::to_string((low.z + high.z) / 2), "1", "0.3", "0.1",
                                           keep, std::to_string(cap)});
                for (object_t *left : objects()) {
                    if (mesh.is(MESH_CLOSED) && (cap == 1 || std::string(keep) == "both"))
                        expect_closed(left);
                    if (!mesh.is(MESH_SEAMS) && cap == 0)
                        expect_picture_in_place(left, 1e-4);
                }
                run("clear_all");
            }
        }
    }
}

// Random planes through bumpy closed shells, some of them through vertices: nothing opens, and the
// parts make the whole.
TEST_F(Slice, OfClosedShellsLeavesThemClosed)
{
    for (std::uint32_t seed = 1; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        random_source random(seed);
        object_t *shell = add_random_shell(random, 5);
        select_object(shell);
        run("surface_triangulate");
        const faces_t faces = faces_of(shell);
        if (std::any_of(faces.begin(), faces.end(), [](const auto &f) { return f.size() > 3; })) {
            run("clear_all"); // bent polygons have no volume to speak of
            continue;
        }
        const double whole = volume(shell);
        const auto points = points_of(shell);
        const point3_t at = points[random.below(static_cast<int>(points.size()))];
        select_object(shell);
        run("slice", at.x, at.y, at.z, random.between(-1, 1), random.between(-1, 1),
            seed % 3 == 0 ? 0 : random.between(-1, 1), "both", seed % 2 == 0 ? 1 : 0);
        double sum = 0;
        for (object_t *object : objects()) {
            const model_findings found = object_find_problems(object);
            EXPECT_EQ(found.total(model_problem::open_edge), 0);
            EXPECT_EQ(found.total(model_problem::flipped), 0);
            sum += volume(object);
        }
        EXPECT_NEAR(sum, whole, std::fabs(whole) * 1e-5);
        run("clear_all");
    }
}

} // namespace
