#ifndef VESK_FILEIO_VRML_FRAME_H
#define VESK_FILEIO_VRML_FRAME_H

// The frames of VRML nodes, of both versions.

#include "model/object.h"

#include <array>
#include <vector>

// Row by row; points are row vectors.
using vrml_matrix = std::array<double, 16>;
constexpr vrml_matrix vrml_identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

// First `a`, then `b`.
vrml_matrix vrml_product(const vrml_matrix &a, const vrml_matrix &b);

// From the numbers of a field; missing ones are those of a frame that changes nothing.
vrml_matrix vrml_translation(const std::vector<float> &v);
vrml_matrix vrml_scaling(const std::vector<float> &v);
// About an axis x y z by an angle.
vrml_matrix vrml_rotation(const std::vector<float> &v);

// The five fields of a Transform: scaled about a turned frame, turned, all about a centre, moved.
struct vrml_transform {
    std::vector<float> centre, turn, scale, rotation, translation;
};
vrml_matrix vrml_whole(const vrml_transform &fields);

point3_t vrml_place(const vrml_matrix &frame, double x, double y, double z);

// Of a frame that flattens everything: one that changes nothing.
vrml_matrix vrml_inverse(const vrml_matrix &frame);

// Whether what was seen counter-clockwise is seen clockwise.
bool vrml_mirrors(const vrml_matrix &frame);

// Gives an object the place of a point of the frame as its centre and, where the frame only turns,
// moves and scales alike, its orientation.
void vrml_set_frame(object_t *object, const vrml_matrix &frame, const std::vector<float> &centre);

#endif
