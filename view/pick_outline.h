#ifndef VESK_VIEW_PICK_OUTLINE_H
#define VESK_VIEW_PICK_OUTLINE_H

// The outline of a surface on the screen, cut off where it passes the viewer, and where a place of
// the screen lies on it.

#include "model/flat_mesh.h"
#include "view/projector.h"

#include <span>
#include <vector>

using outline_t = std::vector<screen_point_t>;

// Of surface `i`; a part behind the viewer is left out. Empty when there is nothing before him.
void surface_outline(const flat_mesh &mesh, int i, const projector_t &projector, outline_t *out);

struct place_on_face_t {
    bool inside = false;
    bool faces_viewer = false; // by the order of its corners, as drawing has it
    float depth = 0;           // of the face at the place
};

// The place (x, y) against a filled outline. With perspective the depth is exact, too.
place_on_face_t place_on_face(const outline_t &outline, bool perspective, float x, float y);

// Distance in pixels from (x, y) to the segment, and the depth there.
struct near_place_t {
    float pixels, depth;
};
near_place_t near_segment(const screen_point_t &a, const screen_point_t &b, bool perspective,
                          float x, float y);

// Whether the corners run round as those of a face that looks at the viewer do.
bool outline_faces_viewer(const outline_t &outline);

#endif
