// Setters and accessors of the scene records.

#include "model/alloc_internal.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/object_internal.h"

#include <cstring>

namespace {

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
        part->visible = flag;
        object_mark(part, CHANGED_RECORD);
    });
}

void object_set_locked(object_t *object, int flag)
{
    if (flag == 0) // Deliberate: the mark rises on unlocking
        objects_marks().locked = 1;
    for_each_object(object, [flag](object_t *part) {
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
