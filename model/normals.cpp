#include "model/normals.h"

#include "base/prefs.h"
#include "model/change_marks.h"
#include "model/list_pieces.h"
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
void finish_vertex_normals(const list_pieces &vertices)
{
    constexpr float too_long = 2147483648.0f;
    vertices.visit_all<vertex>([](vertex *point, std::size_t) {
        point3_t &normal = point->normal;
        const auto squared = static_cast<float>(point_dot(normal, normal));
        const int whole = squared < too_long ? static_cast<int>(squared) : 0; // also for no number
        if (whole == 0 || whole == 1)
            return;
        const double root = std::sqrt(static_cast<double>(whole));
        normal.x = static_cast<float>(normal.x / root);
        normal.y = static_cast<float>(normal.y / root);
        normal.z = static_cast<float>(normal.z / root);
    });
}

// From the surface normals as they are. One after the other: the sums depend on the order.
void add_vertex_normals(const object_t *object)
{
    const list_pieces vertices(object->vertices);
    clear_vertex_normals(vertices);
    for (const surface_t *surface : each<surface_t>(object->surfaces))
        add_to_corners(surface);
    finish_vertex_normals(vertices);
}

} // namespace

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
    const point3_t a = point_sub(points[1]->position, points[0]->position);
    const point3_t b = point_sub(points[2]->position, points[0]->position);
    const double x = static_cast<double>(a.y) * b.z - static_cast<double>(a.z) * b.y;
    const double y = static_cast<double>(a.z) * b.x - static_cast<double>(a.x) * b.z;
    const double z = static_cast<double>(a.x) * b.y - static_cast<double>(a.y) * b.x;
    const double length = std::sqrt(x * x + y * y + z * z);
    const double divisor = length != 0 ? length : 1;
    surface->normal = {static_cast<float>(x / divisor), static_cast<float>(y / divisor),
                       static_cast<float>(z / divisor)};
}

void object_calc_normals_force(object_t *object)
{
    for_each_object(object, [](object_t *part) {
        list_pieces(part->surfaces).visit_all<surface_t>([](surface_t *surface, std::size_t) {
            surface_calc_normal(surface);
        });
        add_vertex_normals(part);
        object_mark(part, CHANGED_NORMALS);
    });
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
