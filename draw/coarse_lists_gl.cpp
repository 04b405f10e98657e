#include "draw/coarse_lists_gl.h"

#include "model/vector.h"

#include <algorithm>

namespace {

void write_list(gpu_buffer &buffer, std::vector<std::uint32_t> &list)
{
    buffer.release();
    buffer.reserve(GL_ELEMENT_ARRAY_BUFFER, list.size() * sizeof(std::uint32_t));
    buffer.write(GL_ELEMENT_ARRAY_BUFFER, 0, list.data(), list.size() * sizeof(std::uint32_t));
    std::vector<std::uint32_t>().swap(list);
}

} // namespace

void coarse_take(coarse_lists_t &lists, const std::vector<point3_t> &positions)
{
    if (lists.job == nullptr || !lists.job->ended)
        return;
    const auto made = lists.job->result;
    const bool failed = lists.job->failed;
    coarse_drop(lists);
    lists.given_up = failed;
    if (made == nullptr)
        return;
    lists.mesh = made;
    write_list(lists.triangles, made->triangles);
    write_list(lists.edges, made->edges);
    lists.moved.assign(made->clusters.size(), 0);
    coarse_note_moved(lists, changed_points(*made->positions, positions));
}

void coarse_note_moved(coarse_lists_t &lists, const changed_t &moved)
{
    if (lists.mesh == nullptr || moved.empty())
        return;
    lists.outdated = true;
    const coarse_mesh_t &mesh = *lists.mesh;
    const std::size_t num_vertices = mesh.positions->size();
    constexpr std::size_t a_part = 8; // more of it is drawn as coarse as the rest
    if (moved.size() > num_vertices / a_part)
        return;
    lists.noted.resize(num_vertices, false);
    for (const std::int32_t v : moved) {
        if (lists.noted[v])
            continue;
        lists.noted[v] = true;
        const point3_t &was = (*mesh.positions)[v];
        for (std::size_t i = 0; i < mesh.clusters.size(); ++i) {
            const mesh_cluster_t &cluster = mesh.clusters[i];
            if (lists.moved[i] == 0 &&
                point_length(point_sub(was, cluster.centre)) <= cluster.radius * 1.0001)
                lists.moved[i] = 1;
        }
    }
}

void coarse_drop(coarse_lists_t &lists)
{
    if (lists.job != nullptr)
        lists.job->cancelled = true;
    lists.triangles.release();
    lists.edges.release();
    lists = {};
}
