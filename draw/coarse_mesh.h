#ifndef VESK_DRAW_COARSE_MESH_H
#define VESK_DRAW_COARSE_MESH_H

// Coarser versions of a large mesh, drawn while something moves. The triangles are sorted into clusters
// that lie together; each is made coarser by itself and keeps its border, so that clusters of different
// detail meet without cracks, and clusters outside of the view or facing away can be left out. The borders
// are most of what is left in the end, so neighbouring clusters make a family, whose coarsest version keeps
// the family's border alone.

#include "draw/mesh_layout.h"

#include <array>
#include <atomic>

// 0 the mesh itself, 1 a tenth of it, 2 little more than the clusters' borders, 3 the families.
constexpr int num_detail_levels = 4;
constexpr int family_detail = 3;

// What a coarse mesh is made of: nothing that changes, so that a worker can do it.
struct coarse_source_t {
    flat_array<point3_t> positions;
    std::vector<std::uint32_t> triangles; // slots; of the groups one after the other
    std::vector<layout_group_t> groups;
    std::vector<std::int32_t> extra_vertices; // of the layout
    std::vector<std::int32_t> slot_face;
    std::uint32_t num_vertices = 0;
};

struct mesh_cluster_t {
    std::uint32_t group;
    std::array<index_range_t, num_detail_levels> triangles;
    point3_t centre;
    float radius;
    // All triangles face away from a viewer at p when
    // (centre - p) . axis >= cutoff * |centre - p| + radius; a cutoff of 1: they face many ways.
    point3_t axis;
    float cutoff;
};

struct cluster_family_t {
    std::size_t first, count; // of the clusters
    mesh_cluster_t whole;     // with triangles of its own level alone; its bounds are theirs
};

struct coarse_mesh_t {
    flat_array<point3_t> positions;       // that it was made of
    std::vector<std::uint32_t> triangles; // slots: level by level, in each the clusters in order
    std::vector<std::uint32_t> edges;     // of the coarse levels, two slots each
    std::array<index_range_t, num_detail_levels> level_edges;
    std::vector<mesh_cluster_t> clusters; // in the order of their groups
    std::vector<cluster_family_t> families;
};

// Null when `cancelled` became true.
std::shared_ptr<coarse_mesh_t> make_coarse_mesh(const coarse_source_t &source,
                                                const std::atomic<bool> &cancelled);

// A mesh of fewer triangles is drawn fast enough.
constexpr std::uint32_t least_coarse_triangles = 10000;

#endif
