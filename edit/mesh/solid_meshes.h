#ifndef VESK_EDIT_MESH_SOLID_MESHES_H
#define VESK_EDIT_MESH_SOLID_MESHES_H

// Meshes as exact arithmetic wants them: points, polygons, triangles and a tree of these.

#include "edit/mesh/crossings.h"
#include "edit/mesh/position_index.h"
#include "model/flat_mesh.h"

#include <functional>
#include <memory>
#include <span>
#include <utility>
#include <vector>

// Meshes that together are the solids. The vertices at one place are one point.
class solid_meshes {
public:
    // `part` numbers the solids from 0; several meshes may be of one.
    void add(const flat_ptr &mesh, int part);
    // Nobody will take the places: a sixth less memory while the tree is made.
    void without_places() { keeps_places_ = false; }
    // After the last one: the points, the polygons and their triangles. False when a coordinate is
    // not finite, or once `go_on`, which is asked now and then, is false.
    bool finish(const std::function<bool()> &go_on = {});

    struct unit_t {
        int mesh, surface, part;
        int first_triangle, end_triangle; // without those that have no area
    };
    [[nodiscard]] const std::vector<flat_ptr> &meshes() const { return meshes_; }
    [[nodiscard]] const std::vector<unit_t> &units() const { return units_; }
    [[nodiscard]] const std::vector<solid_triangle> &triangles() const { return triangles_; }
    [[nodiscard]] const box_tree &tree() const { return *tree_; }
    [[nodiscard]] exact_points &points() const { return *points_; }
    // The points at the corners of a polygon.
    [[nodiscard]] std::span<const int> outline(int unit) const
    {
        return std::span(corners_).subspan(first_corner_[unit],
                                           first_corner_[unit + 1] - first_corner_[unit]);
    }
    [[nodiscard]] bool is_of_first(int mesh) const { return parts_[mesh] == 0; }
    // One vertex of each point: the first, as mesh and place in it.
    [[nodiscard]] std::pair<int, int> vertex_of(int point) const { return vertices_[point]; }
    [[nodiscard]] int point_of(int mesh, int v) const { return point_of_[mesh][v]; }
    // The points by their places; for the one who adds the made ones, once.
    [[nodiscard]] position_index take_places() { return std::move(places_); }
    // The edges, as pairs of points, that a part's polygons do not use as often in one direction as
    // in the other; with one of the polygons.
    struct open_edge_t {
        int a, b, unit;
    };
    [[nodiscard]] std::vector<open_edge_t> open_edges();
    // The other polygon at the side from the polygon's corner `i` on: when there is one only, and it
    // has the side in the other direction. -1: none; before open_edges was asked, too.
    [[nodiscard]] int mate(int unit, int i) const
    {
        return mates_.empty() ? -1 : mates_[first_corner_[unit] + i];
    }

private:
    bool number_points();
    void reserve();
    bool cut_into_triangles(const std::function<bool()> &go_on);
    void cut_unit(int unit, std::vector<solid_triangle> &triangles);
    template <class Visit>
    void for_sides(int begin, int end, const Visit &visit) const;
    void pair_sides(int begin, int end, std::vector<open_edge_t> &open);
    template <class Sides>
    void look_at_edge(int low, const Sides &sides, std::vector<open_edge_t> &open);

    std::vector<flat_ptr> meshes_;
    std::vector<int> parts_;
    std::vector<std::vector<int>> point_of_;
    std::vector<std::pair<int, int>> vertices_;
    std::vector<unit_t> units_;
    std::vector<int> corners_, first_corner_ = {0};
    std::vector<int> mates_; // polygons, one a corner
    std::vector<solid_triangle> triangles_;
    position_index places_{0};
    bool keeps_places_ = true;
    std::unique_ptr<exact_points> points_;
    std::unique_ptr<box_tree> tree_;
};

#endif
