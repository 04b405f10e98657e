// Selections made of selections: neighbours, what hangs together, the rest, what is alike, a part by
// chance.

#include "edit/document/selection_internal.h"
#include "edit/document/undo_internal.h"
#include "model/change_marks.h"
#include "model/identity.h"
#include "tests/edit/mesh_corpus.h"

#include <algorithm>

namespace {

class SelectMore : public SceneTest {};

using places_t = std::vector<int>;

TEST_F(SelectMore, SurfacesGrowOverVerticesAndShrinkAgain)
{
    object_t *grid = add_squares(5, 5);
    select_surfaces_at(grid, {12});
    run("select_grow");
    EXPECT_EQ(selected_surfaces_of(grid), (places_t{6, 7, 8, 11, 12, 13, 16, 17, 18}));
    EXPECT_EQ(last_message(), "select grow - 9 surfaces");
    EXPECT_EQ(last_undo(), "selection");
    EXPECT_EQ(undo_records().back()->kind, UNDO_SELECTION);
    run("select_shrink");
    EXPECT_EQ(selected_surfaces_of(grid), (places_t{12}));
    run("undo");
    EXPECT_EQ(selected_surfaces_of(grid).size(), 9u);
    run("select_all");
    const std::size_t records = undo_records().size();
    run("select_shrink"); // the object's end is no border
    EXPECT_EQ(selected_surfaces_of(grid).size(), 25u);
    EXPECT_EQ(undo_records().size(), records);
}

TEST_F(SelectMore, VerticesGrowAlongEdges)
{
    object_t *grid = add_squares(4, 4);
    select_vertices_at(grid, {12});
    run("select_grow");
    EXPECT_EQ(selected_vertices_of(grid), (places_t{7, 11, 12, 13, 17}));
    run("select_shrink");
    EXPECT_EQ(selected_vertices_of(grid), (places_t{12}));
    object_t *line = add_mesh({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}, {{0, 1, 2}}, SURFACE_LINE);
    select_vertices_at(line, {0});
    run("select_grow");
    EXPECT_EQ(selected_vertices_of(line), (places_t{0, 1})) << "an open line does not go round";
}

TEST_F(SelectMore, LinkedTakesTheWholePieceAndNoOther)
{
    object_t *boxes = corpus_with(MESH_CLOSED)[2].add(); // two in one object
    select_surfaces_at(boxes, {7});
    run("select_linked");
    EXPECT_EQ(selected_surfaces_of(boxes), (places_t{6, 7, 8, 9, 10, 11}));
    select_vertices_at(boxes, {0});
    run("select_linked");
    EXPECT_EQ(selected_vertices_of(boxes), (places_t{0, 1, 2, 3, 4, 5, 6, 7}));
}

TEST_F(SelectMore, InvertTakesTheRestOfEverythingVisible)
{
    object_t *a = add_squares(2, 1);
    object_t *b = add_squares(1, 1);
    object_t *hidden = add_squares(1, 1);
    hidden->visible = 0;
    object_mark(hidden, CHANGED_RECORD);
    select_surfaces_at(a, {0});
    run("select_invert");
    EXPECT_EQ(selected_surfaces_of(a), (places_t{1}));
    EXPECT_EQ(selected_surfaces_of(b), (places_t{0}));
    EXPECT_TRUE(selected_surfaces_of(hidden).empty());
    run("select_invert");
    EXPECT_EQ(selected_surfaces_of(a), (places_t{0}));
    run("clear_selection");
    run("select_invert");
    EXPECT_EQ(selection_get_num_surfaces(), 3);
    for (const char *mode : {"object", "tree"}) {
        run("set_select_mode", mode);
        run("clear_selection");
        select_object(a);
        run("select_invert");
        ASSERT_EQ(selection_get_num_objects(), 1) << mode;
        EXPECT_EQ(get_current_object(), b) << mode;
        run("undo");
        EXPECT_EQ(get_current_object(), a) << mode;
    }
}

TEST_F(SelectMore, RandomIsTheSameForASeedAndAboutThatMany)
{
    object_t *grid = add_squares(50, 40);
    run("set_select_mode", "surface");
    run("select_random", 30, 7);
    const places_t first = selected_surfaces_of(grid);
    EXPECT_NEAR(static_cast<double>(first.size()), 600, 80);
    run("clear_selection");
    run("select_random", 30, 8);
    EXPECT_NE(selected_surfaces_of(grid), first);
    run("clear_selection");
    run("select_random", 30, 7);
    EXPECT_EQ(selected_surfaces_of(grid), first);
    run("select_random", 50, 1); // of these
    const places_t half = selected_surfaces_of(grid);
    EXPECT_NEAR(static_cast<double>(half.size()), 300, 60);
    EXPECT_TRUE(std::includes(first.begin(), first.end(), half.begin(), half.end()));
    run("select_random", 100, 1);
    EXPECT_EQ(selected_surfaces_of(grid), half);
    run("select_random", 0, 1);
    EXPECT_TRUE(nothing_is_selected());
}

// ---- alike ----

struct similar_case {
    const char *name;
    places_t from;
    std::vector<std::string> words;
    places_t to;
};
void PrintTo(const similar_case &c, std::ostream *out) { *out << c.name; }

// Four squares and one long rectangle in z = 0, a square at z = 1, a slanted one, a triangle.
object_t *add_assortment()
{
    object_t *object = add_mesh({{0, 0, 0},
                                 {1, 0, 0},
                                 {2, 0, 0},
                                 {4, 0, 0},
                                 {0, 1, 0},
                                 {1, 1, 0},
                                 {2, 1, 0},
                                 {4, 1, 0},
                                 {0, 0, 1},
                                 {1, 0, 1},
                                 {1, 1, 1},
                                 {0, 1, 1},
                                 {4, 0, 1},
                                 {4, 1, 1}},
                                {{0, 1, 5, 4},   // 0
                                 {1, 2, 6, 5},   // 1
                                 {2, 3, 7, 6},   // 2: twice as long
                                 {8, 9, 10, 11}, // 3: higher
                                 {11, 10, 9, 8}, // 4: the same, facing down
                                 {3, 12, 13, 7}, // 5: upright
                                 {0, 9, 10}});   // 6
    surface_set_col(object_get_surface_at(object, 2), 4);
    surface_set_col(object_get_surface_at(object, 5), 4);
    object_mark(object, CHANGED_ALL);
    return object;
}

class Similar : public SelectMore, public testing::WithParamInterface<similar_case> {};

TEST_P(Similar, FindsWhatIsAlike)
{
    object_t *object = add_assortment();
    select_surfaces_at(object, GetParam().from);
    run_words(GetParam().words);
    EXPECT_EQ(selected_surfaces_of(object), GetParam().to) << last_message();
}
// clang-format off
INSTANTIATE_TEST_SUITE_P(Surfaces, Similar, testing::Values(
    similar_case{"material",      {2},    {"select_similar", "material", "0"},    {2, 5}},
    similar_case{"normal",        {0},    {"select_similar", "normal", "0"},      {0, 1, 2, 3}},
    similar_case{"normal_wide",   {0},    {"select_similar", "normal", "90"},     {0, 1, 2, 3, 5, 6}},
    similar_case{"area",          {0},    {"select_similar", "area", "0.01"},     {0, 1, 3, 4, 5}},
    similar_case{"area_wide",     {2},    {"select_similar", "area", "1"},        {0, 1, 2, 3, 4, 5}},
    similar_case{"length",        {2},    {"select_similar", "length", "0.01"},   {2}},
    similar_case{"corners",       {6},    {"select_similar", "corners", "0"},     {6}},
    similar_case{"corners_wide",  {6},    {"select_similar", "corners", "1"},     {0, 1, 2, 3, 4, 5, 6}},
    similar_case{"coplanar",      {0},    {"select_similar", "coplanar", "0"},    {0, 1, 2}},
    similar_case{"either_way",    {3},    {"select_similar", "coplanar", "0"},    {3, 4}},
    similar_case{"coplanar_wide", {0},    {"select_similar", "coplanar", "1"},    {0, 1, 2, 3, 4}},
    similar_case{"to_any",        {2, 6}, {"select_similar", "corners", "0"},     {0, 1, 2, 3, 4, 5, 6}},
    similar_case{"unknown",       {0},    {"select_similar", "colour", "0"},      {0}},
    similar_case{"no_tolerance",  {0},    {"select_similar", "corners", "-1"},    {0}}));
// clang-format on

TEST_F(SelectMore, VerticesAreAlikeByTheirEdgesAndPlanes)
{
    object_t *grid = add_squares(3, 3); // 16 vertices
    select_vertices_at(grid, {5});
    run("select_similar", "corners", "0");
    EXPECT_EQ(selected_vertices_of(grid), (places_t{5, 6, 9, 10}));
    run("select_similar", "coplanar", "0");
    EXPECT_EQ(selected_vertices_of(grid).size(), 16u);
    run("select_similar", "material", "0");
    EXPECT_EQ(last_message(), "select similar - normal, length, corners or coplanar");
}

TEST_F(SelectMore, EdgesFollowTheSameRules)
{
    object_t *grid = add_squares(4, 4); // 40 edges
    const auto count = [] { return run("selection_get_num_edges"); };
    run("set_select_mode", "edge");
    run_words({"edge_select", std::to_string(object_identity(grid)), "11", "12"});
    run("select_grow");
    EXPECT_EQ(count(), "7");
    EXPECT_EQ(last_message(), "select grow - 7 edges");
    run("select_shrink");
    EXPECT_EQ(count(), "1");
    run("select_invert");
    EXPECT_EQ(count(), "39");
    run("undo");
    EXPECT_EQ(count(), "1");
    run("select_similar", "length", "0");
    EXPECT_EQ(count(), "40");
    run("select_random", 0, 1);
    EXPECT_EQ(count(), "0");
    run_words({"edge_select", std::to_string(object_identity(grid)), "0", "1"});
    run("select_linked");
    EXPECT_EQ(count(), "40");
    run("select_similar", "normal", "0");
    EXPECT_EQ(last_message(), "select similar - length");
}

TEST_F(SelectMore, WithoutASelectionOrInOtherModesOnlyAWord)
{
    object_t *grid = add_squares(2, 2);
    const std::vector<std::vector<std::string>> commands = {
        {"select_grow"}, {"select_shrink"}, {"select_linked"}, {"select_similar", "normal", "1"}};
    for (const std::vector<std::string> &words : commands) {
        run("set_select_mode", "surface");
        const std::size_t records = undo_records().size();
        run_words(words);
        EXPECT_NE(last_message().find("- nothing selected"), std::string::npos) << last_message();
        EXPECT_EQ(undo_records().size(), records);
        run("set_select_mode", "object");
        select_object(grid);
        run_words(words);
        EXPECT_NE(last_message().find("choose surface, edge or vertex mode"), std::string::npos);
        run("clear_selection");
    }
}

TEST_F(SelectMore, SurvivesTheCorpusAndGrowsToWhatIsLinked)
{
    random_source random(6);
    for (const corpus_mesh &mesh : mesh_corpus()) {
        SCOPED_TRACE(mesh.name);
        for (const bool surfaces : {true, false}) {
            run("clear_all");
            object_t *object = mesh.add();
            surfaces ? select_random_surfaces(random, object, 0.1)
                     : select_random_vertices(random, object, 0.1);
            for (int i = 0; i < 60; ++i)
                run("select_grow");
            const places_t grown =
                surfaces ? selected_surfaces_of(object) : selected_vertices_of(object);
            run("select_linked");
            EXPECT_EQ(surfaces ? selected_surfaces_of(object) : selected_vertices_of(object),
                      grown);
            run("select_shrink");
            EXPECT_EQ(surfaces ? selected_surfaces_of(object) : selected_vertices_of(object),
                      grown);
        }
    }
}

} // namespace
