#ifndef VESK_VIEW_DRAG_OFFSET_H
#define VESK_VIEW_DRAG_OFFSET_H

#include "base/types.h"

// World offsets of drags, and their snapping.

// Of a pixel offset in the plane of the screen through `at`, in the 3D view.
point3_t screen_offset_3d(const point3_t &at, int dx, int dy);

// Of a pixel offset along a direction of length 1, where that does not point at the viewer: a way of
// some pixels must be seen of it.
bool direction_is_seen(int view, const point3_t &at, const point3_t &direction);
point3_t offset_along(int view, const point3_t &at, const point3_t &direction, int dx, int dy);

// Changes an offset so that `from`, moved by it, stands on the grid; an axis that does not move is
// not pulled along.
void snap_to_grid_from(const point3_t &from, point3_t *offset);

// Changes an offset so that the vertex `from` comes to one that is near on the screen; false when
// there is none. Along the axis that a flat view hides it is only followed when it is near there,
// too: a vertex far behind lends its place on the screen.
bool snap_near_from(const point3_t &from, int view, point3_t *offset);

#endif
