#ifndef VESK_VIEW_GRID_H
#define VESK_VIEW_GRID_H

// The lines of the grids of the views, for the drawing.

#include <vector>

struct grid_line_t {
    float x1, y1, x2, y2; // window pixels
};

struct grid_layer_t {
    bool is_axes;
    float width;
    std::vector<grid_line_t> lines;
};

// The grids and the axes of an orthographic view, in the order they are drawn: fine grid, coarse
// grid (each only when it is shown and at least 5 pixels wide), axes.
std::vector<grid_layer_t> orthographic_grid(int view);

// The ground grid of the 3D view in world coordinates, as segments with an opacity at each end.
struct ground_segment_t {
    float x1, z1, alpha1;
    float x2, z2, alpha2;
    int axis; // 0 and 2 for the axis lines, else -1
};
std::vector<ground_segment_t> ground_grid();

#endif
