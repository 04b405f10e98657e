#include "edit/mesh/vertex_fan.h"

#include "model/vec3d.h"

int corner_before(const flat_mesh &mesh, int surface, int corner)
{
    return corner > mesh.first_corner(surface) ? corner - 1 : mesh.end_corner(surface) - 1;
}

int corner_after(const flat_mesh &mesh, int surface, int corner)
{
    return corner + 1 < mesh.end_corner(surface) ? corner + 1 : mesh.first_corner(surface);
}

namespace {

// The corner that follows in the fan, across the edge by which this one's polygon arrives; -1 at a
// border. False where the edge is no edge of two polygons that face one way.
bool next_in_fan(const edge_topology &topology, int surface, int corner, int *next)
{
    const int e = topology.edge_of_corner(corner_before(topology.mesh(), surface, corner));
    *next = -1;
    if (e < 0)
        return false;
    if (topology.is_border(e))
        return true;
    const edge_use *use = topology.beyond(e, surface);
    if (use == nullptr || topology.mesh().corner(use->corner) != topology.mesh().corner(corner))
        return false;
    *next = use->corner;
    return true;
}

} // namespace

bool find_vertex_fan(const edge_topology &topology, const vertex_corners &corners, int v,
                     vertex_fan *fan)
{
    const flat_mesh &mesh = topology.mesh();
    const auto all = corners.of(v);
    *fan = {};
    if (all.empty())
        return false;
    // An open fan begins with the polygon that leaves along a border.
    int start = all[0];
    for (const std::int32_t c : all) {
        if (mesh.surface(corners.surface_of(c)).is_line())
            return false;
        const int e = topology.edge_of_corner(c);
        if (e < 0)
            return false;
        if (topology.is_border(e))
            start = c;
    }
    for (int c = start; c >= 0;) {
        fan->corners.push_back(c);
        fan->edges.push_back(topology.edge_of_corner(c));
        const int surface = corners.surface_of(c);
        int next = -1;
        if (fan->size() > static_cast<int>(all.size()) || !next_in_fan(topology, surface, c, &next))
            return false;
        if (next < 0)
            fan->edges.push_back(topology.edge_of_corner(corner_before(mesh, surface, c)));
        fan->closed = next == start;
        c = fan->closed ? -1 : next;
    }
    return fan->corners.size() == all.size();
}

flat_uv corner_uv_at(const flat_mesh &mesh, int surface, int corner, const point3_t &point)
{
    const int before = corner_before(mesh, surface, corner);
    const int after = corner_after(mesh, surface, corner);
    const point3_t &here = mesh.position(mesh.corner(corner));
    const vec3d a = between(here, mesh.position(mesh.corner(before)));
    const vec3d b = between(here, mesh.position(mesh.corner(after)));
    const vec3d d = between(here, point), normal = cross(a, b);
    const double area = dot(normal, normal);
    const flat_uv &uv = mesh.uv(corner), &p = mesh.uv(before), &q = mesh.uv(after);
    if (area == 0)
        return uv;
    const double s = dot(cross(d, b), normal) / area, t = dot(cross(a, d), normal) / area;
    const auto mixed = [&](float own, float first, float second) {
        const double x = static_cast<double>(own);
        return static_cast<float>(x + s * (static_cast<double>(first) - x) +
                                  t * (static_cast<double>(second) - x));
    };
    return {mixed(uv.u, p.u, q.u), mixed(uv.v, p.v, q.v)};
}
