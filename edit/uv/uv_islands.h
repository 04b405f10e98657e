#ifndef VESK_EDIT_UV_UV_ISLANDS_H
#define VESK_EDIT_UV_UV_ISLANDS_H

#include "edit/uv/uv_mesh.h"

// How surfaces hang together in the picture. Two surfaces of an object are joined along an edge when
// they share its two vertices and their coordinates agree at both. A point is the corners that are
// joined so; an island the surfaces.

// Coordinates that differ by no more are the same: less than a hundredth of a pixel.
constexpr float uv_tolerance = 1e-6f;

struct uv_edge {
    int corner, next;              // the two ends, corners of one surface
    int twin = -1, twin_next = -1; // the same of a surface that is joined there; none at a border
    [[nodiscard]] bool is_border() const { return twin < 0; }
};

struct uv_islands {
    int num_points = 0;
    std::vector<int> point; // of each corner
    int num_islands = 0;
    std::vector<int> island;    // of each surface; numbered in the order of their first surfaces
    std::vector<uv_edge> edges; // a joined edge once, borders of each surface
    std::vector<int> borders;   // of the edges; empty where they are more than most_uv_borders
};
constexpr std::size_t most_uv_borders = 100000;

// n log n in the number of corners.
//   sides_at_once  as many are looked at together, 20 bytes each
uv_islands uv_find_islands(const uv_mesh &mesh, std::size_t sides_at_once = 8000000);

// The box of each island.
std::vector<uv_box> uv_island_boxes(const uv_mesh &mesh, const uv_islands &islands);

#endif
