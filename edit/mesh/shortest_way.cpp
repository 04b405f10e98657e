#include "edit/mesh/shortest_way.h"

#include "model/vec3d.h"

#include <algorithm>
#include <limits>
#include <queue>
#include <utility>

namespace {

// `visit_neighbours(i, visit)` calls visit(j, length of the step) for each neighbour of i.
template <class Neighbours>
std::vector<int> shortest_way(int count, int from, int to, Neighbours visit_neighbours)
{
    std::vector<double> lengths(count, std::numeric_limits<double>::infinity());
    std::vector<int> before(count, -1);
    using candidate = std::pair<double, int>;
    std::priority_queue<candidate, std::vector<candidate>, std::greater<>> open;
    lengths[from] = 0;
    open.push({0, from});
    while (!open.empty() && open.top().second != to) {
        const auto [length, i] = open.top();
        open.pop();
        if (length > lengths[i])
            continue;
        visit_neighbours(i, [&, so_far = length, here = i](int j, double step) {
            if (so_far + step >= lengths[j])
                return;
            lengths[j] = so_far + step;
            before[j] = here;
            open.push({lengths[j], j});
        });
    }
    if (open.empty())
        return {};
    std::vector<int> way;
    for (int i = to; i >= 0; i = before[i])
        way.push_back(i);
    std::reverse(way.begin(), way.end());
    return way;
}

vec3d middle_of(const flat_mesh &mesh, int surface)
{
    vec3d sum;
    const auto corners = mesh.surface_corners(surface);
    for (const int v : corners)
        sum += to_vec3d(mesh.position(v));
    return sum / static_cast<double>(std::max<std::size_t>(corners.size(), 1));
}

} // namespace

std::vector<int> shortest_way_of_vertices(const edge_topology &topology, int from, int to)
{
    const flat_mesh &mesh = topology.mesh();
    return shortest_way(mesh.num_vertices(), from, to, [&](int v, auto visit) {
        for (const int e : topology.edges_at(v)) {
            const int other = topology.other_end(e, v);
            visit(other, length(between(mesh.position(v), mesh.position(other))));
        }
    });
}

std::vector<int> shortest_way_of_surfaces(const edge_topology &topology, int from, int to)
{
    const flat_mesh &mesh = topology.mesh();
    return shortest_way(mesh.num_surfaces(), from, to, [&](int s, auto visit) {
        const vec3d here = middle_of(mesh, s);
        for (int c = mesh.first_corner(s); c < mesh.end_corner(s); ++c) {
            const int e = topology.edge_of_corner(c);
            if (e < 0)
                continue;
            for (const edge_use &use : topology.uses(e)) {
                if (use.surface != s)
                    visit(use.surface, length(middle_of(mesh, use.surface) - here));
            }
        }
    });
}
