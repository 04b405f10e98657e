#ifndef VESK_VIEW_PICK_H
#define VESK_VIEW_PICK_H

// The elements under a window position or inside a rubber band, from the flat meshes. Hidden and
// locked objects are never found. Positions are window pixels.

#include "model/object.h"

#include <vector>

enum class pick_kind { OBJECT, SURFACE, VERTEX, LIGHT, EDGE };

struct pick_hit_t {
    object_t *object = nullptr; // owner, also of the surface or vertex
    surface_t *surface = nullptr;
    vertex *point = nullptr;
    vertex *end = nullptr; // of an edge from `point`
    float pixels = 0;      // how far the pointer is from it; 0 inside a face
    float depth = 0;       // from the viewer; smaller is nearer
};

// Everything of that kind within `range` pixels of (x, y), best first: those under the pointer by
// the depth that they have there, then those that are merely near. Where surfaces are filled, the
// back of a one-sided one is not seen and not found (but for its edges where edges are drawn), and
// of vertices one that can be seen comes first, and edges that a surface hides are not found. Objects
// are listed once.
std::vector<pick_hit_t> pick_at(int view, pick_kind kind, int x, int y, int range);

struct band_t {
    int x0, y0, x1, y1;
    bool touching; // else only elements wholly inside
};

// In tree order. Elements by `kind`; objects by their own geometry, lights by their centre. In the
// filled 3D view surfaces that look away, and vertices of such surfaces alone, are left out. With
// select_through both functions find what surfaces hide and backs, too.
std::vector<pick_hit_t> pick_band(int view, pick_kind kind, const band_t &band);

// Has a worker make what picking in large objects, as they are now, will need. Cheap to ask again.
void pick_prepare();

#endif
