#include "edit/mesh/edge_table.h"

#include "base/big_vector.h"
#include "base/worker.h"

#include <algorithm>

namespace {

struct half_edge {
    int high; // the other end
    edge_use use;
};

} // namespace

template <class IsPolygon>
void edge_table::build(int num_vertices, const std::vector<int> &offsets,
                       const std::vector<int> &corners, IsPolygon is_polygon_at)
{
    // Calls visit(surface, corner, u, v) for every side of every polygon.
    const auto for_each_side = [&](auto &&visit) {
        for (int s = 0; s + 1 < static_cast<int>(offsets.size()); ++s) {
            if (!is_polygon_at(s))
                continue;
            const int begin = offsets[s], end = offsets[s + 1];
            for (int c = begin; c < end; ++c) {
                const int u = corners[c];
                const int v = corners[c + 1 < end ? c + 1 : begin];
                if (u != v)
                    visit(s, c, u, v);
            }
        }
    };
    // Each thread has lower vertices of its own, and looks at all sides.
    std::vector<int> starts(num_vertices + 1, 0); // of each lower vertex
    in_two_parts(num_vertices, [&](int first, int end) {
        for_each_side([&](int, int, int u, int v) {
            if (const int low = std::min(u, v); low >= first && low < end)
                ++starts[low + 1];
        });
    });
    for (std::size_t i = 1; i < starts.size(); ++i)
        starts[i] += starts[i - 1];
    auto halves = big_vector<half_edge>(starts.back());
    std::vector<int> next(starts.begin(), starts.end() - 1);
    in_two_parts(num_vertices, [&](int first, int end) {
        for_each_side([&](int s, int c, int u, int v) {
            if (const int low = std::min(u, v); low >= first && low < end)
                halves[next[low]++] = {std::max(u, v), {s, c, u == low}};
        });
    });

    // Counted first: of ten million vertices a vector that doubles wastes a quarter of a gigabyte.
    const auto begins_edge = [&](int half, int low) {
        return half == starts[low] || halves[half].high != halves[half - 1].high;
    };
    first_edges_ = big_vector<int>(starts.size());
    in_parallel_ranges(num_vertices, [&](int begin, int end) {
        for (int low = begin; low < end; ++low) {
            std::sort(halves.begin() + starts[low], halves.begin() + starts[low + 1],
                      [](const half_edge &x, const half_edge &y) {
                          return x.high != y.high ? x.high < y.high : x.use.corner < y.use.corner;
                      });
            for (int half = starts[low]; half < starts[low + 1]; ++half)
                first_edges_[low + 1] += begins_edge(half, low) ? 1 : 0;
        }
    });
    for (std::size_t i = 1; i < first_edges_.size(); ++i)
        first_edges_[i] += first_edges_[i - 1];
    uses_ = big_vector<edge_use>(halves.size());
    edges_ = big_vector<mesh_edge>(first_edges_.back());
    in_parallel_ranges(num_vertices, [&](int begin, int end) {
        for (int low = begin; low < end; ++low) {
            int edge = first_edges_[low];
            for (int half = starts[low]; half < starts[low + 1]; ++half) {
                if (begins_edge(half, low))
                    edges_[edge++] = {low, halves[half].high, half};
                uses_[half] = halves[half].use;
            }
        }
    });
}

edge_table::edge_table(const flat_mesh &mesh)
{
    build(mesh.num_vertices(), *mesh.corner_offsets, *mesh.corners,
          [&](int s) { return !mesh.surface(s).is_line(); });
}

edge_table::edge_table(int num_vertices, const std::vector<int> &offsets,
                       const std::vector<int> &corners)
{
    build(num_vertices, offsets, corners, [](int) { return true; });
}

int edge_table::find(int u, int v) const
{
    const int low = std::min(u, v), high = std::max(u, v);
    const auto begin = edges_.begin() + first_edges_[low];
    const auto end = edges_.begin() + first_edges_[low + 1];
    const auto found = std::lower_bound(
        begin, end, high, [](const mesh_edge &edge, int wanted) { return edge.b < wanted; });
    return found != end && found->b == high ? static_cast<int>(found - edges_.begin()) : -1;
}

std::vector<int> edge_table::edges_of_corners(int num_corners) const
{
    std::vector<int> edges(num_corners, -1);
    in_parallel_ranges(size(), [&](int begin, int end) {
        for (int e = begin; e < end; ++e) {
            for (const edge_use &use : uses(e))
                edges[use.corner] = e;
        }
    });
    return edges;
}
