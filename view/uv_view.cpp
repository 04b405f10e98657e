#include "view/uv_view.h"

#include "base/messages.h"
#include "base/prefs.h"
#include "base/redraw.h"
#include "base/ui_port.h"
#include "edit/document/selection.h"
#include "edit/uv/uv_replay.h"
#include "view/drag_echo.h"
#include "view/interaction.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr double margin = 8; // between the choice and its frame
constexpr double shortest_side_with_handle = 36;
constexpr double border = 48;                       // round the fitted box
constexpr double least_scale = 2, most_scale = 4e6; // pixels a unit
constexpr int same_place = 2;

uv_view_t view;

struct last_click_t {
    int x = -1000, y = -1000;
    std::size_t index = 0;
};
last_click_t last_click;

int scaled(double pixels) { return static_cast<int>(std::lround(pixels * view_interface_scale())); }

bool same_pixel(const uv_screen_point &p, int x, int y, double range)
{
    return std::fabs(p.x - x) <= range && std::fabs(p.y - y) <= range;
}

// During a drag of many the box of the box: turned, it is larger than that of the corners.
uv_box shown_box(const uv_box &box)
{
    if (!view.pending || !box.any)
        return box;
    uv_box shown;
    for (const flat_uv &corner :
         {flat_uv{box.u0, box.v0}, {box.u1, box.v0}, {box.u0, box.v1}, {box.u1, box.v1}})
        shown.add(view.pending_matrix.apply(corner));
    return shown;
}

// ---- elements under a place ----

// Crossings of a line to the right: odd inside.
bool is_inside(const uv_mesh &mesh, int surface, const flat_uv &p)
{
    bool inside = false;
    for (int c = mesh.corners_begin(surface); c < mesh.corners_end(surface); ++c) {
        const flat_uv &a = mesh.at[c];
        const flat_uv &b = mesh.at[mesh.next_corner(surface, c)];
        if ((a.v > p.v) != (b.v > p.v) &&
            p.u < (double{b.u} - a.u) * (double{p.v} - a.v) / (double{b.v} - a.v) + a.u)
            inside = !inside;
    }
    return inside;
}

// Points, the nearest first: each as one of its corners.
std::vector<int> points_at(const uv_state &state, int x, int y)
{
    const double range = std::max(1.0, prefs.pick_pixel_range * view_interface_scale());
    const uv_screen screen = uv_screen_now();
    std::vector<std::pair<double, int>> found;
    std::vector<char> seen(state.islands.num_points, 0);
    for (int c = 0; c < state.mesh.num_corners(); ++c) {
        char &known = seen[state.islands.point[c]];
        const uv_screen_point p = screen.at(state.mesh.at[c]);
        if (known != 0 || !same_pixel(p, x, y, range))
            continue;
        known = 1;
        found.emplace_back(std::hypot(p.x - x, p.y - y), c);
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const auto &a, const auto &b) { return a.first < b.first; });
    std::vector<int> corners;
    for (const auto &[distance, corner] : found)
        corners.push_back(corner);
    return corners;
}

// Surfaces, or one of each island, the last drawn first; each as its first corner.
std::vector<int> surfaces_at(const uv_state &state, int x, int y)
{
    const flat_uv p = uv_from_screen(x + 0.5, y + 0.5);
    std::vector<char> seen(state.islands.num_islands, 0);
    std::vector<int> corners;
    for (int i = state.mesh.num_surfaces() - 1; i >= 0; --i) {
        char &known = seen[state.islands.island[i]];
        if ((state.mode == uv_mode::ISLAND && known != 0) || !is_inside(state.mesh, i, p))
            continue;
        known = 1;
        corners.push_back(state.mesh.corners_begin(i));
    }
    return corners;
}

std::vector<int> hits_at(const uv_state &state, int x, int y)
{
    return state.mode == uv_mode::CORNER ? points_at(state, x, y) : surfaces_at(state, x, y);
}

// The corners that are chosen together with one of them in the present mode.
std::vector<char> whole(const uv_state &state, int corner)
{
    const std::vector<int> surface_of = uv_surface_of_corners(state.mesh);
    const int surface = surface_of[corner];
    std::vector<char> corners(state.mesh.at.size(), 0);
    for (std::size_t c = 0; c < corners.size(); ++c) {
        const auto other = surface_of[c];
        corners[c] = state.mode == uv_mode::CORNER
                         ? state.islands.point[c] == state.islands.point[corner]
                     : state.mode == uv_mode::SURFACE
                         ? surface_of[c] == surface
                         : state.islands.island[other] == state.islands.island[surface];
    }
    return corners;
}

// ---- rubber band ----

struct band_t {
    uv_screen screen;
    double x0, y0, x1, y1;
    flat_uv corner; // upper left
    [[nodiscard]] bool holds(const uv_screen_point &p) const
    {
        return p.x >= x0 && p.x <= x1 && p.y >= y0 && p.y <= y1;
    }
};

// Whether a segment meets the band: clipped to it, something is left.
bool crosses(const band_t &band, const uv_screen_point &a, const uv_screen_point &b)
{
    double low = 0, high = 1;
    const auto clip = [&](double from, double to, double least, double most) {
        const double by = to - from;
        if (by == 0)
            return from >= least && from <= most;
        double first = (least - from) / by, last = (most - from) / by;
        if (first > last)
            std::swap(first, last);
        low = std::max(low, first);
        high = std::min(high, last);
        return low <= high;
    };
    return clip(a.x, b.x, band.x0, band.x1) && clip(a.y, b.y, band.y0, band.y1);
}

bool surface_in_band(const uv_mesh &mesh, int surface, const band_t &band, bool touching)
{
    for (int c = mesh.corners_begin(surface); c < mesh.corners_end(surface); ++c) {
        const uv_screen_point a = band.screen.at(mesh.at[c]);
        const uv_screen_point b = band.screen.at(mesh.at[mesh.next_corner(surface, c)]);
        if (!touching && !band.holds(a))
            return false;
        if (touching && crosses(band, a, b))
            return true;
    }
    return !touching || is_inside(mesh, surface, band.corner);
}

std::vector<char> corners_in_band(const uv_state &state, const band_t &band, bool touching)
{
    const uv_mesh &mesh = state.mesh;
    std::vector<char> corners(mesh.at.size(), 0);
    if (state.mode == uv_mode::CORNER) {
        for (std::size_t c = 0; c < corners.size(); ++c)
            corners[c] = band.holds(band.screen.at(mesh.at[c])) ? 1 : 0;
        return corners;
    }
    std::vector<char> taken(mesh.num_surfaces());
    for (int i = 0; i < mesh.num_surfaces(); ++i)
        taken[i] = surface_in_band(mesh, i, band, touching) ? 1 : 0;
    if (state.mode == uv_mode::ISLAND) {
        std::vector<char> islands(state.islands.num_islands, touching ? 0 : 1);
        for (std::size_t i = 0; i < taken.size(); ++i) {
            char &island = islands[state.islands.island[i]];
            island = static_cast<char>(touching ? island | taken[i] : island & taken[i]);
        }
        for (std::size_t i = 0; i < taken.size(); ++i)
            taken[i] = islands[state.islands.island[i]];
    }
    for (int i = 0; i < mesh.num_surfaces(); ++i)
        std::fill(corners.begin() + mesh.corners_begin(i), corners.begin() + mesh.corners_end(i),
                  taken[i]);
    return corners;
}

void choose(std::vector<char> corners)
{
    if (corners == uv_editor().chosen)
        return;
    step_t step(step_t::of::command);
    const std::string places = uv_corner_text(corners);
    uv_choose(std::move(corners));
    echo_elements({"uv_select_corners", places});
    step.keep("selection");
    redraw_all();
    display_status();
}

} // namespace

uv_view_t &uv_view() { return view; }

double uv_scale_v() { return view.scale / uv_picture_size().aspect(); }

uv_screen uv_screen_now()
{
    return {view.width / 2.0, view.height / 2.0, view.centre_u,
            view.centre_v,    view.scale,        uv_scale_v()};
}

uv_screen_point uv_to_screen(const flat_uv &p) { return uv_screen_now().at(p); }

flat_uv uv_from_screen(double x, double y)
{
    return {static_cast<float>(view.centre_u + (x - view.width / 2.0) / view.scale),
            static_cast<float>(view.centre_v - (y - view.height / 2.0) / uv_scale_v())};
}

// ---- the window ----

void uv_view_redraw() { ui_port().post_redisplay(texture_coords_view); }

void uv_view_resize(int width, int height)
{
    view.width = std::max(width, 1);
    view.height = std::max(height, 1);
    if (!view.placed)
        uv_view_fit(false);
    uv_view_redraw();
}

void uv_view_fit(bool chosen_only)
{
    uv_box box;
    if (chosen_only)
        box = uv_box_of(uv_editor().mesh, uv_moving_corners(uv_editor()));
    if (!box.any) {
        box.add({0, 0});
        box.add({1, 1});
    }
    const double aspect = uv_picture_size().aspect();
    const double room_x = std::max(view.width - scaled(border) * 1.0, 16.0);
    const double room_y = std::max(view.height - scaled(border) * 1.0, 16.0);
    const double width = std::max(box.width(), 1e-4);
    const double height = std::max(box.height(), 1e-4) / aspect;
    view.scale = std::clamp(std::min(room_x / width, room_y / height), least_scale, most_scale);
    view.centre_u = box.middle().u;
    view.centre_v = box.middle().v;
    view.placed = chosen_only;
    uv_view_redraw();
}

void uv_view_zoom(double factor, int x, int y)
{
    const flat_uv before = uv_from_screen(x, y);
    view.placed = true;
    view.scale = std::clamp(view.scale * factor, least_scale, most_scale);
    const flat_uv after = uv_from_screen(x, y);
    view.centre_u += double{before.u} - after.u;
    view.centre_v += double{before.v} - after.v;
    uv_view_redraw();
}

void uv_view_pan(double dx, double dy)
{
    view.placed = true;
    view.centre_u -= dx / view.scale;
    view.centre_v += dy / uv_scale_v();
    uv_view_redraw();
}

// ---- handles ----

handle_box_t uv_handle_box()
{
    handle_box_t box;
    const uv_box bounds = shown_box(uv_totals_now().chosen);
    if (!bounds.any)
        return box;
    const uv_screen_point low = uv_to_screen({bounds.u0, bounds.v0});
    const uv_screen_point high = uv_to_screen({bounds.u1, bounds.v1});
    const auto pixel = [](double value) {
        return static_cast<int>(std::lround(std::clamp(value, -1e6, 1e6)));
    };
    box.valid = true;
    box.x0 = pixel(low.x) - scaled(margin);
    box.x1 = pixel(high.x) + scaled(margin);
    box.y0 = pixel(high.y) - scaled(margin);
    box.y1 = pixel(low.y) + scaled(margin);
    const bool wide = box.x1 - box.x0 >= scaled(shortest_side_with_handle);
    const bool high_enough = box.y1 - box.y0 >= scaled(shortest_side_with_handle);
    for (const int code :
         {HANDLE_TOP | HANDLE_LEFT, HANDLE_TOP | HANDLE_RIGHT, HANDLE_BOTTOM | HANDLE_LEFT,
          HANDLE_BOTTOM | HANDLE_RIGHT, HANDLE_EDGE | HANDLE_TOP, HANDLE_EDGE | HANDLE_BOTTOM,
          HANDLE_EDGE | HANDLE_LEFT, HANDLE_EDGE | HANDLE_RIGHT}) {
        const bool across = (code & (HANDLE_LEFT | HANDLE_RIGHT)) != 0;
        const bool up = (code & (HANDLE_TOP | HANDLE_BOTTOM)) != 0;
        if ((!across && !wide) || (!up && !high_enough))
            continue;
        const int x = !across ? (box.x0 + box.x1) / 2 : (code & HANDLE_LEFT) != 0 ? box.x0 : box.x1;
        const int y = !up ? (box.y0 + box.y1) / 2 : (code & HANDLE_TOP) != 0 ? box.y0 : box.y1;
        box.places[box.num_places++] = {x, y, code};
    }
    return box;
}

// ---- choosing ----

void uv_view_click(int x, int y, int state_of_keys)
{
    const uv_state &state = uv_editor();
    const bool adds = qualifier_shift(state_of_keys) != 0;
    const std::vector<int> hits = hits_at(state, x, y);
    if (hits.empty()) {
        last_click = {};
        if (!adds)
            choose(std::vector<char>(state.mesh.at.size(), 0));
        return;
    }
    const bool again =
        std::abs(last_click.x - x) <= same_place && std::abs(last_click.y - y) <= same_place;
    const std::size_t index = again ? (last_click.index + 1) % hits.size() : 0;
    last_click = {x, y, index};
    std::vector<char> corners = whole(state, hits[index]);
    if (adds) {
        const bool takes_away = state.chosen[hits[index]] != 0;
        for (std::size_t c = 0; c < corners.size(); ++c)
            corners[c] = static_cast<char>(takes_away ? state.chosen[c] & ~corners[c]
                                                      : state.chosen[c] | corners[c]);
    }
    choose(std::move(corners));
}

void uv_view_take_band(int x0, int y0, int x1, int y1, int state_of_keys)
{
    const uv_state &state = uv_editor();
    const int left = std::min(x0, x1), top = std::min(y0, y1);
    const band_t band = {uv_screen_now(),
                         static_cast<double>(left),
                         static_cast<double>(top),
                         static_cast<double>(std::max(x0, x1)),
                         static_cast<double>(std::max(y0, y1)),
                         uv_from_screen(left, top)};
    std::vector<char> corners = corners_in_band(state, band, x1 < x0);
    const bool adds = qualifier_shift(state_of_keys) != 0;
    const bool takes_away = qualifier_control(state_of_keys) != 0;
    for (std::size_t c = 0; (adds || takes_away) && c < corners.size(); ++c)
        corners[c] = static_cast<char>(takes_away ? state.chosen[c] & ~corners[c]
                                                  : state.chosen[c] | corners[c]);
    choose(std::move(corners));
}

void uv_view_reset_for_test()
{
    view = {};
    last_click = {};
}
