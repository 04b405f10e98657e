#ifndef VESK_EDIT_QUADS_FROM_TRIANGLES_H
#define VESK_EDIT_QUADS_FROM_TRIANGLES_H

// Command "quads_from_triangles": joins pairs of the selected triangles to convex quads, those with
// the rightest corners first, each triangle once. A pair has the same properties and texture
// coordinates on their common edge, and their planes differ by at most `degrees` (0 to 180). Undo
// "quads from triangles"; the quads are selected.
void command_quads_from_triangles(float degrees);

#endif
