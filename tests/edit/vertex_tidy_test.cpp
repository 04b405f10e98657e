// Putting vertices in order: planes, circles, lines, even distances, smooth places.

#include "edit/document/selection_internal.h"
#include "edit/document/undo_internal.h"
#include "model/change_marks.h"
#include "tests/edit/mesh_corpus.h"

#include <cmath>

namespace {

class VertexTidy : public SceneTest {
protected:
    static void place(object_t *object, int v, const point3_t &to)
    {
        object_get_vertex_at(object, v)->position = to;
        object_mark(object, CHANGED_POSITIONS);
    }
};

double distance(const point3_t &a, const point3_t &b)
{
    return std::hypot(static_cast<double>(a.x) - b.x, static_cast<double>(a.y) - b.y,
                      static_cast<double>(a.z) - b.z);
}

TEST_F(VertexTidy, EachGroupIsFlattenedForItself)
{
    object_t *object = add_squares(5, 1); // the lower row is 0 to 5, the upper 6 to 11
    for (const int v : {0, 7, 4, 11})
        place(object, v, {static_cast<float>(v % 6), static_cast<float>(v / 6), 0.5f});
    select_vertices_at(object, {0, 1, 6, 7, 4, 5, 10, 11}); // the first and the last square
    EXPECT_TRUE(run_and_expect_exact_undo({"flatten"}));
    const std::vector<point3_t> at = points_of(object);
    for (const int v : {0, 1, 6, 7, 4, 5, 10, 11})
        EXPECT_NEAR(at[v].z, 0.25, 1e-6) << v;
    EXPECT_EQ(at[2], (point3_t{2, 0, 0}));
    EXPECT_EQ(last_undo(), "flatten");
    EXPECT_EQ(undo_records().back()->kind, UNDO_POSITIONS);
    EXPECT_EQ(selected_vertices_of(object).size(), 8u);
}

TEST_F(VertexTidy, AClosedChainBecomesAnEvenRing)
{
    object_t *object = add_squares(4, 4); // 5 by 5 vertices
    select_vertices_at(object, {6, 7, 8, 13, 18, 17, 16, 11});
    run("circularize");
    EXPECT_EQ(last_message(), "circularize - 8 vertices");
    const std::vector<point3_t> at = points_of(object);
    const std::vector<int> ring = {6, 7, 8, 13, 18, 17, 16, 11};
    const double radius = (4 + 4 * std::sqrt(2.0)) / 8;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        EXPECT_NEAR(distance(at[ring[i]], {2, 2, 0}), radius, 1e-5);
        EXPECT_NEAR(distance(at[ring[i]], at[ring[(i + 1) % 8]]), 2 * radius * std::sin(M_PI / 8),
                    1e-5);
    }
    EXPECT_NEAR(at[7].x, 2, 1e-5) << "as it was turned";
}

TEST_F(VertexTidy, AChainIsStraightenedThroughItsEnds)
{
    object_t *object = add_squares(4, 1);
    place(object, 1, {1, -0.5f, 1});
    place(object, 4, {4, 2, 0});
    select_vertices_at(object, {0, 1, 2, 3, 4});
    EXPECT_TRUE(run_and_expect_exact_undo({"straighten"}));
    const std::vector<point3_t> at = points_of(object);
    for (const int v : {1, 2, 3}) {
        EXPECT_NEAR(at[v].z, 0, 1e-6);
        EXPECT_NEAR(at[v].y, at[v].x / 2, 1e-6);
    }
    EXPECT_EQ(at[0], (point3_t{0, 0, 0}));
    EXPECT_EQ(at[4], (point3_t{4, 2, 0}));
    select_vertices_at(object, {0, 1, 5, 6}); // a ring
    EXPECT_FALSE(run_and_expect_exact_undo({"straighten"}));
    EXPECT_EQ(last_message(), "straighten - no chain to straighten");
}

TEST_F(VertexTidy, AChainIsSpacedAlongItsOwnWay)
{
    object_t *line =
        add_mesh({{0, 0, 0}, {0.5f, 0, 0}, {3, 0, 0}, {3, 1, 0}}, {{0, 1, 2, 3}}, SURFACE_LINE);
    select_vertices_at(line, {0, 1, 2, 3});
    run("space_evenly");
    const std::vector<point3_t> at = points_of(line);
    EXPECT_NEAR(at[1].x, 4.0 / 3, 1e-6);
    EXPECT_NEAR(at[2].x, 8.0 / 3, 1e-6);
    EXPECT_EQ(at[3], (point3_t{3, 1, 0}));
}

TEST_F(VertexTidy, SmoothingGoesTowardsTheNeighboursAndKeepsBorders)
{
    object_t *object = add_squares(4, 4);
    place(object, 12, {2, 2, 1});
    place(object, 2, {2, -1, 0}); // on the border, between 1 and 3
    run("set_select_mode", "surface");
    select_all_surfaces(object);
    EXPECT_TRUE(run_and_expect_exact_undo({"smooth_vertices", "0.5", "1"}));
    const std::vector<point3_t> at = points_of(object);
    EXPECT_NEAR(at[12].z, 0.5, 1e-6);
    EXPECT_NEAR(at[7].z, 0.125, 1e-6); // one of four neighbours is 1 high
    EXPECT_NEAR(at[2].y, -0.5, 1e-6);
    EXPECT_EQ(at[2].z, 0);
    EXPECT_EQ(at[24], (point3_t{3.75f, 3.75f, 0})) << "along the border, too";
}

TEST_F(VertexTidy, NothingThatFitsIsTold)
{
    object_t *object = add_squares(60, 60);
    for (const char *name : {"flatten", "circularize", "straighten", "space_evenly"}) {
        run("set_select_mode", "object");
        run("select_all");
        run(name);
        EXPECT_NE(last_message().find("- nothing selected"), std::string::npos) << last_message();
        select_vertices_at(object, {0, 5});
        EXPECT_FALSE(run_and_expect_exact_undo({name}));
    }
    run("smooth_vertices", "0", "1");
    EXPECT_EQ(last_message(), "smooth vertices - give a factor from 0 to 1 and 1 to 1000 steps");
    run("select_all");
    const std::string before = scene_text();
    cancel_at_look(1);
    run("smooth_vertices", "0.5", "3");
    cancel_at_look(0);
    EXPECT_EQ(last_message(), "smooth vertices - cancelled");
    EXPECT_TRUE(scene_text() == before);
}

// Random vertices of every mesh: the records stay sound and undo is exact.
TEST_F(VertexTidy, SurvivesTheCorpus)
{
    random_source random(4);
    for (const corpus_mesh &mesh : mesh_corpus()) {
        for (const char *name : {"flatten", "circularize", "straighten", "space_evenly"}) {
            for (const double share : {0.2, 0.5, 1.0}) {
                SCOPED_TRACE(std::string(mesh.name) + " " + name);
                run("clear_all");
                select_random_vertices(random, mesh.add(), share);
                run_and_expect_exact_undo({name});
            }
        }
    }
}

} // namespace
