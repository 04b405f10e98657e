#include "draw/depth_order.h"

#include "model/normals.h"
#include "model/world.h"
#include "tests/support/scene_test.h"

#include <algorithm>

namespace {

class DepthOrder : public SceneTest {
protected:
    // Panes facing +z, one behind the other, of two materials in turn.
    flat_ptr panes(int count)
    {
        object_t *object = new_object(OBJECT_POLY);
        for (int i = 0; i < count; ++i) {
            surface_t *surface = new_surface();
            const auto z = static_cast<float>((i * 7) % count);
            surface_add_vertex(surface, object_add_new_vertex(object, 0, 0, z), 0, 0);
            surface_add_vertex(surface, object_add_new_vertex(object, 1, 0, z), 0, 0);
            surface_add_vertex(surface, object_add_new_vertex(object, 1, 1, z), 0, 0);
            surface_add_vertex(surface, object_add_new_vertex(object, 0, 1, z), 0, 0);
            surface->material = i % 2;
            object_add_surface(object, surface);
        }
        object_add_child(vesk_get_world(), object);
        object_calc_normals_force(object);
        return object_flat(object);
    }
};

TEST_F(DepthOrder, GoesFromBackToFrontOverAllGroupsFromEverySide)
{
    const flat_ptr flat = panes(10);
    const mesh_layout_t layout = layout_mesh(*flat, {});
    ASSERT_EQ(layout.groups.size(), 2u);
    const std::size_t both[] = {0, 1};
    for (const float towards : {1.0f, -1.0f}) {
        const depth_order_t order =
            order_by_depth(layout, *flat, layout.triangles, both, {0, 0, towards});
        ASSERT_EQ(order.slots.size(), layout.triangles.size());
        std::vector<float> nearness;
        for (const std::uint32_t slot : order.slots) {
            const std::uint32_t vertex = slot < layout.num_vertices
                                             ? slot
                                             : layout.extra_vertices[slot - layout.num_vertices];
            nearness.push_back(flat->position(static_cast<int>(vertex)).z * towards);
        }
        EXPECT_TRUE(std::is_sorted(nearness.begin(), nearness.end()));
        std::uint32_t next = 0;
        for (const depth_run_t &run : order.runs) {
            EXPECT_EQ(run.first, next);
            next += run.count;
        }
        EXPECT_EQ(next, order.slots.size());
    }
    const std::size_t one[] = {1};
    EXPECT_EQ(order_by_depth(layout, *flat, layout.triangles, one, {0, 0, 1}).slots.size(), 30u);
}

} // namespace
