#ifndef VESK_VIEW_SCREEN_RAY_H
#define VESK_VIEW_SCREEN_RAY_H

#include "model/object.h"

// The line of sight behind a window position, in any view.

struct screen_ray_t {
    double origin[3];
    double direction[3]; // away from the viewer, not of unit length
};
screen_ray_t screen_ray(int view, double x, double y);

// Where the ray meets a plane, or the plane of a surface; false when it does not, or behind the
// viewer of the 3D view.
bool ray_meets_plane(const screen_ray_t &ray, const point3_t &on_plane, const point3_t &normal,
                     point3_t *at);
bool ray_meets_surface(const screen_ray_t &ray, const surface_t *surface, point3_t *at);

// Length of one pixel at a depth from the viewer, in the unit of the depth (it only matters with
// perspective; an infinite one gives 0).
double units_per_pixel_at(int view, double depth);

#endif
