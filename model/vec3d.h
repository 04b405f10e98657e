#ifndef VESK_MODEL_VEC3D_H
#define VESK_MODEL_VEC3D_H

// A vector in double precision, for sums and directions that single precision would spoil.

#include "base/types.h"

#include <cmath>

struct vec3d {
    double x = 0, y = 0, z = 0;
    bool operator==(const vec3d &) const = default;
};

constexpr vec3d to_vec3d(const point3_t &p)
{
    return {static_cast<double>(p.x), static_cast<double>(p.y), static_cast<double>(p.z)};
}
constexpr point3_t to_point(const vec3d &a)
{
    return {static_cast<float>(a.x), static_cast<float>(a.y), static_cast<float>(a.z)};
}
constexpr vec3d operator+(const vec3d &a, const vec3d &b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
constexpr vec3d operator-(const vec3d &a, const vec3d &b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
constexpr vec3d operator*(const vec3d &a, double factor)
{
    return {a.x * factor, a.y * factor, a.z * factor};
}
constexpr vec3d operator/(const vec3d &a, double by) { return {a.x / by, a.y / by, a.z / by}; }
constexpr vec3d &operator+=(vec3d &a, const vec3d &b) { return a = a + b; }

constexpr double dot(const vec3d &a, const vec3d &b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
constexpr vec3d cross(const vec3d &a, const vec3d &b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double length(const vec3d &a) { return std::sqrt(dot(a, a)); }

// From a to b.
constexpr vec3d between(const point3_t &a, const point3_t &b) { return to_vec3d(b) - to_vec3d(a); }

#endif
