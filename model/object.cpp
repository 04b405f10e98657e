#include "model/object.h"

#include "base/messages.h"
#include "model/alloc_internal.h"
#include "model/change_marks_internal.h"
#include "model/deferred_records.h"
#include "model/each.h"
#include "model/freed_internal.h"
#include "model/lights.h"
#include "model/matrix.h"
#include "model/object_internal.h"
#include "model/record_maker.h"
#include "model/vector.h"

#include <algorithm>
#include <cstring>
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

// Applies `set` to every surface of the tree; returns how many there are.
template <class Set>
int set_surfaces(object_t *top, const Set &set)
{
    int n = 0;
    for_each_object(top, [&](object_t *object) {
        for (surface_t *surface : each<surface_t>(object->surfaces)) {
            set(surface);
            ++n;
        }
        object_mark(object, CHANGED_ATTRIBUTES);
    });
    return n;
}

struct type_word {
    int type;
    const char *word;
};
constexpr type_word type_words[] = {
    {OBJECT_POLY, "poly"}, {OBJECT_GROUP, "group"},   {OBJECT_LIGHT, "light"},
    {OBJECT_CUBE, "cube"}, {OBJECT_SPHERE, "sphere"}, {OBJECT_WORLD, "world"},
};

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
        *point = plain_vertex({x, y, z});
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
    auto *surface = static_cast<surface_t *>(myalloc(sizeof(surface_t)));
    if (surface)
        *surface = plain_surface();
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
    const record_chain made = make_records(n, [xyz](int i, record_maker &maker) {
        const float *at = xyz + 3 * static_cast<std::ptrdiff_t>(i);
        return maker.make(plain_vertex({at[0], at[1], at[2]}));
    });
    list_append_chain(&object->vertices, &object->num_vertices, made);
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

    surface_t like = plain_surface();
    like.material = material;
    const record_chain made = make_records(n, [&](int i, record_maker &maker) {
        surface_t *surface = maker.make(like);
        listitem *last = nullptr;
        for (int corner = offsets[i]; corner < offsets[i + 1]; ++corner) {
            const int index = indices[corner];
            if (index < 0 || std::cmp_greater_equal(index, points.size()))
                continue;
            last = maker.add_corner(
                surface, last,
                {points[index], uv ? uv[2 * corner] : 0, uv ? uv[2 * corner + 1] : 0});
        }
        return surface;
    });
    list_append_chain(&object->surfaces, &object->num_surfaces, made);
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

// ---- freeing ----

void vertex_free_record(vertex *point) { myfree(point); }

void surface_free_record(surface_t *surface)
{
    list_free_all(&surface->refs);
    myfree(surface);
}

void object_free_geometry(object_t *object)
{
    if (object_is_deferred(object)) {
        freed_announce_geometry(object);
        object_free_deferred(object);
        object_mark(object, CHANGED_TOPOLOGY);
        return;
    }
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

// ---- setters ----

void object_set_name(object_t *object, const char *text)
{
    text_set(&object->name, text ? text : "");
    object_mark(object, CHANGED_RECORD);
}

void object_set_url(object_t *object, const char *text)
{
    text_set(&object->url, text);
    object_mark(object, CHANGED_RECORD);
}

void object_set_userdata(object_t *object, const char *text)
{
    text_set(&object->data, text);
    object_mark(object, CHANGED_RECORD);
}

void object_set_texture_repeat(object_t *object, float x, float y)
{
    object->texture_repeat_x = x;
    object->texture_repeat_y = y;
    object_mark(object, CHANGED_RECORD);
}

void object_set_texture_offset(object_t *object, float x, float y)
{
    object->texture_offset_x = x;
    object->texture_offset_y = y;
    object_mark(object, CHANGED_RECORD);
}

void vesk_object_set_centre(object_t *object, float x, float y, float z)
{
    object->centre = {x, y, z};
    object_mark(object, CHANGED_RECORD);
}

void vertex_set_point(vertex *point, float x, float y, float z) { point->position = {x, y, z}; }

void surface_set_type(surface_t *surface, int type)
{
    surface->type = static_cast<std::uint8_t>(type);
}

void surface_set_shading(surface_t *surface, int smooth) { surface->shading = smooth; }

void surface_set_twosided(surface_t *surface, int twosided) { surface->twosided = twosided; }

void surface_set_col(surface_t *surface, int material) { surface->material = material; }

void vesk_surface_set_normal(surface_t *surface, float x, float y, float z)
{
    surface->normal = {x, y, z};
}

void vesk_surface_set_flags(surface_t *surface, int flags)
{
    surface_set_shading(surface, (flags & SURFACE_SMOOTH) != 0 ? 1 : 0);
    surface_set_twosided(surface, (flags & SURFACE_TWOSIDED) != 0 ? 1 : 0);
    surface_set_type(surface, flags & SURFACE_TYPE_MASK);
}

int object_set_col_index(object_t *object, int material)
{
    return set_surfaces(object, [=](surface_t *surface) { surface_set_col(surface, material); });
}

int object_set_surface_type(object_t *object, int type)
{
    return set_surfaces(object, [=](surface_t *surface) { surface_set_type(surface, type); });
}

int object_set_twosided_faces(object_t *object, int twosided)
{
    return set_surfaces(object,
                        [=](surface_t *surface) { surface_set_twosided(surface, twosided); });
}

int object_set_surface_shading(object_t *object, int smooth)
{
    return set_surfaces(object, [=](surface_t *surface) { surface_set_shading(surface, smooth); });
}

object_marks &objects_marks()
{
    static object_marks marks;
    return marks;
}

void object_set_visible(object_t *object, int flag)
{
    if (flag == 0)
        objects_marks().hidden = 1;
    for_each_object(object, [flag](object_t *part) {
        if (part->visible == flag) // others need no new state in the history
            return;
        part->visible = flag;
        object_mark(part, CHANGED_RECORD);
    });
}

void object_set_locked(object_t *object, int flag)
{
    if (flag == 0) // Deliberate: the mark rises on unlocking
        objects_marks().locked = 1;
    for_each_object(object, [flag](object_t *part) {
        if (part->locked == flag) // others need no new state in the history
            return;
        part->locked = flag;
        object_mark(part, CHANGED_RECORD);
    });
}

// ---- accessors ----

const char *vesk_object_get_name(const object_t *object) { return object->name; }
const char *vesk_object_get_data(const object_t *object) { return object->data; }
const char *vesk_object_get_url(const object_t *object) { return object->url; }
int vesk_object_get_type(const object_t *object) { return object->type; }
int vesk_object_get_num_vertices(const object_t *object) { return object->num_vertices; }
int vesk_object_get_num_surfaces(const object_t *object) { return object->num_surfaces; }
int vesk_object_get_num_children(const object_t *object) { return object->num_children; }
listitem *vesk_object_get_vertexlist(const object_t *object) { return object->vertices; }
listitem *vesk_object_get_surfacelist(const object_t *object) { return object->surfaces; }
listitem *vesk_object_get_childrenlist(const object_t *object) { return object->children; }
object_t *object_parent(const object_t *object) { return object->parent; }
int vesk_object_has_texture(const object_t *object) { return object->has_texture; }
int vesk_object_get_texture_index(const object_t *object) { return object->texture; }
float vesk_object_get_texture_repeat_x(const object_t *object) { return object->texture_repeat_x; }
float vesk_object_get_texture_repeat_y(const object_t *object) { return object->texture_repeat_y; }
float vesk_object_get_texture_offset_x(const object_t *object) { return object->texture_offset_x; }
float vesk_object_get_texture_offset_y(const object_t *object) { return object->texture_offset_y; }
point3_t vesk_object_get_centre(const object_t *object) { return object->centre; }

void vesk_object_get_contents(const object_t *object, int *num_vertices, int *num_surfaces,
                              int *num_children, listitem **vertices, listitem **surfaces,
                              listitem **children)
{
    const auto give = [](auto *to, auto value) {
        if (to)
            *to = value;
    };
    give(num_vertices, object->num_vertices);
    give(num_surfaces, object->num_surfaces);
    give(num_children, object->num_children);
    give(vertices, object->vertices);
    give(surfaces, object->surfaces);
    give(children, object->children);
}

int vesk_object_get_vertex_index(const object_t *object, const vertex *point)
{
    int i = 0;
    for (const vertex *own : each<vertex>(object->vertices)) {
        if (own == point)
            return i;
        ++i;
    }
    return -1;
}

vertex *object_get_vertex_at(const object_t *object, int index)
{
    return static_cast<vertex *>(list_get_item(object->vertices, index));
}

surface_t *object_get_surface_at(const object_t *object, int index)
{
    return static_cast<surface_t *>(list_get_item(object->surfaces, index));
}

object_t *object_get_kid_at(const object_t *object, int index)
{
    return static_cast<object_t *>(list_get_item(object->children, index));
}

int vesk_surface_get_flags(const surface_t *surface)
{
    return (surface->type & SURFACE_TYPE_MASK) | (surface->shading != 0 ? SURFACE_SMOOTH : 0) |
           (surface->twosided != 0 ? SURFACE_TWOSIDED : 0);
}

const char *object_type_word(int type)
{
    if (type == OBJECT_GROUP_ALIAS)
        return "group";
    for (const type_word &row : type_words) {
        if (row.type == type)
            return row.word;
    }
    return "poly";
}

int object_type_of_word(const char *word)
{
    for (const type_word &row : type_words) {
        if (std::strcmp(row.word, word) == 0)
            return row.type;
    }
    return OBJECT_POLY;
}
