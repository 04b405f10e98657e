// Snapping: points to the grid, vertices to each other, objects by their vertices.

#include "edit/snap.h"

#include "base/prefs.h"
#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "edit/mesh/nearest_points.h"
#include "edit/weld.h"
#include "model/each.h"
#include "model/matrix.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "tests/support/mesh_test.h"
#include "tests/support/random_mesh.h"
#include "view/near_snap.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

class Snap : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        prefs.grid = 1;
    }
};

// Vertices without surfaces in one object; all are selected, in order.
object_t *add_points(const std::vector<point3_t> &points)
{
    object_t *object = add_mesh(points, {});
    run("set_select_mode", "vertex");
    run("select_all");
    return object;
}

// ---- the grid ----

struct grid_case {
    const char *name;
    float spacing, from, to;
};
constexpr float infinity = std::numeric_limits<float>::infinity();
// clang-format off
const grid_case grid_cases[] = {
    {"half_goes_up",        1, 0.5f, 1},
    {"half_goes_down",      1, -0.5f, -1},
    {"below_half",          1, 0.49f, 0},
    {"one_and_a_half",      1, -1.5f, -2},
    {"quarters",            0.25f, 0.37f, 0.25f},
    {"far_out",             1, 3e9f, 3e9f},
    {"no_spacing",          0, 0.4f, 0.4f},
    {"negative_spacing",   -1, 0.4f, 0.4f},
    {"infinite",            1, infinity, infinity},
};
// clang-format on
void PrintTo(const grid_case &c, std::ostream *out) { *out << c.name; }
class SnapToGrid : public Snap, public testing::WithParamInterface<grid_case> {};

TEST_P(SnapToGrid, GoesToTheNearestMultipleOnEveryAxis)
{
    const auto [name, spacing, from, to] = GetParam();
    point3_t point = {from, 0, from};
    snap_to_grid_float(&point, spacing, spacing, spacing);
    EXPECT_EQ(point, (point3_t{to, 0, to}));
    point = {from, from, from};
    prefs.grid = static_cast<double>(spacing);
    snap_to_grid(&point);
    EXPECT_EQ(point.x, from) << "snapping is off";
    prefs.gridsnap = 1;
    snap_to_grid(&point);
    EXPECT_EQ(point.y, to);
}
INSTANTIATE_TEST_SUITE_P(Coordinates, SnapToGrid, testing::ValuesIn(grid_cases));

TEST_F(Snap, SelectedVerticesGoToTheGridWhetherOrNotSnappingIsOn)
{
    object_t *object = add_points({{0.4f, 0.6f, -0.5f}, {2.2f, 0, 0}});
    select_vertices_at(object, {0});
    run("snaptogrid");
    EXPECT_EQ(points_of(object), (std::vector<point3_t>{{0, 1, -1}, {2.2f, 0, 0}}));
    EXPECT_EQ(last_undo(), "snap to grid");
    run("undo");
    EXPECT_EQ(points_of(object).front(), (point3_t{0.4f, 0.6f, -0.5f}));
}

TEST_F(Snap, OtherModesOpenTheirUndoAndMoveNothing)
{
    object_t *object = add_squares(1, 1);
    select_object(object);
    const std::string before = scene_text();
    run("snaptogrid");
    EXPECT_EQ(last_undo(), "snap to grid");
    run("snaptogether");
    EXPECT_EQ(last_undo(), "snap vertices together");
    run("snaptogetherdistance", 1.0);
    EXPECT_EQ(last_undo(), "snap vertices together by distance");
    EXPECT_EQ(last_message(), "vertices moved: 0 (0 clusters)");
    EXPECT_EQ(scene_text(), before);
}

// ---- near vertices ----

TEST_F(Snap, NearVerticesAttractWithinTheirRange)
{
    add_mesh({{1, 0, 0}, {2, 0, 0}}, {});
    object_t *second = add_mesh({{1, 0, 0}, {0, 5, 0}}, {});
    point3_t point = {1.1f, 0, 0};
    EXPECT_NE(find_nearest_vertex(&point), object_get_vertex_at(second, 0))
        << "the first of equals";
    point = {0, 4, 0};
    EXPECT_EQ(find_nearest_vertex(&point), object_get_vertex_at(second, 1));
    prefs.snap_near_pixels = 1000000;
    snap_near(&point, 0);
    EXPECT_EQ(point, (point3_t{0, 5, 0}));
    prefs.snap_near_pixels = 0;
    point = {0, 4, 0};
    snap_near(&point, 0);
    EXPECT_EQ(point, (point3_t{0, 4, 0}));
}

TEST_F(Snap, WithoutVerticesNothingAttracts)
{
    point3_t point = {1, 2, 3};
    EXPECT_EQ(find_nearest_vertex(&point), nullptr);
    snap_near(&point, 0);
    EXPECT_EQ(point, (point3_t{1, 2, 3}));
}

// ---- together ----

TEST_F(Snap, TogetherIsTheMean)
{
    object_t *object = add_points({{0, 0, 0}, {3, 0, 0}, {0, 3, 6}, {9, 9, 9}});
    select_vertices_at(object, {0, 1, 2});
    run("snaptogether");
    const point3_t mean = {1, 1, 2};
    EXPECT_EQ(points_of(object), (std::vector<point3_t>{mean, mean, mean, {9, 9, 9}}));
    run("undo");
    EXPECT_EQ(points_of(object).at(1), (point3_t{3, 0, 0}));
    select_vertices_at(object, {2});
    run("snaptogether");
    EXPECT_EQ(points_of(object).at(2), (point3_t{0, 3, 6}));
}

struct cluster_case {
    const char *name;
    float distance;
    std::vector<point3_t> from, to;
    const char *message;
};
// clang-format off
const cluster_case cluster_cases[] = {
    {"chain_from_the_head", 1,
     {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}, {{0.5f, 0, 0}, {0.5f, 0, 0}, {2, 0, 0}},
     "vertices moved: 3 (2 clusters)"},
    {"chain_from_the_middle", 1,
     {{1, 0, 0}, {0, 0, 0}, {2, 0, 0}}, {{1, 0, 0}, {1, 0, 0}, {1, 0, 0}},
     "vertices moved: 3 (1 clusters)"},
    {"zero_distance", 0,
     {{0, 0, 0}, {1, 0, 0}, {-0.0f, 0, 0}}, {{0, 0, 0}, {1, 0, 0}, {0, 0, 0}},
     "vertices moved: 3 (2 clusters)"},
    {"negative_distance", -1, {{0, 0, 0}, {0, 0, 0}}, {{0, 0, 0}, {0, 0, 0}},
     "vertices moved: 0 (0 clusters)"},
    {"not_a_number", std::numeric_limits<float>::quiet_NaN(), {{1, 0, 0}, {0, 0, 0}},
     {{1, 0, 0}, {0, 0, 0}}, "vertices moved: 0 (0 clusters)"},
    {"everything", infinity, {{0, 0, 0}, {1e6f, 0, 0}}, {{5e5f, 0, 0}, {5e5f, 0, 0}},
     "vertices moved: 2 (1 clusters)"},
    {"far_away", 0.25f, {{1e9f, 0, 0}, {1e9f, 0, 0.25f}, {-1e9f, 0, 0}},
     {{1e9f, 0, 0.125f}, {1e9f, 0, 0.125f}, {-1e9f, 0, 0}}, "vertices moved: 3 (2 clusters)"},
    {"no_finite_place", 1, {{infinity, 0, 0}, {0, 0, 0}}, {{infinity, 0, 0}, {0, 0, 0}},
     "vertices moved: 1 (1 clusters)"},
};
// clang-format on
void PrintTo(const cluster_case &c, std::ostream *out) { *out << c.name; }
class SnapByDistance : public Snap, public testing::WithParamInterface<cluster_case> {};

TEST_P(SnapByDistance, ClustersAreSeededInTheOrderOfTheSelection)
{
    object_t *object = add_points(GetParam().from);
    selected_snap_together_distance(GetParam().distance);
    EXPECT_EQ(points_of(object), GetParam().to);
    EXPECT_EQ(last_message(), GetParam().message);
    run("undo");
    EXPECT_EQ(points_of(object), GetParam().from);
}
INSTANTIATE_TEST_SUITE_P(Clusters, SnapByDistance, testing::ValuesIn(cluster_cases));

// What selected_snap_together_distance says, word by word, on the vertices themselves.
std::pair<int, int> snap_by_definition(const std::vector<vertex *> &selected, float distance)
{
    owned_list working;
    for (vertex *point : selected)
        working.add(point);
    listitem *left = working.release();
    int moved = 0, clusters = 0;
    while (left != nullptr) {
        point3_t centroid;
        const point3_t seed = item_of<vertex>(left)->position;
        const owned_list members(vertexlist_get_closest(left, &seed, distance, &centroid));
        for (vertex *member : each<vertex>(members.get())) {
            member->position = centroid;
            list_remove_item(&left, member);
            ++moved;
        }
        if (members)
            ++clusters;
        else
            list_remove_item(&left, item_of<vertex>(left));
    }
    return {moved, clusters};
}

TEST_F(Snap, ClustersAreThoseOfTheDefinition)
{
    for (std::uint32_t seed = 0; seed < 40; ++seed) {
        random_source random(seed);
        std::vector<point3_t> points;
        const bool lattice = random.below(2) == 0; // many equal distances
        for (int i = 0; i < 200; ++i) {
            if (lattice)
                points.push_back({static_cast<float>(random.below(5)),
                                  static_cast<float>(random.below(5)),
                                  static_cast<float>(random.below(5) - 2)});
            else
                points.push_back(
                    {random.between(-3, 3), random.between(-3, 3), random.between(0, 1)});
        }
        constexpr float distances[] = {0, 0.3f, 1, 1.4143f, 2, 10};
        const float distance = distances[random.below(6)];
        object_t *fast = add_points(points);
        selected_snap_together_distance(distance);
        object_t *slow = add_mesh(points, {});
        const auto [moved, clusters] =
            snap_by_definition(elements_of<vertex>(slow->vertices), distance);
        EXPECT_EQ(points_of(fast), points_of(slow)) << seed;
        EXPECT_EQ(last_message(), "vertices moved: " + std::to_string(moved) + " (" +
                                      std::to_string(clusters) + " clusters)");
        run("clear_all");
    }
}

TEST_F(Snap, CancelledClustersMoveNothing)
{
    random_source random(1);
    std::vector<point3_t> points;
    for (int i = 0; i < 500; ++i)
        points.push_back({random.between(0, 1), 0, 0});
    object_t *object = add_points(points);
    recording().clock_step = 1;
    recording().while_pumping = [] { run("cancel"); };
    run("snaptogetherdistance", 0.5);
    EXPECT_EQ(points_of(object), points);
    EXPECT_EQ(last_message(), "snap together - cancelled");
    EXPECT_EQ(last_undo(), "selection") << "its own record is gone";
}

// ---- objects ----

class SnapObjects : public Snap {
protected:
    void SetUp() override
    {
        Snap::SetUp();
        one = add_mesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2}});
        two = add_mesh({{5, 0, 0}, {5.3f, 1, 0}, {7, 0, 0}}, {{0, 1, 2}});
        run("set_select_mode", "vertex");
    }
    static void select(const std::vector<std::pair<object_t *, int>> &points)
    {
        clear_selection();
        for (const auto &[object, at] : points) {
            owned_list list;
            list.add(object_get_vertex_at(object, at));
            select_vertices(list.get());
        }
    }
    object_t *one = nullptr, *two = nullptr;
};

TEST_F(SnapObjects, TwoVerticesMoveTheFirstOnesObject)
{
    select({{two, 1}, {one, 2}});
    run("object_snap_together_by_vertices");
    EXPECT_EQ(object_get_vertex_at(two, 1)->position, (point3_t{0, 1, 0}));
    EXPECT_EQ(object_get_vertex_at(one, 2)->position, (point3_t{0, 1, 0}));
    EXPECT_NEAR(object_get_vertex_at(two, 0)->position.x, -0.3, 1e-6);
}

TEST_F(SnapObjects, TwoVerticesOfTwoObjectsAreNeeded)
{
    const std::string before = scene_text();
    select({{one, 0}, {one, 1}, {two, 0}});
    run("object_snap_together_by_vertices");
    EXPECT_EQ(recording().boxes.back(), "select two vertices - both of diff objects\n");
    select({{one, 0}, {one, 1}});
    run("object_snap_together_by_vertices");
    EXPECT_EQ(recording().boxes.back(), "both vertices must be in different objects\n");
    EXPECT_EQ(scene_text(), before);
}

TEST_F(SnapObjects, OneVertexOfEachObjectGoesToTheGrid)
{
    snap_objects_using_vert();
    EXPECT_EQ(recording().console, "select a single vertex in each object\n");
    select({{two, 1}, {two, 2}});
    recording().console.clear();
    snap_objects_using_vert();
    EXPECT_EQ(recording().console, "select only one vertex from each object\n");
    select({{two, 1}, {one, 0}});
    snap_objects_using_vert();
    EXPECT_EQ(object_get_vertex_at(two, 1)->position, (point3_t{5, 1, 0}));
    EXPECT_NEAR(object_get_vertex_at(two, 0)->position.x, 4.7, 1e-6);
    EXPECT_EQ(object_get_vertex_at(one, 0)->position, (point3_t{0, 0, 0}));
}

TEST_F(SnapObjects, PairsAreTheNearestOfThoseThatAreLeft)
{
    select({{one, 1}, {two, 0}, {one, 2}, {two, 1}, {one, 0}, {two, 2}});
    listitem *first = nullptr, *paired = nullptr;
    ASSERT_EQ(split_list_into_two_objects(selection().vertices, &first, &paired), 1);
    const owned_list a(first), p(paired);
    EXPECT_EQ(elements_of<vertex>(a.get()),
              (std::vector<vertex *>{object_get_vertex_at(one, 1), object_get_vertex_at(one, 2),
                                     object_get_vertex_at(one, 0)}));
    EXPECT_EQ(elements_of<vertex>(p.get()),
              (std::vector<vertex *>{object_get_vertex_at(two, 0), object_get_vertex_at(two, 1),
                                     object_get_vertex_at(two, 2)}));
    snap_2_objects_vertices_together();
    EXPECT_EQ(points_of(two), (std::vector<point3_t>{{1, 0, 0}, {0, 1, 0}, {0, 0, 0}}));
    EXPECT_EQ(last_undo(), "snap vertices together");
}

TEST_F(SnapObjects, UnequalNumbersAreRefused)
{
    const std::string before = scene_text();
    for (void (*operation)(void) : {snap_2_objects_vertices_together, glue_object_vertices}) {
        select({});
        operation();
        EXPECT_EQ(recording().boxes.back(),
                  "select the same number of vertices in two different objects");
        select({{one, 0}, {one, 1}, {two, 0}});
        recording().console.clear();
        operation();
        EXPECT_NE(recording().console.find("2 1  - number of selected not the same in each object "
                                           "- select the same number of vertices in each object\n"),
                  std::string::npos);
    }
    object_t *three = add_squares(1, 1);
    select({{one, 0}, {two, 0}, {three, 0}});
    recording().console.clear();
    snap_2_objects_vertices_together();
    EXPECT_EQ(recording().console, "select only one vertex from each object\n");
    object_delete(three);
    EXPECT_EQ(scene_text(), before);
}

TEST_F(SnapObjects, GluedObjectsShareTheVertices)
{
    object_t *child = add_squares(1, 1);
    object_reparent(child, two);
    select({{one, 1}, {one, 2}, {two, 0}, {two, 1}});
    glue_object_vertices();
    EXPECT_EQ(recording().console, "glue_object_vertices DO NOT CALL!!!!!!!!\n");
    EXPECT_EQ(one->num_vertices, 4);
    EXPECT_EQ(one->num_surfaces, 2);
    EXPECT_EQ(faces_of(one), (faces_t{{0, 1, 2}, {1, 2, 3}}));
    EXPECT_EQ(vesk_get_world()->num_children, 2) << "one and what was below two";
    EXPECT_TRUE(nothing_is_selected());
    expect_sound_scene();
}

// ---- the search tree ----

TEST_F(Snap, NearestPointsAreThoseOfAFullSearch)
{
    for (std::uint32_t seed = 0; seed < 30; ++seed) {
        random_source random(seed);
        std::vector<point3_t> points;
        const int n = 1 + random.below(120);
        for (int i = 0; i < n; ++i)
            points.push_back({static_cast<float>(random.below(4)),
                              static_cast<float>(random.below(4)), random.between(0, 1)});
        if (n > 20)
            points[7].x = std::numeric_limits<float>::quiet_NaN();
        nearest_points tree(points);
        std::vector<int> left(points.size());
        for (std::size_t i = 0; i < left.size(); ++i)
            left[i] = static_cast<int>(i);
        while (!left.empty()) {
            const point3_t to = {random.between(-1, 5), static_cast<float>(random.below(4)), 0.5f};
            float best = 3.4028e38f;
            int expected = left.size() == 1 ? left.front() : -1;
            for (const int i : left) {
                const float distance = points_dist(&points[i], &to);
                if (distance < best) {
                    best = distance;
                    expected = i;
                }
            }
            ASSERT_EQ(tree.nearest(to), expected) << seed;
            const int out = expected < 0 ? left.front() : expected;
            tree.take_out(out);
            std::erase(left, out);
            ASSERT_EQ(tree.left(), static_cast<int>(left.size()));
        }
    }
}

TEST_F(Snap, TheNearestOfAListIsTheFirstOfEquals)
{
    object_t *object = new_object(OBJECT_POLY);
    object_add_child(vesk_get_world(), object);
    for (const float x : {5.0f, 2.0f, -2.0f, 9.0f})
        object_add_new_vertex(object, x, 0, 0);
    vertex at = {};
    EXPECT_EQ(point_find_nearest(&at, object->vertices), object_get_vertex_at(object, 1));
    at.position.x = 8;
    EXPECT_EQ(point_find_nearest(&at, object->vertices), object_get_vertex_at(object, 3));
    owned_list one;
    one.add(object_get_vertex_at(object, 0));
    EXPECT_EQ(point_find_nearest(&at, one.get()), object_get_vertex_at(object, 0));
    EXPECT_EQ(point_find_nearest(&at, nullptr), nullptr);
}

// ---- for the interface: joined, not only brought together ----

TEST_F(Snap, WeldingLeavesNoCornerTwiceAndNoSurfaceWithoutArea)
{
    // A quad, and beside it a triangle on its edge 1-2.
    object_t *object = add_mesh({{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}, {4, 1, 0}},
                                {{0, 1, 2, 3}, {1, 4, 2}});
    const std::string before = scene_text();
    select_vertices_at(object, {1, 2});
    run("weld");
    EXPECT_EQ(faces_of(object), (faces_t{{0, 1, 2}})) << "the quad is a triangle now";
    EXPECT_EQ(points_of(object),
              (std::vector<point3_t>{{0, 0, 0}, {2, 1, 0}, {0, 2, 0}})); // the tip went, too
    EXPECT_EQ(selected_vertices_of(object), (std::vector<int>{1}));
    EXPECT_EQ(last_message(), "weld - 2 vertices became 1");
    EXPECT_GT(object_get_surface_at(object, 0)->normal.z, 0.9f) << "not black";
    expect_sound(object);
    run("step_back");
    EXPECT_EQ(scene_text(), before);
    EXPECT_EQ(selected_vertices_of(item_of<object_t>(vesk_get_world()->children)),
              (std::vector<int>{1, 2}));
}

TEST_F(Snap, WeldingByDistanceJoinsEachClusterOfEachObject)
{
    object_t *first = add_squares(2, 1), *second = add_squares(1, 1);
    run("set_select_mode", "vertex");
    select_object(first);
    select_object(second);
    run("weld_distance", "0.25"); // only those of the two objects meet
    EXPECT_EQ(first->num_vertices, 6);
    EXPECT_EQ(second->num_vertices, 4);
    run("weld_distance", "1.0");
    EXPECT_LT(first->num_vertices, 6);
    for (const surface_t *surface : each<surface_t>(first->surfaces)) {
        std::vector<int> corners = corners_of(first, surface);
        std::sort(corners.begin(), corners.end());
        EXPECT_EQ(std::adjacent_find(corners.begin(), corners.end()), corners.end());
    }
    expect_sound_scene();
}

} // namespace
