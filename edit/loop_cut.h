#ifndef VESK_EDIT_LOOP_CUT_H
#define VESK_EDIT_LOOP_CUT_H

// Loops across rings of quads. Shares and slides count from the edge's vertex `a`.

#include "edit/mesh/edge_topology.h"

#include <vector>

// An edge whose ring is cut, and the end from which the slide counts.
struct loop_seed {
    int edge, start;
};
// The polygon sides that new loops would run along, as pairs of points in the object's coordinates:
// for showing a cut before it is made. The rings through the edges, cut `cuts` times.
std::vector<point3_t> loop_cut_preview(const edge_topology &topology,
                                       const std::vector<loop_seed> &seeds, int cuts, float slide);
// The edges whose rings a cut of an object goes through: these, and with symmetry their counterparts.
// `twins` are symmetric_places of the object, or nothing.
std::vector<loop_seed> loop_seeds(const edge_topology &topology, const std::vector<int> &edges,
                                  const std::vector<int> &twins);

// Makes that cut, whatever is selected. False when the edge has no ring.
bool loop_cut_at(object_t *object, int edge, int cuts, float slide);

// Cuts the rings of quads through the selected edges `cuts` times, moved by `slide` (-1 .. 1) of the
// way from one new loop to the next. Rings end at other polygons, which get the new vertices into
// their sides, and at borders. Quads that two rings cross become grids.
void command_loop_cut(int count, const char *const *words);    // CUTS SLIDE, both may be left out
void command_loop_cut_at(int count, const char *const *words); // OBJECT A B CUTS SLIDE

#endif
