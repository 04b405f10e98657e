#include "edit/primitives_flat.h"

#include "base/messages.h"
#include "base/prefs.h"
#include "edit/primitives_internal.h"
#include "edit/uv/uvmap.h"
#include "model/angle.h"
#include "model/normals.h"

#include <algorithm>
#include <cmath>
#include <vector>

using namespace primitive;

namespace {

surface_t *add_line(object_t *object, const point3_t &from, const point3_t &to)
{
    vertex *a = add_vertex(object, from);
    vertex *b = add_vertex(object, to);
    surface_t *line = new_surface();
    surface_set_type(line, SURFACE_LINE);
    surface_add_vertex(line, a, 0, 0);
    surface_add_vertex(line, b, 0, 0);
    object_add_surface(object, line);
    return line;
}

void add_cell(object_t *object, std::initializer_list<vertex *> corners, int material)
{
    surface_t *surface = new_surface();
    surface_set_col(surface, material);
    for (vertex *corner : corners)
        surface_add_vertex(surface, corner, 0, 0);
    object_add_surface(object, surface);
}

// Half the box's extent on the plane's two axes.
struct radii_t {
    float a, b;
};
radii_t radii_of(int plane, const point3_t &c1, const point3_t &c2)
{
    const flat_point_t p = to_plane(plane, c1);
    const flat_point_t q = to_plane(plane, c2);
    return {std::fabs(p.first - q.first) / 2, std::fabs(p.second - q.second) / 2};
}

// Deliberate: a float counter and degrees decide the last bits.
std::vector<point3_t> ellipse(int plane, float a, float b, int n)
{
    std::vector<point3_t> points;
    for (float k = 0; k < static_cast<float>(n); k += 1) {
        const float degrees = k * (360.0f / static_cast<float>(n));
        const double angle = static_cast<double>(radians(degrees));
        points.push_back(on_plane(plane, static_cast<float>(a * std::cos(angle)),
                                  static_cast<float>(b * std::sin(angle)), 0));
    }
    return points;
}

} // namespace

object_t *add_rect(int plane, const point3_t *c1, const point3_t *c2)
{
    object_t *object = new_named("rect");
    set_middle(object, *c1, *c2);
    const flat_point_t p = to_plane(plane, *c1);
    const flat_point_t q = to_plane(plane, *c2);
    vertex *r1 = add_vertex(object, on_plane(plane, p.first, p.second, p.depth));
    vertex *r2 = add_vertex(object, on_plane(plane, q.first, p.second, p.depth));
    vertex *r3 = add_vertex(object, on_plane(plane, q.first, q.second, p.depth));
    vertex *r4 = add_vertex(object, on_plane(plane, p.first, q.second, p.depth));
    surface_t *surface = new_surface();
    add_corners(surface, {{r4, 0, 0}, {r3, 1, 0}, {r2, 1, 1}, {r1, 0, 1}});
    object_add_surface(object, surface);
    object_calc_normals_force(object);
    return object;
}

object_t *add_grid(int plane, const point3_t *c1, const point3_t *c2)
{
    const int nx = std::max(prefs.grid_object_x, 1);
    const int ny = std::max(prefs.grid_object_y, 1);
    object_t *object = new_named("grid");
    set_middle(object, *c1, *c2);
    const flat_point_t p = to_plane(plane, *c1);
    const flat_point_t q = to_plane(plane, *c2);
    for (int i = 0; i <= nx; ++i) {
        const float at =
            p.first + static_cast<float>(i) * (q.first - p.first) / static_cast<float>(nx);
        add_line(object, on_plane(plane, at, p.second, p.depth),
                 on_plane(plane, at, q.second, p.depth));
    }
    for (int j = 0; j <= ny; ++j) {
        const float at =
            p.second + static_cast<float>(j) * (q.second - p.second) / static_cast<float>(ny);
        add_line(object, on_plane(plane, p.first, at, p.depth),
                 on_plane(plane, q.first, at, p.depth));
    }
    return object;
}

object_t *add_mesh(int plane, const point3_t *c1, const point3_t *c2)
{
    const int nx = prefs.meshx;
    const int ny = prefs.meshy;
    object_t *object = new_named("mesh");
    set_middle(object, *c1, *c2);
    if (nx < 1 || ny < 1)
        return object;
    const flat_point_t p = to_plane(plane, *c1);
    const flat_point_t q = to_plane(plane, *c2);
    std::vector<vertex *> grid;
    for (int r = 0; r <= ny; ++r) {
        for (int c = 0; c <= nx; ++c) {
            grid.push_back(add_vertex(
                object, on_plane(plane,
                                 p.first + static_cast<float>(c) * (q.first - p.first) /
                                               static_cast<float>(nx),
                                 p.second + static_cast<float>(r) * (q.second - p.second) /
                                                static_cast<float>(ny),
                                 p.depth)));
        }
    }
    const auto at = [&](int r, int c) {
        return grid[static_cast<size_t>(r) * static_cast<size_t>(nx + 1) + static_cast<size_t>(c)];
    };
    for (int r = 0; r < ny; ++r) {
        for (int c = 0; c < nx; ++c) {
            vertex *a = at(r, c), *b = at(r + 1, c), *d = at(r + 1, c + 1), *e = at(r, c + 1);
            const int parity = (r % 2 + c) % 2;
            if (prefs.mesh_triangles == 0) {
                add_cell(object, {a, b, d, e}, parity);
            } else if (parity == 1) {
                add_cell(object, {a, b, e}, parity);
                add_cell(object, {e, b, d}, parity);
            } else {
                add_cell(object, {a, b, d}, parity);
                add_cell(object, {a, d, e}, parity);
            }
        }
    }
    calc_texture_coors(object, plane);
    object_calc_normals_force(object);
    object_set_surface_shading(object, 1);
    return object;
}

object_t *new_circle(int plane, float radius_a, float radius_b, int segments)
{
    object_t *object = new_named("ellipse");
    surface_t *outline = new_surface();
    surface_set_type(outline, SURFACE_CLOSED_LINE);
    for (const point3_t &p : ellipse(plane, radius_a, radius_b, segments))
        surface_add_vertex(outline, add_vertex(object, p), 0, 0);
    object_add_surface(object, outline);
    object_calc_normals_force(object);
    return object;
}

object_t *add_circle(int plane, const point3_t *c1, const point3_t *c2)
{
    int n = prefs.ellipse_segments;
    if (n < 3) {
        console_printf("3 is the minimum. Making a 3 sided shape\n");
        n = 3;
    }
    const radii_t r = radii_of(plane, *c1, *c2);
    object_t *object = new_circle(plane, r.a, r.b, n);
    calc_texture_coors(object, plane);
    object_calc_normals_force(object);
    return object;
}

object_t *create_regular_elipse(int plane)
{
    return new_circle(plane, 0.5f, 0.5f, prefs.ellipse_segments);
}

object_t *new_arc(int plane, float radius, float start, float end, int segments)
{
    object_t *object = new_named("arc");
    surface_t *line = new_surface();
    surface_set_type(line, SURFACE_LINE);
    object_add_surface(object, line);
    if (segments < 1)
        return object;
    if (start == end) {
        start = 0;
        end = 360;
    }
    const double from = radians(start), to = radians(end);
    const double first = to < from ? from - 2 * pi : from;
    const double step = std::fmin(2 * pi / segments, std::fabs(to - first));
    // A little more: the end is not to be lost to the rounding of the angles.
    const double count = step > 0 ? std::floor((to - first) / step + 1e-3) : -1;
    for (int i = 0; i <= count; ++i) {
        const auto angle = static_cast<float>(first + i * step);
        surface_add_vertex(line,
                           add_vertex(object, on_plane(plane, radius * std::cos(angle),
                                                       radius * std::sin(angle), 0)),
                           0, 0);
    }
    object_calc_normals_force(object);
    return object;
}

void object_add_disk_view(object_t *object, int plane, float radius_a, float radius_b, int segments)
{
    std::vector<vertex *> rim;
    for (const point3_t &p : ellipse(plane, radius_a, radius_b, segments))
        rim.push_back(add_vertex(object, p));
    vertex *centre = add_vertex(object, {0, 0, 0});
    for (size_t k = 0; k < rim.size(); ++k) {
        surface_t *surface = new_surface();
        add_corners(surface, {{rim[k], 0, 0}, {rim[(k + 1) % rim.size()], 0, 0}, {centre, 0, 0}});
        object_add_surface(object, surface);
    }
    object_calc_normals_force(object);
}

object_t *new_disk(int plane, float radius_a, float radius_b, int segments)
{
    object_t *object = new_named("disk");
    object_add_disk_view(object, plane, radius_a, radius_b, segments);
    return object;
}

object_t *add_disk(int plane, const point3_t *c1, const point3_t *c2)
{
    int n = prefs.disk_segments;
    if (n < 3) {
        console_printf("3 is the minimum segments"); // Deliberate: no line end
        n = 3;
    }
    const radii_t r = radii_of(plane, *c1, *c2);
    object_t *object = new_disk(plane, r.a, r.b, n);
    calc_texture_coors(object, plane);
    object_calc_normals_force(object);
    return object;
}

object_t *create_regular_disk(int plane)
{
    object_t *object = new_disk(plane, 0.5f, 0.5f, prefs.disk_segments);
    object_calc_normals_force(object);
    return object;
}
