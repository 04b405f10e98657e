#ifndef VESK_EDIT_SUBDIVIDE_H
#define VESK_EDIT_SUBDIVIDE_H

// Commands that give surfaces more vertices. They work on the selected whole surfaces and on all
// surfaces of the selected objects; one whole-model undo each; the results are selected. New corners
// get texture coordinates between those of their neighbours.

// "surface_subdivide": a triangle becomes four, a polygon of n corners n quads about its centre,
// through the middles of its edges; a line gets its middles. Surfaces that share such an edge get
// the new vertex too, so that no crack opens.
void command_surface_subdivide();

// "surface_spike": a polygon becomes triangles to a new vertex, which lies the preference
// spike_factor times the corners' mean distance from the centre along the surface's normal.
void command_surface_spike();

// "surface_spline": a line becomes a Catmull-Rom curve through its vertices, in as many steps from
// one to the next as the preference spline_steps says. Beyond its ends an open line goes straight
// on.
void command_surface_spline();

// "insert_vertex": a new vertex in the middle of each edge whose ends are both selected (vertex
// mode), or of each edge of the surfaces, in every surface that has the edge. In vertex mode the
// new vertices are selected.
void command_insert_vertex();

#endif
