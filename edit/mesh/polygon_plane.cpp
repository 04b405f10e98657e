#include "edit/mesh/polygon_plane.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr int longest_blended = 32; // corners

vec3d corner_place(const flat_mesh &mesh, int corner)
{
    return to_vec3d(mesh.position(mesh.corner(corner)));
}

struct uv_double {
    double u, v;
};

uv_double uv_of(const flat_mesh &mesh, int corner)
{
    const flat_uv &uv = mesh.uv(corner);
    return {static_cast<double>(uv.u), static_cast<double>(uv.v)};
}

flat_uv to_uv(double u, double v) { return {static_cast<float>(u), static_cast<float>(v)}; }

} // namespace

vec3d unit_of(const vec3d &a)
{
    const double size = length(a);
    return size > 0 && std::isfinite(size) ? a / size : vec3d{};
}

vec3d polygon_area_vector(const flat_mesh &mesh, int surface)
{
    const auto corners = mesh.surface_corners(surface);
    vec3d area;
    if (corners.size() < 3)
        return area;
    const vec3d origin = to_vec3d(mesh.position(corners[0]));
    vec3d before = to_vec3d(mesh.position(corners[1])) - origin;
    for (std::size_t i = 2; i < corners.size(); ++i) {
        const vec3d now = to_vec3d(mesh.position(corners[i])) - origin;
        area += cross(before, now);
        before = now;
    }
    return area;
}

vec3d polygon_middle(const flat_mesh &mesh, int surface)
{
    vec3d sum;
    const auto corners = mesh.surface_corners(surface);
    for (const int v : corners)
        sum += to_vec3d(mesh.position(v));
    return sum / static_cast<double>(std::max<std::size_t>(corners.size(), 1));
}

bool polygon_has_plane(const flat_mesh &mesh, int surface)
{
    const auto corners = mesh.surface_corners(surface);
    if (mesh.surface(surface).is_line() || corners.size() < 3)
        return false;
    double sides = 0;
    for (std::size_t i = 0; i < corners.size(); ++i)
        sides += length(
            between(mesh.position(corners[i]), mesh.position(corners[(i + 1) % corners.size()])));
    return length(polygon_area_vector(mesh, surface)) > 1e-7 * sides * sides &&
           std::isfinite(sides);
}

polygon_picture::polygon_picture(const flat_mesh &mesh, int surface)
    : mesh_(mesh), first_(mesh.first_corner(surface)), end_(mesh.end_corner(surface))
{
    // The slopes that fit all corners best, in two directions of the plane.
    const vec3d normal = unit_of(polygon_area_vector(mesh, surface));
    const vec3d middle = polygon_middle(mesh, surface);
    vec3d x;
    for (int c = first_; c < end_ && length(x) == 0; ++c) {
        const vec3d away = corner_place(mesh, c) - middle;
        x = unit_of(away - normal * dot(away, normal));
    }
    const vec3d y = cross(normal, x);
    uv_double mean = {0, 0};
    for (int c = first_; c < end_; ++c) {
        mean.u += uv_of(mesh, c).u / (end_ - first_);
        mean.v += uv_of(mesh, c).v / (end_ - first_);
    }
    double xx = 0, xy = 0, yy = 0, xu = 0, yu = 0, xv = 0, yv = 0;
    for (int c = first_; c < end_; ++c) {
        const vec3d away = corner_place(mesh, c) - middle;
        const double px = dot(away, x), py = dot(away, y);
        const double u = uv_of(mesh, c).u - mean.u, v = uv_of(mesh, c).v - mean.v;
        xx += px * px, xy += px * py, yy += py * py;
        xu += px * u, yu += py * u, xv += px * v, yv += py * v;
    }
    const double d = xx * yy - xy * xy;
    if (d > 1e-12 * (xx + yy) * (xx + yy)) {
        slope_u_ = x * ((xu * yy - yu * xy) / d) + y * ((yu * xx - xu * xy) / d);
        slope_v_ = x * ((xv * yy - yv * xy) / d) + y * ((yv * xx - xv * xy) / d);
    }
    double off = 0, range = 0;
    for (int c = first_; c < end_; ++c) {
        const vec3d away = corner_place(mesh, c) - middle;
        const double u = uv_of(mesh, c).u - mean.u, v = uv_of(mesh, c).v - mean.v;
        off = std::max({off, std::abs(u - dot(slope_u_, away)), std::abs(v - dot(slope_v_, away))});
        range = std::max({range, std::abs(u), std::abs(v)});
    }
    is_plane_ = off <= 1e-5 * range;
}

// Source: M. Floater, Mean value coordinates, 2003.
bool polygon_picture::blend(const vec3d &point, flat_uv &out) const
{
    const int n = end_ - first_;
    std::array<vec3d, longest_blended> to = {};
    std::array<double, longest_blended> far = {}, half = {}; // distance; tangent of half an angle
    vec3d turn;
    for (int i = 0; i < n; ++i) {
        to[i] = corner_place(mesh_, first_ + i) - point;
        far[i] = length(to[i]);
        if (far[i] < 1e-30) {
            out = mesh_.uv(first_ + i);
            return true;
        }
    }
    for (int i = 0; i < n; ++i)
        turn += cross(to[i], to[(i + 1) % n]);
    for (int i = 0; i < n; ++i) {
        const int next = (i + 1) % n;
        const vec3d side = cross(to[i], to[next]);
        const double sine = dot(side, turn) < 0 ? -length(side) : length(side);
        const double sum = far[i] * far[next] + dot(to[i], to[next]);
        half[i] = std::abs(sum) > 0 ? sine / sum : 0;
    }
    double weights = 0, u = 0, v = 0;
    for (int i = 0; i < n; ++i) {
        const double weight = (half[(i + n - 1) % n] + half[i]) / far[i];
        weights += weight;
        u += weight * uv_of(mesh_, first_ + i).u;
        v += weight * uv_of(mesh_, first_ + i).v;
    }
    out = to_uv(u / weights, v / weights);
    return weights > 0 && std::isfinite(out.u) && std::isfinite(out.v);
}

flat_uv polygon_picture::at(const vec3d &point, int corner) const
{
    flat_uv blended = {0, 0};
    if (!is_plane_ && end_ - first_ <= longest_blended && blend(point, blended))
        return blended;
    const vec3d away = point - corner_place(mesh_, corner);
    const uv_double uv = uv_of(mesh_, corner);
    return to_uv(uv.u + dot(slope_u_, away), uv.v + dot(slope_v_, away));
}
