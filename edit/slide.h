#ifndef VESK_EDIT_SLIDE_H
#define VESK_EDIT_SLIDE_H

// Moves the ends of the selected edges along the edges beside them, by `share` (-1 .. 1) of their
// length: to one side of a chain of selected edges, or with a negative share to the other.
// Vertex mode: a selected vertex along the edge that goes to its first unselected neighbour.
// Texture coordinates change so that the picture stays in its place.
void command_slide(float share);

#endif
