#include "draw/depth_order.h"

#include <algorithm>

namespace {

struct placed_triangle_t {
    float nearness;
    std::uint32_t group;
    std::uint32_t first; // index of its first corner
};

float nearness_of(const mesh_layout_t &layout, const flat_mesh &flat, std::uint32_t slot,
                  const point3_t &towards)
{
    const std::uint32_t vertex =
        slot < layout.num_vertices
            ? slot
            : static_cast<std::uint32_t>(layout.extra_vertices[slot - layout.num_vertices]);
    const point3_t &p = flat.position(static_cast<int>(vertex));
    return p.x * towards.x + p.y * towards.y + p.z * towards.z;
}

} // namespace

depth_order_t order_by_depth(const mesh_layout_t &layout, const flat_mesh &flat,
                             std::span<const std::uint32_t> triangles,
                             std::span<const std::size_t> groups, const point3_t &towards)
{
    std::vector<placed_triangle_t> placed;
    for (const std::size_t group : groups) {
        const layout_group_t &range = layout.groups[group];
        for (std::uint32_t i = range.first; i + 2 < range.first + range.count; i += 3) {
            float sum = 0;
            for (std::uint32_t corner = 0; corner < 3; ++corner)
                sum += nearness_of(layout, flat, triangles[i + corner], towards);
            placed.push_back({sum, static_cast<std::uint32_t>(group), i});
        }
    }
    std::stable_sort(placed.begin(), placed.end(),
                     [](const placed_triangle_t &a, const placed_triangle_t &b) {
                         return a.nearness < b.nearness;
                     });
    depth_order_t order;
    for (const placed_triangle_t &triangle : placed) {
        const auto first = static_cast<std::uint32_t>(order.slots.size());
        if (order.runs.empty() || order.runs.back().group != triangle.group)
            order.runs.push_back({triangle.group, first, 0});
        order.runs.back().count += 3;
        const auto from = triangles.begin() + triangle.first;
        order.slots.insert(order.slots.end(), from, from + 3);
    }
    return order;
}
