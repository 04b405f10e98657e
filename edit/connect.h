#ifndef VESK_EDIT_CONNECT_H
#define VESK_EDIT_CONNECT_H

// New edges across polygons: vertex mode: between the selected vertices of one polygon; else
// between new vertices at the middles of its selected sides. Two of them part the polygon, more cut
// a polygon out of its middle. Where the new edge would leave a concave polygon, it stays whole.
void command_connect();

// Each selected surface is parted from its neighbours: along the selected edges surfaces no longer
// share vertices.
void command_split_edges();

#endif
