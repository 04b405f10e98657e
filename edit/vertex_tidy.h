#ifndef VESK_EDIT_VERTEX_TIDY_H
#define VESK_EDIT_VERTEX_TIDY_H

// Commands that put the selected vertices in order; in surface mode those of the selected surfaces.
// Vertices that edges join are one group. The selection stays; the undo record holds the places of
// the moved vertices. Where nothing fits only a word.

// "flatten": each group of four or more onto the plane that lies closest to it.
void command_flatten();
// "circularize": each group of three or more onto a circle of its mean radius, in that plane; a
// closed chain of edges evenly, others where they are nearest.
void command_circularize();
// "straighten": each open chain of edges onto the line through its two ends.
void command_straighten();
// "space_evenly": the vertices of each chain along it in even distances; the ends stay, of a closed
// chain the first vertex.
void command_space_evenly();
// "smooth_vertices": that many steps (1 to 1000), each by `factor` (above 0, up to 1) towards the
// mean of the vertices that edges join; on borders along the border only, and where borders meet
// it stays.
void command_smooth_vertices(float factor, int steps);

#endif
