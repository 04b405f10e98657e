#ifndef VESK_MODEL_OBJECT_H
#define VESK_MODEL_OBJECT_H

/* The scene records: one tree of objects; an object owns its vertices, surfaces and children, a
   surface is an ordered list of references to vertices of the same object. Positions are in world
   coordinates. */

#include "base/types.h"
#include "model/list.h"

VESK_BEGIN_DECLS

enum {
    OBJECT_POLY = 0,
    OBJECT_GROUP = 1,
    OBJECT_LIGHT = 2,
    OBJECT_CUBE = 3,
    OBJECT_SPHERE = 4,
    OBJECT_GROUP_ALIAS = 231, /* written to files as a group */
    OBJECT_WORLD = 999
};

enum { SURFACE_POLYGON = 0, SURFACE_CLOSED_LINE = 1, SURFACE_LINE = 2 };
enum { SURFACE_TYPE_MASK = 0x0F, SURFACE_SMOOTH = 0x10, SURFACE_TWOSIDED = 0x20 };

typedef struct vertex {
    point3_t position;
    point3_t normal;
    uint16_t mark[2];      /* scratch: nothing keeps a meaning there across a call */
    uint8_t surface_count; /* scratch of the normal calculation */
} vertex;

/* A corner of a surface: a reference to a vertex of the same object. */
typedef struct svertex {
    struct vertex *vertex;
    float u, v;
} svertex;

typedef struct surface {
    listitem *refs; /* of svertex; the order sets the facing */
    int num_refs;
    int material;    /* palette index */
    point3_t normal; /* unit face normal */
    uint8_t type;
    int shading;       /* non-zero: smooth */
    int twosided;      /* non-zero: both faces drawn */
    uint32_t words[3]; /* scratch: nothing keeps a meaning there across a call */
} surface_t;

typedef struct object {
    char *name; /* never null */
    int num_vertices;
    int num_surfaces;
    int num_children;
    listitem *vertices; /* of vertex */
    listitem *surfaces; /* of surface_t */
    listitem *children; /* of object_t */
    struct object *parent;
    char *data; /* may be null */
    char *url;  /* may be null */
    int has_texture;
    int texture; /* index in the texture table */
    float texture_repeat_x, texture_repeat_y;
    float texture_offset_x, texture_offset_y;
    point3_t centre;
    float rotation[9];    /* accumulated orientation, row by row */
    point3_t extra_point; /* without a meaning, as the extra fields below */
    int type;
    int extra_word;
    int is_sphere;
    float extra_floats[3];
    int visible;
    int extra_flag;
    int locked;
    int extra_word2; /* scratch: nothing keeps a meaning there across a call */
    listitem *properties;
} object_t;

/* ---- creation: records with their defaults, unlinked; the caller owns them ---- */

/* A new object of a type code; a light comes from new_light. Named "" ("light" for lights). */
VESK_API object_t *new_object(int type);
VESK_API object_t *new_group(void);
VESK_API vertex *new_vertex(void);
VESK_API vertex *new_vertex_set(float x, float y, float z);
/* A copy of all fields. */
VESK_API vertex *vertex_clone(const vertex *source);
/* A polygon without corners: material 1, flat, two-sided. */
VESK_API surface_t *new_surface(void);
VESK_API svertex *new_svertex(vertex *point, float u, float v);

/* ---- building: each appends to the object's list and counts ---- */

/* The object owns the vertex from now on. Null: a console line, nothing added. */
VESK_API void object_add_vertex(object_t *object, vertex *point);
/* Creates and appends, or puts in front; returns the vertex. */
VESK_API vertex *object_add_new_vertex(object_t *object, float x, float y, float z);
VESK_API vertex *object_add_new_vertex_head(object_t *object, float x, float y, float z);
/* The first of the object's vertices that stands exactly there, else a new one, appended. Walks. */
VESK_API vertex *object_add_new_vertex_reuse(object_t *object, float x, float y, float z);
/* Appends every vertex of a list; the list's nodes stay the caller's. */
VESK_API void object_add_vertices(object_t *object, const listitem *vertices);
/* Appends `n` new vertices from 3n floats x y z. Fast: one pass. Returns the first new vertex's
   index in the object. */
VESK_API int vesk_object_add_vertices_from_float_array(object_t *object, const float *xyz, int n);
/* Null: a console line, nothing added. */
VESK_API void object_add_surface(object_t *object, surface_t *surface);
VESK_API void object_add_surface_head(object_t *object, surface_t *surface);
VESK_API void object_add_surfaces(object_t *object, const listitem *surfaces);
/* Appends `n` new polygons of palette entry `material`. Polygon i has the corners
   indices[offsets[i] .. offsets[i + 1] - 1], counted from 0 in the object's vertices; `uv` holds
   two floats a corner, or is null. Corners out of range are left out. Fast: one pass. Returns the
   first new surface's index in the object. Computes no normals. */
VESK_API int vesk_object_add_surfaces_from_arrays(object_t *object, int n, const int *offsets,
                                                  const int *indices, const float *uv,
                                                  int material);
/* Appends `child` and sets its parent. Null: a console line, nothing added. */
VESK_API void object_add_child(object_t *parent, object_t *child);
VESK_API void object_add_children(object_t *parent, const listitem *children);
/* Appends, or puts in front, a corner. A null vertex is reported on the console and added all the
   same. */
VESK_API svertex *surface_add_vertex(surface_t *surface, vertex *point, float u, float v);
VESK_API svertex *surface_add_vertex_head(surface_t *surface, vertex *point, float u, float v);
/* Appends a corner record; the surface owns it from now on. */
VESK_API void surface_add_vertref(surface_t *surface, svertex *reference);
/* A new triangle of the object's vertices a, b, c (indices), material 1; returns it, or null when
   an index is out of range. Walks the vertex list: for many use the array call. */
VESK_API surface_t *vesk_object_add_triangle(object_t *object, int a, int b, int c);
VESK_API surface_t *vesk_object_add_triangle_uv(object_t *object, int a, int b, int c,
                                                const float *uv6);

/* ---- setters. Those of an object set its change marks; those of a vertex or a surface do not
        know the object: the caller marks it (object_mark). ---- */

/* Texts are copied; null is kept as null (the name becomes ""). */
VESK_API void object_set_name(object_t *object, const char *text);
VESK_API void object_set_url(object_t *object, const char *text);
VESK_API void object_set_userdata(object_t *object, const char *text);
VESK_API void object_set_texture_repeat(object_t *object, float x, float y);
VESK_API void object_set_texture_offset(object_t *object, float x, float y);
VESK_API void vesk_object_set_centre(object_t *object, float x, float y, float z);
VESK_API void vertex_set_point(vertex *point, float x, float y, float z);
VESK_API void surface_set_type(surface_t *surface, int type);
VESK_API void surface_set_shading(surface_t *surface, int smooth);
VESK_API void surface_set_twosided(surface_t *surface, int twosided);
VESK_API void surface_set_col(surface_t *surface, int material);
VESK_API void vesk_surface_set_normal(surface_t *surface, float x, float y, float z);
/* Type, shading and sides from one word: type in bits 0-3, 0x10 smooth, 0x20 two-sided. */
VESK_API void vesk_surface_set_flags(surface_t *surface, int flags);

/* Every surface of the object and its descendants; return how many surfaces were set. */
VESK_API int object_set_col_index(object_t *object, int material);
VESK_API int object_set_surface_type(object_t *object, int type);
VESK_API int object_set_twosided_faces(object_t *object, int twosided);
VESK_API int object_set_surface_shading(object_t *object, int smooth);

/* The object and all its descendants. A flag of 0 also raises the application-wide mark (script
   variables objects_are_hidden, objects_are_locked). Deliberate: for `locked`, too, it is 0 that
   raises it. */
VESK_API void object_set_visible(object_t *object, int flag);
VESK_API void object_set_locked(object_t *object, int flag);

/* ---- reading: the fields as stored ---- */

VESK_API const char *vesk_object_get_name(const object_t *object);
VESK_API const char *vesk_object_get_data(const object_t *object);
VESK_API const char *vesk_object_get_url(const object_t *object);
VESK_API int vesk_object_get_type(const object_t *object);
VESK_API int vesk_object_get_num_vertices(const object_t *object);
VESK_API int vesk_object_get_num_surfaces(const object_t *object);
VESK_API int vesk_object_get_num_children(const object_t *object);
VESK_API listitem *vesk_object_get_vertexlist(const object_t *object);
VESK_API listitem *vesk_object_get_surfacelist(const object_t *object);
VESK_API listitem *vesk_object_get_childrenlist(const object_t *object);
VESK_API object_t *object_parent(const object_t *object);
VESK_API int vesk_object_has_texture(const object_t *object);
VESK_API int vesk_object_get_texture_index(const object_t *object);
VESK_API float vesk_object_get_texture_repeat_x(const object_t *object);
VESK_API float vesk_object_get_texture_repeat_y(const object_t *object);
VESK_API float vesk_object_get_texture_offset_x(const object_t *object);
VESK_API float vesk_object_get_texture_offset_y(const object_t *object);
VESK_API point3_t vesk_object_get_centre(const object_t *object);
/* Counts and lists in one call; null addresses are left out. */
VESK_API void vesk_object_get_contents(const object_t *object, int *num_vertices, int *num_surfaces,
                                       int *num_children, listitem **vertices, listitem **surfaces,
                                       listitem **children);
/* Index of a vertex in the object, or -1. Walks. */
VESK_API int vesk_object_get_vertex_index(const object_t *object, const vertex *point);
/* The record at an index, or null outside the list. Walk. */
VESK_API vertex *object_get_vertex_at(const object_t *object, int index);
VESK_API surface_t *object_get_surface_at(const object_t *object, int index);
VESK_API object_t *object_get_kid_at(const object_t *object, int index);
/* Type in bits 0-3, 0x10 when smooth, 0x20 when two-sided. */
VESK_API int vesk_surface_get_flags(const surface_t *surface);

VESK_END_DECLS

#endif
