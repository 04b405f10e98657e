#ifndef VESK_EDIT_MESH_POLYGON_PLANE_H
#define VESK_EDIT_MESH_POLYGON_PLANE_H

// Plane and middle of a polygon in double precision, from all its corners.

#include "model/flat_mesh.h"
#include "model/vec3d.h"

// Along the normal, twice the area long; 0 0 0 for a polygon without area.
vec3d polygon_area_vector(const flat_mesh &mesh, int surface);

// Mean of the corners.
vec3d polygon_middle(const flat_mesh &mesh, int surface);

// A polygon, no line, of 3 corners or more, with an area that its sides do not drown.
bool polygon_has_plane(const flat_mesh &mesh, int surface);

// Of length 1; 0 0 0 of no direction.
vec3d unit_of(const vec3d &a);

// Texture coordinates over the plane of one polygon. Where they fit a plane the picture is exactly
// in place anywhere; else they are blended between the corners, as weighted by the angles that the
// sides have from the point (mean value coordinates), and for long outlines by the slope of all
// corners and the nearest corner alone, which keeps the work linear.
class polygon_picture {
public:
    polygon_picture(const flat_mesh &mesh, int surface);
    // At a point near this corner of the polygon.
    [[nodiscard]] flat_uv at(const vec3d &point, int corner) const;

private:
    [[nodiscard]] bool blend(const vec3d &point, flat_uv &out) const;

    const flat_mesh &mesh_;
    int first_, end_;
    vec3d slope_u_, slope_v_;
    bool is_plane_ = true; // the slopes say it all
};

#endif
