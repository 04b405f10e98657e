#ifndef VESK_DRAW_DRAW_REACH_GL_H
#define VESK_DRAW_DRAW_REACH_GL_H

// What moves with the selection: the vertices that soft selection takes along in the colour of their
// share, a circle as wide as its radius, and the plane of symmetry. In pixels, over a view's picture.
void draw_reach(int view, int width, int height);

#endif
