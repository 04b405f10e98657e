#ifndef VESK_MODEL_FLAT_MESH_H
#define VESK_MODEL_FLAT_MESH_H

// The one immutable form of an object's geometry: separate shared arrays. Undo, drawing, picking,
// exporters and operations take it from object_flat, which rebuilds only the arrays whose aspect
// is marked: an array whose pointer is the same as before has not changed. It is the one reader of
// raw lists: corners without a vertex, or with one of another object, are left out.

#include "model/object.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

struct flat_uv {
    float u, v;
    bool operator==(const flat_uv &) const = default;
};

struct flat_surface {
    std::int32_t material; // palette index as stored: may lie outside the palette
    std::uint8_t type;     // SURFACE_POLYGON, ...
    std::uint8_t smooth;   // 0 or 1
    std::uint8_t twosided; // 0 or 1
    std::uint8_t unused;
    // Open or closed; every other type code is drawn as a polygon.
    [[nodiscard]] bool is_line() const
    {
        return type == SURFACE_CLOSED_LINE || type == SURFACE_LINE;
    }
    bool operator==(const flat_surface &) const = default;
};

// The elements of an array; how many images of the history hold it stands beside them, so that the memory of
// all images is counted without a look-up.
template <class T>
struct flat_vector : std::vector<T> {
    explicit flat_vector(std::vector<T> &&elements) noexcept : std::vector<T>(std::move(elements))
    {
    }
    mutable std::atomic<int> images = 0;
};
template <class T>
using flat_array = std::shared_ptr<const flat_vector<T>>;

struct flat_mesh {
    // one element a vertex, in list order
    flat_array<point3_t> positions;
    flat_array<point3_t> normals;
    // one element a surface, in list order
    flat_array<point3_t> face_normals;
    flat_array<flat_surface> surfaces;
    // corners of surface i: corner_offsets[i] .. corner_offsets[i + 1] - 1
    flat_array<std::int32_t> corner_offsets; // num_surfaces() + 1 elements
    flat_array<std::int32_t> corners;        // vertex indices
    flat_array<flat_uv> texture_coords;      // one a corner
    // the live records; null in a copy that outlives them (without_records)
    flat_array<vertex *> vertex_records;
    flat_array<surface_t *> surface_records;
    // of the object when this was built
    std::uint64_t stamp = 0;
    // No corner of the records was left out.
    bool whole = false;

    [[nodiscard]] int num_vertices() const { return static_cast<int>(positions->size()); }
    [[nodiscard]] int num_surfaces() const { return static_cast<int>(surfaces->size()); }
    [[nodiscard]] int num_corners() const { return static_cast<int>(corners->size()); }
    // of a vertex
    [[nodiscard]] const point3_t &position(std::size_t v) const { return (*positions)[v]; }
    [[nodiscard]] const point3_t &normal(std::size_t v) const { return (*normals)[v]; }
    [[nodiscard]] vertex *vertex_record(std::size_t v) const { return (*vertex_records)[v]; }
    // of a surface; its corners are first_corner(s) .. end_corner(s) - 1
    [[nodiscard]] const flat_surface &surface(std::size_t s) const { return (*surfaces)[s]; }
    [[nodiscard]] const point3_t &face_normal(std::size_t s) const { return (*face_normals)[s]; }
    [[nodiscard]] surface_t *surface_record(std::size_t s) const { return (*surface_records)[s]; }
    [[nodiscard]] int first_corner(std::size_t s) const { return (*corner_offsets)[s]; }
    [[nodiscard]] int end_corner(std::size_t s) const { return (*corner_offsets)[s + 1]; }
    // of a corner: its vertex, its texture coordinates
    [[nodiscard]] int corner(std::size_t c) const { return (*corners)[c]; }
    [[nodiscard]] const flat_uv &uv(std::size_t c) const { return (*texture_coords)[c]; }
    // Vertex indices of one surface.
    [[nodiscard]] std::span<const std::int32_t> surface_corners(std::size_t s) const
    {
        return {corners->data() + first_corner(s), corners->data() + end_corner(s)};
    }
    [[nodiscard]] flat_mesh without_records() const;
    [[nodiscard]] std::size_t bytes() const;
};

using flat_ptr = std::shared_ptr<const flat_mesh>;

// The object's own geometry (not its children's); never null. Stays valid and unchanged for as
// long as the pointer is held. An unchanged object costs a look-up.
flat_ptr object_flat(object_t *object);

flat_surface flat_attributes(const surface_t &surface);

// The vertices that no surface has; how many there are.
std::vector<int> flat_loose_vertices(const flat_mesh &flat);
int flat_loose_points(const flat_mesh &flat);

#endif
