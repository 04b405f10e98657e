#ifndef VESK_DRAW_CROWDING_GL_H
#define VESK_DRAW_CROWDING_GL_H

#include "draw/draw_scene_gl.h"

// Where vertices would cover the shape, they are left out: the mean distance between an object's
// vertices on the screen tells. By the matrices that are current when this is made.
class crowding_t {
public:
    crowding_t();
    [[nodiscard]] bool is_crowded(const object_buffers_t &b) const;
    // In pixels; 0 where it is not seen.
    [[nodiscard]] double radius_of(const item_sphere_t &sphere) const;

private:
    [[nodiscard]] double at(const double p[3], int row) const;

    double matrix_[16];
    double lengths_[4]; // by how much a step in the world changes each coordinate at most
    double width_, height_;
};

#endif
