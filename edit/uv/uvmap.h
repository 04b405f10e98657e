#ifndef VESK_EDIT_UV_UVMAP_H
#define VESK_EDIT_UV_UVMAP_H

#include "base/types.h"
#include "model/object.h"

VESK_BEGIN_DECLS

/* Texture coordinates from positions. Modes 0, 1, 2: planar in the front, side and plan view, the
   extent of a box mapped to 0..1; mode 3: spherical about the box's middle. All set change marks
   of objects they are given; the list forms do so for the surfaces' owners. */

/* Planar, by the object's own extent; its children each by theirs. */
VESK_API void calc_texture_coors(object_t *object, int plane);

/* By a given box. */
VESK_API void surfaces_calc_texture_coors_bound(const listitem *surfaces, int mode,
                                                const point3_t *min, const point3_t *max);

/* By the box of the selection. */
VESK_API void surfaces_calc_texture_coors(const listitem *surfaces, int mode);

/* Command "remap_textures": the selected whole surfaces and all surfaces of the selected objects,
   by the box of the selection. No undo. */
VESK_API void selected_calc_texture_coors(int mode);

/* Texture coordinates by the number of corners: the unit triangle (0 0, 1 0, 0 1) and square, else
   a regular polygon in the unit square; lines keep theirs. Marks nothing. */
VESK_API void surface_init_texture_coors(surface_t *surface);

/* A diagnostic: prints each vertex and stores a cylindrical coordinate. */
VESK_API void crap_calc_texture_coors(object_t *object);

VESK_END_DECLS

#ifdef __cplusplus
// Command "inituv": surface_init_texture_coors of the selected whole surfaces and all surfaces of
// the selected objects. Undo of texture coordinates, "initial texture coordinates".
void command_inituv();
#endif

#endif
