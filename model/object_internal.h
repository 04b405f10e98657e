#ifndef VESK_MODEL_OBJECT_INTERNAL_H
#define VESK_MODEL_OBJECT_INTERNAL_H

#include "model/object.h"

#include <cstdint>
#include <cstring>

// The records as they are made, at a place; without corners.
inline vertex plain_vertex(const point3_t &at) { return {at, {0, 1, 0}, {0, 0}, 0}; }
inline surface_t plain_surface()
{
    surface_t surface = {};
    surface.material = 1;
    surface.twosided = 1;
    return surface;
}

// Frees the record, a surface's corners with it; notifies nobody: freed.h says what its callers
// must do.
void vertex_free_record(vertex *point);
void surface_free_record(surface_t *surface);

// Frees all surfaces and vertices of the object, announced as one batch.
void object_free_geometry(object_t *object);

// Copies type, shading, sides, material, normal and the further words; no corners.
void surface_copy_record(surface_t *to, const surface_t *from);

// Numbers the object's vertices from 0 into their scratch words; whoever reads a number back checks
// `i < n && vertices[i] == v`. Returns how many there are.
int number_vertices(const object_t *object);
inline std::uint32_t vertex_number(const vertex *point)
{
    std::uint32_t number;
    std::memcpy(&number, point->mark, sizeof number);
    return number;
}
inline void set_vertex_number(vertex *point, std::uint32_t number)
{
    std::memcpy(point->mark, &number, sizeof number);
}

// The script variables objects_are_hidden and objects_are_locked are linked to these.
struct object_marks {
    int hidden = 0;
    int locked = 0;
};
object_marks &objects_marks();

// "poly", "group", ... of a type code ("poly" for an unknown one) and back (0 for an unknown word).
const char *object_type_word(int type);
int object_type_of_word(const char *word);

#endif
