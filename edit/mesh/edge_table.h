#ifndef VESK_EDIT_MESH_EDGE_TABLE_H
#define VESK_EDIT_MESH_EDGE_TABLE_H

// Every edge of an object's polygons once, with the corners that begin it. Lines have no edges
// here. Made by buckets of the lower vertex: linear while no vertex has thousands of neighbours,
// n log n then.

#include "model/flat_mesh.h"

#include <span>
#include <vector>

struct edge_use {
    int surface;
    int corner;   // place among all corners of the mesh of the end where the surface enters it
    bool forward; // from the edge's `a` to its `b`
};

struct mesh_edge {
    int a, b; // vertices, a < b
    int first_use;
};

class edge_table {
public:
    explicit edge_table(const flat_mesh &mesh);
    // Of polygons without an object: the corners of polygon i are offsets[i] .. offsets[i + 1] - 1.
    edge_table(int num_vertices, const std::vector<int> &offsets, const std::vector<int> &corners);

    [[nodiscard]] int size() const { return static_cast<int>(edges_.size()); }
    [[nodiscard]] const mesh_edge &edge(int i) const { return edges_[i]; }
    // In the order of the surfaces, and of the corners within one.
    [[nodiscard]] std::span<const edge_use> uses(int i) const
    {
        const edge_use *const begin = uses_.data() + edges_[i].first_use;
        const edge_use *const end =
            i + 1 < size() ? uses_.data() + edges_[i + 1].first_use : uses_.data() + uses_.size();
        return {begin, end};
    }
    // The edge between two vertices, or -1.
    [[nodiscard]] int find(int u, int v) const;
    // The edge that each corner of the mesh begins; -1 for corners of lines and for edges of no
    // extent (from a vertex to itself).
    [[nodiscard]] std::vector<int> edges_of_corners(int num_corners) const;

private:
    template <class IsPolygon>
    void build(int num_vertices, const std::vector<int> &offsets, const std::vector<int> &corners,
               IsPolygon is_polygon_at);

    std::vector<mesh_edge> edges_;
    std::vector<edge_use> uses_;
    std::vector<int> first_edges_; // of each vertex as `a`, and one more
};

#endif
