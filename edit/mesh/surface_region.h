#ifndef VESK_EDIT_MESH_SURFACE_REGION_H
#define VESK_EDIT_MESH_SURFACE_REGION_H

// Some polygons of a mesh taken as regions that are moved as wholes: where their borders run, and
// which of their corners stay together. Linear.

#include "model/flat_mesh.h"
#include "model/vec3d.h"

#include <vector>

class surface_region {
public:
    // Joined: two polygons hang together across an edge that only they have, and that they go along
    // in opposite directions. Apart: each polygon is a region of its own.
    enum class parts { joined, apart };
    surface_region(const flat_mesh &mesh, std::vector<int> polygons, parts how);

    [[nodiscard]] const flat_mesh &mesh() const { return mesh_; }
    [[nodiscard]] const std::vector<int> &polygons() const { return polygons_; }
    // Of the polygon at this place of polygons(): unit normal; the connected region it is part of.
    [[nodiscard]] const vec3d &normal(std::size_t i) const { return normals_[i]; }
    [[nodiscard]] int part(std::size_t i) const { return parts_[i]; }
    [[nodiscard]] int num_parts() const { return num_parts_; }

    // A fan is the corners at one vertex that hang together: they get one new vertex. A vertex where
    // regions only touch has several. -1 for corners outside.
    [[nodiscard]] int fan(int corner) const { return fans_[corner]; }
    [[nodiscard]] int num_fans() const { return num_fans_; }
    // Whether the side that the corner begins is on the border.
    [[nodiscard]] bool is_border(int corner) const { return border_[corner]; }
    [[nodiscard]] bool has_border() const { return has_border_; }

    // Of each fan its vertex.
    [[nodiscard]] std::vector<int> fan_vertices() const;
    // Of each fan the way that brings all planes around it out by 1, as well as one way can; no
    // longer than `longest_offset`.
    [[nodiscard]] std::vector<vec3d> fan_offsets() const;
    // Of each fan the way along its surfaces that leads away from its border sides by 1; 0 0 0
    // inside.
    [[nodiscard]] std::vector<vec3d> fan_slides() const;

private:
    void join_sides();

    const flat_mesh &mesh_;
    std::vector<int> polygons_;
    parts how_;
    std::vector<vec3d> normals_;
    std::vector<int> parts_;
    std::vector<int> fans_;    // of each corner of the mesh
    std::vector<bool> border_; // likewise
    int num_fans_ = 0, num_parts_ = 0;
    bool has_border_ = false;
};

constexpr double longest_offset = 8; // at sharp edges

#endif
