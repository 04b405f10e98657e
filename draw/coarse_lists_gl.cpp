#include "draw/coarse_lists_gl.h"

#include "model/vector.h"

#include <algorithm>
#include <utility>

namespace {

using list_t = std::vector<std::uint32_t>;

std::size_t bytes_of(const list_t &list) { return list.size() * sizeof(std::uint32_t); }

// Of the bytes of the list that lie from `at` on at most so many; how many they are.
std::size_t write_piece(gpu_buffer &buffer, const list_t &list, std::size_t at, std::size_t most)
{
    if (at == 0)
        buffer.reserve(GL_ELEMENT_ARRAY_BUFFER, bytes_of(list));
    const std::size_t count = std::min(most, bytes_of(list) - at);
    buffer.write(GL_ELEMENT_ARRAY_BUFFER, at, list.data() + at / sizeof(std::uint32_t), count);
    return count;
}

// True: all of it is there.
bool write_next(coarse_lists_t &lists, const coarse_mesh_t &mesh, std::size_t most_bytes)
{
    const std::size_t first_bytes = bytes_of(mesh.triangles);
    if (lists.written < first_bytes) {
        const std::size_t count =
            write_piece(lists.next_triangles, mesh.triangles, lists.written, most_bytes);
        lists.written += count;
        most_bytes -= count;
    }
    if (lists.written < first_bytes || most_bytes == 0)
        return false;
    lists.written +=
        write_piece(lists.next_edges, mesh.edges, lists.written - first_bytes, most_bytes);
    return lists.written == first_bytes + bytes_of(mesh.edges);
}

// Appends some of `values`, of which `out` has the first already; returns how many bytes that leaves.
std::size_t append_some(std::vector<std::int32_t> &out, const std::vector<std::int32_t> &values,
                        std::size_t most_bytes)
{
    out.reserve(values.size());
    const std::size_t count = std::min(values.size() - out.size(), most_bytes / sizeof(out[0]));
    const auto first = values.begin() + static_cast<std::ptrdiff_t>(out.size());
    out.insert(out.end(), first, first + static_cast<std::ptrdiff_t>(count));
    return most_bytes - count * sizeof(out[0]);
}

} // namespace

void coarse_begin(coarse_lists_t &lists, const mesh_layout_t &layout,
                  const flat_array<point3_t> &positions)
{
    lists.source = std::make_shared<coarse_source_t>();
    lists.source->positions = positions;
    lists.source->groups = layout.groups;
    lists.source->num_vertices = layout.num_vertices;
}

void coarse_gather(coarse_lists_t &lists, const mesh_layout_t &layout, const gpu_buffer &triangles,
                   const index_range_t &range, std::size_t most_bytes)
{
    coarse_source_t &source = *lists.source;
    const std::size_t first = source.triangles.size();
    const std::size_t count = std::min(range.count - first, most_bytes / sizeof(std::uint32_t));
    const std::size_t bytes = count * sizeof(std::uint32_t);
    source.triangles.reserve(range.count);
    source.triangles.resize(first + count);
    triangles.read(GL_ELEMENT_ARRAY_BUFFER, (range.first + first) * sizeof(std::uint32_t),
                   source.triangles.data() + first, bytes);
    const std::size_t left =
        append_some(source.extra_vertices, layout.extra_vertices, most_bytes - bytes);
    append_some(source.slot_face, layout.slot_face, left);
    if (source.triangles.size() < range.count ||
        source.extra_vertices.size() < layout.extra_vertices.size() ||
        source.slot_face.size() < layout.slot_face.size())
        return;
    lists.job = coarse_job_start(std::move(source));
    lists.source = nullptr;
}

void coarse_take(coarse_lists_t &lists, const std::vector<point3_t> &positions,
                 std::size_t most_bytes)
{
    if (lists.job == nullptr || !lists.job->ended)
        return;
    const auto made = lists.job->result;
    if (made != nullptr && !lists.job->failed && !write_next(lists, *made, most_bytes))
        return;
    const gpu_buffer triangles = std::exchange(lists.next_triangles, {});
    const gpu_buffer edges = std::exchange(lists.next_edges, {});
    const bool failed = lists.job->failed;
    coarse_drop(lists);
    lists.given_up = failed;
    if (made == nullptr || failed)
        return;
    lists.mesh = made;
    lists.triangles = triangles;
    lists.edges = edges;
    list_t().swap(made->triangles);
    list_t().swap(made->edges);
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
    for (gpu_buffer *buffer :
         {&lists.triangles, &lists.edges, &lists.next_triangles, &lists.next_edges})
        buffer->release();
    lists = {};
}
