#ifndef VESK_EDIT_SELECT_MORE_H
#define VESK_EDIT_SELECT_MORE_H

// Commands that make a selection of another one, in surface, edge and vertex mode. Each is an undo
// record, "selection"; one that changes nothing opens none.

// "select_grow": with the surfaces and edges that share a vertex, the vertices that an edge joins.
void command_select_grow();
// "select_shrink": without those that touch one that is not selected.
void command_select_shrink();
// "select_linked": with all that hang together with what is selected.
void command_select_linked();
// "select_invert": what can be selected and is not. In the object modes, too.
void command_select_invert();
// "select_random": about that percentage, 0 to 100, of what is selected; of all, when nothing is. The
// same for the same seed.
void command_select_random(int percent, int seed);
// "select_similar": with all that are like one of the selected ones. `what` is
//   material  surfaces only; the tolerance says nothing
//   normal    surfaces and vertices; by degrees
//   area      surfaces only; by a share, 0.1 for a tenth
//   length    of the outline, the edge, the mean of a vertex' edges; by a share
//   corners   of the surface, edges of the vertex; by their number
//   coplanar  surfaces and vertices facing either way; by the distance from the plane
void command_select_similar(const char *what, float tolerance);

#endif
