#ifndef VESK_EDIT_EDGE_MESH_INTERNAL_H
#define VESK_EDIT_EDGE_MESH_INTERNAL_H

#include "edit/edge_mesh.h"
#include "edit/mesh/edge_table.h"

#include <memory>
#include <span>
#include <vector>

struct vesk_mesh {
    std::vector<point3_t> points;
    std::vector<int> offsets = {0}; // corners of face i: offsets[i] .. offsets[i + 1] - 1
    std::vector<int> corners;
    std::vector<flat_uv> uv;           // one a corner
    std::vector<int> sources;          // of each face: place of a surface of the object, or -1
    std::unique_ptr<edge_table> edges; // null after a change

    [[nodiscard]] int num_faces() const { return static_cast<int>(sources.size()); }
    [[nodiscard]] int num_corners() const { return static_cast<int>(corners.size()); }
    [[nodiscard]] std::span<const int> face(int i) const
    {
        return {corners.data() + offsets[i], corners.data() + offsets[i + 1]};
    }
    void add_corner(int v, const flat_uv &coordinates)
    {
        corners.push_back(v);
        uv.push_back(coordinates);
    }
    // Ends the face whose corners were added.
    void end_face(int source)
    {
        sources.push_back(source);
        offsets.push_back(static_cast<int>(corners.size()));
    }
    const edge_table &edge_list();
};

// vesk_mesh_to_object with a mesh that is not needed any more: its arrays become the object's flat mesh
// where they are all that the object has.
void mesh_into_object(vesk_mesh_t &&mesh, object_t *object);

// Cuts every polygon into triangles: quads along a diagonal that lies inside, the shorter of two;
// convex polygons into a fan; others by the tessellator.
void mesh_triangulate(vesk_mesh_t *mesh);

#endif
