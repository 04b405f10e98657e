#ifndef VESK_VIEW_UV_VIEW_H
#define VESK_VIEW_UV_VIEW_H

// The window of texture coordinates without its toolkit: its contents and their places.
// Positions, buttons and keys in; changes of the choice and of the coordinates out. Window pixels
// have their origin at the top left; u runs to the right, v upwards.

#include "edit/uv/uv_edit.h"
#include "view/handles.h"

#include <string>

enum class uv_tool { MOVE, ROTATE, SCALE };

enum class uv_shown_stretch { NONE, BOTH, AREA, SHAPE };

struct uv_options {
    bool checker = false;                              // instead of the picture
    uv_shown_stretch stretch = uv_shown_stretch::NONE; // by colour and hatching
    bool overlaps = false;                             // surfaces that lie on each other
    bool repeat = false;                               // the picture beyond the unit square
    bool snap = false;                                 // drags stop at whole pixels
    int picture = -1; // number in the texture table, -1 that of the objects
};

struct uv_view_t {
    int width = 1, height = 1;
    double centre_u = 0.5, centre_v = 0.5;
    double scale = 400;  // pixels a unit of u
    bool placed = false; // by the user; until then the square is fitted to every size
    uv_tool tool = uv_tool::MOVE;
    uv_options options;
    // marks of a drag
    bool band = false;
    int x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    int locked_axis = -1; // 0 u, 1 v
    flat_uv lock_point = {0, 0};
    // A drag of many: the model has their places only at its end.
    bool pending = false;
    uv_matrix pending_matrix;
    std::vector<char> pending_corners;
};
uv_view_t &uv_view();

// Above so many shown corners a drag leaves the model as it is until its end.
constexpr std::size_t many_uv_corners = 200000;

// Where a corner is shown.
inline flat_uv uv_shown_at(const uv_view_t &view, const uv_mesh &mesh, int corner)
{
    const flat_uv &at = mesh.at[corner];
    const auto c = static_cast<std::size_t>(corner);
    const bool moves =
        view.pending && c < view.pending_corners.size() && view.pending_corners[c] != 0;
    return moves ? view.pending_matrix.apply(at) : at;
}

struct uv_screen_point {
    double x, y;
};
// Where coordinates lie in the window now; for many points it is made once.
struct uv_screen {
    double centre_x, centre_y; // window
    double centre_u, centre_v;
    double scale_u, scale_v; // pixels a unit
    [[nodiscard]] uv_screen_point at(const flat_uv &p) const
    {
        return {centre_x + (p.u - centre_u) * scale_u, centre_y - (p.v - centre_v) * scale_v};
    }
};
uv_screen uv_screen_now();
uv_screen_point uv_to_screen(const flat_uv &p);
flat_uv uv_from_screen(double x, double y);
double uv_scale_v();

// ---- the window ----

void uv_view_resize(int width, int height);
// The unit square, or the choice, as large as it fits.
void uv_view_fit(bool chosen_only);
// About a place; above 1 it gets larger.
void uv_view_zoom(double factor, int x, int y);
void uv_view_pan(double dx, double dy);
void uv_view_redraw();

// The frame round the choice with its handles, in window pixels; not valid without a choice.
handle_box_t uv_handle_box();

// ---- choosing ----

// A click; again at the same place it takes the next element behind.
void uv_view_click(int x, int y, int state);
// A rubber band; from right to left it takes what it touches.
void uv_view_take_band(int x0, int y0, int x1, int y1, int state);

void uv_view_reset_for_test();

#endif
