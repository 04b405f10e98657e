#ifndef VESK_EDIT_MESH_AFFINE_H
#define VESK_EDIT_MESH_AFFINE_H

// A movement, rotation or mirroring of space, in double precision.

#include "model/vec3d.h"

#include <cmath>
#include <initializer_list>

struct affine_t {
    vec3d x = {1, 0, 0}, y = {0, 1, 0}, z = {0, 0, 1}; // where the directions of the axes go
    vec3d offset = {};

    [[nodiscard]] vec3d turn(const vec3d &direction) const
    {
        return x * direction.x + y * direction.y + z * direction.z;
    }
    [[nodiscard]] point3_t operator()(const point3_t &p) const
    {
        return to_point(turn(to_vec3d(p)) + offset);
    }
    [[nodiscard]] bool only_moves() const
    {
        return x == vec3d{1, 0, 0} && y == vec3d{0, 1, 0} && z == vec3d{0, 0, 1};
    }
    // Whether what faced outwards faces inwards afterwards.
    [[nodiscard]] bool mirrors() const { return dot(cross(x, y), z) < 0; }
    // The same turn, with this point left where it is.
    [[nodiscard]] affine_t about(const vec3d &point) const
    {
        return {x, y, z, point - turn(point)};
    }
};

inline affine_t affine_move(const vec3d &offset)
{
    affine_t made;
    made.offset = offset;
    return made;
}

// Counter-clockwise about an axis of unit length through the origin. Quarters of a turn are exact.
inline affine_t affine_turn(const vec3d &axis, double degrees)
{
    const double quarters = std::round(degrees / 90);
    const bool is_quarter = degrees == quarters * 90;
    const double radians = degrees * 3.14159265358979323846 / 180;
    const double cosine = is_quarter ? std::round(std::cos(radians)) : std::cos(radians);
    const double sine = is_quarter ? std::round(std::sin(radians)) : std::sin(radians);
    const auto turned = [&](const vec3d &p) {
        return p * cosine + cross(axis, p) * sine + axis * (dot(axis, p) * (1 - cosine));
    };
    return {turned({1, 0, 0}), turned({0, 1, 0}), turned({0, 0, 1}), {}};
}

// Its turn as nine floats, row by row, for points as row vectors (model/matrix.h).
inline void affine_matrix(const affine_t &of, float *out)
{
    for (const vec3d &row : {of.x, of.y, of.z}) {
        *out++ = static_cast<float>(row.x);
        *out++ = static_cast<float>(row.y);
        *out++ = static_cast<float>(row.z);
    }
}

// Sizes along an axis of unit length through the origin times a factor.
inline affine_t affine_stretch(const vec3d &axis, double factor)
{
    const auto to = [&](const vec3d &p) { return p + axis * ((factor - 1) * dot(axis, p)); };
    return {to({1, 0, 0}), to({0, 1, 0}), to({0, 0, 1}), {}};
}

// At the plane through the origin with this normal, of unit length.
inline affine_t affine_mirror(const vec3d &normal)
{
    const auto mirrored = [&](const vec3d &p) { return p - normal * (2 * dot(normal, p)); };
    return {mirrored({1, 0, 0}), mirrored({0, 1, 0}), mirrored({0, 0, 1}), {}};
}

#endif
