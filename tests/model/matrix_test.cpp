#include "model/matrix.h"

#include "model/vector.h"

#include <gtest/gtest.h>

#include <numbers>

namespace {

constexpr float quarter = static_cast<float>(std::numbers::pi / 2);

void expect_point(const point3_t &p, float x, float y, float z)
{
    EXPECT_NEAR(p.x, x, 1e-6);
    EXPECT_NEAR(p.y, y, 1e-6);
    EXPECT_NEAR(p.z, z, 1e-6);
}

void expect_same(const float *a, const float *b)
{
    for (int i = 0; i < 9; ++i)
        EXPECT_NEAR(a[i], b[i], 1e-6) << i;
}

TEST(Matrix, IdentityIsExact)
{
    float m[9];
    matrix_set_rotate(m, 0, 0, 0);
    EXPECT_EQ(matrix_is_identity(m), 1);
    m[0] = 1.0000001f;
    EXPECT_EQ(matrix_is_identity(m), 0);
}

TEST(Matrix, RotatesCounterClockwiseRoundEachAxis)
{
    float m[9];
    point3_t x = {1, 0, 0}, y = {0, 1, 0}, z = {0, 0, 1};
    matrix_set_rotate(m, 0, 0, quarter);
    matrix_rotate_point(m, &x);
    expect_point(x, 0, 1, 0);
    matrix_set_rotate(m, quarter, 0, 0);
    matrix_rotate_point(m, &y);
    expect_point(y, 0, 0, 1);
    matrix_set_rotate(m, 0, quarter, 0);
    matrix_rotate_point(m, &z);
    expect_point(z, 1, 0, 0);
}

TEST(Matrix, WaysOfBuildingOneAgree)
{
    const point3_t axes[] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    for (int i = 0; i < 3; ++i) {
        const float angle = 0.7f;
        float by_angles[9], by_axis[9], by_quaternion[9];
        matrix_set_rotate(by_angles, i == 0 ? angle : 0, i == 1 ? angle : 0, i == 2 ? angle : 0);
        const point3_t axis = point_scale(axes[i], 3);
        matrix_set_rotate_angle_axis(by_axis, &axis, angle);
        const auto s = static_cast<float>(std::sin(angle / 2));
        matrix_set_rotate_quaternion(by_quaternion, axes[i].x * s, axes[i].y * s, axes[i].z * s,
                                     static_cast<float>(std::cos(angle / 2)));
        expect_same(by_angles, by_axis);
        expect_same(by_angles, by_quaternion);
    }
}

TEST(Matrix, ThreeAnglesTurnRoundZThenYThenX)
{
    float all[9], x[9], y[9], z[9], zy[9], zyx[9];
    matrix_set_rotate(all, 0.3f, 0.5f, 0.8f);
    matrix_set_rotate(x, 0.3f, 0, 0);
    matrix_set_rotate(y, 0, 0.5f, 0);
    matrix_set_rotate(z, 0, 0, 0.8f);
    matrix_multiply(y, z, zy); // z first
    matrix_multiply(x, zy, zyx);
    expect_same(all, zyx);
    rotmult(zy, y, z);
    matrix_multiply(x, zy, zyx);
    expect_same(all, zyx);
}

TEST(Matrix, InverseTakesTheRotationBack)
{
    float m[9], inverse[9], product[9], identity[9];
    matrix_set_rotate(m, 1, 2, 3);
    rotinvert(inverse, m);
    matrix_multiply(m, inverse, product);
    matrix_set_identity(identity);
    expect_same(product, identity);
    set_global_matrix_rotate(1, 2, 3);
    expect_same(global_matrix(), m);
    set_global_matrix_rotate_inv(1, 2, 3);
    rotate_matrix(m); // the global rotation first, then m's
    expect_same(m, identity);
}

TEST(Matrix, FramesComposeAndInvert)
{
    float r[9], r2[9], out_r[9], back_r[9], identity[9];
    const point3_t t = {1, 2, 3}, t2 = {-4, 0, 2}, p = {0.5f, -1, 7}, none = {0, 0, 0};
    matrix_set_rotate(r, 0.4f, 0.2f, -1);
    matrix_set_rotate(r2, 2, 0, 1);
    matrix_set_identity(identity);

    point3_t global, local, once, twice, out_t, back_t;
    point_transform_local_to_global(&global, r, &t, &p);
    point_transform_global_to_local(&local, r, &t, &global);
    expect_point(local, p.x, p.y, p.z);

    frame_mult(out_r, &out_t, r, &t, r2, &t2); // frame 2 first
    point_transform_local_to_global(&once, r2, &t2, &p);
    point_transform_local_to_global(&twice, r, &t, &once);
    point_transform_local_to_global(&once, out_r, &out_t, &p);
    expect_point(once, twice.x, twice.y, twice.z);

    frame_mult(out_r, &out_t, r, &t, identity, &none);
    expect_same(out_r, r);
    expect_point(out_t, t.x, t.y, t.z);
    frame_multinv(back_r, &back_t, r, &t, r, &t);
    expect_same(back_r, identity);
    expect_point(back_t, 0, 0, 0);
    frame_postmult(out_r, &out_t, r2, &t2);
    frame_cp(back_r, &back_t, out_r, &out_t);
    frame_mult(out_r, &out_t, r, &t, r2, &t2);
    expect_same(back_r, out_r);
}

TEST(Matrix, ZeroVectorsStayZero)
{
    point3_t zero = {0, 0, 0}, long_one = {0, 3e20f, 0};
    normalize_point(&zero);
    expect_point(zero, 0, 0, 0);
    normalize_point(&long_one); // its square has no place in a float
    expect_point(long_one, 0, 1, 0);
    float m[9];
    matrix_set_rotate_angle_axis(m, &zero, 1);
    EXPECT_EQ(matrix_is_identity(m), 1);
    const point3_t a = {1, 1, 1}, b = {4, 5, 1};
    EXPECT_EQ(points_dist(&a, &b), 5);
}

} // namespace
