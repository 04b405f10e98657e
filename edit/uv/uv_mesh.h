#ifndef VESK_EDIT_UV_UV_MESH_H
#define VESK_EDIT_UV_UV_MESH_H

// The texture coordinates of some objects' polygons as plain arrays: the input of the operations on
// texture coordinates. Surfaces, corners and vertices of all objects are numbered through. The arrays of
// one object that has nothing but polygons are those of its flat mesh.

#include "edit/uv/uv_array.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

struct uv_part {
    object_t *object;
    int identity;
    flat_ptr flat;
    int first_surface, num_surfaces; // of its polygons
    int first_vertex;
    // Its surfaces are its polygons, numbered alike but for first_surface.
    [[nodiscard]] bool is_all() const { return num_surfaces == flat->num_surfaces(); }
};

// An object, which need not be there any more, as it was.
struct uv_source {
    object_t *object;
    int identity;
    flat_ptr flat;
    bool operator==(const uv_source &) const = default;
};

struct uv_mesh {
    std::vector<uv_part> parts;
    // one a polygon
    uv_array<surface_t *> surfaces; // none of flat meshes without records
    uv_array<int> first_corner;     // num_surfaces() + 1 elements
    uv_array<point3_t> normals;
    // one a corner
    uv_array<int> vertices;
    uv_array<flat_uv> at;
    // one a vertex
    uv_array<point3_t> positions;

    [[nodiscard]] int num_surfaces() const
    {
        return static_cast<int>(std::max<std::size_t>(first_corner.size(), 1)) - 1;
    }
    [[nodiscard]] const uv_part &part_of(int surface) const;
    [[nodiscard]] int num_corners() const { return static_cast<int>(at.size()); }
    [[nodiscard]] int corners_begin(int surface) const { return first_corner[surface]; }
    [[nodiscard]] int corners_end(int surface) const { return first_corner[surface + 1]; }
    [[nodiscard]] const point3_t &position(int corner) const { return positions[vertices[corner]]; }
    // The corner after this one round its surface.
    [[nodiscard]] int next_corner(int surface, int corner) const
    {
        return corner + 1 == corners_end(surface) ? corners_begin(surface) : corner + 1;
    }
};

// The polygons (of three corners at least) of these objects themselves.
uv_mesh uv_mesh_of(const std::vector<object_t *> &objects);

uv_mesh uv_mesh_of_sources(const std::vector<uv_source> &sources);

// Of flat meshes that may have outlived their records: for computing, not for writing.
uv_mesh uv_mesh_of_flats(const std::vector<flat_ptr> &flats);

// Whether an object still has the surfaces and corners that the part was made from; its texture
// coordinates and positions may differ.
bool uv_part_is_current(const uv_part &part);

// The surface of each corner.
std::vector<int> uv_surface_of_corners(const uv_mesh &mesh);

// Those of some surfaces (ascending) that are of one part, by their numbers here and in its flat mesh.
struct uv_surfaces_of_part {
    const uv_part *part;
    std::span<const int> in_mesh;
    std::vector<int> others; // the numbers there, where they are others
    [[nodiscard]] std::span<const int> in_flat() const
    {
        return others.empty() ? in_mesh : std::span<const int>(others);
    }
};
std::vector<uv_surfaces_of_part> uv_by_part(const uv_mesh &mesh, std::span<const int> surfaces);

// Writes the coordinates `at` of these surfaces (ascending) into the model and marks the objects; those of
// others are as they were. Records that are deferred stay so. No undo, no redraw.
void uv_write(const uv_mesh &mesh, const uv_array<flat_uv> &at, const std::vector<int> &surfaces);

// Surfaces with a corner whose coordinates differ, ascending.
std::vector<int> uv_changed_surfaces(const uv_mesh &mesh, const std::vector<flat_uv> &from,
                                     const std::vector<flat_uv> &to);

// Bounds of corners; empty while nothing was added. Coordinates that are no numbers do not count.
struct uv_box {
    float u0 = 1, v0 = 1, u1 = 0, v1 = 0;
    bool any = false;
    void add(const flat_uv &p);
    [[nodiscard]] double width() const { return double{u1} - u0; }
    [[nodiscard]] double height() const { return double{v1} - v0; }
    [[nodiscard]] flat_uv middle() const { return {u0 / 2 + u1 / 2, v0 / 2 + v1 / 2}; }
};

#endif
