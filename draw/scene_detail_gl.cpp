#include "draw/draw_scene_gl.h"

#include <algorithm>

namespace {

int detail_of(const object_buffers_t &buffers, int level)
{
    if (buffers.num_indices == 0 && buffers.waits())
        return cloud_detail;
    if (buffers.coarse.mesh != nullptr)
        return std::min(level, num_detail_levels - 1);
    const bool large = buffers.num_indices / 3 >= least_coarse_triangles;
    return large && level == cloud_detail ? cloud_detail : 0;
}

} // namespace

detail_shares_t detail_shares(const scene_t &scene)
{
    detail_shares_t sums;
    sums.fill(scene.other_edges);
    for (const std::size_t i : scene.large)
        for (std::size_t level = 0; level < sums.size(); ++level) {
            const object_buffers_t &b = *scene.items[i].buffers;
            const int detail = detail_of(b, static_cast<int>(level));
            sums[level] += detail == 0              ? b.edges.count
                           : detail == cloud_detail ? cloud_points
                                                    : b.coarse.mesh->level_edges[detail].count;
        }
    for (std::size_t level = sums.size(); level-- > 0;)
        sums[level] = sums[0] > 0 ? sums[level] / sums[0] : 1;
    return sums;
}

void choose_detail(scene_t &scene, int level)
{
    for (const std::size_t i : scene.large)
        scene.items[i].detail = detail_of(*scene.items[i].buffers, level);
}
