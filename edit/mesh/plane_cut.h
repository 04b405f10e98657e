#ifndef VESK_EDIT_MESH_PLANE_CUT_H
#define VESK_EDIT_MESH_PLANE_CUT_H

// Cutting polygons and lines of an object by a plane.

#include "base/progress.h"
#include "edit/mesh/mesh_change.h"

#include <memory>
#include <span>

struct plane_cut_t {
    point3_t at;
    point3_t normal;                // points to the front; of any length but 0
    bool front = true, back = true; // the sides that are kept
    bool cap = false;               // closed outlines on the plane become polygons
};

// What a plane does to some surfaces of an object; those that are not named only get the new
// vertices on the edges that they share. A polygon falls into as many pieces as the plane cuts it
// into; the pieces are polygons and keep its properties, texture coordinates lie between those of the
// edges' ends. Vertices exactly on the plane are used as they are, edges get one new vertex for all
// their surfaces. A polygon in the plane belongs to the side that it does not face. Caps face away
// from the side that is kept (with both sides kept there are none); holes in them are joined to their
// outlines by bridges; they have the material of a surface at their border. Time goes with the object's
// size.
class plane_cut {
public:
    plane_cut(mesh_change &change, std::span<const int> surfaces, const plane_cut_t &how);
    ~plane_cut();
    plane_cut(const plane_cut &) = delete;
    plane_cut &operator=(const plane_cut &) = delete;

    // Whether surfaces lie on both sides, cut or not.
    [[nodiscard]] bool parts() const;
    // Puts the cut into the change; `done` goes up by one a surface. False when the user cancelled.
    bool apply(progress_t &progress, double &done);
    // Surfaces that were cut, and those that went.
    [[nodiscard]] int num_cut() const;
    [[nodiscard]] int num_gone() const;
    // The named surfaces that stay as they are.
    [[nodiscard]] const std::vector<int> &kept() const;

private:
    class work_t;
    std::unique_ptr<work_t> work_;
};

#endif
