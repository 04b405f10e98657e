#include "edit/primitives.h"

#include "base/command_result.h"
#include "base/messages.h"
#include "base/prefs.h"
#include "base/redraw.h"
#include "edit/primitives_flat.h"
#include "edit/primitives_internal.h"
#include "edit/transform.h"
#include "edit/uv/uvmap.h"
#include "model/angle.h"
#include "model/identity.h"
#include "model/normals.h"
#include "model/world.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

using namespace primitive;

namespace {

// ---- spheres ----

using add_surface_t = std::function<void(surface_t *)>;

class sphere_t {
public:
    // Adds the rings' vertices to the object, from the lower pole up; the poles are single ones.
    sphere_t(object_t *object, const point3_t &middle, const point3_t &radii, int segments)
        : n(segments)
    {
        for (int i = 0; i <= n; ++i) {
            const double half = n / 2.0;
            const double phi = (i - half) * pi_f / half / 2;
            std::vector<vertex *> ring;
            for (int j = 0; j < (i == 0 || i == n ? 1 : n); ++j) {
                const double theta = 2.0 * pi_f * j / n;
                ring.push_back(add_vertex(
                    object,
                    {middle.x + static_cast<float>(radii.x * std::cos(phi) * std::cos(theta)),
                     middle.y + static_cast<float>(radii.y * std::sin(phi)),
                     middle.z + static_cast<float>(radii.z * std::cos(phi) * std::sin(theta))}));
            }
            rings.push_back(ring);
        }
    }

    void add_body(const add_surface_t &add) const
    {
        for (int i = 1; i <= n - 2; ++i) {
            for (int j = 0; j < n; ++j)
                add_cell(i, j, add);
        }
    }

    void add_caps(const add_surface_t &add) const
    {
        for (int j = 0; j < n; ++j)
            add(add_corners(new_side(true), {corner(0, j), corner(1, j), corner(1, j + 1)}));
        for (int j = 0; j < n; ++j) {
            add(add_corners(new_side(true),
                            {corner(n, j + 1), corner(n - 1, j + 1), corner(n - 1, j)}));
        }
    }

private:
    // A quad, or two triangles whose diagonal alternates.
    void add_cell(int i, int j, const add_surface_t &add) const
    {
        const corner_t a = corner(i, j), b = corner(i + 1, j);
        const corner_t d = corner(i + 1, j + 1), e = corner(i, j + 1);
        if (prefs.sphere_triangles == 0) {
            add(add_corners(new_side(true), {a, b, d, e}));
        } else if ((i + j) % 2 == 0) {
            add(add_corners(new_side(true), {e, a, b}));
            add(add_corners(new_side(true), {b, d, e}));
        } else {
            add(add_corners(new_side(true), {a, b, d}));
            add(add_corners(new_side(true), {d, e, a}));
        }
    }
    // Its u is that of column j, also beyond the seam.
    [[nodiscard]] corner_t corner(int i, int j) const
    {
        const auto &ring = rings[i];
        const auto count = static_cast<float>(n);
        return {ring[static_cast<size_t>(j) % ring.size()], 1 - static_cast<float>(j) / count,
                static_cast<float>(i) / count};
    }

    int n;
    std::vector<std::vector<vertex *>> rings;
};

// ---- boxes ----

struct box_face_t {
    int corners[4];
    float uv[4][2];
};
// clang-format off
const box_face_t box_faces[] = {
    {{0, 1, 2, 3}, {{1, 0}, {1, 1}, {0, 1}, {0, 0}}}, // z = min
    {{6, 7, 3, 2}, {{0, 1}, {0, 0}, {1, 0}, {1, 1}}}, // x = max
    {{7, 6, 5, 4}, {{1, 0}, {1, 1}, {0, 1}, {0, 0}}}, // z = max
    {{4, 5, 1, 0}, {{1, 0}, {1, 1}, {0, 1}, {0, 0}}}, // x = min
    {{1, 5, 6, 2}, {{0, 0}, {1, 0}, {1, 1}, {0, 1}}}, // y = max
    {{4, 0, 3, 7}, {{0, 0}, {1, 0}, {1, 1}, {0, 1}}}, // y = min
};
// clang-format on

} // namespace

void surface_add_quad_refs(surface_t *surface, vertex *a, vertex *b, vertex *c, vertex *d)
{
    add_corners(surface, {{a, 0, 0}, {b, 1, 0}, {c, 1, 1}, {d, 0, 1}});
}

object_t *add_cube(int, const point3_t *c1, const point3_t *c2)
{
    object_t *object = new_named("cube");
    const point3_t mn = {std::min(c1->x, c2->x), std::min(c1->y, c2->y), std::min(c1->z, c2->z)};
    const point3_t mx = {std::max(c1->x, c2->x), std::max(c1->y, c2->y), std::max(c1->z, c2->z)};
    vertex *p[8];
    for (int i = 0; i < 8; ++i) {
        const bool right = i % 4 >= 2, up = i % 4 == 1 || i % 4 == 2;
        p[i] = add_vertex(object, {right ? mx.x : mn.x, up ? mx.y : mn.y, i >= 4 ? mx.z : mn.z});
    }
    for (const box_face_t &face : box_faces) {
        surface_t *surface = new_side(false);
        for (int i = 0; i < 4; ++i)
            surface_add_vertex(surface, p[face.corners[i]], face.uv[i][0], face.uv[i][1]);
        object_add_surface(object, surface);
    }
    object_calc_normals_force(object);
    set_middle(object, *c1, *c2);
    return object;
}

void object_add_cube_view(object_t *object, float width, float height, float depth)
{
    static constexpr float signs[8][3] = {{-1, -1, -1}, {1, -1, -1}, {1, -1, 1}, {-1, -1, 1},
                                          {-1, 1, 1},   {1, 1, 1},   {1, 1, -1}, {-1, 1, -1}};
    static constexpr int faces[6][4] = {{0, 1, 2, 3}, {7, 4, 5, 6}, {4, 3, 2, 5},
                                        {6, 1, 0, 7}, {7, 0, 3, 4}, {5, 2, 1, 6}};
    vertex *p[8];
    for (int i = 0; i < 8; ++i) {
        p[i] = add_vertex(
            object, {signs[i][0] * width / 2, signs[i][1] * height / 2, signs[i][2] * depth / 2});
    }
    for (const auto &face : faces) {
        surface_t *surface = new_surface();
        object_add_surface(object, surface);
        surface_add_quad_refs(surface, p[face[0]], p[face[1]], p[face[2]], p[face[3]]);
    }
    object_calc_normals_force(object);
}

object_t *add_sphere(int, const point3_t *c1, const point3_t *c2)
{
    const int n = prefs.num_surface_div;
    if (n < 3) {
        windows_message_dialog("Please set sphere segments to 3 or above");
        return nullptr;
    }
    const point3_t radii = {std::fabs(c2->x - c1->x) / 2, std::fabs(c2->y - c1->y) / 2,
                            std::fabs(c2->z - c1->z) / 2};
    const point3_t middle = {std::min(c1->x, c2->x) + radii.x, std::min(c1->y, c2->y) + radii.y,
                             std::min(c1->z, c2->z) + radii.z};
    object_t *object = new_named("sphere");
    const sphere_t sphere(object, middle, radii, n);
    // The body is listed in reverse order before the caps.
    sphere.add_body([&](surface_t *surface) { object_add_surface_head(object, surface); });
    sphere.add_caps([&](surface_t *surface) { object_add_surface(object, surface); });
    object_calc_normals_force(object);
    vesk_object_set_centre(object, middle.x, middle.y, middle.z);
    return object;
}

void object_add_sphere_view(object_t *object, float radius)
{
    const int n = prefs.num_surface_div;
    if (n < 1)
        return;
    const sphere_t sphere(object, {0, 0, 0}, {radius, radius, radius}, n);
    const auto add = [&](surface_t *surface) { object_add_surface(object, surface); };
    sphere.add_body(add);
    sphere.add_caps(add);
    object_calc_normals_force(object);
}

object_t *new_cone(int plane, float radius_a, float radius_b, float height, int segments)
{
    object_t *object = new_circle(plane, radius_a, radius_b, segments);
    object_set_name(object, "cone");
    surface_t *base = object_get_surface_at(object, 0);
    surface_set_type(base, SURFACE_POLYGON);
    vertex *apex = add_vertex(object, on_plane(plane, 0, 0, height));
    // Deliberate: the texture step is that of the sphere preference, not of `segments`.
    const float s = 1 / static_cast<float>(prefs.num_surface_div);
    float u = 0;
    for (const listitem *at = base->refs; at != nullptr; at = at->next, u += 1) {
        const listitem *next = at->next == nullptr ? base->refs : at->next;
        object_add_surface(object, [&] {
            surface_t *side = new_surface();
            surface_set_shading(side, 1);
            return add_corners(side,
                               {{reinterpret_cast<svertex *>(at->data)->vertex, u * s, 0},
                                {apex, 0, 1},
                                {reinterpret_cast<svertex *>(next->data)->vertex, (u + 1) * s, 0}});
        }());
    }
    const point3_t down = on_plane(plane, 0, 0, -height / 2);
    translate_object(object, &down);
    object_calc_normals_force(object);
    return object;
}

object_t *create_cone(int plane, const point3_t *c1, const point3_t *c2)
{
    const flat_point_t p = to_plane(plane, *c1);
    const flat_point_t q = to_plane(plane, *c2);
    return new_cone(plane, std::fabs(p.first - q.first) / 2, std::fabs(p.second - q.second) / 2,
                    q.depth - p.depth, prefs.num_surface_div);
}

void object_add_cylinder_view(object_t *object, int plane, float radius, float height,
                              int first_end, int second_end)
{
    const int n = prefs.cylinder_segments;
    const float first_depth = plane == 0 ? -height / 2 : height / 2;
    std::vector<vertex *> first, second;
    for (int k = 1; k <= n; ++k) { // the angle is advanced before use
        const double angle = 2.0 * pi_f * k / n;
        const auto a = static_cast<float>(radius * std::cos(angle));
        const auto b = static_cast<float>(radius * std::sin(angle));
        const point3_t p = on_plane(plane, a, b, first_depth);
        const point3_t q = on_plane(plane, a, b, -first_depth);
        first.push_back(new_vertex_set(p.x, p.y, p.z));
        second.push_back(new_vertex_set(q.x, q.y, q.z));
    }
    for (size_t k = 0; k < first.size(); ++k) {
        const size_t next = (k + 1) % first.size();
        const float u0 = 1 - static_cast<float>(k) / static_cast<float>(n);
        const float u1 = 1 - static_cast<float>(k + 1) / static_cast<float>(n);
        object_add_surface(
            object, add_corners(new_side(true),
                                {{first[k], u0, 1}, {second[next], u1, 0}, {second[k], u0, 0}}));
        object_add_surface(
            object, add_corners(new_side(true),
                                {{first[k], u0, 1}, {first[next], u1, 1}, {second[next], u1, 0}}));
    }
    for (vertex *v : first)
        object_add_vertex(object, v);
    for (vertex *v : second)
        object_add_vertex(object, v);
    if (first_end != 0) {
        surface_t *end = new_side(false);
        for (vertex *v : first)
            surface_add_vertex_head(end, v, 0, 0);
        object_add_surface(object, end);
    }
    if (second_end != 0) {
        surface_t *end = new_side(false);
        for (vertex *v : second)
            surface_add_vertex(end, v, 0, 0);
        object_add_surface(object, end);
    }
    object_calc_normals_force(object);
}

object_t *new_cylinder(int plane)
{
    object_t *object = new_named("cylinder");
    object_add_cylinder_view(object, plane, 0.5f, 1.0f, prefs.cylinder_has_ends,
                             prefs.cylinder_has_ends);
    return object;
}

object_t *new_sphere(void) { return new_object(OBJECT_SPHERE); }

object_t *create_ico(void)
{
    constexpr float x = 0.5257311f, z = 0.8506508f;
    // clang-format off
    static constexpr float points[12][3] = {
        {-x, 0, z}, {x, 0, z}, {-x, 0, -z}, {x, 0, -z}, {0, z, x}, {0, z, -x},
        {0, -z, x}, {0, -z, -x}, {z, x, 0}, {-z, x, 0}, {z, -x, 0}, {-z, -x, 0}};
    static constexpr int faces[20][3] = {
        {0, 4, 1},  {0, 9, 4},  {9, 5, 4},  {4, 5, 8},  {4, 8, 1},  {8, 10, 1}, {8, 3, 10},
        {5, 3, 8},  {5, 2, 3},  {2, 7, 3},  {7, 10, 3}, {7, 6, 10}, {7, 11, 6}, {11, 0, 6},
        {0, 1, 6},  {6, 1, 10}, {9, 0, 11}, {9, 11, 2}, {9, 2, 5},  {7, 2, 11}};
    // clang-format on
    object_t *object = new_object(OBJECT_POLY);
    vertex *p[12];
    for (int i = 0; i < 12; ++i)
        p[i] = add_vertex(object, {points[i][0], points[i][1], points[i][2]});
    for (const auto &face : faces) {
        surface_t *surface = new_surface();
        add_corners(surface, {{p[face[0]], 0, 0}, {p[face[1]], 0, 0}, {p[face[2]], 0, 0}});
        object_add_surface(object, surface);
    }
    calc_texture_coors(object, 0);
    object_calc_normals_force(object);
    return object;
}

object_t *create_regular_cube(const point3_t *centre)
{
    object_t *object = new_object(OBJECT_POLY);
    object_add_cube_view(object, 1, 1, 1);
    translate_object(object, centre);
    return object;
}

object_t *create_regular_sphere(const point3_t *centre)
{
    object_t *object = new_named("sphere");
    object_add_sphere_view(object, 0.5f);
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
