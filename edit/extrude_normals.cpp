#include "edit/extrude_normals.h"

#include "base/messages.h"
#include "edit/mesh/edge_table.h"
#include "edit/mesh/mesh_edges.h"
#include "edit/surface_edit.h"

#include <cmath>

namespace {

// A new vertex for every fan, that far along its offset.
std::vector<int> add_moved(surface_edit &edit, const surface_region &region, double distance)
{
    std::vector<int> vertices = region.fan_vertices();
    const std::vector<vec3d> offsets = region.fan_offsets();
    edit.change.reserve(vertices.size(), 0, 0);
    for (std::size_t fan = 0; fan < vertices.size(); ++fan) {
        const int old = vertices[fan];
        const vec3d to = to_vec3d(edit.change.position(old)) + offsets[fan] * distance;
        vertices[fan] = edit.change.add_vertex(to_point(to), old);
    }
    return vertices;
}

// A quad on the side that the corner begins, between its ends and their copies; it faces as the
// outside of a body does whose top the copies are, or with `below` whose bottom.
void add_wall(surface_edit &edit, const surface_region &region, const std::vector<int> &copies,
              int surface, int corner, bool below)
{
    const flat_mesh &mesh = region.mesh();
    const int next = next_corner(mesh, surface, corner);
    mesh_change &change = edit.change;
    edit.add_surface(surface);
    change.add_corner(mesh.corner(corner), mesh.uv(corner));
    change.add_corner(mesh.corner(next), mesh.uv(next));
    change.add_corner(copies[region.fan(next)], mesh.uv(next));
    change.add_corner(copies[region.fan(corner)], mesh.uv(corner));
    if (below)
        change.reverse_corners();
}

bool extrude(surface_edit &edit, surface_region::parts how, double distance)
{
    const flat_mesh &mesh = edit.change.before();
    const surface_region region(mesh, polygons_with_plane(mesh, edit.surfaces), how);
    const std::vector<int> moved = add_moved(edit, region, distance);
    for (const int s : region.polygons()) {
        for (int c = mesh.first_corner(s); c < mesh.end_corner(s); ++c) {
            if (region.is_border(c))
                add_wall(edit, region, moved, s, c, false);
            edit.change.redirect_corner(c, moved[region.fan(c)]);
        }
        edit.kept.push_back(mesh.surface_record(s));
        ++edit.changed;
        if (!edit.step())
            return false;
    }
    edit.change.remove_unused();
    return true;
}

// Of each corner whether the side it begins is continued by a polygon outside the region.
std::vector<bool> continued_sides(const surface_region &region)
{
    const flat_mesh &mesh = region.mesh();
    const edge_table edges(mesh);
    std::vector<bool> continued(mesh.num_corners());
    for (int e = 0; e < edges.size(); ++e) {
        bool outside = false;
        for (const edge_use &use : edges.uses(e))
            outside = outside || region.fan(use.corner) < 0;
        for (const edge_use &use : edges.uses(e))
            continued[use.corner] = outside;
    }
    return continued;
}

bool make_shell(surface_edit &edit, double thickness, bool rim)
{
    const flat_mesh &mesh = edit.change.before();
    const surface_region region(mesh, polygons_with_plane(mesh, edit.surfaces),
                                surface_region::parts::joined);
    const std::vector<int> inner = add_moved(edit, region, -thickness);
    const std::vector<bool> continued =
        rim && region.has_border() ? continued_sides(region) : std::vector<bool>();
    for (const int s : region.polygons()) {
        const int first = mesh.first_corner(s), end = mesh.end_corner(s);
        edit.made.push_back(edit.add_surface(s));
        for (int c = end; c-- > first;)
            edit.change.add_corner(inner[region.fan(c)], mesh.uv(c));
        for (int c = first; c < end && !continued.empty(); ++c) {
            if (!region.is_border(c) || continued[c])
                continue;
            edit.made.push_back(edit.added);
            add_wall(edit, region, inner, s, c, true);
        }
        ++edit.changed;
        if (!edit.step())
            return false;
    }
    return true;
}

} // namespace

// ---- commands ----

void command_extrude_each(float distance)
{
    if (!std::isfinite(distance) || distance == 0) {
        display_message("extrude each - give a distance other than 0");
        return;
    }
    run_surface_edit("extrude each", [distance](surface_edit &edit) {
        return extrude(edit, surface_region::parts::apart, distance);
    });
}

void command_extrude_normals(float distance)
{
    if (!std::isfinite(distance) || distance == 0) {
        display_message("extrude normals - give a distance other than 0");
        return;
    }
    run_surface_edit("extrude normals", [distance](surface_edit &edit) {
        return extrude(edit, surface_region::parts::joined, distance);
    });
}

void command_shell(float thickness, int rim)
{
    if (!std::isfinite(thickness) || thickness <= 0) {
        display_message("shell - give a thickness above 0");
        return;
    }
    run_surface_edit("shell", [thickness, rim](surface_edit &edit) {
        return make_shell(edit, thickness, rim != 0);
    });
}
