#ifndef VESK_EDIT_PRIMITIVES_INTERNAL_H
#define VESK_EDIT_PRIMITIVES_INTERNAL_H

// Shared by the solid and the flat shapes.

#include "model/object.h"

namespace primitive {

// The point at (first, second) on the plane's two axes and `depth` on the constant one.
inline point3_t on_plane(int plane, float first, float second, float depth)
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

// The plane's first and second coordinate of a point, and the constant one; 0 for no plane.
struct flat_point_t {
    float first, second, depth;
};
inline flat_point_t to_plane(int plane, const point3_t &p)
{
    switch (plane) {
    case 0:
        return {p.x, p.y, p.z};
    case 1:
        return {p.z, p.y, p.x};
    case 2:
        return {p.x, p.z, p.y};
    default:
        return {0, 0, 0};
    }
}

struct corner_t {
    vertex *point;
    float u, v;
};

inline vertex *add_vertex(object_t *object, const point3_t &p)
{
    return object_add_new_vertex(object, p.x, p.y, p.z);
}

template <size_t N>
surface_t *add_corners(surface_t *surface, const corner_t (&corners)[N])
{
    for (const corner_t &corner : corners)
        surface_add_vertex(surface, corner.point, corner.u, corner.v);
    return surface;
}

// A one-sided surface, not yet in an object.
inline surface_t *new_side(bool smooth)
{
    surface_t *surface = new_surface();
    surface_set_shading(surface, smooth ? 1 : 0);
    surface_set_twosided(surface, 0);
    return surface;
}

inline object_t *new_named(const char *name)
{
    object_t *object = new_object(OBJECT_POLY);
    object_set_name(object, name);
    return object;
}

inline void set_middle(object_t *object, const point3_t &c1, const point3_t &c2)
{
    vesk_object_set_centre(object, (c1.x + c2.x) / 2, (c1.y + c2.y) / 2, (c1.z + c2.z) / 2);
}

} // namespace primitive

#endif
