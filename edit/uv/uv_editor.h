#ifndef VESK_EDIT_UV_UV_EDITOR_H
#define VESK_EDIT_UV_UV_EDITOR_H

// The target of the operations on texture coordinates, with or without a window. Shown are the
// polygons of the visible, unlocked objects that are selected, or that own selected elements;
// chosen are some of their corners. Chosen surfaces (corners) are the main selection in surface
// (vertex) mode and the other way round; choosing while whole objects are selected changes the
// select mode.

#include "edit/uv/uv_islands.h"

#include <string_view>

enum class uv_mode { CORNER, SURFACE, ISLAND };

struct uv_state {
    uv_mode mode = uv_mode::SURFACE;
    uv_mesh mesh;
    uv_islands islands;
    std::vector<char> chosen; // of each corner
    int num_chosen = 0;
    unsigned geometry_version = 0; // others with every change of the above, never the same again
    unsigned choice_version = 0;
};

// Brought up to date with the model and the main selection.
const uv_state &uv_editor();

// False: a worker is at it, since it is much; ask again later. uv_editor does not wait for it.
bool uv_editor_is_ready();

void uv_set_mode(uv_mode mode);
bool uv_mode_of(std::string_view name, uv_mode *mode);
const char *uv_mode_name(uv_mode mode);

// Chooses these corners: in corner mode with all that are joined to them, in the other modes as
// whole surfaces or islands with a corner among them. Carried over to the main selection.
void uv_choose(std::vector<char> corners);

// The corners that operations change: those that are chosen and those joined to them; all when none
// is.
std::vector<char> uv_moving_corners(const uv_state &state);
// The surfaces all of whose corners are chosen; all when no corner is.
std::vector<int> uv_chosen_surfaces(const uv_state &state);
// The islands with a chosen corner; all when there is none.
std::vector<int> uv_chosen_islands(const uv_state &state);

uv_box uv_box_of(const uv_mesh &mesh, const std::vector<char> &corners);

// Of what uv_editor shows; counted once for every change of it.
struct uv_totals {
    uv_box chosen, all;
    int chosen_surfaces = 0, chosen_islands = 0; // 0 when nothing is chosen
};
const uv_totals &uv_totals_now();

// Pixels of the picture on the shown objects that the unit square covers; without a picture a
// square of 512.
struct uv_pixels {
    double width = 512, height = 512;
    [[nodiscard]] double aspect() const { return width / height; }
};
uv_pixels uv_picture_size();
// The first shown object with a picture, else the first one; null when nothing is shown.
object_t *uv_picture_object();

// ---- changes ----

// Makes `at` the coordinates of all shown corners, but for those that are no numbers: one undo
// record with that label. Returns how many surfaces changed; 0: no record.
int uv_commit(const char *label, std::vector<flat_uv> at);

// The same without a record, for a drag: islands stay as they were numbered at its begin.
void uv_preview(std::vector<flat_uv> at);

void uv_editor_reset_for_test();

#endif
