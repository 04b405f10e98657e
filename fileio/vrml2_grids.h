#ifndef VESK_FILEIO_VRML2_GRIDS_H
#define VESK_FILEIO_VRML2_GRIDS_H

// The geometry nodes of VRML 2.0 that are grids of points: heights above a plane, and a cross
// section along a spine.

#include "fileio/vrml2_fields.h"

#include <array>

struct vrml2_grid {
    struct corner_t {
        int point;
        float u, v;
    };
    std::vector<std::array<double, 3>> points;
    std::vector<corner_t> corners; // of all faces, counter-clockwise from outside
    std::vector<std::size_t> ends; // where each face's corners end
};

// An ElevationGrid; rows that have no heights are not there.
vrml2_grid vrml2_elevations(const vrml2_fields &from, vrml2_account *account);
vrml2_grid vrml2_extrusion(const vrml2_fields &from, vrml2_account *account);

#endif
