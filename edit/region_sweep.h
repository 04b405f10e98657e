#ifndef VESK_EDIT_REGION_SWEEP_H
#define VESK_EDIT_REGION_SWEEP_H

// Sweeping surfaces: a strip of quads on every outer edge of the region that they are, a moved copy
// of each as a cap, and the removal of the originals.

#include "model/object.h"

#include <functional>

struct sweep_t {
    int levels; // at least 1
    // Leaves out the corners of a side that do not move, so that edges on an axis give triangles.
    bool drops_resting_corners;
    // Place of a vertex of the surfaces at a level, counted from 1: from its own place and the
    // one at the level before. A vertex that stands there already is used.
    std::function<point3_t(int level, const point3_t &base, const point3_t &before)> place;
    // Of the whole-model undo record that is opened before the first change; null: none.
    const char *undo_label;
    // Null: caps, facing and removal as the extrude preferences say. Else the way of the sweep, and
    // they follow from the body, so that it faces outwards as before. Where other surfaces go on
    // beyond the region it is raised or sunk: the originals go. A part of the region that stands
    // alone becomes a closed body: the originals stay as its back.
    const point3_t *along_body = nullptr;
    // The end surfaces become the selection, the walls where there is no end.
    bool selects_ends = false;
};

enum class sweep_outcome { done, no_outer_edge, cancelled };

// Sweeps these surfaces, each in its object, and computes the normals of the objects. Counts the
// new surfaces; unless it is done, nothing changed.
sweep_outcome sweep_surfaces(const listitem *surfaces, const sweep_t &sweep, std::size_t &made);

#endif
