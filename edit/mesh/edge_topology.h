#ifndef VESK_EDIT_MESH_EDGE_TOPOLOGY_H
#define VESK_EDIT_MESH_EDGE_TOPOLOGY_H

// The edges of an object's polygons with their neighbours: walks along loops, rings and borders.
// Edges have the numbers of the edge table.

#include "edit/mesh/edge_table.h"
#include "model/flat_mesh.h"

#include <memory>
#include <span>
#include <utility>
#include <vector>

// The edges of one walk in order. Of a closed one the last is followed by the first.
struct edge_chain {
    std::vector<int> edges;
    bool closed = false;
};

class edge_topology {
public:
    explicit edge_topology(flat_ptr mesh);
    // With the tables of another one, whose mesh has the same polygons.
    edge_topology(flat_ptr mesh, const edge_topology &other)
        : mesh_(std::move(mesh)), tables_(other.tables_)
    {
    }

    [[nodiscard]] const flat_mesh &mesh() const { return *mesh_; }
    [[nodiscard]] const edge_table &table() const { return tables_->edges; }
    [[nodiscard]] int size() const { return table().size(); }
    [[nodiscard]] const mesh_edge &edge(int e) const { return table().edge(e); }
    [[nodiscard]] std::span<const edge_use> uses(int e) const { return table().uses(e); }
    // The edge that a corner begins, or -1.
    [[nodiscard]] int edge_of_corner(int corner) const { return tables_->of_corner[corner]; }
    [[nodiscard]] std::span<const int> edges_at(int v) const
    {
        const tables_t &all = *tables_;
        return {all.at_vertices.data() + all.first_at[v],
                all.at_vertices.data() + all.first_at[v + 1]};
    }
    [[nodiscard]] int other_end(int e, int v) const
    {
        return edge(e).a == v ? edge(e).b : edge(e).a;
    }
    [[nodiscard]] bool is_border(int e) const { return uses(e).size() == 1; }
    [[nodiscard]] bool is_quad(int surface) const
    {
        return mesh_->end_corner(surface) - mesh_->first_corner(surface) == 4;
    }
    // The side of a quad that faces the one which `corner` begins.
    [[nodiscard]] int opposite_corner(int surface, int corner) const
    {
        const int first = mesh_->first_corner(surface);
        return first + (corner - first + 2) % 4;
    }
    // The surface beyond `surface` at an edge of exactly two; null at other edges.
    [[nodiscard]] const edge_use *beyond(int e, int surface) const;

    // The edges that go straight on from `e`: through vertices of four edges, along a border from
    // border edge to border edge.
    [[nodiscard]] edge_chain loop(int e) const;
    // The edges that lie across quads from one another. Ends at other polygons, at borders and at
    // edges of more than two surfaces.
    [[nodiscard]] edge_chain ring(int e) const;
    // The quads between the edges of the ring, in its order: one fewer than edges, or as many when
    // it is closed.
    [[nodiscard]] std::vector<int> ring_quads(const edge_chain &ring) const;
    // The edge that goes straight on from `e` beyond its end `v`, or -1.
    [[nodiscard]] int straight_on(int e, int v) const;

private:
    struct tables_t {
        explicit tables_t(const flat_mesh &mesh);
        edge_table edges;
        std::vector<int> of_corner;
        std::vector<int> first_at, at_vertices; // edges by vertex
    };
    flat_ptr mesh_;
    std::shared_ptr<const tables_t> tables_;
};
using topology_ptr = std::shared_ptr<const edge_topology>;

// The topology of the object as it is; its tables are kept until the object's corners change, for the
// objects asked for last. Never null.
topology_ptr object_topology(object_t *object);

// Gives the kept ones back: no edges are looked at for the time being.
void object_topology_forget();

#endif
