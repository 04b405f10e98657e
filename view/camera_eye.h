#ifndef VESK_VIEW_CAMERA_EYE_H
#define VESK_VIEW_CAMERA_EYE_H

// The transform of the 3D view, made of the viewer's record.

#include "view/camera.h"

// World to eye of the 3D view (the eye looks along -z, y is up): eye = axes * (scale * spin * (p -
// origin) + shift), with `axes` and `spin` row by row.
struct eye_transform_t {
    double axes[9];
    double spin[9];
    double scale;
    point3_t origin;
    point3_t shift;
};
eye_transform_t camera_eye_transform();

// The same as one matrix, column by column as GL wants it.
void camera_modelview(double out[16]);

struct projection_t {
    bool perspective;
    double half_height; // at distance 1 with perspective, else in eye units
    double near_plane, far_plane;
};
// Projection that holds the box min, max (world) between its planes.
projection_t camera_projection(const point3_t &min, const point3_t &max);

// World point under window pixel x, y of the 3D view at the depth of `at`; and window pixel of a
// point, false when it lies behind the viewer.
bool camera_project(const point3_t &point, double *out_x, double *out_y);

// World units of one pixel at the distance of the spin origin, or of `at` in walk mode.
double camera_units_per_pixel();

// Turns the model so that the viewer looks along axis 0 to 2 from its positive or negative end.
void camera_look_along(int axis, bool from_positive);

// Resets the viewer; in spin mode he then looks from three quarters above, where a box shows three
// of its sides and the ground is seen. How a new scene starts.
void camera_look_from_corner();

#endif
