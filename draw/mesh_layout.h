#ifndef VESK_DRAW_MESH_LAYOUT_H
#define VESK_DRAW_MESH_LAYOUT_H

// How one object's flat mesh becomes vertex and index buffers. Slots are what a vertex buffer
// holds: slot i is vertex i, further slots follow. A flat surface needs one slot that carries its
// normal (the last corner of each of its triangles, which flat shading reads); it claims the slot
// of one of its vertices when that is free. So a mesh of quads takes about one slot a vertex, edges
// and points are plain vertex indices, and a move rewrites positions and normals only.

#include "model/flat_mesh.h"

#include <cstdint>
#include <vector>

// Triangles that are drawn alike.
struct layout_group_t {
    std::int32_t material;
    bool smooth;
    bool twosided;
    std::uint32_t first; // into `triangles`
    std::uint32_t count; // of indices
};

struct mesh_layout_t {
    std::vector<std::uint32_t> triangles; // grouped
    std::vector<layout_group_t> groups;
    std::vector<std::uint32_t> edges;         // unique edges of polygons, two vertex indices each
    std::vector<std::uint32_t> lines;         // segments of line surfaces, two vertex indices each
    std::vector<layout_group_t> line_groups;  // by material
    std::vector<std::int32_t> extra_vertices; // of the slots after the vertices' own
    std::vector<std::int32_t> slot_face;      // whose normal the slot carries; -1 its vertex's
    std::vector<std::int32_t> corner_of_slot; // with texture coordinates: corner index; else empty
    std::vector<std::int32_t> odd_faces;      // whose stored normal is none, or looks backwards
    std::vector<std::int32_t> concave;        // surfaces that were cut into ears
    std::uint32_t num_vertices = 0;

    [[nodiscard]] std::size_t num_slots() const { return num_vertices + extra_vertices.size(); }
    [[nodiscard]] std::size_t vertex_of(std::size_t slot) const
    {
        return slot < num_vertices ? slot
                                   : static_cast<std::size_t>(extra_vertices[slot - num_vertices]);
    }
};

struct layout_options_t {
    bool cut_concave = true;        // else every polygon is a fan
    bool texture_coords = false;    // a slot for each corner
    bool quads_by_diagonal = false; // quads cut along the shorter diagonal
};

// A fan fills the polygon rightly when no corner turns against the others.
bool polygon_is_convex(const flat_mesh &flat, std::span<const std::int32_t> corners);

mesh_layout_t layout_mesh(const flat_mesh &flat, const layout_options_t &options);

// Part of a list of indices.
struct index_range_t {
    std::uint32_t first = 0;
    std::uint32_t count = 0;
};

// Neighbouring slots.
struct slot_run_t {
    std::size_t first;
    std::size_t count;
};

// The contents of the buffers, of some slots: three floats a slot, and a normal as four signed 16-bit
// numbers.
void layout_positions(const mesh_layout_t &layout, const flat_mesh &flat, const slot_run_t &run,
                      float *out);
void layout_normals(const mesh_layout_t &layout, const flat_mesh &flat, const slot_run_t &run,
                    std::int16_t *out);
// Of a layout with texture coordinates: two floats a slot.
void layout_texture_coords(const mesh_layout_t &layout, const flat_mesh &flat,
                           const slot_run_t &run, float *out);

// Unique edges of the polygons among `surfaces` (null: of all), two vertex indices each.
std::vector<std::uint32_t> unique_edges(const flat_mesh &flat, const std::vector<int> *surfaces);

#endif
