#ifndef VESK_EDIT_MESH_VERTEX_USE_H
#define VESK_EDIT_MESH_VERTEX_USE_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* A new list of the surfaces that have the vertex as a corner, each once, in order: of the whole
   world, of one object. The caller frees it. Walk: for many vertices see vertex_surfaces. */
VESK_API listitem *surfaces_of_vertex(const vertex *point);
VESK_API listitem *surfaces_of_object_vertex(const object_t *object, const vertex *point);

/* Every corner on `from` is redirected to `to`, in one surface or in all surfaces of the object;
   texture coordinates stay. Return how many there were. The form for one surface marks nothing: the
   caller knows the object. */
VESK_API int surface_replace_vertex_all(surface_t *surface, const vertex *from, vertex *to);
VESK_API int object_replace_surfaceref(object_t *object, const vertex *from, vertex *to);

VESK_END_DECLS

#ifdef VESK_INTERNAL

#include "model/flat_mesh.h"

#include <span>

// The corners at every vertex of a flat mesh, ascending; so surface by surface.
class vertex_corners {
public:
    explicit vertex_corners(const flat_mesh &mesh);
    [[nodiscard]] std::span<const std::int32_t> of(int v) const;
    [[nodiscard]] int surface_of(std::int32_t corner) const { return surface_of_[corner]; }

private:
    std::vector<std::int32_t> begin_;
    std::vector<std::int32_t> corners_;
    std::vector<int> surface_of_; // of each corner
};

#endif

#endif
