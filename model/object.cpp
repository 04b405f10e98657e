#include "base/messages_internal.h"
#include "model/alloc_internal.h"
#include "model/change_marks_internal.h"
#include "model/each.h"
#include "model/freed.h"
#include "model/lights.h"
#include "model/matrix.h"
#include "model/object_internal.h"
#include "model/vector.h"

#include <algorithm>
#include <utility>

namespace {

template <class T>
T *new_record()
{
    auto *record = static_cast<T *>(myalloc(sizeof(T)));
    if (record)
        *record = {};
    return record;
}

// Appends to an object's list, whose count is at hand.
template <class T>
void append(listitem **list, int *count, T *element)
{
    list_add_item(list, element);
    ++*count;
}

} // namespace

// ---- creation ----

object_t *new_object(int type)
{
    auto *object = new_record<object_t>();
    if (!object)
        return nullptr;
    object->name = text_copy(type == OBJECT_LIGHT ? "light" : "");
    object->texture_repeat_x = object->texture_repeat_y = 1;
    matrix_set_identity(object->rotation);
    object->type = type;
    object->is_sphere = type == OBJECT_SPHERE ? 1 : 0;
    std::fill_n(object->extra_floats, 3, 1.0f);
    object->visible = 1;
    object->extra_flag = 1;
    state_new(object);
    return object;
}

object_t *new_group(void) { return new_object(OBJECT_GROUP); }

vertex *new_vertex(void) { return new_vertex_set(0, 0, 0); }

vertex *new_vertex_set(float x, float y, float z)
{
    auto *point = static_cast<vertex *>(myalloc(sizeof(vertex)));
    if (point)
        *point = {{x, y, z}, {0, 1, 0}, {0, 0}, 0};
    return point;
}

vertex *vertex_clone(const vertex *source)
{
    auto *copy = static_cast<vertex *>(myalloc(sizeof(vertex)));
    if (copy)
        *copy = *source;
    return copy;
}

surface_t *new_surface(void)
{
    auto *surface = new_record<surface_t>();
    if (surface) {
        surface->material = 1;
        surface->twosided = 1;
    }
    return surface;
}

svertex *new_svertex(vertex *point, float u, float v)
{
    auto *reference = static_cast<svertex *>(myalloc(sizeof(svertex)));
    if (reference)
        *reference = {point, u, v};
    return reference;
}

// ---- building ----

void object_add_vertex(object_t *object, vertex *point)
{
    if (!point) {
        console_printf("warning - attempt to add null point to object\n");
        return;
    }
    append(&object->vertices, &object->num_vertices, point);
    object_mark(object, CHANGED_TOPOLOGY);
}

vertex *object_add_new_vertex(object_t *object, float x, float y, float z)
{
    vertex *point = new_vertex_set(x, y, z);
    object_add_vertex(object, point);
    return point;
}

vertex *object_add_new_vertex_reuse(object_t *object, float x, float y, float z)
{
    for (vertex *point : each<vertex>(object->vertices)) {
        if (point_equal(point->position, {x, y, z}))
            return point;
    }
    return object_add_new_vertex(object, x, y, z);
}

vertex *object_add_new_vertex_head(object_t *object, float x, float y, float z)
{
    vertex *point = new_vertex_set(x, y, z);
    list_add_item_head(&object->vertices, point);
    ++object->num_vertices;
    object_mark(object, CHANGED_TOPOLOGY);
    return point;
}

void object_add_vertices(object_t *object, const listitem *vertices)
{
    for (vertex *point : each<vertex>(vertices))
        object_add_vertex(object, point);
}

int vesk_object_add_vertices_from_float_array(object_t *object, const float *xyz, int n)
{
    const int first = object->num_vertices;
    listitem *last = object->vertices ? list_end(object->vertices) : nullptr;
    for (int i = 0; i < n; ++i, xyz += 3)
        last = list_add_item_fast(&object->vertices, last, new_vertex_set(xyz[0], xyz[1], xyz[2]));
    object->num_vertices += std::max(n, 0);
    object_mark(object, CHANGED_TOPOLOGY);
    return first;
}

void object_add_surface(object_t *object, surface_t *surface)
{
    if (!surface) {
        console_printf("warning - attempt to add null surface to object\n");
        return;
    }
    append(&object->surfaces, &object->num_surfaces, surface);
    object_mark(object, CHANGED_TOPOLOGY);
}

void object_add_surface_head(object_t *object, surface_t *surface)
{
    if (!surface) {
        console_printf("warning - attempt to add null surface to object\n");
        return;
    }
    list_add_item_head(&object->surfaces, surface);
    ++object->num_surfaces;
    object_mark(object, CHANGED_TOPOLOGY);
}

void object_add_surfaces(object_t *object, const listitem *surfaces)
{
    for (surface_t *surface : each<surface_t>(surfaces))
        object_add_surface(object, surface);
}

int vesk_object_add_surfaces_from_arrays(object_t *object, int n, const int *offsets,
                                         const int *indices, const float *uv, int material)
{
    const int first = object->num_surfaces;
    std::vector<vertex *> points;
    points.reserve(object->num_vertices);
    for (vertex *point : each<vertex>(object->vertices))
        points.push_back(point);

    listitem *last = object->surfaces ? list_end(object->surfaces) : nullptr;
    for (int i = 0; i < n; ++i) {
        surface_t *surface = new_surface();
        surface->material = material;
        last = list_add_item_fast(&object->surfaces, last, surface);
        listitem *last_ref = nullptr;
        for (int corner = offsets[i]; corner < offsets[i + 1]; ++corner) {
            const int index = indices[corner];
            if (index < 0 || std::cmp_greater_equal(index, points.size()))
                continue;
            svertex *reference =
                new_svertex(points[index], uv ? uv[2 * corner] : 0, uv ? uv[2 * corner + 1] : 0);
            last_ref = list_add_item_fast(&surface->refs, last_ref, reference);
            ++surface->num_refs;
        }
    }
    object->num_surfaces += std::max(n, 0);
    object_mark(object, CHANGED_TOPOLOGY);
    return first;
}

void object_add_child(object_t *parent, object_t *child)
{
    if (!child) {
        console_printf("warning - attempt to add null child to object\n");
        return;
    }
    append(&parent->children, &parent->num_children, child);
    child->parent = parent;
    tree_mark();
}

void object_add_children(object_t *parent, const listitem *children)
{
    for (object_t *child : each<object_t>(children))
        object_add_child(parent, child);
}

void surface_add_vertref(surface_t *surface, svertex *reference)
{
    append(&surface->refs, &surface->num_refs, reference);
}

svertex *surface_add_vertex(surface_t *surface, vertex *point, float u, float v)
{
    if (!point)
        console_printf("surface_add_vertex - NULL vertex being added to surface - not good\n");
    svertex *reference = new_svertex(point, u, v);
    surface_add_vertref(surface, reference);
    return reference;
}

svertex *surface_add_vertex_head(surface_t *surface, vertex *point, float u, float v)
{
    if (!point)
        console_printf("surface_add_vertex - NULL vertex being added to surface - not good\n");
    svertex *reference = new_svertex(point, u, v);
    list_add_item_head(&surface->refs, reference);
    ++surface->num_refs;
    return reference;
}

surface_t *vesk_object_add_triangle(object_t *object, int a, int b, int c)
{
    constexpr float no_uv[6] = {};
    return vesk_object_add_triangle_uv(object, a, b, c, no_uv);
}

surface_t *vesk_object_add_triangle_uv(object_t *object, int a, int b, int c, const float *uv6)
{
    vertex *points[3] = {object_get_vertex_at(object, a), object_get_vertex_at(object, b),
                         object_get_vertex_at(object, c)};
    if (!points[0] || !points[1] || !points[2])
        return nullptr;
    surface_t *surface = new_surface();
    for (int i = 0; i < 3; ++i)
        surface_add_vertex(surface, points[i], uv6[2 * i], uv6[2 * i + 1]);
    object_add_surface(object, surface);
    return surface;
}

// ---- what goes ----

void vertex_free_record(vertex *point) { myfree(point); }

void surface_free_record(surface_t *surface)
{
    list_free_all(&surface->refs);
    myfree(surface);
}

void object_free_geometry(object_t *object)
{
    freed_batch batch;
    for (surface_t *surface : each<surface_t>(object->surfaces))
        batch.add(surface);
    for (vertex *point : each<vertex>(object->vertices))
        batch.add(point);
    list_free(&object->surfaces);
    list_free(&object->vertices);
    object->num_surfaces = object->num_vertices = 0;
    object_mark(object, CHANGED_TOPOLOGY);
}

void surface_copy_record(surface_t *to, const surface_t *from)
{
    listitem *refs = to->refs;
    const int num_refs = to->num_refs;
    *to = *from;
    to->refs = refs;
    to->num_refs = num_refs;
}

int number_vertices(const object_t *object)
{
    std::uint32_t n = 0;
    for (vertex *point : each<vertex>(object->vertices))
        set_vertex_number(point, n++);
    return static_cast<int>(n);
}
