#ifndef VESK_EDIT_EXTRUDE_EDGES_H
#define VESK_EDIT_EXTRUDE_EDGES_H

// A quad from every selected edge to its copy, moved by a vector. The copies are selected.
void command_extrude_edges(float x, float y, float z);

#endif
