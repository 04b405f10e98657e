#ifndef VESK_DRAW_CROWDING_GL_H
#define VESK_DRAW_CROWDING_GL_H

#include "draw/draw_buffers_gl.h"

// Where vertices would cover the shape, they are left out: the mean distance between an object's
// vertices on the screen tells. By the matrices that are current when this is made.
class crowding_t {
public:
    crowding_t();
    [[nodiscard]] bool is_crowded(const object_buffers_t &b) const;

private:
    [[nodiscard]] double at(const double p[3], int row) const;

    double matrix_[16];
    double width_, height_;
};

#endif
