#include "draw/crowding_gl.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double closest = 5; // pixels between vertices

} // namespace

crowding_t::crowding_t()
{
    double model[16];
    double projection[16];
    GLint viewport[4];
    glGetDoublev(GL_MODELVIEW_MATRIX, model);
    glGetDoublev(GL_PROJECTION_MATRIX, projection);
    glGetIntegerv(GL_VIEWPORT, viewport);
    for (int column = 0; column < 4; ++column)
        for (int row = 0; row < 4; ++row) {
            double sum = 0;
            for (int k = 0; k < 4; ++k)
                sum += projection[k * 4 + row] * model[column * 4 + k];
            matrix_[column * 4 + row] = sum;
        }
    for (int row = 0; row < 4; ++row)
        lengths_[row] = std::hypot(matrix_[row], matrix_[4 + row], matrix_[8 + row]);
    width_ = viewport[2] / 2.0;
    height_ = viewport[3] / 2.0;
}

bool crowding_t::is_crowded(const object_buffers_t &b) const
{
    double low[2] = {1e30, 1e30};
    double high[2] = {-1e30, -1e30};
    for (int corner = 0; corner < 8; ++corner) {
        const double p[3] = {(corner & 1) != 0 ? b.max.x : b.min.x,
                             (corner & 2) != 0 ? b.max.y : b.min.y,
                             (corner & 4) != 0 ? b.max.z : b.min.z};
        const double w = at(p, 3);
        if (w <= 0)
            return false; // partly behind the viewer: near
        for (int axis = 0; axis < 2; ++axis) {
            const double place = at(p, axis) / w * (axis == 0 ? width_ : height_);
            low[axis] = std::min(low[axis], place);
            high[axis] = std::max(high[axis], place);
        }
    }
    const double area = (high[0] - low[0] + 1) * (high[1] - low[1] + 1);
    return area < closest * closest * b.layout.num_vertices;
}

double crowding_t::radius_of(const item_sphere_t &sphere) const
{
    constexpr double everything = 1e9;
    const double p[3] = {sphere.centre.x, sphere.centre.y, sphere.centre.z};
    const double r = sphere.radius;
    const double w = at(p, 3);
    const double room = w + lengths_[3] * r;
    if (room <= 0)
        return 0;
    for (int axis = 0; axis < 2; ++axis)
        if (std::fabs(at(p, axis)) > room + lengths_[axis] * r)
            return 0;
    return w > lengths_[3] * r ? lengths_[1] * r * height_ / w : everything;
}

double crowding_t::at(const double p[3], int row) const
{
    return matrix_[row] * p[0] + matrix_[4 + row] * p[1] + matrix_[8 + row] * p[2] +
           matrix_[12 + row];
}
