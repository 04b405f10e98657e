// The orders that a worker makes for picking find what a look at everything finds.

#include "view/pick_index.h"

#include "edit/transform.h"
#include "model/world.h"
#include "tests/support/scene_test.h"
#include "view/camera_internal.h"
#include "view/pick.h"
#include "view/views_internal.h"

#include <random>
#include <tuple>
#include <utility>

namespace {

class PickOrders : public SceneTest {
protected:
    static constexpr int side = 330; // squares

    void SetUp() override
    {
        SceneTest::SetUp();
        views_reset_for_test();
        camera_reset_for_test();
        for (int view = 0; view < 4; ++view)
            handle_resize(view, 400, 300);
        mesh = new_object(OBJECT_POLY);
        std::mt19937 random(7);
        std::vector<vertex *> row, above;
        for (int y = 0; y <= side; ++y, above = std::exchange(row, {})) {
            for (int x = 0; x <= side; ++x)
                row.push_back(object_add_new_vertex(mesh, at(x), at(y),
                                                    static_cast<float>(random() % 100) * 1e-3f));
            for (std::size_t x = 0; y > 0 && x < side; ++x) {
                surface_t *square = new_surface();
                object_add_surface(mesh, square);
                for (vertex *v : {above[x], above[x + 1], row[x + 1], row[x]})
                    surface_add_vertex(square, v, 0, 0);
            }
        }
        object_add_child(vesk_get_world(), mesh);
    }
    void TearDown() override
    {
        pick_orders_wait();
        SceneTest::TearDown();
    }
    static float at(int i) { return static_cast<float>(i) * 3.0f / side - 1.5f; }

    using found_t = std::vector<std::tuple<surface_t *, vertex *, float>>;
    static found_t found()
    {
        found_t all;
        std::mt19937 random(9);
        for (int i = 0; i < 12; ++i) {
            const int x = static_cast<int>(random() % 400), y = static_cast<int>(random() % 300);
            for (const int view : {VIEW_XY, VIEW_XYZ})
                for (const pick_kind kind : {pick_kind::SURFACE, pick_kind::VERTEX})
                    for (const pick_hit_t &hit : pick_at(view, kind, x, y, 3))
                        all.emplace_back(hit.surface, hit.point, hit.depth);
        }
        return all;
    }
    bool has_orders() const
    {
        const flat_ptr flat = object_flat(mesh);
        const bool surfaces = pick_order(mesh, *flat, pick_elements::surfaces) != nullptr;
        return pick_order(mesh, *flat, pick_elements::vertices) != nullptr && surfaces;
    }
    object_t *mesh = nullptr;
};

TEST_F(PickOrders, FindWhatALookAtEverythingFinds)
{
    EXPECT_FALSE(has_orders());
    const found_t plainly = found();
    pick_orders_wait();
    EXPECT_TRUE(has_orders());
    EXPECT_GT(plainly.size(), 20U);
    EXPECT_EQ(found(), plainly);
}

TEST_F(PickOrders, FollowWhatMovesAndIsAdded)
{
    has_orders();
    const point3_t offset = {0.3f, 0.2f, 0};
    translate_object(mesh, &offset); // while the worker sorts
    const found_t moved = found();
    for (int i = 0; i < 2; ++i) {
        pick_orders_wait();
        has_orders();
    }
    pick_orders_wait();
    EXPECT_TRUE(has_orders());
    EXPECT_EQ(found(), moved);
    object_add_new_vertex(mesh, 0.31f, 0.22f, 2);
    EXPECT_FALSE(has_orders());
    const found_t added = found();
    pick_orders_wait();
    EXPECT_TRUE(has_orders());
    EXPECT_EQ(found(), added);
}

TEST_F(PickOrders, OutliveTheirObject)
{
    has_orders();
    run("clear_all");
    pick_orders_wait();
    object_t *cube = add_cube("cube");
    EXPECT_EQ(pick_order(cube, *object_flat(cube), pick_elements::surfaces), nullptr);
    EXPECT_FALSE(pick_at(VIEW_XY, pick_kind::OBJECT, 200, 150, 3).empty());
}

} // namespace
