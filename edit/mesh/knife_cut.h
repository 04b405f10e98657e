#ifndef VESK_EDIT_MESH_KNIFE_CUT_H
#define VESK_EDIT_MESH_KNIFE_CUT_H

// Cutting polygons along a line that is drawn on them. Made once for a mesh it can draw many lines,
// for a preview; only apply makes a change.
//
// The line goes from point to point in the plane that stands upright on the surface there, through
// all polygons on its way. Polygons stay polygons: where an end of the line lies inside one it is
// joined to the nearest corner of that polygon that it sees, and a ring that lies inside one is
// joined to two of its corners; where the line goes from side to side nothing is added.

#include "edit/mesh/mesh_change.h"
#include "edit/mesh/surface_blocks.h"
#include "model/vec3d.h"

#include <map>
#include <span>
#include <string>
#include <vector>

class knife_cut {
public:
    // Of polygons of the mesh, by their places.
    knife_cut(flat_ptr mesh, std::span<const int> surfaces);

    // Draws the line anew. False when it cannot be drawn: `why` says so in a few words.
    bool draw(std::span<const point3_t> line, std::string *why);
    // Whether the last line could be drawn, though it may cut nothing.
    [[nodiscard]] bool is_drawn() const { return drawn_; }
    // The new edges, two points each, and the number of polygons that they cut.
    [[nodiscard]] std::vector<point3_t> edges() const;
    [[nodiscard]] int num_cut() const { return static_cast<int>(chords_.size()); }
    // Puts the cut into a change of this mesh. Polygons that are not named get the new vertices on
    // sides that they share.
    void apply(mesh_change &change) const;
    // How far a point lies from the polygons; infinity for none near.
    [[nodiscard]] double distance(const point3_t &point) const;

private:
    // A vertex of the mesh by its place; new ones follow.
    struct node_t {
        point3_t at;
        int low, high; // the side that it is on; -1: inside `surface`
        double share;  // of the way from low to high
        int surface;
        flat_uv uv; // inside a surface
    };
    using chord_t = std::pair<int, int>;
    struct triangle_t {
        int surface, corner[3]; // of the mesh
    };
    struct spot_t {
        double distance;
        triangle_t triangle; // of surface -1: none
        point3_t at;
    };

    [[nodiscard]] point3_t position(int node) const;
    [[nodiscard]] spot_t nearest(const point3_t &point) const;
    [[nodiscard]] box_t surface_box(int surface) const;
    [[nodiscard]] std::vector<int> surfaces_of_vertex(int v) const;
    [[nodiscard]] std::vector<int> surfaces_of(int node) const;
    [[nodiscard]] std::vector<int> surfaces_of_side(int a, int b) const;
    int node_at(const point3_t &point);
    int node_on_side(int a, int b, double share);
    int node_inside(int surface, const point3_t &at, flat_uv uv);
    [[nodiscard]] vec3d normal_at(int node) const;
    [[nodiscard]] bool walk(int from, int to);
    [[nodiscard]] bool walk_in_plane(int from, int to, const vec3d &normal);
    [[nodiscard]] bool step(int from, const point3_t &target, const double *plane,
                            const std::vector<int> &behind, int *next);
    [[nodiscard]] bool beside(int surface, int a, int b) const;
    [[nodiscard]] bool inside(int surface, const point3_t &at) const;
    void add_chord(int surface, int from, int to);
    void cross_chords(int surface, int from, int to);
    void join_loose_ends(int surface);
    void join_rings(int surface);
    void join_to_corners(int surface, const std::vector<int> &from, int wanted);
    [[nodiscard]] bool sees(int surface, int a, int b) const;
    struct ring_corner_t {
        int node;
        int corner; // of the mesh; -1 for a new point
        flat_uv uv;
    };
    [[nodiscard]] std::vector<ring_corner_t> ring_of(int surface) const;
    void cut_polygon(mesh_change &change, int surface, const std::vector<int> &places) const;
    [[nodiscard]] flat_uv uv_of(int surface, int node) const;
    [[nodiscard]] int axis_of(int surface, bool *mirrored) const;

    flat_ptr mesh_;
    std::vector<bool> named_;
    surface_blocks blocks_; // of the named ones
    double size_ = 0;

    bool drawn_ = false;
    std::vector<node_t> nodes_;
    std::map<std::pair<int, int>, std::vector<int>> on_sides_; // nodes, from low to high
    std::map<int, std::vector<int>> inside_;                   // nodes of each surface
    std::map<int, std::vector<chord_t>> chords_;               // of each surface that is cut
    std::vector<std::pair<int, chord_t>> way_;                 // of the walk in hand
};

#endif
