#include "fileio/vrml_frame.h"

#include <algorithm>
#include <cmath>

vrml_matrix vrml_product(const vrml_matrix &a, const vrml_matrix &b)
{
    vrml_matrix out = {};
    for (std::size_t row = 0; row < 4; ++row)
        for (std::size_t column = 0; column < 4; ++column)
            for (std::size_t k = 0; k < 4; ++k)
                out[4 * row + column] += a[4 * row + k] * b[4 * k + column];
    return out;
}

vrml_matrix vrml_translation(const std::vector<float> &v)
{
    vrml_matrix m = vrml_identity;
    for (std::size_t i = 0; i < 3 && i < v.size(); ++i)
        m[12 + i] = v[i];
    return m;
}

vrml_matrix vrml_scaling(const std::vector<float> &v)
{
    vrml_matrix m = vrml_identity;
    for (std::size_t i = 0; i < 3 && i < v.size(); ++i)
        m[5 * i] = v[i];
    return m;
}

// Counter-clockwise seen from the axis' tip (Rodrigues, for row vectors).
vrml_matrix vrml_rotation(const std::vector<float> &v)
{
    vrml_matrix m = vrml_identity;
    if (v.size() < 4)
        return m;
    const double length = std::hypot(static_cast<double>(v[0]), v[1], v[2]);
    if (!(length > 0))
        return m;
    const double x = v[0] / length;
    const double y = v[1] / length;
    const double z = v[2] / length;
    const double c = std::cos(v[3]);
    const double s = std::sin(v[3]);
    const double t = 1 - c;
    m[0] = t * x * x + c;
    m[1] = t * x * y + s * z;
    m[2] = t * x * z - s * y;
    m[4] = t * x * y - s * z;
    m[5] = t * y * y + c;
    m[6] = t * y * z + s * x;
    m[8] = t * x * z + s * y;
    m[9] = t * y * z - s * x;
    m[10] = t * z * z + c;
    return m;
}

vrml_matrix vrml_whole(const vrml_transform &fields)
{
    std::vector<float> back = fields.centre;
    for (float &value : back)
        value = -value;
    std::vector<float> unturn = fields.turn;
    if (unturn.size() > 3)
        unturn[3] = -unturn[3];
    vrml_matrix m = vrml_product(vrml_translation(back), vrml_rotation(unturn));
    m = vrml_product(m, vrml_scaling(fields.scale));
    m = vrml_product(m, vrml_rotation(fields.turn));
    m = vrml_product(m, vrml_rotation(fields.rotation));
    m = vrml_product(m, vrml_translation(fields.centre));
    return vrml_product(m, vrml_translation(fields.translation));
}

point3_t vrml_place(const vrml_matrix &m, double x, double y, double z)
{
    const auto at = [&](std::size_t i) {
        return static_cast<float>(x * m[i] + y * m[4 + i] + z * m[8 + i] + m[12 + i]);
    };
    return {at(0), at(1), at(2)};
}

static double determinant(const vrml_matrix &m)
{
    return m[0] * (m[5] * m[10] - m[6] * m[9]) - m[1] * (m[4] * m[10] - m[6] * m[8]) +
           m[2] * (m[4] * m[9] - m[5] * m[8]);
}

bool vrml_mirrors(const vrml_matrix &m) { return determinant(m) < 0; }

vrml_matrix vrml_inverse(const vrml_matrix &m)
{
    const double whole = determinant(m);
    if (whole == 0 || !std::isfinite(whole))
        return vrml_identity;
    vrml_matrix out = vrml_identity;
    for (std::size_t row = 0; row < 3; ++row)
        for (std::size_t column = 0; column < 3; ++column) {
            const std::size_t a = (column + 1) % 3, b = (column + 2) % 3;
            const std::size_t c = (row + 1) % 3, d = (row + 2) % 3;
            out[4 * row + column] =
                (m[4 * a + c] * m[4 * b + d] - m[4 * a + d] * m[4 * b + c]) / whole;
        }
    for (std::size_t column = 0; column < 3; ++column)
        out[12 + column] =
            -(m[12] * out[column] + m[13] * out[4 + column] + m[14] * out[8 + column]);
    return out;
}

void vrml_set_frame(object_t *object, const vrml_matrix &m, const std::vector<float> &centre)
{
    std::vector<float> c = centre;
    c.resize(3, 0);
    object->centre = vrml_place(m, c[0], c[1], c[2]);
    const auto dot = [&m](std::size_t a, std::size_t b) {
        return m[a] * m[b] + m[a + 1] * m[b + 1] + m[a + 2] * m[b + 2];
    };
    const double size = dot(0, 0);
    const double slack = 1e-5 * size;
    const bool alike = size > 0 && std::isfinite(size) && std::abs(dot(4, 4) - size) < slack &&
                       std::abs(dot(8, 8) - size) < slack && std::abs(dot(0, 4)) < slack &&
                       std::abs(dot(0, 8)) < slack && std::abs(dot(4, 8)) < slack;
    if (!alike || vrml_mirrors(m))
        return;
    for (std::size_t row = 0; row < 3; ++row)
        for (std::size_t column = 0; column < 3; ++column)
            object->rotation[3 * row + column] =
                static_cast<float>(m[4 * row + column] / std::sqrt(size));
}
