#include "edit/mesh/mesh_edges.h"

#include "base/big_vector.h"
#include "base/worker.h"

#include <algorithm>
#include <numeric>
#include <span>

namespace {

struct half_edge {
    std::int32_t high;
    std::int32_t corner;
    bool operator<(const half_edge &other) const
    {
        return high != other.high ? high < other.high : corner < other.corner;
    }
};

// Calls visit(corner, lower vertex, higher vertex) for every corner of the surface with an edge.
template <class Visit>
void for_each_edge(const flat_mesh &mesh, int surface, Visit &&visit)
{
    const auto corners = mesh.surface_corners(surface);
    const int first = mesh.first_corner(surface);
    const bool open = mesh.surface(surface).type == SURFACE_LINE;
    const std::size_t n = corners.size();
    for (std::size_t i = 0; i < n; ++i) {
        if (i + 1 == n && open)
            break;
        const auto [low, high] = std::minmax({corners[i], corners[i + 1 < n ? i + 1 : 0]});
        visit(first + static_cast<int>(i), low, high);
    }
}

// Puts the edges into buckets by their lower vertex: bucket v is begin[v] .. begin[v + 1] - 1.
std::vector<half_edge> sort_into_buckets(const flat_mesh &mesh, const std::vector<int> &surfaces,
                                         std::vector<std::int32_t> &begin)
{
    // Each thread has lower vertices of its own, and looks at all edges.
    const int n = mesh.num_vertices();
    begin.assign(n + 1, 0);
    in_two_parts(n, [&](int first, int end) {
        for (const int surface : surfaces) {
            for_each_edge(mesh, surface, [&](int, int low, int) {
                if (low >= first && low < end)
                    ++begin[low + 1];
            });
        }
    });
    std::partial_sum(begin.begin(), begin.end(), begin.begin());
    auto edges = big_vector<half_edge>(begin.back());
    std::vector<std::int32_t> at(begin.begin(), begin.end() - 1);
    in_two_parts(n, [&](int first, int end) {
        for (const int surface : surfaces) {
            for_each_edge(mesh, surface, [&](int corner, int low, int high) {
                if (low >= first && low < end)
                    edges[at[low]++] = {high, corner};
            });
        }
    });
    in_parallel_ranges(n, [&](int first, int end) {
        for (int v = first; v < end; ++v)
            std::sort(edges.begin() + begin[v], edges.begin() + begin[v + 1]);
    });
    return edges;
}

} // namespace

mesh_edges edges_of(const flat_mesh &mesh, const std::vector<int> &surfaces)
{
    std::vector<std::int32_t> begin;
    const std::vector<half_edge> edges = sort_into_buckets(mesh, surfaces, begin);
    mesh_edges result;
    result.of_corner.assign(mesh.num_corners(), -1);
    for (std::size_t v = 0; v + 1 < begin.size(); ++v) {
        for (int i = begin[v]; i < begin[v + 1]; ++i) {
            const bool again = i > begin[v] && edges[i].high == edges[i - 1].high;
            result.count += again ? 0 : 1;
            result.of_corner[edges[i].corner] = result.count - 1;
        }
    }
    // Numbers by first occurrence.
    std::vector<std::int32_t> number(result.count, -1);
    int next = 0;
    for (const int surface : surfaces) {
        for_each_edge(mesh, surface, [&](int corner, int, int) {
            std::int32_t &edge = result.of_corner[corner];
            if (number[edge] < 0)
                number[edge] = next++;
            edge = number[edge];
        });
    }
    return result;
}

mesh_edges edges_of(const flat_mesh &mesh)
{
    std::vector<int> all(mesh.num_surfaces());
    std::iota(all.begin(), all.end(), 0);
    return edges_of(mesh, all);
}
