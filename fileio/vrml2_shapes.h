#ifndef VESK_FILEIO_VRML2_SHAPES_H
#define VESK_FILEIO_VRML2_SHAPES_H

// The geometry nodes of VRML 2.0 as meshes.

#include "fileio/import_mesh.h"
#include "fileio/vrml2_fields.h"
#include "fileio/vrml_frame.h"
#include "model/material_values.h"

#include <array>
#include <string_view>

// What the surfaces of a shape look like.
struct vrml2_look {
    material_values colours;
    std::string name;
    std::string picture; // "" for none
    // Of the texture coordinates, row by row: u' = a u + b v + c, v' = d u + e v + f.
    std::array<double, 6> placed = {1, 0, 0, 0, 1, 0};
    bool lit = true; // with a Material
};

// One object while shapes are added to it.
struct vrml2_mesh {
    import_mesh mesh;
    std::vector<bool> loose;            // points that are shown as such
    std::string_view coordinates;       // of its points, when they all come from one list
    std::vector<unsigned char> colours; // of the points, three numbers each; may be shorter
    int mixed_colours = 0;              // corners of one point that have another colour
};

// Adds a geometry. Shapes of one list of coordinates share its points. False when it is of no type
// that is known.
bool vrml2_add_shape(const vrml2_fields &geometry, const vrml2_look &look, const vrml_matrix &frame,
                     vrml2_account *account, vrml2_mesh *out);

// The coordinates of a geometry as they stand in the file; "" for one without.
std::string_view vrml2_coordinates(const vrml2_fields &geometry);
// Whether it has no faces.
bool vrml2_only_lines(std::string_view type);

#endif
