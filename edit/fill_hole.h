#ifndef VESK_EDIT_FILL_HOLE_H
#define VESK_EDIT_FILL_HOLE_H

// Closes the holes that have a selected edge: "polygon" by one polygon each, "grid" by quads where
// the outline has an even number of sides (else one polygon), "fan" by triangles about the middle.
void command_fill_hole(int count, const char *const *words); // HOW, may be left out

#endif
