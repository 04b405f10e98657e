#ifndef VESK_EDIT_SURFACE_EDIT_H
#define VESK_EDIT_SURFACE_EDIT_H

// The frame of the commands that rebuild surfaces and select what they made: compute for every
// object, then open the record, commit, select.

#include "edit/document/edit_support.h"
#include "edit/mesh/surface_region.h"

#include <functional>
#include <string>

// The computing half's view of one object.
struct surface_edit {
    mesh_change &change;
    const std::vector<int> &surfaces; // the targets
    progress_t &progress;
    double &done; // one a target
    int changed = 0;
    // Selected afterwards: surfaces that keep their records, and new ones by their number among
    // those that the change was given.
    std::vector<surface_t *> kept = {};
    std::vector<int> made = {};
    std::string reason = {}; // why nothing changed, or what the message ends with

    int added = 0; // new surfaces so far

    // Begins a new surface; returns its number.
    int add_surface(int like)
    {
        change.add_surface(like);
        return added++;
    }
    // False when the user cancelled.
    bool step() { return progress.step(++done); }
};

// Runs `compute` for every object with targets (false: the user cancelled), then changes them in
// one whole-model record named `what`, computes the normals and selects the results. Without any
// changed surface it says "<what> - <reason>", or "nothing selected", and changes nothing; the same
// when a place lies beyond what a coordinate can hold.
void run_surface_edit(const char *what, const std::function<bool(surface_edit &)> &compute);

// Of the targets the polygons that have a plane.
std::vector<int> polygons_with_plane(const flat_mesh &mesh, const std::vector<int> &surfaces);

#endif
