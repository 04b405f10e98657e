#ifndef VESK_FILEIO_VRML1_SHAPES_H
#define VESK_FILEIO_VRML1_SHAPES_H

// The shape nodes of VRML 1.0 as meshes, in the state that the nodes before them left.

#include "fileio/import_mesh.h"
#include "fileio/vrml1_scan.h"
#include "fileio/vrml_frame.h"

#include <memory>

struct vrml_state {
    vrml_matrix frame = vrml_identity;
    // Long lists are shared by the states that have them.
    std::shared_ptr<const std::vector<float>> points = std::make_shared<std::vector<float>>();
    std::shared_ptr<const std::vector<float>> uv = std::make_shared<std::vector<float>>();
    std::shared_ptr<const std::vector<int>> materials;          // palette indices, at least one
    enum binding_t { OVERALL, FACE, VERTEX } binding = OVERALL; // a part of a solid is a face
    bool by_index = false;                                      // materialIndex names them
    bool has_normals = false;                                   // one a corner or a vertex
    bool clockwise = false;                                     // as outlines are seen
    bool solid = false; // only one side of the faces is ever seen
    float crease_angle = 0.5f;
    std::string texture; // file name
    float repeat[2] = {1, 1}, offset[2] = {0, 0};
};

// One object while shapes are added to it.
struct vrml1_mesh {
    import_mesh mesh;
    std::vector<bool> loose;                          // points that are shown as such
    std::shared_ptr<const std::vector<float>> points; // when they all come from one list ...
    vrml_matrix frame = vrml_identity;                // ... in this frame
    int mixed_colours = 0; // surfaces whose corners have several materials
};

// Adds the shape of a node type. Shapes of one list of points share them. False when it is no shape
// type.
bool vrml_add_shape(std::string_view type, const vrml_fields &fields, const vrml_state &state,
                    vrml1_mesh *out);

// Whether the type takes its points from the state.
bool vrml_has_points(std::string_view type);

#endif
