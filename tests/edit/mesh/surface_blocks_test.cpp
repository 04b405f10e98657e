#include "edit/mesh/surface_blocks.h"

#include "tests/support/mesh_test.h"

#include <cmath>
#include <set>

namespace {

class SurfaceBlocks : public SceneTest {};

// Squares side by side, or in an order without any sense.
TEST_F(SurfaceBlocks, FindAllThatABoxTouchesAndLookAtFew)
{
    constexpr int n = 60;
    for (const bool shuffled : {false, true}) {
        std::vector<point3_t> points;
        faces_t faces;
        for (int i = 0; i < n * n; ++i) {
            const int at = shuffled ? static_cast<int>(i * 1571L % (n * n)) : i;
            const auto x = static_cast<float>(at % n), y = static_cast<float>(at / n);
            const int first = static_cast<int>(points.size());
            for (const auto &[dx, dy] : {std::pair(0, 0), std::pair(1, 0), std::pair(1, 1)})
                points.push_back(
                    {x + static_cast<float>(dx), y + static_cast<float>(dy), 0.1f * x});
            faces.push_back({first, first + 1, first + 2});
        }
        object_t *object = add_mesh(points, faces);
        const flat_ptr mesh = object_flat(object);
        std::vector<bool> marked(mesh->num_surfaces(), true);
        marked[7] = false;
        const surface_blocks blocks(*mesh, marked);
        std::set<int> seen;
        blocks.query({{10.2f, 20.2f, -9}, {10.4f, 20.4f, 9}}, [&](int s) { seen.insert(s); });
        EXPECT_LT(seen.size(), 100u);
        int found = 0;
        for (int s = 0; s < mesh->num_surfaces(); ++s) {
            const point3_t &p = mesh->position(mesh->surface_corners(s)[0]);
            if (p.x == 10 && p.y == 20)
                found += seen.contains(s) ? 1 : 0;
        }
        EXPECT_EQ(found, 1);
        EXPECT_EQ(blocks.all().high[0], n);
        seen.clear();
        blocks.query({{100, 0, 0}, {101, 1, 1}}, [&](int s) { seen.insert(s); });
        EXPECT_TRUE(seen.empty());
    }
    const flat_ptr nothing = object_flat(add_mesh({}, {}));
    surface_blocks(*nothing, {}).query({{0, 0, 0}, {1, 1, 1}}, [](int) { FAIL(); });
}

} // namespace
