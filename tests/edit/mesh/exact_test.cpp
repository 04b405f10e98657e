#include "edit/mesh/exact.h"

#include "edit/mesh/planar_sides.h"
#include "tests/support/random_mesh.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

namespace {

point3_t random_point(random_source &random, float size)
{
    return {random.between(-size, size), random.between(-size, size), random.between(-size, size)};
}

// Products of what two words hold, against the compiler's own.
TEST(WideInt, MultipliesAddsAndComparesAsSmallNumbersDo)
{
    random_source random(1);
    for (int i = 0; i < 1000; ++i) {
        const auto a = static_cast<std::int64_t>(random.next()) - 2000000000;
        const auto b = static_cast<std::int64_t>(random.next()) - 2000000000;
        const wide_int x(a), y(b);
        EXPECT_EQ((x * y - wide_int(a * b)).sign(), 0);
        EXPECT_EQ((x - y).sign(), a < b ? -1 : a > b ? 1 : 0);
        // (x 2^100 + y)(x 2^100 - y) = x^2 2^200 - y^2
        const wide_int high(a, 100);
        EXPECT_EQ(((high + y) * (high - y) - (high * high - y * y)).sign(), 0);
    }
}

// Points made on a plane lie on it, whatever the filter says about it.
TEST(ExactPoints, MadeOnPlanesLieOnThem)
{
    random_source random(7);
    for (const float size : {1e-30f, 1e-3f, 1.0f, 1e6f, 1e30f}) {
        std::vector<point3_t> input;
        for (int i = 0; i < 60; ++i)
            input.push_back(random_point(random, size));
        exact_points points(input);
        int crossings = 0;
        for (int i = 0; i + 8 < 60; ++i) {
            const exact_plane p = points.plane(i, i + 1, i + 2);
            const exact_plane q = points.plane(i + 3, i + 4, i + 5);
            const exact_plane r = points.plane(i + 6, i + 7, i + 8);
            const int corner = points.cross_planes(p, q, r);
            ASSERT_GE(corner, 0);
            for (const exact_plane &plane : {p, q, r})
                EXPECT_EQ(points.side(plane, corner), 0);
            if (points.side(p, i + 3) * points.side(p, i + 4) >= 0)
                continue;
            ++crossings;
            const int made = points.cross_edge(i + 3, i + 4, p);
            EXPECT_EQ(points.side(p, made), 0);
            EXPECT_EQ(points.side(q, made), 0);
            for (int axis = 0; axis < 3; ++axis)
                EXPECT_EQ(points.turn(axis, i + 3, made, i + 4), 0);
            EXPECT_EQ(points.cross_edge(i + 4, i + 3, p), made) << "one point however it is made";
        }
        EXPECT_GT(crossings, 5);
    }
}

// A row of points a last bit apart: only those on the line are on it.
TEST(ExactPoints, TellNeighbouringFloatsApart)
{
    std::vector<point3_t> input = {{0.1f, 0.1f, 0}, {3.1f, 3.1f, 0}};
    float x = 1.7f;
    for (int i = 0; i < 50; ++i) {
        input.push_back({x, x, 0});
        input.push_back({x, std::nextafter(x, 9.0f), 0});
        x = std::nextafter(x, 9.0f);
    }
    const exact_points points(input);
    for (int p = 2; p < points.size(); p += 2) {
        EXPECT_EQ(points.turn(2, 0, 1, p), 0);
        EXPECT_EQ(points.turn(2, 0, 1, p + 1), 1);
    }
}

// Near, far and on the plane of triangles of any shape: the rough plane is silent or right.
TEST(ExactPoints, RoughPlanesNeverContradictExactOnes)
{
    random_source random(7);
    int told = 0, silent = 0;
    for (int round = 0; round < 2000; ++round) {
        const float size = std::ldexp(1.0f, static_cast<int>(random.between(-60, 60)));
        std::vector<point3_t> input;
        for (int i = 0; i < 3; ++i)
            input.push_back(random_point(random, size));
        const point3_t a = input[0], b = input[1], c = input[2];
        if (round % 3 == 0) // a sliver
            input[2] = {a.x + (b.x - a.x) * 0.3f, a.y + (b.y - a.y) * 0.3f,
                        a.z + (b.z - a.z) * 0.3f};
        for (int i = 0; i < 8; ++i) { // about in the plane
            const float u = random.between(-2, 2), v = random.between(-2, 2);
            input.push_back({a.x + (b.x - a.x) * u + (c.x - a.x) * v,
                             a.y + (b.y - a.y) * u + (c.y - a.y) * v,
                             a.z + (b.z - a.z) * u + (c.z - a.z) * v});
        }
        input.push_back(random_point(random, size));
        const exact_points points(input);
        const exact_plane plane = points.plane(0, 1, 2);
        const rough_plane rough = exact_points::rough(plane);
        for (int p = 0; p < points.size(); ++p) {
            const int side = points.rough_side(rough, 0, p);
            EXPECT_TRUE(side == 0 || side == points.side(plane, p)) << round << " " << p;
            ++(side == 0 ? silent : told);
        }
    }
    EXPECT_GT(told, 2000);
    EXPECT_GT(silent, 2000);
}

// ---- outlines ----

std::vector<point3_t> ring_of(float x, float y, float size, int n)
{
    std::vector<point3_t> points;
    for (int i = 0; i < n; ++i) {
        const double angle = 2 * 3.14159265358979 * i / n;
        points.push_back({x + size * static_cast<float>(std::cos(angle)),
                          y + size * static_cast<float>(std::sin(angle)), 0});
    }
    return points;
}

double doubled_area(const exact_points &points, const planar_sides &sides,
                    const std::vector<int> &loop)
{
    double area = 0;
    for (const int side : loop) {
        const auto &a = points.at(sides.sides()[side].from), &b = points.at(sides.sides()[side].to);
        area += a[0] * b[1] - a[1] * b[0];
    }
    return area;
}

// Holes in a polygon, and islands in the holes: as many outlines as there are pieces, all of them
// counter-clockwise, with the area of what they enclose.
TEST(PlanarSides, JoinHolesToTheOutlinesRoundThem)
{
    struct ring_case {
        float x, y, size;
        bool hole;
    };
    std::vector<ring_case> rings = {
        {0, 0, 20, false}, {0, 0, 6, true}, {0, 0, 5, false}, {0, 0, 2, true}};
    for (int i = 0; i < 40; ++i) {
        const double angle = i * 0.157;
        rings.push_back({static_cast<float>(12 * std::cos(angle)),
                         static_cast<float>(12 * std::sin(angle)), 0.7f, true});
    }
    std::vector<point3_t> all;
    for (const ring_case &ring : rings) {
        const auto points = ring_of(ring.x, ring.y, ring.size, 12);
        all.insert(all.end(), points.begin(), points.end());
    }
    const exact_points points(all);
    for (const bool mirrored : {false, true}) {
        planar_sides sides(points, 2, mirrored);
        double expected = 0;
        for (std::size_t r = 0; r < rings.size(); ++r) {
            for (int i = 0; i < 12; ++i) {
                const int a = static_cast<int>(r) * 12 + i;
                const int b = static_cast<int>(r) * 12 + (i + 1) % 12;
                const bool forward = rings[r].hole == mirrored;
                sides.add(forward ? a : b, forward ? b : a);
                expected +=
                    (points.at(a)[0] * points.at(b)[1] - points.at(a)[1] * points.at(b)[0]) *
                    (forward ? 1 : -1);
            }
        }
        sides.connect();
        const auto loops = sides.trace();
        ASSERT_EQ(loops.size(), 2u);
        double found = 0;
        for (const auto &loop : loops) {
            const double area = doubled_area(points, sides, loop);
            EXPECT_GT(mirrored ? -area : area, 0);
            found += area;
        }
        EXPECT_NEAR(found, expected, 1e-3);
    }
}

} // namespace
