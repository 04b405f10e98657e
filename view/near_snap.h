#ifndef VESK_VIEW_NEAR_SNAP_H
#define VESK_VIEW_NEAR_SNAP_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* Moves the point onto the nearest vertex of the world when that is at most snap_near_pixels away
   in the view. */
VESK_API void snap_near(point3_t *point, int view);

VESK_END_DECLS

#ifdef VESK_INTERNAL
#include <vector>

// Near snap while the mouse drags: the vertices that can be snapped to are gathered once for a
// drag, so that each motion only looks through an array.

// The vertices of all visible objects except these; stays so until near_snap_end.
void near_snap_begin(const std::vector<vertex *> &moving);
void near_snap_end();

// The vertex nearest to a window position of a view, by its place on the screen, within
// snap_near_pixels (times the interface scale); of equal ones the first. Outside of a drag every
// vertex counts. False when there is none.
bool near_snap_at(int view, double x, double y, point3_t *found);

// The same within `range` pixels, but of vertices that lie equally near the frontmost.
bool front_vertex_at(int view, double x, double y, double range, point3_t *found);

// Window position of a point; false when it lies behind the viewer.
bool window_position(int view, const point3_t &point, double *x, double *y);
#endif

#endif
