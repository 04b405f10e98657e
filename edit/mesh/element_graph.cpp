#include "edit/mesh/element_graph.h"

#include "edit/mesh/mesh_edges.h"
#include "edit/mesh/union_find.h"

namespace {

// The knots that an element with this flag has.
element_flags knots_of(const element_graph &graph, const element_flags &chosen, bool flag)
{
    element_flags marked(graph.num_knots);
    for (int i = 0; i < graph.size(); ++i) {
        if ((chosen[i] != 0) != flag)
            continue;
        for (const int knot : graph.of(i))
            marked[knot] = 1;
    }
    return marked;
}

bool has_marked(const element_graph &graph, int element, const element_flags &marked)
{
    for (const int knot : graph.of(element)) {
        if (marked[knot] != 0)
            return true;
    }
    return false;
}

} // namespace

element_graph graph_of_surfaces(const flat_mesh &mesh)
{
    return {*mesh.corner_offsets, *mesh.corners, mesh.num_vertices()};
}

element_graph graph_of_edges(const edge_table &edges, int num_vertices)
{
    element_graph graph;
    graph.num_knots = num_vertices;
    for (int e = 0; e < edges.size(); ++e) {
        graph.knots.push_back(edges.edge(e).a);
        graph.knots.push_back(edges.edge(e).b);
        graph.begin.push_back(static_cast<int>(graph.knots.size()));
    }
    return graph;
}

element_graph graph_of_vertices(const flat_mesh &mesh)
{
    const mesh_edges edges = edges_of(mesh);
    element_graph graph;
    graph.num_knots = edges.count;
    graph.begin.assign(mesh.num_vertices() + 1, 0);
    // Both ends of every side; sides of one edge come with the same knot again.
    const auto for_each_end = [&](auto &&visit) {
        for (int s = 0; s < mesh.num_surfaces(); ++s) {
            for (int c = mesh.first_corner(s); c < mesh.end_corner(s); ++c) {
                if (edges.of_corner[c] < 0)
                    continue;
                visit(mesh.corner(c), edges.of_corner[c]);
                visit(mesh.corner(next_corner(mesh, s, c)), edges.of_corner[c]);
            }
        }
    };
    for_each_end([&](int v, int) { ++graph.begin[v + 1]; });
    for (std::size_t v = 1; v < graph.begin.size(); ++v)
        graph.begin[v] += graph.begin[v - 1];
    graph.knots.resize(graph.begin.back());
    std::vector<int> at(graph.begin.begin(), graph.begin.end() - 1);
    for_each_end([&](int v, int edge) { graph.knots[at[v]++] = edge; });
    return graph;
}

element_flags grown(const element_graph &graph, const element_flags &chosen)
{
    const element_flags reached = knots_of(graph, chosen, true);
    element_flags result = chosen;
    for (int i = 0; i < graph.size(); ++i) {
        if (chosen[i] == 0)
            result[i] = has_marked(graph, i, reached) ? 1 : 0;
    }
    return result;
}

element_flags shrunk(const element_graph &graph, const element_flags &chosen)
{
    const element_flags left_out = knots_of(graph, chosen, false);
    element_flags result = chosen;
    for (int i = 0; i < graph.size(); ++i) {
        if (chosen[i] != 0)
            result[i] = has_marked(graph, i, left_out) ? 0 : 1;
    }
    return result;
}

element_flags linked(const element_graph &graph, const element_flags &chosen)
{
    union_find sets(graph.num_knots);
    for (int i = 0; i < graph.size(); ++i) {
        const auto knots = graph.of(i);
        for (const int knot : knots)
            sets.join(knots.front(), knot);
    }
    element_flags reached(graph.num_knots);
    for (int i = 0; i < graph.size(); ++i) {
        if (chosen[i] != 0 && !graph.of(i).empty())
            reached[sets.find(graph.of(i).front())] = 1;
    }
    element_flags result = chosen;
    for (int i = 0; i < graph.size(); ++i) {
        if (!graph.of(i).empty() && reached[sets.find(graph.of(i).front())] != 0)
            result[i] = 1;
    }
    return result;
}
