#ifndef VESK_EDIT_KNIFE_H
#define VESK_EDIT_KNIFE_H

#include "model/owners.h"

class knife_cut;

// What the knife cuts: the polygons of the selected objects, descendants included, and the whole
// selected surfaces; where neither is selected, those of all visible and unlocked objects.
std::vector<owned_elements> knife_targets();

// What symmetry makes of a line. One that stays on its side is cut on both; one that meets the plane is
// one line with its mirror image, and what it does beyond the plane is left out.
struct knife_lines {
    std::vector<point3_t> here, across; // across: maybe none
};
knife_lines symmetric_lines(object_t *object, const std::vector<point3_t> &line);

// Makes the cut that was drawn on the object and the one along the line across, if there is one, with
// undo "knife". In surface mode the pieces are selected beside the surfaces that stay selected, unless
// nothing was; else the selection stays.
void knife_commit(object_t *object, const knife_cut &cut, const std::vector<point3_t> &across);

// Command "knife": cuts polygons along a line on them; one word, x y z of each of its points, which
// may lie on corners, sides or inside of polygons. All of the line lies on one object. What it does
// to polygons: see knife_cut.
void command_knife(const char *coordinates);

#endif
