#ifndef VESK_VIEW_SHOWN_ELEMENTS_H
#define VESK_VIEW_SHOWN_ELEMENTS_H

// Whether a view draws the edges of surfaces and the unselected vertices: by the settings of the
// flat views and of the 3D view, and there with show_mode_elements_3d also what the select mode
// takes. Picking asks the same, so that what is drawn can be taken.
bool view_shows_edges(int view);
bool view_shows_vertices(int view);

#endif
