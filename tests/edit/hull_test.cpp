#include "edit/hull.h"

#include "base/prefs.h"
#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "fileio/vesk_writer.h"
#include "model/object_tree.h"
#include "model/vector.h"
#include "model/world.h"
#include "tests/support/scene_test.h"

#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <random>
#include <set>

namespace {

using point_list = std::vector<point3_t>;

std::vector<int> polygon(const polygons_t &polygons, int i)
{
    const auto at = [&](int k) { return polygons.corners.begin() + polygons.offsets[k]; };
    return {at(i), at(i + 1)};
}

// Every side is walked once in each direction, and vertices - edges + faces = 2.
void expect_closed(const polygons_t &polygons)
{
    std::set<std::pair<int, int>> sides;
    std::set<int> used(polygons.corners.begin(), polygons.corners.end());
    for (int i = 0; i < polygons.size(); ++i) {
        const std::vector<int> corners = polygon(polygons, i);
        for (std::size_t c = 0; c < corners.size(); ++c)
            EXPECT_TRUE(sides.insert({corners[c], corners[(c + 1) % corners.size()]}).second);
    }
    for (const auto &[u, v] : sides)
        EXPECT_TRUE(sides.count({v, u}) == 1);
    EXPECT_EQ(static_cast<int>(used.size()) - static_cast<int>(sides.size()) / 2 + polygons.size(),
              2);
}

// No point lies outside any face, beyond `slack`.
void expect_outward(const point_list &points, const polygons_t &polygons, double slack)
{
    for (int i = 0; i < polygons.size(); ++i) {
        const std::vector<int> corners = polygon(polygons, i);
        double normal[3] = {};
        const point3_t &origin = points[corners[0]];
        for (std::size_t c = 1; c + 1 < corners.size(); ++c) {
            const point3_t cross = point_cross(point_sub(points[corners[c]], origin),
                                               point_sub(points[corners[c + 1]], origin));
            normal[0] += cross.x;
            normal[1] += cross.y;
            normal[2] += cross.z;
        }
        const double length = std::hypot(normal[0], normal[1], normal[2]);
        for (const point3_t &p : points) {
            const point3_t to = point_sub(p, origin);
            const double height = to.x * normal[0] + to.y * normal[1] + to.z * normal[2];
            EXPECT_LE(height, slack * length);
        }
    }
}

// ---- hulls ----

TEST(ConvexHull, OfACubeWithAMiddleHasSixSquares)
{
    point_list points = {{0.5f, 0.5f, 0.5f}, {0.5f, 0.5f, 0}}; // inside, and on a face
    for (int i = 0; i < 8; ++i)
        points.push_back({float(i & 1), float(i >> 1 & 1), float(i >> 2 & 1)});
    polygons_t hull;
    ASSERT_EQ(convex_hull(points, 1e-5, &hull), hull_result::done);
    ASSERT_EQ(hull.size(), 6);
    EXPECT_EQ(hull.corners.size(), 24u);
    expect_closed(hull);
    expect_outward(points, hull, 1e-6);
}

struct flat_case {
    const char *name;
    point_list points;
};
const float nan_value = std::numeric_limits<float>::quiet_NaN();
const flat_case flat_cases[] = {
    {"nothing", {}},
    {"three", {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}},
    {"square", {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}}},
    {"tilted_plane", {{0, 0, 0}, {1, 0, 1}, {0, 1, 0}, {1, 1, 1}, {2, 5, 2}}},
    {"line", {{0, 0, 0}, {1, 1, 1}, {2, 2, 2}, {3, 3, 3}}},
    {"one_place", {{1, 2, 3}, {1, 2, 3}, {1, 2, 3}, {1, 2, 3}}},
    {"no_numbers", {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, nan_value}}},
};
void PrintTo(const flat_case &c, std::ostream *out) { *out << c.name; }
class FlatPoints : public testing::TestWithParam<flat_case> {};

TEST_P(FlatPoints, HaveNoHull)
{
    polygons_t hull;
    EXPECT_EQ(convex_hull(GetParam().points, 1e-5, &hull), hull_result::flat);
}
INSTANTIATE_TEST_SUITE_P(Cases, FlatPoints, testing::ValuesIn(flat_cases));

class RandomHull : public testing::TestWithParam<unsigned> {};

TEST_P(RandomHull, IsConvexClosedAndFacesOutwards)
{
    std::mt19937 random(GetParam());
    const bool on_grid = GetParam() % 2 == 0; // many points in one plane, many doubled
    std::normal_distribution<float> normal;
    point_list points;
    for (int i = 0; i < 200; ++i) {
        point3_t p = {normal(random), normal(random), normal(random)};
        if (on_grid)
            p = {std::round(p.x * 2), std::round(p.y * 2), std::round(p.z * 2)};
        points.push_back(p);
    }
    polygons_t hull;
    ASSERT_EQ(convex_hull(points, 1e-5, &hull), hull_result::done);
    expect_closed(hull);
    expect_outward(points, hull, 1e-4);
}
INSTANTIATE_TEST_SUITE_P(Seeds, RandomHull, testing::Range(1u, 25u));

// Inner points are dropped before the library sees them: the hull must be that of all.
TEST(ConvexHull, OfABallOfPointsIsThatOfItsOuterOnes)
{
    std::mt19937 random(7);
    std::normal_distribution<float> normal;
    point_list points, outer;
    for (int i = 0; i < 3000; ++i) {
        point3_t p = {normal(random), normal(random), normal(random)};
        const auto length = static_cast<float>(point_length(p));
        p = point_scale(p, (i % 30 == 0 ? 1.0f : 0.97f * float(i % 30) / 30) / length);
        points.push_back(p);
        if (i % 30 == 0)
            outer.push_back(p);
    }
    polygons_t whole, shell;
    ASSERT_EQ(convex_hull(points, 1e-5, &whole), hull_result::done);
    ASSERT_EQ(convex_hull(outer, 1e-5, &shell), hull_result::done);
    expect_closed(whole);
    expect_outward(points, whole, 3e-5);
    std::set<int> used(whole.corners.begin(), whole.corners.end());
    for (int i = 0; i < 3000; i += 30)
        EXPECT_EQ(used.count(i), 1u);
    EXPECT_GE(whole.size(), shell.size());
}

// ---- Delaunay ----

double turn(const point3_t &a, const point3_t &b, const point3_t &c)
{
    return (double(b.x) - a.x) * (double(c.y) - a.y) - (double(c.x) - a.x) * (double(b.y) - a.y);
}

// Positive when d lies inside the circle through a, b, c (anticlockwise).
double in_circle(const point3_t &a, const point3_t &b, const point3_t &c, const point3_t &d)
{
    const auto row = [&](const point3_t &p) {
        const double x = double(p.x) - d.x, y = double(p.y) - d.y;
        return std::array<double, 3>{x, y, x * x + y * y};
    };
    const auto p = row(a), q = row(b), r = row(c);
    return p[0] * (q[1] * r[2] - q[2] * r[1]) - p[1] * (q[0] * r[2] - q[2] * r[0]) +
           p[2] * (q[0] * r[1] - q[1] * r[0]);
}

class RandomDelaunay : public testing::TestWithParam<unsigned> {};

TEST_P(RandomDelaunay, HasEmptyCirclesAndCoversTheHull)
{
    std::mt19937 random(GetParam());
    const bool on_grid = GetParam() % 2 == 0; // many points on one circle
    point_list points;
    std::set<std::pair<float, float>> taken;
    while (points.size() < 40) {
        point3_t p = {float(random() % 10000) / 1000, float(random() % 10000) / 1000,
                      float(random() % 10)};
        if (on_grid)
            p = {std::round(p.x), std::round(p.y), p.z};
        if (taken.insert({p.x, p.y}).second)
            points.push_back(p);
    }
    polygons_t triangles;
    ASSERT_EQ(delaunay_triangulation(points, 2, &triangles), hull_result::done);
    double area = 0;
    for (int i = 0; i < triangles.size(); ++i) {
        const std::vector<int> t = polygon(triangles, i);
        ASSERT_EQ(t.size(), 3u);
        const point3_t &a = points[t[0]];
        const point3_t &b = points[t[1]];
        const point3_t &c = points[t[2]];
        EXPECT_GT(turn(a, b, c), 0) << "faces along the axis";
        area += turn(a, b, c) / 2;
        for (const point3_t &d : points)
            EXPECT_LE(in_circle(a, b, c, d), 1e-6 * turn(a, b, c));
    }
    // The area of the hull, by the gift wrapping of its outline.
    std::size_t at = 0;
    for (std::size_t i = 1; i < points.size(); ++i) {
        if (std::pair(points[i].x, points[i].y) < std::pair(points[at].x, points[at].y))
            at = i;
    }
    const std::size_t first = at;
    double hull_area = 0;
    do {
        std::size_t next = at == 0 ? 1 : 0;
        for (std::size_t i = 0; i < points.size(); ++i) {
            const double side = turn(points[at], points[next], points[i]);
            const auto far = [&](std::size_t j) {
                return point_length(
                    point_sub({points[j].x, points[j].y, 0}, {points[at].x, points[at].y, 0}));
            };
            if (side < 0 || (side == 0 && far(i) > far(next)))
                next = i;
        }
        hull_area += turn(points[first], points[at], points[next]) / 2;
        at = next;
    } while (at != first);
    EXPECT_NEAR(area, hull_area, 1e-4);
}
INSTANTIATE_TEST_SUITE_P(Seeds, RandomDelaunay, testing::Range(1u, 17u));

// ---- commands ----

class HullCommands : public SceneTest {};

TEST_F(HullCommands, MakeAnObjectOfTheSelectedVertices)
{
    add_cube("cube");
    run("set_select_mode", "vertex");
    run("select_all");
    const std::string before = vesk_object_text(vesk_get_world());
    run("convexhull");
    const object_t *hull = object_get_kid_at(vesk_get_world(), 1);
    ASSERT_NE(hull, nullptr);
    EXPECT_STREQ(hull->name, "convexhull");
    EXPECT_EQ(hull->num_surfaces, 6);
    EXPECT_EQ(hull->num_vertices, 8);
    EXPECT_EQ(last_undo(), "convex hull");
    EXPECT_EQ(selection().num_vertices, 8);
    run("undo");
    EXPECT_EQ(vesk_object_text(vesk_get_world()), before);

    run("delaunay");
    const object_t *delaunay = object_get_kid_at(vesk_get_world(), 1);
    ASSERT_NE(delaunay, nullptr);
    EXPECT_STREQ(delaunay->name, "delaunay");
    EXPECT_EQ(delaunay->num_surfaces, 2) << "of vertices above each other one is taken";
}

TEST_F(HullCommands, RefuseWhatIsFlatOrNothing)
{
    run("convexhull");
    EXPECT_EQ(last_message(), "convex hull - nothing selected");
    select_object(add_square(1));
    run("convexhull");
    ASSERT_EQ(recording().boxes.size(), 1u);
    EXPECT_EQ(recording().boxes[0],
              "Convex hull: select at least 4 vertices that do not lie in one plane");
    EXPECT_EQ(last_undo(), "");
    EXPECT_EQ(vesk_get_world()->num_children, 1);
}

} // namespace
