#ifndef VESK_EDIT_UV_UV_PACK_H
#define VESK_EDIT_UV_UV_PACK_H

#include "edit/uv/uv_edit.h"

// Rectangles side by side in the unit square, as large as they all fit.

// Sizes in any one unit, the same in both directions of the picture.
struct uv_rectangle {
    double width, height;
};
struct uv_rectangle_place {
    double u = 0, v = 0; // of its lower left corner
    bool turned = false; // by 90 degrees to the left
};
struct uv_layout {
    double scale = 0; // picture widths a unit; in v it is multiplied by the picture's aspect
    std::vector<uv_rectangle_place> places;
};

// `gap` between rectangles, and half of it at the sides, in picture widths; less where so much would
// leave no room. With `turn` upright ones
// are laid down. Along the skyline, lowest place first; thousands of rectangles in rows. The same
// sizes give the same places, also after they were scaled and placed by this.
uv_layout uv_pack_rectangles(const std::vector<uv_rectangle> &rectangles, double aspect, double gap,
                             bool turn);

// The chosen islands, all when none is, with a margin in pixels.
void command_uv_pack(float margin);

#endif
