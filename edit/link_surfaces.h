#ifndef VESK_EDIT_LINK_SURFACES_H
#define VESK_EDIT_LINK_SURFACES_H

#include "base/types.h"
#include "model/object.h"

VESK_BEGIN_DECLS

/* Side surfaces between an outline and its copy, for sweeps. For each edge a-b of a surface, with
   a' and b' in the same places of the copy: a new surface a, a', b', b with the source's material,
   from which a is left out when a' lies exactly on it, and b likewise. The closing edge of an open
   line has none. All return new lists of surfaces that belong to no object yet; the caller owns
   both. */

/* The copy as vertices: a vertex of `from` corresponds to the one in the same place of `to`. Edges
   whose vertices are not in `from` are left out. */
VESK_API listitem *create_link_surfaces(const listitem *surfaces, const listitem *from,
                                        const listitem *to);
/* The copy as surfaces: corners correspond by their places. */
VESK_API listitem *surface_create_link_surfaces(const surface_t *from, const surface_t *to);
VESK_API listitem *surfaces_create_link_surfaces(const listitem *from, const listitem *to);

/* New vertices: copies turned by the global matrix. A new list; the caller owns both. */
VESK_API listitem *copy_pointlist_rotate(const listitem *vertices);
/* Copies of surfaces on the vertices of `to` that stand where theirs stand in `from`. A new list;
   the caller owns both. */
VESK_API listitem *copy_surfacelist(const listitem *surfaces, const listitem *from,
                                    const listitem *to);

VESK_END_DECLS

#ifdef VESK_INTERNAL
// The same as copy_pointlist_rotate by a matrix of the caller's.
listitem *copy_vertices_rotated(const listitem *vertices, const float *m);
#endif

#endif
