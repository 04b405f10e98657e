// Large islands are relaxed by another solver than small ones: nobody sees a difference.

#include "edit/uv/uv_relax.h"

#include "tests/support/mesh_test.h"
#include "tests/support/random_mesh.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>

namespace {

constexpr int side = 60;

// Of a point of the grid, from 0 to 1 each way: where it is in the model, and in the picture.
struct shape_case {
    const char *name;
    std::function<point3_t(float x, float y)> place;
    std::function<flat_uv(float x, float y)> picture;
    std::function<bool(float x, float y)> stays, hole;
};
flat_uv plain(float x, float y) { return {x, y}; }
bool never(float, float) { return false; }

// clang-format off
const shape_case shape_cases[] = {
    {"hills", [](float x, float y) { return point3_t{x, y, 0.2f * std::sin(9 * x) * std::cos(7 * y)}; },
     plain, never, never},
    {"crowded_picture", [](float x, float y) { return point3_t{x, y, 0.1f * std::sin(5 * x)}; },
     [](float x, float y) { return flat_uv{x * x * x, 0.7f * y * y + 0.2f * x}; }, never, never},
    {"thin_triangles", [](float x, float y) { return point3_t{40 * x, y * y, 0.3f * std::sin(20 * x)}; },
     plain, never, never},
    {"borders_stay", [](float x, float y) { return point3_t{x, y, x * y}; },
     [](float x, float y) { return flat_uv{x + 0.1f * std::sin(6 * y), y}; },
     [](float x, float y) { return x == 0 || y == 1; }, never},
    {"one_row_stays_among_many", [](float x, float y) { return point3_t{x, y, x * x}; },
     [](float x, float y) { return flat_uv{x * x, y}; },
     [](float x, float y) { return x == 0.5f && y < 0.5f; }, never},
    {"holes_and_a_tube", [](float x, float y) { return point3_t{std::cos(5 * x), std::sin(5 * x), y}; },
     [](float x, float y) { return flat_uv{x, 1 - y}; }, never,
     [](float x, float y) { return std::fmod(7 * x, 1.0f) < 0.4f && std::fmod(5 * y, 1.0f) < 0.5f; }},
    {"a_point_in_many", [](float x, float y) { return point3_t{y * std::cos(6 * x), y * std::sin(6 * x), 0}; },
     [](float x, float y) { return flat_uv{y * std::cos(6 * x), y * std::sin(6 * x)}; }, never, never},
};
// clang-format on
void PrintTo(const shape_case &c, std::ostream *out) { *out << c.name; }

class UvRelax : public SceneTest, public testing::WithParamInterface<shape_case> {};

// Less than a twentieth of a pixel in a picture of 2,048.
constexpr double unseen = 2.4e-5;

TEST_P(UvRelax, LargeIslandsLieWhereAFactorisationPutsThem)
{
    const shape_case &shape = GetParam();
    std::vector<point3_t> points;
    faces_t faces;
    std::vector<flat_uv> picture;
    std::vector<char> stays;
    for (int i = 0; i < (side + 1) * (side + 1); ++i) {
        const float x = static_cast<float>(i % (side + 1)) / side;
        const float y = static_cast<float>(i / (side + 1)) / side;
        points.push_back(shape.place(x, y));
        picture.push_back(shape.picture(x, y));
        stays.push_back(shape.stays(x, y) ? 1 : 0);
        if (i % (side + 1) < side && i / (side + 1) < side && !shape.hole(x, y))
            faces.push_back({i, i + 1, i + side + 2, i + side + 1});
    }
    uv_mesh mesh = uv_mesh_of({add_mesh(points, faces)});
    std::vector<flat_uv> start;
    std::vector<char> free;
    for (const int v : mesh.vertices) {
        start.push_back(picture[v]);
        free.push_back(stays[v] == 0 ? 1 : 0);
    }
    mesh.at = uv_array<flat_uv>(std::vector<flat_uv>(start));
    const uv_islands islands = uv_find_islands(mesh);
    ASSERT_EQ(islands.num_islands, 1);
    std::vector<int> all(mesh.num_surfaces());
    std::iota(all.begin(), all.end(), 0);

    std::vector<flat_uv> at[2] = {start, start};
    for (const int most : {1 << 30, 1000}) {
        const int before = uv_relax_set_most_factorised(most);
        EXPECT_TRUE(uv_relax(mesh, islands, free, all, 20, 1.5, at[most == 1000 ? 1 : 0]));
        uv_relax_set_most_factorised(before);
    }

    double moved = 0, apart = 0;
    for (std::size_t c = 0; c < start.size(); ++c) {
        const auto distance = [](const flat_uv &a, const flat_uv &b) {
            return std::hypot(double{a.u} - b.u, double{a.v} - b.v);
        };
        moved = std::max(moved, distance(at[0][c], start[c]));
        apart = std::max(apart, distance(at[0][c], at[1][c]));
        if (free[c] == 0) {
            EXPECT_EQ(at[1][c], start[c]);
        }
    }
    EXPECT_GT(moved, 0.01) << "or there is nothing to compare";
    EXPECT_LT(apart, unseen);
}
INSTANTIATE_TEST_SUITE_P(Shapes, UvRelax, testing::ValuesIn(shape_cases));

} // namespace
