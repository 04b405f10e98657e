#ifndef VESK_DRAW_DEPTH_ORDER_H
#define VESK_DRAW_DEPTH_ORDER_H

// Triangles in the order in which transparent ones are drawn: what lies behind shines through only
// when it was drawn before.

#include "draw/mesh_layout.h"

#include <span>

// Neighbours in the order that are drawn alike.
struct depth_run_t {
    std::size_t group;          // of the layout
    std::uint32_t first, count; // into the slots
};

struct depth_order_t {
    std::vector<std::uint32_t> slots; // three a triangle, from back to front
    std::vector<depth_run_t> runs;
};

// Of the layout's groups with these numbers, by the middles of the triangles.
//   triangles  the layout's own, which it may have given up
//   towards    the viewer, in the object's coordinates
depth_order_t order_by_depth(const mesh_layout_t &layout, const flat_mesh &flat,
                             std::span<const std::uint32_t> triangles,
                             std::span<const std::size_t> groups, const point3_t &towards);

#endif
