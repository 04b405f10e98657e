#ifndef VESK_VIEW_AXIS_CROSS_H
#define VESK_VIEW_AXIS_CROSS_H

// The small axis cross at the top right of the 3D view: six ends; a click on one looks along its
// axis.

#include <array>

struct axis_end_t {
    int axis; // 0 x, 1 y, 2 z
    bool positive;
    double x, y;   // window pixels
    double depth;  // greater is nearer to the viewer
    double radius; // of its disc or ring
};

struct axis_cross_t {
    double centre_x, centre_y;
    double radius;                  // of the disc behind it
    std::array<axis_end_t, 6> ends; // back to front
};

// `scale` is that of the interface (1 at 96 dpi).
axis_cross_t axis_cross(double scale);

// The end under a window pixel, the nearest to the viewer first; null for none.
const axis_end_t *axis_cross_hit(const axis_cross_t &cross, int x, int y);

// Colour (0xRRGGBB) of an axis in the views, and of all three; the same on every view background.
int axis_colour(int axis);
void set_axis_colours(int x, int y, int z);

#endif
