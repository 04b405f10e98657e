#ifndef VESK_EDIT_MESH_SOLID_BOOLEAN_H
#define VESK_EDIT_MESH_SOLID_BOOLEAN_H

// What is left of some solids: their polygons, cut and joined again.

#include "edit/mesh/solid_faces.h"

#include <vector>

enum class solid_operation { unite, subtract, intersect }; // the first with all others

// The result in terms of the meshes that went in. A solid is whatever its surface goes round, either
// way round; the result faces outwards. Pieces of one polygon make as few polygons as they can.
struct solid_result {
    enum fate_t : unsigned char { GONE, KEPT, REVERSED };
    std::vector<fate_t> fates; // of the polygons (solid_meshes::units) that stay whole
    struct corner_t {
        int vertex; // a point of the solids, or num_points and on: a new one
        flat_uv uv;
    };
    struct polygon_t {
        int unit; // that it is a piece of
        std::vector<corner_t> corners;
    };
    std::vector<polygon_t> polygons;
    int num_points = 0;
    std::vector<point3_t> new_points;
};

solid_result solid_boolean(solid_meshes &solids, const solid_faces &faces, int parts,
                           solid_operation operation);

#endif
