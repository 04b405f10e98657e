#ifndef VESK_MODEL_VECTOR_H
#define VESK_MODEL_VECTOR_H

// Arithmetic on points: in double where a sum of products is formed, stored in single precision.

#include "base/types.h"

#include <cmath>

constexpr point3_t point_add(const point3_t &a, const point3_t &b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
constexpr point3_t point_sub(const point3_t &a, const point3_t &b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
constexpr point3_t point_scale(const point3_t &a, float factor)
{
    return {a.x * factor, a.y * factor, a.z * factor};
}
constexpr double point_dot(const point3_t &a, const point3_t &b)
{
    return static_cast<double>(a.x) * b.x + static_cast<double>(a.y) * b.y +
           static_cast<double>(a.z) * b.z;
}
constexpr point3_t point_cross(const point3_t &a, const point3_t &b)
{
    const double ax = a.x, ay = a.y, az = a.z;
    return {static_cast<float>(ay * b.z - az * b.y), static_cast<float>(az * b.x - ax * b.z),
            static_cast<float>(ax * b.y - ay * b.x)};
}
inline double point_length(const point3_t &a) { return std::sqrt(point_dot(a, a)); }
constexpr bool point_equal(const point3_t &a, const point3_t &b)
{
    return a.x == b.x && a.y == b.y && a.z == b.z;
}
inline bool point_is_finite(const point3_t &a)
{
    return std::isfinite(a.x) && std::isfinite(a.y) && std::isfinite(a.z);
}

// The coordinate on axis 0 to 2.
constexpr float axis_of(const point3_t &point, int axis)
{
    return axis == 0 ? point.x : axis == 1 ? point.y : point.z;
}
constexpr float &axis_of(point3_t &point, int axis)
{
    return axis == 0 ? point.x : axis == 1 ? point.y : point.z;
}

#endif
