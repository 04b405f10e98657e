#include "edit/mesh/vertex_links.h"

#include "edit/mesh/mesh_edges.h"
#include "edit/mesh/union_find.h"

#include <algorithm>

namespace {

struct edge_t {
    int a = -1, b = -1;
    int polygons = 0;
};

std::vector<edge_t> all_edges(const flat_mesh &mesh)
{
    const mesh_edges edges = edges_of(mesh);
    std::vector<edge_t> all(edges.count);
    for (int s = 0; s < mesh.num_surfaces(); ++s) {
        for (int c = mesh.first_corner(s); c < mesh.end_corner(s); ++c) {
            if (edges.of_corner[c] < 0)
                continue;
            edge_t &edge = all[edges.of_corner[c]];
            edge.a = mesh.corner(c);
            edge.b = mesh.corner(next_corner(mesh, s, c));
            edge.polygons += mesh.surface(s).is_line() ? 0 : 1;
        }
    }
    std::erase_if(all, [](const edge_t &edge) { return edge.a == edge.b; });
    return all;
}

} // namespace

vertex_links::vertex_links(const flat_mesh &mesh) : begin_(mesh.num_vertices() + 1)
{
    const std::vector<edge_t> edges = all_edges(mesh);
    for (const edge_t &edge : edges) {
        ++begin_[edge.a + 1];
        ++begin_[edge.b + 1];
    }
    for (std::size_t v = 1; v < begin_.size(); ++v)
        begin_[v] += begin_[v - 1];
    links_.resize(begin_.back());
    std::vector<int> at(begin_.begin(), begin_.end() - 1);
    for (const edge_t &edge : edges) {
        links_[at[edge.a]++] = {edge.b, edge.polygons != 2};
        links_[at[edge.b]++] = {edge.a, edge.polygons != 2};
    }
}

std::vector<std::vector<int>> linked_groups(const vertex_links &links, int num_vertices,
                                            const std::vector<int> &chosen)
{
    std::vector<int> place(num_vertices, -1); // in `chosen`
    for (std::size_t i = 0; i < chosen.size(); ++i)
        place[chosen[i]] = static_cast<int>(i);
    union_find sets(static_cast<int>(chosen.size()));
    for (std::size_t i = 0; i < chosen.size(); ++i) {
        for (const vertex_link &link : links.of(chosen[i])) {
            if (place[link.other] >= 0)
                sets.join(static_cast<int>(i), place[link.other]);
        }
    }
    std::vector<int> numbers;
    std::vector<std::vector<int>> groups(sets.number(&numbers));
    for (std::size_t i = 0; i < chosen.size(); ++i)
        groups[numbers[i]].push_back(chosen[i]);
    return groups;
}

vertex_chain chain_of(const vertex_links &links, const std::vector<int> &group)
{
    const auto is_in = [&](int v) { return std::binary_search(group.begin(), group.end(), v); };
    int start = -1;
    for (const int v : group) {
        const auto all = links.of(v);
        const auto inside = std::count_if(
            all.begin(), all.end(), [&](const vertex_link &link) { return is_in(link.other); });
        if (inside > 2)
            return {};
        if (inside == 1 && start < 0)
            start = v;
    }
    vertex_chain chain;
    chain.closed = start < 0 && group.size() > 2;
    for (int v = start < 0 ? group.front() : start, before = -1; v >= 0;) {
        chain.vertices.push_back(v);
        int next = -1;
        for (const vertex_link &link : links.of(v)) {
            if (next < 0 && link.other != before && is_in(link.other))
                next = link.other;
        }
        before = v;
        v = next == chain.vertices.front() ? -1 : next;
    }
    return chain;
}
