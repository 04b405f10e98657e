#ifndef VESK_FILEIO_VRML1_SHAPES_H
#define VESK_FILEIO_VRML1_SHAPES_H

// The shape nodes of VRML 1.0 as meshes, in the state that the nodes before them left.

#include "fileio/import_mesh.h"
#include "fileio/vrml1_scan.h"

#include <array>
#include <memory>

// Row by row; points are row vectors.
using vrml_matrix = std::array<double, 16>;
constexpr vrml_matrix vrml_identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
vrml_matrix vrml_product(const vrml_matrix &a, const vrml_matrix &b);

struct vrml_state {
    vrml_matrix frame = vrml_identity;
    // Long lists are shared by the states that have them.
    std::shared_ptr<const std::vector<float>> points = std::make_shared<std::vector<float>>();
    std::shared_ptr<const std::vector<float>> uv = std::make_shared<std::vector<float>>();
    std::shared_ptr<const std::vector<int>> materials; // palette indices, at least one
    bool by_face = false;                              // each face its own material ...
    bool by_index = false;                             // ... which materialIndex names
    bool has_normals = false;                          // one a corner or a vertex
    float crease_angle = 0.5f;
    std::string texture; // file name
    float repeat[2] = {1, 1}, offset[2] = {0, 0};
};

// Adds the shape of a node type to `mesh`. False when it is no shape type.
bool vrml_add_shape(std::string_view type, const vrml_fields &fields, const vrml_state &state,
                    import_mesh &mesh);

// A place through the frame.
point3_t vrml_place(const vrml_state &state, double x, double y, double z);

#endif
