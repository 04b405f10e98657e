#ifndef VESK_FILEIO_DXF_CURVES_H
#define VESK_FILEIO_DXF_CURVES_H

// The curves of a DXF drawing as points on them.

#include "fileio/dxf_scan.h"

// About the origin of its plane, counter-clockwise from one angle to the other (radians); both ends
// are there. All around where the angles are the same.
std::vector<vec3d> dxf_arc(const vec3d &centre, double radius, double from, double to);

// From a to b by an arc whose quarter of an angle has the tangent `bulge`; positive ones run
// counter-clockwise. Without its end, so that pieces can follow each other.
void dxf_add_bulge(const vec3d &a, const vec3d &b, double bulge, std::vector<vec3d> *points);

// An ELLIPSE record, in world coordinates.
std::vector<vec3d> dxf_ellipse(const dxf_record &record, bool *closed);

// A SPLINE record, in world coordinates: rational B-splines of any degree, and curves through
// points. Empty when its numbers are none of a spline.
std::vector<vec3d> dxf_spline(const dxf_record &record, bool *closed);

// A closed or open line as a band of that width to both sides, in its plane (z is kept): four
// points a piece. `widths` are those at each point's start and at its piece's end, two a point.
std::vector<vec3d> dxf_band(const std::vector<vec3d> &points, const std::vector<double> &widths,
                            bool closed);

#endif
