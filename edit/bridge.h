#ifndef VESK_EDIT_BRIDGE_H
#define VESK_EDIT_BRIDGE_H

// Joins two outlines by surfaces: two borders or two open chains of selected border edges, or in
// surface mode the outlines of two regions of selected surfaces, which go. `segments` rows of quads;
// with different numbers of corners the surplus becomes triangles. `twist` turns the second outline by so
// many corners; `smooth` (0 .. 1) leaves the outlines along their normals instead of straight.
void command_bridge(int count, const char *const *words); // SEGMENTS TWIST SMOOTH, may be left out

#endif
