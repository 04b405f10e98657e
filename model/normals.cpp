#include "model/normals.h"

#include "base/big_vector.h"
#include "base/prefs.h"
#include "model/change_marks_internal.h"
#include "model/deferred_records.h"
#include "model/flat_array.h"
#include "model/list_pieces.h"
#include "model/normals_internal.h"
#include "model/vector.h"

#include <cmath>

namespace {

void clear_vertex_normals(const list_pieces &vertices)
{
    vertices.visit_all<vertex>([](vertex *point, std::size_t) {
        point->normal = {0, 0, 0};
        point->surface_count = 0;
    });
}

void add_to_corners(const surface_t *surface)
{
    const point3_t normal = surface->normal;
    for (const svertex *reference : each<svertex>(surface->refs)) {
        vertex *point = reference->vertex;
        if (!point)
            continue;
        point->normal.x += normal.x;
        point->normal.y += normal.y;
        point->normal.z += normal.z;
        // Deliberate: the count stays 0, so that no sum is divided by it.
    }
}

// Deliberate: the squared length is truncated to an integer before the root is taken, so that a sum
// shorter than 1 stays as it is and others are normalised by whole squares only.
void finish_vertex_normal(point3_t &normal)
{
    constexpr float too_long = 2147483648.0f;
    const auto squared = static_cast<float>(point_dot(normal, normal));
    const int whole = squared < too_long ? static_cast<int>(squared) : 0; // also for no number
    if (whole == 0 || whole == 1)
        return;
    const double root = std::sqrt(static_cast<double>(whole));
    normal.x = static_cast<float>(normal.x / root);
    normal.y = static_cast<float>(normal.y / root);
    normal.z = static_cast<float>(normal.z / root);
}

// From the surface normals as they are. One after the other: the sums depend on the order.
void add_vertex_normals(const object_t *object)
{
    const list_pieces vertices(object->vertices);
    clear_vertex_normals(vertices);
    for (const surface_t *surface : each<surface_t>(object->surfaces))
        add_to_corners(surface);
    vertices.visit_all<vertex>(
        [](vertex *point, std::size_t) { finish_vertex_normal(point->normal); });
}

point3_t normal_of(const point3_t &origin, const point3_t &second, const point3_t &third)
{
    const point3_t a = point_sub(second, origin);
    const point3_t b = point_sub(third, origin);
    const double x = static_cast<double>(a.y) * b.z - static_cast<double>(a.z) * b.y;
    const double y = static_cast<double>(a.z) * b.x - static_cast<double>(a.x) * b.z;
    const double z = static_cast<double>(a.x) * b.y - static_cast<double>(a.y) * b.x;
    const double length = std::sqrt(x * x + y * y + z * z);
    const double divisor = length != 0 ? length : 1;
    return {static_cast<float>(x / divisor), static_cast<float>(y / divisor),
            static_cast<float>(z / divisor)};
}

void calc_normals_alone(object_t *object)
{
    list_pieces(object->surfaces).visit_all<surface_t>([](surface_t *surface, std::size_t) {
        surface_calc_normal(surface);
    });
    add_vertex_normals(object);
    object_mark(object, CHANGED_NORMALS);
}

// ---- by the flat mesh ----

// Into the records too, but for deferred ones: what they say now is then in `deferred`.
std::vector<point3_t> renew_surface_normals(const flat_mesh &flat, const flat_mesh *deferred)
{
    auto normals = big_vector<point3_t>(flat.num_surfaces());
    in_parallel_ranges(flat.num_surfaces(), [&](int begin, int end) {
        for (int s = begin; s < end; ++s) {
            const bool has_one = flat.surface_corners(s).size() >= 3;
            if (deferred != nullptr) {
                if (has_one)
                    normals[s] = normal_of_corners(flat, s);
                else if (deferred->face_normals)
                    normals[s] = deferred->face_normal(s);
                continue;
            }
            surface_t *surface = flat.surface_record(s);
            if (has_one)
                surface->normal = normal_of_corners(flat, s);
            normals[s] = surface->normal;
        }
    });
    return normals;
}

// Each thread has vertices of its own, which it gives all corners in the order of the surfaces: the
// sums depend on the order.
std::vector<point3_t> renew_vertex_normals(const flat_mesh &flat,
                                           const std::vector<point3_t> &surface_normals,
                                           bool into_records)
{
    auto normals = big_vector<point3_t>(flat.num_vertices());
    in_two_parts(flat.num_vertices(), [&](int first, int end) {
        for (int s = 0; s < flat.num_surfaces(); ++s) {
            const point3_t &normal = surface_normals[s];
            for (const int v : flat.surface_corners(s)) {
                if (v < first || v >= end)
                    continue;
                normals[v].x += normal.x;
                normals[v].y += normal.y;
                normals[v].z += normal.z;
            }
        }
        for (int v = first; v < end; ++v) {
            finish_vertex_normal(normals[v]);
            if (!into_records)
                continue;
            flat.vertex_record(v)->normal = normals[v];
            flat.vertex_record(v)->surface_count = 0;
        }
    });
    return normals;
}

void renew_normals_alone(object_t *object)
{
    const std::shared_ptr<flat_mesh> flat = state_flat_but_normals(object);
    if (!flat->whole) {
        state_set_flat(object, flat, CHANGED_NORMALS);
        calc_normals_alone(object);
        return;
    }
    const flat_ptr deferred = untouched_flat(object);
    auto surface_normals = renew_surface_normals(*flat, deferred.get());
    auto normals = renew_vertex_normals(*flat, surface_normals, !deferred);
    flat->face_normals = flat_shared(std::move(surface_normals));
    flat->normals = flat_shared(std::move(normals));
    if (deferred) {
        object_defer_values(object, flat, CHANGED_NORMALS);
        return;
    }
    object_mark(object, CHANGED_NORMALS);
    state_set_flat(object, flat, 0);
}

} // namespace

point3_t normal_of_corners(const flat_mesh &mesh, int surface)
{
    const auto corners = mesh.surface_corners(surface);
    if (corners.size() < 3)
        return {0, 0, 0};
    return normal_of(mesh.position(corners[0]), mesh.position(corners[1]),
                     mesh.position(corners[2]));
}

void surface_calc_normal(surface_t *surface)
{
    const vertex *points[3];
    const listitem *node = surface->refs;
    if (surface->num_refs < 3)
        return;
    for (const vertex *&point : points) {
        if (!node || !item_of<svertex>(node)->vertex)
            return;
        point = item_of<svertex>(node)->vertex;
        node = node->next;
    }
    surface->normal = normal_of(points[0]->position, points[1]->position, points[2]->position);
}

void object_calc_normals_force(object_t *object)
{
    for_each_object(object, [](object_t *part) {
        if (untouched_flat(part))
            renew_normals_alone(part);
        else
            calc_normals_alone(part);
    });
}

void object_renew_normals(object_t *object)
{
    if (prefs.recalc_normals != 0)
        for_each_object(object, renew_normals_alone);
}

void object_calc_vertex_normals(object_t *object)
{
    for_each_object(object, [](object_t *part) {
        add_vertex_normals(part);
        object_mark(part, CHANGED_NORMALS);
    });
}

void object_calc_normals(object_t *object)
{
    if (prefs.recalc_normals != 0)
        object_calc_normals_force(object);
}

void objectlist_calc_normals(const listitem *objects)
{
    for (object_t *object : each<object_t>(objects))
        object_calc_normals(object);
}

void surface_reverse_normal(surface_t *surface) { list_reverse(&surface->refs); }
