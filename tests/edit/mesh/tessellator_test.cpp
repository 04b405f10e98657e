// The short cut for convex quads gives exactly what the tessellator gives, triangle by triangle.

#include "edit/mesh/tessellator.h"

#include "edit/document/selection.h"
#include "tests/support/mesh_test.h"
#include "tests/support/random_mesh.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <vector>

namespace {

class Tessellator : public SceneTest {
protected:
    // How often the two agreed, by what the answer was.
    std::map<std::vector<int>, int> answers;

    void expect_same(const std::array<point3_t, 4> &quad)
    {
        const bool expected = plain.cut_slowly(quad);
        ASSERT_EQ(quick.cut(quad), expected);
        if (!expected)
            return;
        const std::vector<int> a(quick.triangles().begin(), quick.triangles().end());
        const std::vector<int> b(plain.triangles().begin(), plain.triangles().end());
        ASSERT_EQ(a, b) << testing::PrintToString(quad);
        ++answers[b];
    }
    tessellator_t quick, plain;
};

struct quads_case {
    const char *name;
    std::array<point3_t, 4> (*make)(random_source &random);
};

std::array<point3_t, 4> on_a_lattice(random_source &random) // many corners above each other
{
    std::array<point3_t, 4> quad = {};
    const int size = 2 + random.below(4);
    for (point3_t &p : quad)
        p = {static_cast<float>(random.below(size)), static_cast<float>(random.below(size)),
             static_cast<float>(random.below(3))};
    return quad;
}

std::array<point3_t, 4> anywhere(random_source &random)
{
    std::array<point3_t, 4> quad = {};
    for (point3_t &p : quad)
        p = {random.between(-1, 1), random.between(-1, 1), random.between(-1, 1)};
    return quad;
}

// A parallelogram or a kite in any plane, somewhat bent: mostly convex.
std::array<point3_t, 4> convex(random_source &random)
{
    const point3_t a = {random.between(-1, 1), random.between(-1, 1), random.between(-1, 1)};
    const point3_t b = {random.between(-1, 1), random.between(-1, 1), random.between(-1, 1)};
    const float bend = random.below(2) == 0 ? 0 : 0.1f;
    const auto at = [&](float u, float v) -> point3_t {
        return {5 + a.x * u + b.x * v + random.between(-bend, bend),
                7 + a.y * u + b.y * v + random.between(-bend, bend),
                a.z * u + b.z * v + random.between(-bend, bend)};
    };
    return {at(0, 0), at(1, 0), at(1, random.between(0.6f, 1.4f)), at(0, 1)};
}

// Rectangles and trapezoids along the axes of a coordinate plane, beginning anywhere, either way
// round.
std::array<point3_t, 4> along_the_axes(random_source &random)
{
    const auto w = static_cast<float>(1 + random.below(3));
    const auto h = static_cast<float>(1 + random.below(3));
    const auto shear = static_cast<float>(random.below(3) - 1);
    const auto wider = static_cast<float>(random.below(3)) * 0.5f;
    std::array<std::array<float, 2>, 4> flat = {
        {{0, 0}, {w, 0}, {w + shear + wider, h}, {shear, h}}};
    std::rotate(flat.begin(), flat.begin() + random.below(4), flat.end());
    if (random.below(2) == 0)
        std::reverse(flat.begin(), flat.end());
    std::array<point3_t, 4> quad = {};
    const int axis = random.below(3);
    const bool turned = random.below(2) == 0;
    for (std::size_t i = 0; i < 4; ++i) {
        const float x = flat[i][turned ? 1 : 0], y = flat[i][turned ? 0 : 1];
        quad[i] = axis == 0 ? point3_t{9, x, y} : axis == 1 ? point3_t{x, 9, y} : point3_t{x, y, 9};
    }
    return quad;
}

// Close to the limits of what the short cut takes.
std::array<point3_t, 4> nearly_flat(random_source &random)
{
    std::array<point3_t, 4> quad = convex(random);
    const float e = std::ldexp(1.0f, -4 - random.below(20));
    const auto [a, b] = std::pair(quad[0], quad[2]);
    quad[1] = {(a.x + b.x) / 2 + e * random.between(-1, 1), (a.y + b.y) / 2 + e, (a.z + b.z) / 2};
    return quad;
}

std::array<point3_t, 4> on_a_diagonal_plane(random_source &random)
{
    std::array<point3_t, 4> quad = along_the_axes(random); // normals with two equal coordinates
    for (point3_t &p : quad) {
        const float tilt = static_cast<float>(random.below(2)) * 1e-7f;
        p = {p.x + p.y, p.y - p.x + tilt, p.z + p.x};
    }
    return quad;
}

// clang-format off
const quads_case quads_cases[] = {
    {"on_a_lattice", on_a_lattice}, {"anywhere", anywhere}, {"convex", convex},
    {"along_the_axes", along_the_axes}, {"nearly_flat", nearly_flat},
    {"on_a_diagonal_plane", on_a_diagonal_plane},
};
// clang-format on
void PrintTo(const quads_case &c, std::ostream *out) { *out << c.name; }
class Quads : public Tessellator, public testing::WithParamInterface<quads_case> {};

TEST_P(Quads, AreCutAsTheTessellatorCutsThem)
{
    random_source random(5);
    for (int i = 0; i < 20000; ++i) {
        expect_same(GetParam().make(random));
        if (HasFatalFailure())
            return;
    }
    EXPECT_GT(answers.size(), 3u);
}
INSTANTIATE_TEST_SUITE_P(Kinds, Quads, testing::ValuesIn(quads_cases));

TEST_F(Tessellator, ConcavePolygonsAreCovered)
{
    for (std::uint32_t seed = 0; seed < 50; ++seed) {
        random_source random(seed);
        object_t *object = add_random_polygon(random, 5 + random.below(60));
        const int corners = object_get_surface_at(object, 0)->num_refs;
        const double area = area_xy(object);
        select_object(object);
        run("surface_triangulate");
        EXPECT_EQ(object->num_surfaces, corners - 2) << seed;
        EXPECT_NEAR(area_xy(object), area, 1e-5);
        for (int i = 0; i < object->num_surfaces; ++i)
            EXPECT_GT(doubled_area_xy(object_get_surface_at(object, i)), -1e-6);
        EXPECT_EQ(count_edges(object).once, corners);
        run("clear_all");
    }
}

} // namespace
