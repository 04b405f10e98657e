#include "edit/primitives.h"

#include "app/command_result.h"
#include "app/messages.h"
#include "app/prefs.h"
#include "edit/transform.h"
#include "model/identity.h"
#include "model/normals.h"
#include "model/world.h"
#include "view/redraw.h"

#include <array>
#include <cmath>
#include <vector>

namespace {

constexpr float two_pi = 6.2831855f;
constexpr float pi = 3.1415927f;

// The point at (first, second) on the plane's two axes and `depth` on the constant one.
point3_t on_plane(int plane, float first, float second, float depth)
{
    switch (plane) {
    case 0:
        return {first, second, depth};
    case 1:
        return {depth, second, first};
    case 2:
        return {first, depth, second};
    default:
        return {0, 0, 0};
    }
}

// Vertices and surfaces of a filler, appended to the object with the last node in hand.
class filler_t {
public:
    explicit filler_t(object_t *filled) : object(filled) {}

    vertex *add_vertex(const point3_t &p)
    {
        vertex *v = new_vertex_set(p.x, p.y, p.z);
        object_add_vertex(object, v);
        return v;
    }
    surface_t *add_surface(bool smooth)
    {
        surface_t *surface = new_surface();
        surface_set_shading(surface, smooth ? 1 : 0);
        surface_set_twosided(surface, 0);
        object_add_surface(object, surface);
        return surface;
    }
    void finish() { object_calc_normals_force(object); }

private:
    object_t *object;
};

struct corner_t {
    vertex *point;
    float u, v;
};

template <size_t N>
void add_corners(surface_t *surface, const std::array<corner_t, N> &corners)
{
    for (const corner_t &corner : corners)
        surface_add_vertex(surface, corner.point, corner.u, corner.v);
}

// The vertices of a sphere, ring by ring from the lower pole; the poles are single vertices.
std::vector<std::vector<vertex *>> sphere_rings(filler_t &filler, int n, float radius)
{
    std::vector<std::vector<vertex *>> rings;
    for (int i = 0; i <= n; ++i) {
        const double half = n / 2.0;
        const double phi = (i - half) * static_cast<double>(pi) / half / 2;
        const bool pole = i == 0 || i == n;
        std::vector<vertex *> ring;
        for (int j = 0; j < (pole ? 1 : n); ++j) {
            const double theta = static_cast<double>(two_pi) * j / n;
            const double r = radius;
            ring.push_back(filler.add_vertex({static_cast<float>(r * cos(phi) * cos(theta)),
                                              static_cast<float>(r * sin(phi)),
                                              static_cast<float>(r * cos(phi) * sin(theta))}));
        }
        rings.push_back(ring);
    }
    return rings;
}

// One cell of a sphere's body: a quad, or two triangles whose diagonal alternates.
void add_sphere_cell(filler_t &filler, const corner_t &a, const corner_t &b, const corner_t &d,
                     const corner_t &e, bool even)
{
    if (prefs.sphere_triangles == 0) {
        add_corners(filler.add_surface(true), std::array{a, b, d, e});
    } else if (even) {
        add_corners(filler.add_surface(true), std::array{e, a, b});
        add_corners(filler.add_surface(true), std::array{b, d, e});
    } else {
        add_corners(filler.add_surface(true), std::array{a, b, d});
        add_corners(filler.add_surface(true), std::array{d, e, a});
    }
}

} // namespace

void surface_add_quad_refs(surface_t *surface, vertex *a, vertex *b, vertex *c, vertex *d)
{
    add_corners(surface, std::array<corner_t, 4>{{{a, 0, 0}, {b, 1, 0}, {c, 1, 1}, {d, 0, 1}}});
}

void object_add_cube_view(object_t *object, float width, float height, float depth)
{
    static constexpr float signs[8][3] = {{-1, -1, -1}, {1, -1, -1}, {1, -1, 1}, {-1, -1, 1},
                                          {-1, 1, 1},   {1, 1, 1},   {1, 1, -1}, {-1, 1, -1}};
    static constexpr int faces[6][4] = {{0, 1, 2, 3}, {7, 4, 5, 6}, {4, 3, 2, 5},
                                        {6, 1, 0, 7}, {7, 0, 3, 4}, {5, 2, 1, 6}};
    filler_t filler(object);
    vertex *p[8];
    for (int i = 0; i < 8; ++i)
        p[i] = filler.add_vertex(
            {signs[i][0] * width / 2, signs[i][1] * height / 2, signs[i][2] * depth / 2});
    for (const auto &face : faces) {
        surface_t *surface = new_surface();
        object_add_surface(object, surface);
        surface_add_quad_refs(surface, p[face[0]], p[face[1]], p[face[2]], p[face[3]]);
    }
    filler.finish();
}

void object_add_sphere_view(object_t *object, float radius)
{
    const int n = prefs.num_surface_div;
    if (n < 1)
        return;
    filler_t filler(object);
    const auto rings = sphere_rings(filler, n, radius);
    const auto vertex_at = [&](int i, int j) {
        const auto &ring = rings[static_cast<size_t>(i)];
        return ring[static_cast<size_t>(j) % ring.size()];
    };
    const float step = 1.0f / static_cast<float>(n);
    const auto corner = [&](int i, int j) { // its u is that of column j, also beyond the seam
        return corner_t{vertex_at(i, j), 1 - static_cast<float>(j) * step,
                        static_cast<float>(i) * step};
    };
    for (int i = 1; i <= n - 2; ++i)
        for (int j = 0; j < n; ++j)
            add_sphere_cell(filler, corner(i, j), corner(i + 1, j), corner(i + 1, j + 1),
                            corner(i, j + 1), (i + j) % 2 == 0);
    for (int j = 0; j < n; ++j)
        add_corners(filler.add_surface(true),
                    std::array{corner(0, j), corner(1, j), corner(1, j + 1)});
    for (int j = 0; j < n; ++j)
        add_corners(filler.add_surface(true),
                    std::array{corner(n, j + 1), corner(n - 1, j + 1), corner(n - 1, j)});
    filler.finish();
}

void object_add_cylinder_view(object_t *object, int plane, float radius, float height,
                              int first_end, int second_end)
{
    const int n = prefs.cylinder_segments;
    const float first_depth = plane == 0 ? -height / 2 : height / 2;
    std::vector<vertex *> first, second;
    for (int k = 0; k < n; ++k) {
        const double angle = static_cast<double>(two_pi) * (k + 1) / n;
        const auto a = static_cast<float>(radius * cos(angle));
        const auto b = static_cast<float>(radius * sin(angle));
        const point3_t p = on_plane(plane, a, b, first_depth);
        const point3_t q = on_plane(plane, a, b, -first_depth);
        first.push_back(new_vertex_set(p.x, p.y, p.z));
        second.push_back(new_vertex_set(q.x, q.y, q.z));
    }
    filler_t filler(object);
    const float step = 1.0f / static_cast<float>(n);
    for (int k = 0; k < n; ++k) {
        const auto i = static_cast<size_t>(k);
        const size_t next = (i + 1) % first.size();
        const float u0 = 1 - static_cast<float>(k) * step;
        const float u1 = 1 - static_cast<float>(k + 1) * step;
        add_corners(filler.add_surface(true),
                    std::array<corner_t, 3>{
                        {{first[i], u0, 1}, {second[next], u1, 0}, {second[i], u0, 0}}});
        add_corners(filler.add_surface(true),
                    std::array<corner_t, 3>{
                        {{first[i], u0, 1}, {first[next], u1, 1}, {second[next], u1, 0}}});
    }
    for (vertex *v : first)
        object_add_vertex(object, v);
    for (vertex *v : second)
        object_add_vertex(object, v);
    if (first_end != 0) {
        surface_t *end = filler.add_surface(false);
        for (vertex *v : first)
            surface_add_vertex_head(end, v, 0, 0);
    }
    if (second_end != 0) {
        surface_t *end = filler.add_surface(false);
        for (vertex *v : second)
            surface_add_vertex(end, v, 0, 0);
    }
    filler.finish();
}

void object_add_disk_view(object_t *object, int plane, float radius_a, float radius_b, int segments)
{
    filler_t filler(object);
    std::vector<vertex *> rim;
    // Angles go through degrees, as those of all ellipses.
    for (int k = 0; k < segments; ++k) {
        const float degrees = static_cast<float>(k) * (360.0f / static_cast<float>(segments));
        const double angle = static_cast<double>(degrees * pi / 180.0f);
        rim.push_back(filler.add_vertex(on_plane(plane, static_cast<float>(radius_a * cos(angle)),
                                                 static_cast<float>(radius_b * sin(angle)), 0)));
    }
    vertex *centre = filler.add_vertex({0, 0, 0});
    for (size_t k = 0; k < rim.size(); ++k) {
        surface_t *surface = new_surface();
        object_add_surface(object, surface);
        add_corners(surface,
                    std::array<corner_t, 3>{
                        {{rim[k], 0, 0}, {rim[(k + 1) % rim.size()], 0, 0}, {centre, 0, 0}}});
    }
    filler.finish();
}

object_t *create_regular_cube(const point3_t *centre)
{
    object_t *object = new_object(OBJECT_POLY);
    object_add_cube_view(object, 1, 1, 1);
    translate_object(object, centre);
    return object;
}

// ---- commands ----

void command_new_cube()
{
    const point3_t origin = {0, 0, 0};
    object_t *cube = create_regular_cube(&origin);
    object_add_child(vesk_get_world(), cube);
    command_result_append_int(object_identity(cube));
    redraw_all();
    display_status();
}
