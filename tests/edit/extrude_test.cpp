// Extrusion: walls on the outer edges of the selected region, caps, and what goes.

#include "edit/extrude.h"

#include "base/prefs.h"
#include "edit/document/selection_internal.h"
#include "model/each.h"
#include "model/matrix.h"
#include "model/vector.h"
#include "model/world.h"
#include "tests/support/mesh_test.h"
#include "tests/support/random_mesh.h"

#include <cmath>
#include <numeric>

namespace {

class Extrude : public SceneTest {};

void extrude(float x, float y, float z) { run("extrude", x, y, z); }

struct extrusion_case {
    const char *name;
    int squares; // in a row, all selected
    int steps;
    bool flip, cap, remove;
    int vertices, surfaces;
};
// clang-format off
const extrusion_case extrusion_cases[] = {
    //                squares steps flip   cap    remove  v   s
    {"one_step",           1, 1, false, false, false,   8,  5},
    {"three_steps",        1, 3, false, false, false,  16, 13},
    {"no_shared_wall",     2, 1, false, false, false,  12,  8},
    {"cap",                2, 1, false, true,  false,  12, 10},
    {"cap_after_steps",    2, 2, false, true,  false,  18, 16},
    {"original_goes",      2, 1, false, true,  true,   12,  8},
    {"flipped",            1, 1, true,  true,  true,    8,  5},
    {"steps_below_one",    1, 0, false, true,  false,   8,  6},
};
// clang-format on
void PrintTo(const extrusion_case &c, std::ostream *out) { *out << c.name; }
class ExtrudeRow : public SceneTest, public testing::WithParamInterface<extrusion_case> {};

TEST_P(ExtrudeRow, MakesWallsOnOuterEdgesOnly)
{
    const extrusion_case &c = GetParam();
    prefs.extrude_num = c.steps;
    prefs.extrude_flip_cap = c.flip ? 1 : 0;
    prefs.extrude_cap_end = c.cap ? 1 : 0;
    prefs.extrude_delete_original = c.remove ? 1 : 0;
    object_t *object = add_squares(c.squares, 1);
    select_all_surfaces(object);
    extrude(0, 0, 2);

    EXPECT_EQ(object->num_vertices, c.vertices);
    EXPECT_EQ(object->num_surfaces, c.surfaces);
    EXPECT_EQ(last_undo(), "extrude");
    EXPECT_TRUE(recording().boxes.empty());
    if (c.cap) { // the box is closed but for the bottom, which the original closes
        const double sign = c.flip ? -1 : 1;
        EXPECT_NEAR(volume(object), sign * 2 * c.squares, 1e-6);
    }
    expect_sound(object);
}
INSTANTIATE_TEST_SUITE_P(Rows, ExtrudeRow, testing::ValuesIn(extrusion_cases));

TEST_F(Extrude, WallsAreListedInTheOrderOfTheEdgesAndCarryTheSurfacesProperties)
{
    prefs.extrude_cap_end = 0;
    object_t *object = add_squares(1, 1);
    surface_set_col(object_get_surface_at(object, 0), 7);
    prefs.extrude_flip_cap = 0;
    select_all_surfaces(object);
    extrude(0, 0, 1);
    // The square is 0 1 3 2; the new vertices come in the order of its corners.
    EXPECT_EQ(faces_of(object),
              (faces_t{{0, 1, 3, 2}, {0, 1, 5, 4}, {1, 3, 6, 5}, {3, 2, 7, 6}, {2, 0, 4, 7}}));
    for (const surface_t *surface : each<surface_t>(object->surfaces))
        EXPECT_EQ(surface->material, 7);
    EXPECT_EQ(object_get_surface_at(object, 1)->normal, (point3_t{0, -1, 0}));

    run("undo");
    object = item_of<object_t>(vesk_get_world()->children);
    prefs.extrude_flip_cap = 1;
    select_all_surfaces(object);
    extrude(0, 0, 1);
    EXPECT_EQ(faces_of(object).at(1), (std::vector<int>{0, 4, 5, 1}));
    for (const svertex *reference : each<svertex>(object_get_surface_at(object, 1)->refs))
        EXPECT_EQ(reference->u, 0);
}

TEST_F(Extrude, CapIsTheOutlineOfTheLastStepWithTheTextureCoordinates)
{
    prefs.extrude_num = 3;
    prefs.extrude_flip_cap = 0;
    object_t *object = add_squares(1, 1);
    select_all_surfaces(object);
    extrude(0.1f, 0.2f, 0.7f); // thirds that are not exact
    EXPECT_EQ(object->num_vertices, 16) << "the cap stands on the walls";
    const surface_t *cap = object_get_surface_at(object, 13);
    ASSERT_EQ(cap->num_refs, 4);
    EXPECT_EQ(count_edges(object).once, 0);
    const auto *first = item_of<svertex>(cap->refs->next);
    EXPECT_EQ(first->u, 1);
    EXPECT_EQ(first->v, 0);
}

TEST_F(Extrude, ExistingVerticesAreUsed)
{
    prefs.extrude_cap_end = 0;
    object_t *object = add_mesh({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 1}},
                                {{0, 1, 2, 3}});
    select_all_surfaces(object);
    extrude(0, 0, 1);
    EXPECT_EQ(object->num_vertices, 9);
    EXPECT_EQ(faces_of(object).at(1), (std::vector<int>{0, 4, 6, 1})) << "the first one there";
}

TEST_F(Extrude, WithoutAnOffsetTheQuadsAreDegenerate)
{
    object_t *object = add_squares(1, 1);
    select_all_surfaces(object);
    extrude(0, 0, 0);
    EXPECT_EQ(object->num_vertices, 4);
    EXPECT_EQ(object->num_surfaces, 6);
    EXPECT_EQ(faces_of(object).at(1), (std::vector<int>{0, 0, 1, 1}));
}

TEST_F(Extrude, InnerVerticesOfARemovedRegionGo)
{
    prefs.extrude_delete_original = 1;
    object_t *object = add_squares(3, 3);
    select_all_surfaces(object);
    extrude(0, 0, 1);
    EXPECT_EQ(object->num_vertices, 12 + 16); // the rim below, everything above
    EXPECT_EQ(object->num_surfaces, 12 + 9);
    EXPECT_EQ(count_edges(object).once, 12);
}

TEST_F(Extrude, OpenLinesHaveNoWallOnTheClosingEdge)
{
    prefs.extrude_cap_end = 0;
    object_t *line = add_mesh({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}}, {{0, 1, 2}}, SURFACE_LINE);
    select_all_surfaces(line);
    extrude(0, 0, 1);
    EXPECT_EQ(line->num_surfaces, 3);
    EXPECT_EQ(object_get_surface_at(line, 1)->type, SURFACE_POLYGON);
}

TEST_F(Extrude, RefusalsChangeNothing)
{
    extrude(1, 0, 0);
    EXPECT_EQ(last_message(), "extrude - nothing selected");
    EXPECT_EQ(last_undo(), "");
    const point3_t up = {0, 0, 1};
    EXPECT_EQ(extrude_selected_diff(&up), 0);
    ASSERT_EQ(recording().boxes.size(), 1u);
    EXPECT_EQ(recording().boxes[0],
              "Extrude: no surfaces selected - you shouldn't see this dialog -report to Dovan");

    object_t *cube = add_cube("cube");
    prefs.extrude_delete_original = 1;
    const std::string before = scene_text();
    select_all_surfaces(cube);
    const std::string undo = last_undo();
    extrude(1, 0, 0);
    EXPECT_EQ(recording().boxes.back(), "Extrude failed: There are no external surface edges.");
    EXPECT_EQ(scene_text(), before);
    EXPECT_EQ(last_undo(), undo); // no record of nothing
}

TEST_F(Extrude, ObjectsAreExtrudedEachForItself)
{
    object_t *one = add_squares(1, 1);
    object_t *two = add_squares(2, 1);
    run("set_select_mode", "surface");
    run("select_all");
    const point3_t from = {1, 1, 1}, to = {1, 1, 3};
    EXPECT_EQ(extrude_selected(&from, &to), 1);
    EXPECT_EQ(one->num_surfaces, 6);
    EXPECT_EQ(two->num_surfaces, 10);
    EXPECT_EQ(object_get_vertex_at(one, 4)->position.z, 2);
    EXPECT_EQ(last_message(), "extruding...");
}

TEST_F(Extrude, CancelledWorkChangesNothing)
{
    object_t *object = add_squares(40, 40);
    select_all_surfaces(object);
    const std::string before = scene_text();
    recording().clock_step = 1;
    recording().while_pumping = [] { run("cancel"); };
    extrude(0, 0, 1);
    EXPECT_EQ(last_message(), "extrude - cancelled");
    EXPECT_EQ(scene_text(), before);
}

// ---- one surface ----

TEST_F(Extrude, OneSurfaceGoesAgainstTheOffset)
{
    object_t *object = add_squares(1, 1);
    const point3_t offset = {0, 0, 2};
    EXPECT_EQ(extrude_surface(object_get_surface_at(object, 0), &offset, 2, nullptr), object);
    EXPECT_EQ(object->num_vertices, 12);
    EXPECT_EQ(object->num_surfaces, 1 + 8 + 1);
    EXPECT_EQ(object_get_vertex_at(object, 4)->position.z, -1);
    EXPECT_EQ(object_get_vertex_at(object, 8)->position.z, -2);
    EXPECT_EQ(faces_of(object).at(1), (std::vector<int>{0, 4, 5, 1}));
    EXPECT_EQ(faces_of(object).at(5), (std::vector<int>{4, 8, 9, 5}));
    EXPECT_EQ(faces_of(object).at(9), (std::vector<int>{8, 9, 10, 11}));
    expect_sound(object);
}

TEST_F(Extrude, OneLineLeavesItsWallsOnly)
{
    object_t *line = add_mesh({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}}, {{0, 1, 2}}, SURFACE_LINE);
    const point3_t offset = {0, 0, 1};
    extrude_surface(object_get_surface_at(line, 0), &offset, 3, nullptr);
    EXPECT_EQ(line->num_surfaces, 6);
    for (const surface_t *surface : each<surface_t>(line->surfaces))
        EXPECT_EQ(surface->type, SURFACE_POLYGON);
    expect_sound(line);
}

TEST_F(Extrude, EveryStepIsTurnedByTheSameAngles)
{
    object_t *object = add_squares(1, 1);
    const point3_t offset = {0, 0, 0}, quarter = {0, 0, 90};
    extrude_surface(object_get_surface_at(object, 0), &offset, 2, &quarter);
    const point3_t first = object_get_vertex_at(object, 5)->position;
    EXPECT_NEAR(std::fabs(first.y), 1, 1e-6); // of the corner at 1 0 0
    EXPECT_NEAR(first.x, 0, 1e-6);
    EXPECT_EQ(object_get_vertex_at(object, 9)->position, first);
}

TEST_F(Extrude, MovedCopiesUseWhatStandsThere)
{
    object_t *object = add_squares(2, 1);
    const point3_t right = {1, 0, 0};
    surface_t *copy = surface_clone_translate(object, object_get_surface_at(object, 0), &right, 1);
    object_add_surface(object, copy);
    EXPECT_EQ(object->num_vertices, 6);
    EXPECT_EQ(faces_of(object).at(2), (std::vector<int>{4, 5, 2, 1}));
    EXPECT_EQ(object_add_new_vertex_reuse(object, 2, 1, 0), object_get_vertex_at(object, 5));
    const vertex *added = object_add_new_vertex_reuse(object, 2, 1, 5);
    EXPECT_EQ(added, object_get_vertex_at(object, 6));
}

// ---- along a path ----

class ExtrudePath : public SceneTest {
protected:
    static void define(const std::vector<point3_t> &points)
    {
        std::vector<int> corners(points.size());
        std::iota(corners.begin(), corners.end(), 0);
        object_t *path = add_mesh(points, {corners}, SURFACE_LINE);
        run("set_select_mode", "object");
        run("clear_selection");
        select_object(path);
        run("define_extrude_path");
        EXPECT_EQ(last_message(), "Path object defined OK");
    }
    static object_t *add_ready_square()
    {
        object_t *square = add_squares(1, 1);
        select_all_surfaces(square);
        return square;
    }
};

TEST_F(ExtrudePath, StraightPathsMakeABox)
{
    prefs.extrude_flip_cap = 0;
    prefs.extrude_delete_original = 0;
    define({{5, 5, 5}, {5, 5, 6}, {5, 5, 6}, {5, 5, 8}});
    object_t *square = add_ready_square();
    run("extrude_along_path");
    EXPECT_EQ(square->num_vertices, 12);
    EXPECT_EQ(square->num_surfaces, 1 + 8 + 1);
    EXPECT_NEAR(volume(square), 3, 1e-6);
    EXPECT_EQ(last_undo(), "extrude along path");
    EXPECT_EQ(last_message(), "extrude along path - 9 surfaces");
    expect_sound(square);
}

TEST_F(ExtrudePath, CopiesStandOnTheBisectors)
{
    prefs.extrude_cap_end = 0;
    define({{0, 0, 0}, {0, 0, 4}, {4, 0, 4}});
    object_t *square = add_ready_square();
    run("extrude_along_path");
    // At the bend turned by 45 degrees about y, at the end by 90. The new vertices are those of the
    // edge from 0 0 0 to 1 0 0: first both levels of this edge.
    const float h = std::sqrt(0.5f);
    const std::vector<point3_t> points = points_of(square);
    EXPECT_EQ(points.at(4), (point3_t{0, 0, 4}));
    EXPECT_NEAR(points.at(5).x, h, 1e-6);
    EXPECT_NEAR(points.at(5).z, 4 - h, 1e-6);
    EXPECT_NEAR(points.at(6).x, 4, 1e-6);
    EXPECT_NEAR(points.at(7).x, 4, 1e-6);
    EXPECT_NEAR(points.at(7).z, 3, 1e-6);
}

TEST_F(ExtrudePath, PathsMayTurnStraightBack)
{
    define({{0, 0, 0}, {0, 0, 4}, {0, 0, 1}});
    object_t *square = add_ready_square();
    run("extrude_along_path");
    for (const point3_t &p : points_of(square))
        EXPECT_TRUE(std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z));
    expect_sound(square);
}

TEST_F(ExtrudePath, OnlyALivingLineIsAPath)
{
    object_t *square = add_ready_square();
    run("extrude_along_path");
    EXPECT_EQ(last_message(), "Define path object first");
    run("define_extrude_path");
    EXPECT_EQ(recording().boxes.back(), "Define path object:\nYou need to select a single line "
                                        "object for the path");
    run("set_select_mode", "object");
    run("clear_selection");
    select_object(square);
    run("define_extrude_path");
    EXPECT_EQ(recording().boxes.back(), "Define path object:\nThe path object needs to be one "
                                        "containing a single surface which is a line");
    define({{0, 0, 0}, {0, 0, 4}});
    run("clear_selection");
    run("select_all");
    run("extrude_along_path");
    EXPECT_EQ(last_message(), "extrude along path - nothing selected");
    run("clear_selection");
    select_object(item_of<object_t>(vesk_get_world()->children->next));
    run("delete");
    select_all_surfaces(square);
    run("extrude_along_path");
    EXPECT_EQ(last_message(), "Define path object first");
    EXPECT_EQ(square->num_surfaces, 1);
}

TEST_F(ExtrudePath, AClosedShellHasNoOutlineToCarry)
{
    object_t *cube = add_cube("cube");
    define({{0, 0, 0}, {0, 0, 4}});
    select_all_surfaces(cube);
    const std::string before = scene_text();
    const std::string undo = last_undo();
    run("extrude_along_path");
    EXPECT_EQ(recording().boxes.back(), "Extrude failed: There are no external surface edges.");
    EXPECT_EQ(scene_text(), before);
    EXPECT_EQ(last_undo(), undo);
}

// ---- any mesh ----

TEST_F(Extrude, RegionsOfShellsStayClosedAndUndoable)
{
    for (std::uint32_t seed = 0; seed < 20; ++seed) {
        random_source random(seed);
        object_t *shell = add_random_shell(random, 4);
        std::vector<int> some;
        for (int i = 0; i < shell->num_surfaces; ++i) {
            if (random.below(3) == 0)
                some.push_back(i);
        }
        prefs.extrude_num = 1 + random.below(3);
        prefs.extrude_delete_original = 1;
        prefs.extrude_flip_cap = 0;
        const std::string before = scene_text();
        select_surfaces_at(shell, some);
        extrude(0.013f, 0.27f, 0.331f);
        const edge_counts edges = count_edges(shell);
        EXPECT_EQ(edges.once, 0) << seed;
        expect_sound(shell);
        run("undo");
        EXPECT_EQ(scene_text(), before) << seed;
        run("clear_all");
    }
}

TEST_F(Extrude, SoupsSurvive)
{
    for (std::uint32_t seed = 0; seed < 20; ++seed) {
        random_source random(seed);
        object_t *soup = add_random_soup(random, 60, 50);
        prefs.extrude_delete_original = random.below(2);
        run("set_select_mode", "surface");
        run("select_all");
        extrude(1, 0, 0); // by the lattice: everything meets something
        expect_sound(soup);
        run("clear_all");
    }
}

// ---- for the interface: the new surfaces are selected, the body stays whole ----

struct body_case {
    const char *name;
    const char *body; // what is extruded
    float way;        // along the normal
    double volume;
    int surfaces;
};
// clang-format off
const body_case body_cases[] = {
    {"cube_out",  "cube",  1,    2,   10},
    {"cube_in",   "cube",  -0.5, 0.5, 10},
    {"sheet_out", "sheet", 2,    2,   6},
    {"sheet_in",  "sheet", -2,   2,   6},
};
// clang-format on
void PrintTo(const body_case &c, std::ostream *out) { *out << c.name; }
class ExtrudeBody : public SceneTest, public testing::WithParamInterface<body_case> {};

TEST_P(ExtrudeBody, FacesOutwardsWithoutInnerFacesAndTheEndIsSelected)
{
    const body_case &c = GetParam();
    const bool cube = c.body == std::string("cube");
    object_t *object = cube ? add_cube("cube") : add_squares(1, 1);
    int top = 0;
    while (cube && object_get_surface_at(object, top)->normal.z < 0.5f)
        ++top;
    select_surfaces_at(object, {top});
    run("extrude_normal", 1, c.way);

    EXPECT_EQ(object->num_surfaces, c.surfaces);
    EXPECT_EQ(count_edges(object).twice, count_edges(object).all());
    EXPECT_NEAR(volume(object), c.volume, 1e-6);
    ASSERT_EQ(selection().num_surfaces, 1);
    const auto *end = item_of<surface_t>(selection().surfaces);
    EXPECT_NEAR(item_of<svertex>(end->refs)->vertex->position.z, (cube ? 0.5f : 0) + c.way, 1e-6f);
    EXPECT_EQ(last_undo(), "extrude");
    expect_sound(object);
}
INSTANTIATE_TEST_SUITE_P(Bodies, ExtrudeBody, testing::ValuesIn(body_cases));

TEST_F(Extrude, AutomaticallyPartOfASheetIsRaisedAndStaysOneSheet)
{
    object_t *object = add_squares(3, 3);
    select_surfaces_at(object, {4}); // the middle
    run("extrude_select", 1, 0.0f, 0.0f, 1.0f);
    EXPECT_EQ(object->num_surfaces, 8 + 4 + 1);
    EXPECT_EQ(count_edges(object).once, 12);
    EXPECT_EQ(count_edges(object).more, 0);
    EXPECT_DOUBLE_EQ(area_xy(object), 9) << "walls stand, all else faces up";
}

TEST_F(Extrude, AutomaticallyLinesBecomeWalls)
{
    object_t *object = add_mesh({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}, {{0, 1, 2}}, SURFACE_LINE);
    select_all_surfaces(object);
    run("extrude_select", 1, 0.0f, 0.0f, 1.0f);
    EXPECT_EQ(object->num_surfaces, 2);
    EXPECT_EQ(selected_surfaces_of(object), (std::vector<int>{0, 1}));
}

TEST_F(Extrude, ARefusalOpensNoUndo)
{
    object_t *cube = add_cube("cube");
    select_all_surfaces(cube);
    const std::string before = scene_text();
    for (const char *command : {"extrude", "extrude_select"}) {
        const std::string undo = last_undo();
        std::vector<std::string> words = {command, "0", "0", "1"};
        if (command == std::string("extrude_select"))
            words.insert(words.begin() + 1, "1");
        run_words(words);
        EXPECT_EQ(last_undo(), undo);
        EXPECT_EQ(selection().num_surfaces, 6);
    }
    run("extrude_normal", 1, 1.0f);
    EXPECT_EQ(last_message(), "extrude - the surfaces face no way together");
    EXPECT_EQ(scene_text(), before);
}

} // namespace
