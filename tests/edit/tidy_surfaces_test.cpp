// Tidying surfaces: triangles joined to quads, and sides that agree.

#include "edit/document/selection_internal.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/normals.h"
#include "tests/edit/mesh_corpus.h"

#include <algorithm>

namespace {

class TidySurfaces : public SceneTest {};

// ---- quads ----

TEST_F(TidySurfaces, ATriangulatedGridBecomesItsSquaresAgain)
{
    object_t *grid = add_squares(20, 20);
    select_all_surfaces(grid);
    run("surface_triangulate");
    ASSERT_EQ(grid->num_surfaces, 800);
    run("quads_from_triangles", 30);
    EXPECT_EQ(grid->num_surfaces, 400);
    EXPECT_EQ(last_message(), "quads from triangles - 400 surfaces");
    EXPECT_EQ(last_undo(), "quads from triangles");
    EXPECT_EQ(selected_surfaces_of(grid).size(), 400u);
    for (const surface_t *surface : each<surface_t>(grid->surfaces))
        EXPECT_EQ(doubled_area_xy(surface), 2);
    expect_oriented(grid);
    expect_picture_in_place(grid);
}

struct pair_case {
    const char *name;
    void (*spoil)(object_t *two); // triangles of the unit square, before
    const char *degrees;
    bool joined;
};
void PrintTo(const pair_case &c, std::ostream *out) { *out << c.name; }
class TrianglePair : public TidySurfaces, public testing::WithParamInterface<pair_case> {};

surface_t *second(object_t *two) { return object_get_surface_at(two, 1); }

TEST_P(TrianglePair, IsJoinedWhereItIsOneSurface)
{
    object_t *two = add_mesh({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {{0, 1, 2}, {0, 2, 3}});
    GetParam().spoil(two);
    object_mark(two, CHANGED_ALL);
    select_all_surfaces(two);
    const bool changed = run_and_expect_exact_undo({"quads_from_triangles", GetParam().degrees});
    EXPECT_EQ(changed, GetParam().joined);
    if (!changed) {
        EXPECT_EQ(last_message(), "quads from triangles - no triangles that fit together");
    }
}
// clang-format off
INSTANTIATE_TEST_SUITE_P(Pairs, TrianglePair, testing::Values(
    pair_case{"alike",          [](object_t *) {},                                              "0",  true},
    pair_case{"material",       [](object_t *two) { surface_set_col(second(two), 5); },         "90", false},
    pair_case{"shading",        [](object_t *two) { surface_set_shading(second(two), 1); },     "90", false},
    pair_case{"sides",          [](object_t *two) { surface_set_twosided(second(two), 0); },    "90", false},
    pair_case{"facing",         [](object_t *two) { surface_reverse_normal(second(two)); },     "180", false},
    pair_case{"seam",           [](object_t *two) { item_of<svertex>(second(two)->refs)->u = 0.5f; }, "90", false},
    pair_case{"fold",           [](object_t *two) { object_get_vertex_at(two, 3)->position.z = 1; },  "30", false},
    pair_case{"fold_within",    [](object_t *two) { object_get_vertex_at(two, 3)->position.z = 0.1f; }, "30", true},
    pair_case{"notched",        [](object_t *two) { object_get_vertex_at(two, 3)->position = {-1, -0.5f, 0}; }, "90", false}));
// clang-format on

// ---- sides ----

TEST_F(TidySurfaces, TurnedPolygonsOfABodyFaceOutwardsAgain)
{
    random_source random(9);
    for (const corpus_mesh &mesh : corpus_with(MESH_CLOSED)) {
        SCOPED_TRACE(mesh.name);
        run("clear_all");
        object_t *object = mesh.add();
        const double right = volume(object);
        select_random_surfaces(random, object, 0.4);
        run("surface_flip_normals");
        run("select_all");
        run("orient_outwards");
        expect_closed(object);
        EXPECT_NEAR(volume(object), right, 1e-5);
        run("surface_flip_normals");
        EXPECT_TRUE(run_and_expect_exact_undo({"orient_outwards"})) << "all inside out";
        EXPECT_FALSE(run_and_expect_exact_undo({"orient_outwards"})) << "once is enough";
    }
}

TEST_F(TidySurfaces, AnOpenCupFacesAwayFromItsMiddleAndASheetAsMostOfItDid)
{
    object_t *cup = corpus_with(MESH_CLOSED)[0].add();
    select_surfaces_at(cup, {1});
    run("removesurface");
    select_all_surfaces(cup);
    run("surface_flip_normals");
    run("orient_outwards");
    EXPECT_EQ(last_message(), "orient outwards - 5 surfaces turned");
    EXPECT_EQ(last_undo(), "orient outwards");

    object_t *sheet = add_squares(3, 3);
    select_surfaces_at(sheet, {0, 4, 8});
    run("surface_flip_normals");
    select_all_surfaces(sheet);
    run("orient_outwards");
    EXPECT_EQ(last_message(), "orient outwards - 3 surfaces turned");
    EXPECT_DOUBLE_EQ(area_xy(sheet), 9);
    EXPECT_EQ(selected_surfaces_of(sheet).size(), 9u);
}

TEST_F(TidySurfaces, ATwistedRingIsLeftAndCounted)
{
    for (const corpus_mesh &mesh : mesh_corpus()) {
        if (std::string(mesh.name) == "moebius")
            select_all_surfaces(mesh.add());
    }
    const std::string before = scene_text();
    run("orient_outwards");
    EXPECT_EQ(last_message(),
              "orient outwards - 0 surfaces turned, 1 part with only one side left as it was");
    EXPECT_TRUE(scene_text() == before);
}

TEST_F(TidySurfaces, NothingSelectedIsTold)
{
    add_squares(1, 1);
    run("set_select_mode", "surface");
    run("orient_outwards");
    EXPECT_EQ(last_message(), "orient outwards - nothing selected");
    run("quads_from_triangles", 30);
    EXPECT_EQ(last_message(), "quads from triangles - nothing selected");
    run("quads_from_triangles", -1);
    EXPECT_EQ(last_message(), "quads from triangles - give an angle from 0 to 180");
    object_t *grid = add_squares(60, 60);
    select_all_surfaces(grid);
    run("surface_triangulate");
    const std::string before = scene_text();
    for (const std::vector<std::string> &words :
         {std::vector<std::string>{"orient_outwards"}, {"quads_from_triangles", "30"}}) {
        cancel_at_look(1);
        run_words(words);
        cancel_at_look(0);
        EXPECT_NE(last_message().find("- cancelled"), std::string::npos) << last_message();
        EXPECT_TRUE(scene_text() == before);
    }
}

} // namespace
