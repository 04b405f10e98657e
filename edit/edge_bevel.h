#ifndef VESK_EDIT_EDGE_BEVEL_H
#define VESK_EDIT_EDGE_BEVEL_H

// Replaces the selected edges by strips of `segments` quads, `width` from the edge on both sides:
// flat (profile 0), round (0.5) up to the old corner (1). Where three or more of them meet, a
// polygon or a rounded cap closes the corner. The width is limited where strips would meet.
void command_edge_bevel(int count, const char *const *words); // WIDTH SEGMENTS PROFILE

// Cuts the selected vertices off, `width` along each of their edges.
void command_vertex_bevel(float width);

#endif
