#ifndef VESK_VIEW_PICK_EDGE_H
#define VESK_VIEW_PICK_EDGE_H

#include "model/object.h"

// An edge under a window position, of the visible and unlocked objects. Of the edges that lie about
// equally near on the screen the frontmost is taken; edges behind a drawn face are not seen.

struct edge_hit_t {
    object_t *object = nullptr; // null: none
    int a = 0, b = 0;           // its ends, as places among the object's vertices
    float share = 0;            // of the way from a to b where it is nearest to the position
    point3_t from = {0, 0, 0}, to = {0, 0, 0};
};

// The edge within `range` pixels of (x, y).
edge_hit_t pick_edge_at(int view, int x, int y, int range);

// How much of the way from one end of an edge to the other the place is that (x, y) is nearest to;
// the middle of one that the view shows as a point.
float share_of_edge_at(int view, const point3_t &from, const point3_t &to, int x, int y);

inline point3_t point_of_edge(const edge_hit_t &hit)
{
    return {hit.from.x + (hit.to.x - hit.from.x) * hit.share,
            hit.from.y + (hit.to.y - hit.from.y) * hit.share,
            hit.from.z + (hit.to.z - hit.from.z) * hit.share};
}

#endif
