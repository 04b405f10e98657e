#ifndef VESK_EDIT_MESH_VERTEX_LINKS_H
#define VESK_EDIT_MESH_VERTEX_LINKS_H

// Which vertices of a mesh edges join: sides of polygons and segments of lines, each once.

#include "model/flat_mesh.h"

#include <span>
#include <vector>

struct vertex_link {
    int other;
    bool border; // of other than two polygons: where a surface ends, splits, or is a line
};

class vertex_links {
public:
    explicit vertex_links(const flat_mesh &mesh);
    [[nodiscard]] std::span<const vertex_link> of(int v) const
    {
        return {links_.data() + begin_[v], links_.data() + begin_[v + 1]};
    }

private:
    std::vector<int> begin_; // of each vertex, and one more
    std::vector<vertex_link> links_;
};

// Vertices that hang together among the chosen ones of a mesh, in the order of their first ones.
std::vector<std::vector<int>> linked_groups(const vertex_links &links, int num_vertices,
                                            const std::vector<int> &chosen);

// A group as a chain: one after the other along the edges between them, from the end with the lower
// place; a closed one begins at its lowest. Empty where the group branches.
struct vertex_chain {
    std::vector<int> vertices;
    bool closed = false;
};
vertex_chain chain_of(const vertex_links &links, const std::vector<int> &group);

#endif
