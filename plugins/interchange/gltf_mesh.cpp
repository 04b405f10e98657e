#include "gltf_mesh.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr std::size_t most_tried = 64; // corners that may see all others

point3_t unit(const point3_t &n)
{
    const float length = std::sqrt(n.x * n.x + n.y * n.y + n.z * n.z);
    if (!(length > 0) || !std::isfinite(length))
        return {0, 0, 1}; // a normal must have a direction
    return {n.x / length, n.y / length, n.z / length};
}

point3_t finite(point3_t p)
{
    for (float *value : {&p.x, &p.y, &p.z})
        *value = std::isfinite(*value) ? *value : 0;
    return p;
}

bool is_last_first(const std::vector<std::uint32_t> &to, std::uint32_t place)
{
    return to.size() > 2 && to[to.size() - 3] == place;
}

} // namespace

mesh_data::mesh_data(job &work, const model_node &node, const std::vector<int> &materials)
    : node_(node), materials_(materials)
{
    for (const model_surface &surface : node.surfaces) {
        if (!work.step())
            return;
        if (is_line(surface))
            add_line(surface);
        else
            add_polygon(surface);
    }
    for (const int point : node.loose)
        add(loose, static_cast<std::size_t>(point));
}

void mesh_data::add(vertices &to, std::size_t point) const
{
    to.points.push_back(finite(node_.points[point]));
    if (const std::size_t at = 3 * point; at + 2 < node_.colours.size())
        to.colours.push_back({node_.colours[at], node_.colours[at + 1], node_.colours[at + 2]});
}

std::uint32_t mesh_data::vertex(const model_surface &surface, int corner)
{
    const std::size_t point = point_at(corner);
    const std::size_t at = 2 * static_cast<std::size_t>(corner);
    float u = node_.textured ? node_.uv[at] : 0;
    float v = node_.textured ? node_.uv[at + 1] : 0;
    u = std::isfinite(u) ? u : 0;
    v = std::isfinite(v) ? 1 - v : 0; // rows from the top
    const auto fresh = static_cast<std::uint32_t>(corners.points.size());
    const std::uint32_t place =
        surface.smooth ? shared_.emplace(std::tuple(point, u, v), fresh).first->second : fresh;
    if (place == fresh) {
        add(corners, point);
        normals.push_back(unit(surface.smooth ? node_.normals[point] : surface.normal));
        uv.insert(uv.end(), {u, v});
    }
    return place;
}

void mesh_data::add_polygon(const model_surface &surface)
{
    places_.clear();
    for (int k = 0; k < surface.count; ++k)
        places_.push_back(vertex(surface, surface.first + k));
    std::vector<std::uint32_t> &to = triangles[material_of(surface)];
    const std::size_t count = places_.size();
    if (const std::size_t start = fan_start(surface, to); start < count) {
        for (std::size_t i = 1; i + 1 < count; ++i)
            to.insert(to.end(), {places_[start], places_[(start + i) % count],
                                 places_[(start + i + 1) % count]});
        return;
    }
    corners_.clear();
    cut_surface(node_, surface, corners_);
    cut += count > 3 ? 1 : 0;
    for (std::size_t i = 0; i + 2 < corners_.size(); i += 3) {
        std::uint32_t triangle[3];
        for (std::size_t k = 0; k < 3; ++k)
            triangle[k] = places_[static_cast<std::size_t>(corners_[i + k] - surface.first)];
        if (is_last_first(to, triangle[0])) // a triangle of its own
            std::rotate(triangle, triangle + 1, triangle + 3);
        to.insert(to.end(), triangle, triangle + 3);
    }
}

// The corner that sees all others, counted within the surface; their number when there is none.
std::size_t mesh_data::fan_start(const model_surface &surface,
                                 const std::vector<std::uint32_t> &to) const
{
    const std::size_t count = places_.size();
    const std::size_t tries = count <= most_tried ? count : 8;
    double normal[3] = {}; // Newell's
    for (std::size_t k = 0; k < count; ++k) {
        double part[3];
        cross(surface, 0, k, (k + 1) % count, part);
        for (int i = 0; i < 3; ++i)
            normal[i] += part[i];
    }
    for (std::size_t start = 0; start < tries; ++start) {
        bool sees = !is_last_first(to, places_[start]);
        for (std::size_t i = 1; i + 1 < count && sees; ++i) {
            double part[3];
            cross(surface, start, (start + i) % count, (start + i + 1) % count, part);
            sees = part[0] * normal[0] + part[1] * normal[1] + part[2] * normal[2] > 0;
        }
        if (sees)
            return start;
    }
    return count;
}

// The product of the ways from corner `from` to two others.
void mesh_data::cross(const model_surface &surface, std::size_t from, std::size_t to,
                      std::size_t next, double *out) const
{
    const auto at = [&](std::size_t k) -> const point3_t & {
        return node_.points[point_at(surface.first + static_cast<int>(k))];
    };
    const auto way = [&](std::size_t k, double *d) {
        const point3_t &p = at(k);
        const point3_t &q = at(from);
        d[0] = static_cast<double>(p.x) - static_cast<double>(q.x);
        d[1] = static_cast<double>(p.y) - static_cast<double>(q.y);
        d[2] = static_cast<double>(p.z) - static_cast<double>(q.z);
    };
    double a[3];
    double b[3];
    way(to, a);
    way(next, b);
    for (int i = 0; i < 3; ++i)
        out[i] = a[(i + 1) % 3] * b[(i + 2) % 3] - a[(i + 2) % 3] * b[(i + 1) % 3];
}

void mesh_data::add_line(const model_surface &surface)
{
    const auto first = static_cast<std::uint32_t>(ends.points.size());
    const auto count = static_cast<std::uint32_t>(surface.count);
    for (int i = 0; i < surface.count; ++i)
        add(ends, point_at(surface.first + i));
    std::vector<std::uint32_t> &to = lines[material_of(surface)];
    for (std::uint32_t i = 0; i + 1 < count; ++i)
        to.insert(to.end(), {first + i, first + i + 1});
    if (surface.kind == SURFACE_CLOSED_LINE)
        to.insert(to.end(), {first + count - 1, first});
}
