#ifndef VESK_EDIT_LOOP_CUT_H
#define VESK_EDIT_LOOP_CUT_H

// Loops across rings of quads. Shares and slides count from the edge's vertex `a`.

#include "edit/mesh/edge_topology.h"

#include <vector>

// The polygon sides that new loops would run along, as pairs of points in the object's coordinates:
// for showing a cut before it is made. The ring through the edge, cut `cuts` times.
std::vector<point3_t> loop_cut_preview(const edge_topology &topology, int edge, int cuts,
                                       float slide);

// Makes that cut, whatever is selected. False when the edge has no ring.
bool loop_cut_at(object_t *object, int edge, int cuts, float slide);

// Cuts the rings of quads through the selected edges `cuts` times, moved by `slide` (-1 .. 1) of the
// way from one new loop to the next. Rings end at other polygons, which get the new vertices into
// their sides, and at borders. Quads that two rings cross become grids.
void command_loop_cut(int count, const char *const *words);    // CUTS SLIDE, both may be left out
void command_loop_cut_at(int count, const char *const *words); // OBJECT A B CUTS SLIDE

#endif
