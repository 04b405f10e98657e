#include "edit/check/model_check.h"

#include "edit/check/model_check_fix.h"
#include "edit/check/model_check_search.h"
#include "edit/document/selection_internal.h"
#include "edit/mesh/edge_table.h"
#include "fileio/vesk_writer.h"
#include "model/identity.h"
#include "model/normals.h"
#include "model/object_tree.h"
#include "model/textures/textures.h"
#include "model/vector.h"
#include "model/world.h"
#include "model/world_check.h"
#include "tests/support/mesh_test.h"

#include <map>
#include <random>
#include <set>

namespace {

// An object of polygons over points; -1 ends a polygon.
object_t *add_polygons(const std::vector<point3_t> &points, const std::vector<int> &corners)
{
    object_t *object = new_object(OBJECT_POLY);
    for (const point3_t &p : points)
        object_add_new_vertex(object, p.x, p.y, p.z);
    surface_t *surface = nullptr;
    for (const int v : corners) {
        if (v < 0) {
            surface = nullptr;
            continue;
        }
        if (surface == nullptr) {
            surface = new_surface();
            object_add_surface(object, surface);
        }
        surface_add_vertex(surface, object_get_vertex_at(object, v), 0, 0);
    }
    object_calc_normals_force(object);
    object_add_child(vesk_get_world(), object);
    return object;
}

// "open_edge 4 flipped 1": what is wrong and how often.
std::string summary(const model_findings &found)
{
    std::string text;
    for (int i = 0; i < num_model_problems; ++i) {
        const auto kind = static_cast<model_problem>(i);
        if (found.total(kind) > 0) {
            text += (text.empty() ? "" : " ") + std::string(model_problem_name(kind)) + " " +
                    std::to_string(found.total(kind));
        }
    }
    return text;
}
std::string summary() { return summary(model_find_problems(vesk_get_world())); }

const std::vector<point3_t> square_points = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};

struct check_case {
    const char *name;
    std::vector<point3_t> points;
    std::vector<int> corners;
    const char *found;
    const char *kind;  // that is then fixed
    const char *after; // what is found then
};
// clang-format off
const check_case cases[] = {
    {"closed_tetrahedron", {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
     {0, 2, 1, -1, 0, 1, 3, -1, 1, 2, 3, -1, 0, 3, 2}, "", "open_edge", ""},
    {"lone_square_cannot_be_closed", square_points, {0, 1, 2, 3},
     "open_edge 4", "open_edge", "open_edge 4"},
    {"hole_in_a_tetrahedron", {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
     {0, 2, 1, -1, 0, 1, 3, -1, 1, 2, 3}, "open_edge 3", "open_edge", ""},
    {"two_holes_that_meet", {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0.5f, 0.5f, 1}},
     {0, 1, 4, -1, 2, 3, 4, -1, 0, 3, 2, 1}, "open_edge 6", "open_edge", ""},
    {"three_on_an_edge", {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}},
     {0, 1, 2, -1, 1, 0, 3, -1, 0, 1, 4}, "open_edge 6 crowded_edge 1", "crowded_edge",
     "open_edge 7 duplicate_vertex 2"},
    {"vertex_on_an_edge", {{0, 0, 0}, {2, 0, 0}, {1, 1, 0}, {1, 0, 0}, {1, -1, 0}},
     {0, 1, 2, -1, 0, 4, 3, -1, 3, 4, 1}, "open_edge 7 t_vertex 1", "t_vertex", "open_edge 4"},
    {"doubled_corners", {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 0}, {1, 1, -0.0f}},
     {0, 1, 2, -1, 4, 5, 3}, "open_edge 6 duplicate_vertex 2", "duplicate_vertex", "open_edge 4"},
    {"weld_takes_what_it_folds", {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 0, 0}},
     {0, 1, 2, -1, 1, 3, 2}, "open_edge 4 duplicate_vertex 1 zero_area 1", "duplicate_vertex",
     "open_edge 3"},
    {"same_surface_twice", square_points, {0, 1, 2, 3, -1, 1, 2, 3, 0},
     "duplicate_surface 1 flipped 1", "duplicate_surface", "open_edge 4"},
    {"same_surface_from_behind", square_points, {0, 1, 2, 3, -1, 0, 3, 2, 1},
     "duplicate_surface 1", "duplicate_surface", "open_edge 4"},
    {"other_order_is_no_double", square_points, {0, 1, 2, 3, -1, 0, 2, 1, 3},
     "open_edge 4 zero_area 1 flipped 1", "duplicate_surface",
     "open_edge 4 zero_area 1 flipped 1"},
    {"no_area", {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}, {0, 1, 2},
     "open_edge 3 t_vertex 1 zero_area 1", "zero_area", ""},
    {"two_corners", {{0, 0, 0}, {1, 0, 0}}, {0, 1}, "zero_area 1", "zero_area", ""},
    {"bent_square", {{0, 0, 0}, {1, 0, 0}, {1, 1, 0.1f}, {0, 1, 0}}, {0, 1, 2, 3},
     "open_edge 4 non_planar 1", "non_planar", "open_edge 4"},
    {"neighbour_reversed", {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {2, 0, 0}, {2, 1, 0}},
     {0, 1, 2, 3, -1, 1, 2, 5, 4}, "open_edge 6 flipped 1", "flipped", "open_edge 6"},
    {"through_each_other", {{0, 0, 0}, {2, 0, 0}, {0, 2, 0}, {0.5f, 0.5f, -1}, {0.6f, 0.5f, 1}, {5, 0.6f, 1}},
     {0, 1, 2, -1, 3, 4, 5}, "open_edge 6 crossing 1", "crossing", "open_edge 6 crossing 1"},
    {"only_touching", {{0, 0, 0}, {2, 0, 0}, {0, 2, 0}, {0.5f, 0.5f, 0}, {0.6f, 0.5f, 1}, {5, 0.6f, 1}},
     {0, 1, 2, -1, 3, 4, 5}, "open_edge 6", "open_edge", "open_edge 6"},
    {"vertex_of_nothing", {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {9, 9, 9}}, {0, 1, 2},
     "open_edge 3 unused_vertex 1", "unused_vertex", "open_edge 3"},
};
// clang-format on
void PrintTo(const check_case &c, std::ostream *out) { *out << c.name; }
class ModelCheck : public SceneTest, public testing::WithParamInterface<check_case> {
protected:
    static model_problem found_kind()
    {
        model_problem kind = model_problem::open_edge;
        model_problem_of_name(GetParam().kind, &kind);
        return kind;
    }
};

TEST_P(ModelCheck, FindsAndFixesWithUndo)
{
    const check_case &c = GetParam();
    const object_t *object = add_polygons(c.points, c.corners);
    EXPECT_EQ(summary(), c.found);
    const std::string before = scene_text();

    run("check_fix_all", c.kind);

    EXPECT_EQ(summary(), c.after);
    EXPECT_TRUE(world_check(vesk_get_world()).empty());
    if (std::string(c.found).find(c.kind) == std::string::npos) {
        EXPECT_EQ(last_message(), "check - no such problem");
        EXPECT_EQ(last_undo(), "");
        EXPECT_EQ(object->num_vertices, static_cast<int>(c.points.size()));
        return;
    }
    std::string label = std::string("fix ") + c.kind;
    std::replace(label.begin(), label.end(), '_', ' ');
    EXPECT_EQ(last_undo(), label);
    run("undo");
    EXPECT_EQ(scene_text(), before);
}

TEST_P(ModelCheck, FixesOneProblemAtATimeUntilNoneCanBeFixed)
{
    add_polygons(GetParam().points, GetParam().corners);
    for (int step = 0; step < 20; ++step) {
        const model_findings found = model_find_problems(vesk_get_world());
        if (found.total(found_kind()) == 0)
            break;
        const auto problem =
            std::find_if(found.problems.begin(), found.problems.end(),
                         [&](const found_problem &one) { return one.kind == found_kind(); });
        const std::string before = scene_text();
        run("check_fix", GetParam().kind, object_identity(problem->object),
            problem_element(*problem));
        if (scene_text() == before)
            break; // not of those that can be
    }
    const std::string after = GetParam().after;
    EXPECT_EQ(after.find(GetParam().kind) == std::string::npos,
              model_find_problems(vesk_get_world()).total(found_kind()) == 0);
}
INSTANTIATE_TEST_SUITE_P(Kinds, ModelCheck, testing::ValuesIn(cases));

class ModelCheckCommand : public SceneTest {};

TEST_F(ModelCheckCommand, TellsOneLineAProblem)
{
    object_t *object = add_polygons({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {9, 9, 9}}, {0, 1, 2});
    const std::string id = std::to_string(object_identity(object));
    EXPECT_EQ(run("check_model"), "open_edge " + id + " 0-1 edge 0-1 belongs to surface 0 only\n" +
                                      "open_edge " + id +
                                      " 0-2 edge 0-2 belongs to surface 0 only\n" + "open_edge " +
                                      id + " 1-2 edge 1-2 belongs to surface 0 only\n" +
                                      "unused_vertex " + id + " 3 vertex 3 belongs to no surface");
}

TEST_F(ModelCheckCommand, ListsThousandOfAKindAndCountsAll)
{
    for (int i = 0; i < 3; ++i)
        add_polygons(std::vector<point3_t>(500, point3_t{1, 2, static_cast<float>(i)}), {});
    const std::string lines = run("check_model");
    EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 1999);
    EXPECT_EQ(run("check_counts"),
              "open_edge 0 crowded_edge 0 t_vertex 0 duplicate_vertex 1497 duplicate_surface 0 "
              "zero_area 0 non_planar 0 flipped 0 unused_vertex 1500 missing_texture 0 crossing 0");
}

TEST_F(ModelCheckCommand, LooksForTheFirstThousandCrossingsOnly)
{
    // Each of these stands on its edge and goes through all others.
    std::vector<point3_t> points;
    std::vector<int> corners;
    for (int i = 0; i < 2000; ++i) {
        const float angle = static_cast<float>(i) * 1.5e-3f;
        const float x = std::cos(angle), y = std::sin(angle);
        const int first = static_cast<int>(points.size());
        points.insert(points.end(), {{-x, -y, -1}, {x, y, -1}, {x, y, 1}, {-x, -y, 1}});
        corners.insert(corners.end(), {first, first + 1, first + 2, first + 3, -1});
    }
    object_t *object = add_polygons(points, corners);
    EXPECT_EQ(object_find_problems(object, problems_shown).total(model_problem::crossing), 1000);
}

struct reversed_case {
    std::vector<int> reversed; // sides of a cube
    double volume;             // after the fix: the majority says which side is outside
};

TEST_F(ModelCheckCommand, FlippedSurfacesFollowTheMajorityOfTheirPiece)
{
    for (const reversed_case &c :
         {reversed_case{{2}, 1}, {{0, 5}, 1}, {{1, 2, 3, 4}, -1}, {{0, 1, 2, 3, 4, 5}, -1}}) {
        for (const bool one_by_one : {false, true}) {
            run("clear_all");
            object_t *cube = add_cube("cube");
            select_surfaces_at(cube, c.reversed);
            run("surface_flip_normals");
            if (one_by_one && c.reversed.size() == 1) {
                run("check_fix", "flipped", object_identity(cube), "2");
            } else {
                run("check_fix_all", "flipped");
            }
            EXPECT_EQ(summary(), "");
            EXPECT_NEAR(volume(cube), c.volume, 1e-6) << c.reversed.size();
        }
    }
}

TEST_F(ModelCheckCommand, FollowsEveryChange)
{
    object_t *cube = add_cube("cube");
    EXPECT_EQ(summary(), "");
    run("set_select_mode", "surface");
    select_surface(object_get_surface_at(cube, 2));
    run("removesurface");
    EXPECT_EQ(summary(), "open_edge 4");
    run("undo");
    EXPECT_EQ(summary(), "");
    run("clear_all");
    EXPECT_EQ(summary(), "");
}

TEST_F(ModelCheckCommand, SelectsWhatAProblemNames)
{
    object_t *object = add_polygons({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {9, 9, 9}}, {0, 1, 2});
    run("check_select", "open_edge", object_identity(object), "1-2");
    EXPECT_EQ(run("get_app_mode").substr(0, 4), "edge");
    EXPECT_EQ(run("selection_get_num_edges"), "1");
    EXPECT_EQ(run("get_selection_centre"), "0.5 0.5 0");
    run("check_select", "unused_vertex", object_identity(object), "2");
    EXPECT_EQ(last_message(), "check - no such problem");
}

TEST_F(ModelCheckCommand, MissingTexturesAreForgotten)
{
    object_t *cube = add_cube("cube");
    search_and_set_texture(cube, "", "nowhere.gif");
    EXPECT_EQ(run("check_model"), "missing_texture " + std::to_string(object_identity(cube)) +
                                      " - texture nowhere.gif was not found");
    run("check_fix", "missing_texture", object_identity(cube), "-");
    EXPECT_EQ(summary(), "");
    run("undo");
    EXPECT_EQ(summary(), "missing_texture 1");
}

// ---- against the plain definitions ----

class RandomChecks : public SceneTest, public testing::WithParamInterface<unsigned> {};

TEST_P(RandomChecks, AgreeWithTheDefinitions)
{
    std::mt19937 random(GetParam());
    const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    std::vector<point3_t> points;
    for (int i = 0; i < 24; ++i) { // on a small grid: many ties, many points on edges
        points.push_back({static_cast<float>(below(4)), static_cast<float>(below(4)),
                          static_cast<float>(below(2))});
    }
    std::vector<int> corners;
    for (int s = 0; s < 14; ++s) {
        std::set<int> own; // in no order: outlines may cross themselves
        for (int c = 0, n = 2 + below(4); c < n; ++c) {
            const int v = below(24);
            if (own.insert(v).second)
                corners.push_back(v);
        }
        corners.push_back(-1);
    }
    object_t *object = add_polygons(points, corners);
    const flat_ptr mesh = object_flat(object);

    std::map<std::pair<int, int>, std::vector<int>> sides; // surface of each
    std::vector<bool> used(24);
    for (int s = 0; s < mesh->num_surfaces(); ++s) {
        const auto c = mesh->surface_corners(s);
        for (std::size_t i = 0; i < c.size(); ++i) {
            const int u = c[i], v = c[(i + 1) % c.size()];
            used[u] = true;
            if (u != v)
                sides[{std::min(u, v), std::max(u, v)}].push_back(s);
        }
    }
    int open = 0, crowded = 0;
    std::set<int> open_vertices;
    for (const auto &[edge, surfaces] : sides) {
        open += surfaces.size() == 1 ? 1 : 0;
        crowded += surfaces.size() > 2 ? 1 : 0;
        if (surfaces.size() == 1)
            open_vertices.insert({edge.first, edge.second});
    }
    std::set<std::pair<std::string, std::pair<int, int>>> on_edges; // place and edge
    const auto at = [&](int v) { return points[v]; };
    for (const auto &[edge, surfaces] : sides) {
        if (surfaces.size() != 1)
            continue;
        for (const int v : open_vertices) {
            const point3_t a = at(edge.first), b = at(edge.second), p = at(v);
            const double t = point_dot(point_sub(p, a), point_sub(b, a));
            if (point_length(point_cross(point_sub(p, a), point_sub(b, a))) == 0 && t > 0 &&
                t < point_dot(point_sub(b, a), point_sub(b, a))) {
                on_edges.insert(
                    {std::to_string(p.x) + " " + std::to_string(p.y) + " " + std::to_string(p.z),
                     edge});
            }
        }
    }
    int duplicates = 0;
    for (int v = 0; v < 24; ++v) {
        for (int u = 0; u < v; ++u) {
            if (point_equal(at(u), at(v))) {
                ++duplicates;
                break;
            }
        }
    }

    const model_findings found = object_find_problems(object);
    EXPECT_EQ(found.total(model_problem::open_edge), open);
    EXPECT_EQ(found.total(model_problem::crowded_edge), crowded);
    EXPECT_EQ(found.total(model_problem::duplicate_vertex), duplicates);
    EXPECT_EQ(found.total(model_problem::t_vertex), static_cast<int>(on_edges.size()));
    EXPECT_EQ(found.total(model_problem::unused_vertex),
              static_cast<int>(std::count(used.begin(), used.end(), false)));

    for (const auto &[name, count_after] : std::map<std::string, int>{{"duplicate_vertex", 0},
                                                                      {"duplicate_surface", 0},
                                                                      {"zero_area", 0},
                                                                      {"crowded_edge", 0},
                                                                      {"t_vertex", 0},
                                                                      {"unused_vertex", 0},
                                                                      {"flipped", -1},
                                                                      {"open_edge", -1},
                                                                      {"non_planar", -1}}) {
        const std::string before = scene_text();
        model_problem kind = model_problem::open_edge;
        ASSERT_TRUE(model_problem_of_name(name.c_str(), &kind));
        run("check_fix_all", name);
        const int left = model_find_problems(vesk_get_world()).total(kind);
        if (count_after >= 0)
            EXPECT_EQ(left, count_after) << name;
        else
            EXPECT_LE(left, found.total(kind)) << name;
        ASSERT_TRUE(world_check(vesk_get_world()).empty()) << name;
        if (last_message() == "check - no such problem")
            continue;
        run("undo");
        ASSERT_EQ(scene_text(), before) << name;
    }
}
INSTANTIATE_TEST_SUITE_P(Seeds, RandomChecks, testing::Range(1u, 40u));

// What is there on purpose is told, but as a note.
struct note_case {
    const char *name;
    std::vector<point3_t> points;
    std::vector<int> corners;
    int open_notes, double_notes;
};
// clang-format off
const note_case note_cases[] = {
    {"border_of_a_sheet", square_points, {0, 1, 2, 3}, 4, 0},
    {"hole_in_a_body", {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
     {0, 2, 1, -1, 0, 1, 3, -1, 0, 3, 2}, 0, 0},
    {"crease", {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 0}, {1, 0, 0}, {1, 0, 1}, {0, 0, 1}},
     {0, 1, 2, 3, -1, 5, 4, 7, 6}, 8, 2},
    {"sheet_torn_in_two", {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {1, 0, 0}, {2, 0, 0}, {2, 1, 0}, {1, 1, 0}},
     {0, 1, 2, 3, -1, 4, 5, 6, 7}, 6, 0},
    {"sheets_that_touch_in_a_corner", {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 0}, {-1, 0, 0}, {0, -1, 0}},
     {0, 1, 2, -1, 3, 4, 5}, 6, 1},
};
// clang-format on
void PrintTo(const note_case &c, std::ostream *out) { *out << c.name; }
class Notes : public SceneTest, public testing::WithParamInterface<note_case> {};

TEST_P(Notes, TellsWhatIsMeant)
{
    add_polygons(GetParam().points, GetParam().corners);
    const model_findings found = model_find_problems(vesk_get_world());
    const auto notes = [&](model_problem kind) {
        return found.notes[static_cast<std::size_t>(kind)];
    };
    EXPECT_EQ(notes(model_problem::open_edge), GetParam().open_notes);
    EXPECT_EQ(notes(model_problem::duplicate_vertex), GetParam().double_notes);
}
INSTANTIATE_TEST_SUITE_P(Shapes, Notes, testing::ValuesIn(note_cases));

} // namespace
