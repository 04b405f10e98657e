#include "model/matrix.h"

#include "base/messages.h"
#include "model/each.h"
#include "model/vector.h"

#include <algorithm>
#include <cmath>

namespace {

float global[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};

void store(float *m, const double (&values)[9])
{
    // Adding 0 turns -0 into 0.
    std::transform(values, values + 9, m,
                   [](double value) { return static_cast<float>(value + 0.0); });
}

// p x m.
point3_t rotated(const float *m, const point3_t &p)
{
    const double x = p.x, y = p.y, z = p.z;
    return {static_cast<float>(x * m[0] + y * m[3] + z * m[6]),
            static_cast<float>(x * m[1] + y * m[4] + z * m[7]),
            static_cast<float>(x * m[2] + y * m[5] + z * m[8])};
}

} // namespace

const float *global_matrix() { return global; }

void matrix_set_identity(float *m) { store(m, {1, 0, 0, 0, 1, 0, 0, 0, 1}); }

void matrix_set_rotate(float *m, float x, float y, float z)
{
    const double cx = std::cos(static_cast<double>(x)), sx = std::sin(static_cast<double>(x));
    const double cy = std::cos(static_cast<double>(y)), sy = std::sin(static_cast<double>(y));
    const double cz = std::cos(static_cast<double>(z)), sz = std::sin(static_cast<double>(z));
    // clang-format off
    store(m, { cz * cy, sz * cx + sx * sy * cz, sz * sx - sy * cz * cx,
              -sz * cy, cz * cx - sx * sy * sz, cz * sx + sy * sz * cx,
               sy,      -sx * cy,               cy * cx});
    // clang-format on
}

point3_t matrix_angles(const float *m)
{
    constexpr float straight = 0.999999f;
    const float y = std::asin(std::clamp(m[6], -1.0f, 1.0f));
    if (std::fabs(m[6]) > straight)
        return {std::atan2(m[5], m[4]), y, 0};
    // Subtracting from 0 makes no -0.
    return {std::atan2(0 - m[7], m[8]), y, std::atan2(0 - m[3], m[0])};
}

void matrix_set_rotate_angle_axis(float *m, const point3_t *axis, float angle)
{
    const double length = point_length(*axis);
    if (length == 0) {
        matrix_set_identity(m);
        return;
    }
    const double x = axis->x / length, y = axis->y / length, z = axis->z / length;
    const double c = std::cos(static_cast<double>(angle));
    const double s = std::sin(static_cast<double>(angle));
    const double t = 1 - c;
    // clang-format off
    store(m, {t * x * x + c,     t * x * y + s * z, t * x * z - s * y,
              t * x * y - s * z, t * y * y + c,     t * y * z + s * x,
              t * x * z + s * y, t * y * z - s * x, t * z * z + c});
    // clang-format on
}

void matrix_set_rotate_quaternion(float *m, float x, float y, float z, float w)
{
    const double qx = x, qy = y, qz = z, qw = w;
    const double norm = qx * qx + qy * qy + qz * qz + qw * qw;
    if (norm == 0) {
        matrix_set_identity(m);
        return;
    }
    const double s = 2 / norm;
    // clang-format off
    store(m, {1 - s * (qy * qy + qz * qz), s * (qx * qy + qz * qw),     s * (qx * qz - qy * qw),
              s * (qx * qy - qz * qw),     1 - s * (qx * qx + qz * qz), s * (qy * qz + qx * qw),
              s * (qx * qz + qy * qw),     s * (qy * qz - qx * qw),     1 - s * (qx * qx + qy * qy)});
    // clang-format on
}

void set_global_matrix_rotate(float x, float y, float z) { matrix_set_rotate(global, x, y, z); }

void set_global_matrix_rotate_inv(float x, float y, float z)
{
    matrix_set_rotate(global, x, y, z);
    rotinvert(global, global);
}

void set_global_matrix_angle_axis(const point3_t *axis, float angle)
{
    matrix_set_rotate_angle_axis(global, axis, angle);
}

void rotate_point_3d(point3_t *p) { *p = rotated(global, *p); }

void rotate_pointlist_3d(const listitem *points) { pointlist_rotate_matrix(points, global); }

void rotate_matrix(float *m)
{
    float product[9];
    matrix_multiply(m, global, product);
    matrix_copy(product, m);
}

void matrix_rotate_point(const float *m, point3_t *p) { *p = rotated(m, *p); }

void pointlist_rotate_matrix(const listitem *points, const float *m)
{
    for (point3_t *p : each<point3_t>(points))
        *p = rotated(m, *p);
}

void matrix_multiply(const float *a, const float *b, float *out)
{
    for (int row = 0; row < 9; row += 3) {
        for (int column = 0; column < 3; ++column) {
            double sum = 0;
            for (int k = 0; k < 3; ++k)
                sum += static_cast<double>(b[row + k]) * a[3 * k + column];
            out[row + column] = static_cast<float>(sum);
        }
    }
}

void rotmult(float *out, const float *a, const float *b) { matrix_multiply(a, b, out); }

void matrix_copy(const float *from, float *to) { std::copy_n(from, 9, to); }

int matrix_is_identity(const float *m)
{
    for (int i = 0; i < 9; ++i) {
        if (m[i] != (i % 4 == 0 ? 1.0f : 0.0f))
            return 0;
    }
    return 1;
}

void rotinvert(float *out, const float *m)
{
    const float transposed[9] = {m[0], m[3], m[6], m[1], m[4], m[7], m[2], m[5], m[8]};
    matrix_copy(transposed, out);
}

void point_transform_local_to_global(point3_t *out, const float *m, const point3_t *origin,
                                     const point3_t *p)
{
    const double x = p->x, y = p->y, z = p->z;
    *out = {static_cast<float>(origin->x + (x * m[0] + y * m[3] + z * m[6])),
            static_cast<float>(origin->y + (x * m[1] + y * m[4] + z * m[7])),
            static_cast<float>(origin->z + (x * m[2] + y * m[5] + z * m[8]))};
}

void point_transform_global_to_local(point3_t *out, const float *m, const point3_t *origin,
                                     const point3_t *p)
{
    const double x = static_cast<double>(p->x) - origin->x;
    const double y = static_cast<double>(p->y) - origin->y;
    const double z = static_cast<double>(p->z) - origin->z;
    *out = {static_cast<float>(x * m[0] + y * m[1] + z * m[2]),
            static_cast<float>(x * m[3] + y * m[4] + z * m[5]),
            static_cast<float>(x * m[6] + y * m[7] + z * m[8])};
}

void frame_mult(float *out_r, point3_t *out_t, const float *r1, const point3_t *t1, const float *r2,
                const point3_t *t2)
{
    float r[9];
    point3_t t;
    matrix_multiply(r1, r2, r);
    point_transform_local_to_global(&t, r1, t1, t2);
    matrix_copy(r, out_r);
    *out_t = t;
}

void frame_invert(float *out_r, point3_t *out_t, const float *r, const point3_t *t)
{
    const point3_t moved = *t;
    rotinvert(out_r, r);
    const point3_t back = rotated(out_r, moved);
    *out_t = {-back.x, -back.y, -back.z};
}

void frame_cp(float *to_r, point3_t *to_t, const float *from_r, const point3_t *from_t)
{
    matrix_copy(from_r, to_r);
    *to_t = *from_t;
}

void frame_postmult(float *r, point3_t *t, const float *r2, const point3_t *t2)
{
    frame_mult(r, t, r, t, r2, t2);
}

void frame_multinv(float *out_r, point3_t *out_t, const float *r, const point3_t *t,
                   const float *r2, const point3_t *t2)
{
    float inverse_r[9];
    point3_t inverse_t;
    frame_invert(inverse_r, &inverse_t, r, t);
    frame_mult(out_r, out_t, inverse_r, &inverse_t, r2, t2);
}

void matrix_print(const float *m)
{
    for (int row = 0; row < 9; row += 3) {
        debugf("%g %g %g\n", static_cast<double>(m[row]), static_cast<double>(m[row + 1]),
               static_cast<double>(m[row + 2]));
    }
}

void normalize_point(point3_t *p)
{
    const double length = point_length(*p);
    if (length == 0)
        return;
    *p = {static_cast<float>(p->x / length), static_cast<float>(p->y / length),
          static_cast<float>(p->z / length)};
}

float points_dist(const point3_t *a, const point3_t *b)
{
    return static_cast<float>(point_length(point_sub(*a, *b)));
}
