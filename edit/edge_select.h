#ifndef VESK_EDIT_EDGE_SELECT_H
#define VESK_EDIT_EDGE_SELECT_H

// Selecting edges by where they are: loops, rings, borders, sharp edges, shortest ways.

#include "edit/document/edge_selection.h"

// Makes edges the selection, or adds them: in vertex mode their ends; other modes than edge and
// vertex mode become edge mode.
void take_edges(const std::vector<owned_edges> &edges, edge_change change);

// The loops (rings) through the edges, each edge once.
std::vector<owned_edges> loops_of(const std::vector<owned_edges> &edges);
std::vector<owned_edges> rings_of(const std::vector<owned_edges> &edges);

// Whether the edge's two surfaces meet at a larger angle than that of the cosine.
bool is_folded(const edge_topology &topology, int e, double cosine);

// Whether exactly the loop of this edge is selected already.
bool loop_is_selected(const owned_edges &edge);

void command_edge_select(int object_id, int a, int b);
void command_edge_deselect(int object_id, int a, int b);
void command_get_num_edges();
void command_get_selected_edges();
void command_select_loop();
void command_select_ring();
void command_select_boundary();
void command_select_sharp(float degrees);
void command_select_path();

#endif
