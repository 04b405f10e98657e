#include "view/grid.h"

#include "base/prefs.h"
#include "edit/snap.h"
#include "view/projection.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double smallest_spacing = 5.0; // pixels
constexpr int max_ground_lines = 400;    // each way
constexpr int pieces_per_line = 24;      // a line fades from piece to piece

struct window_t {
    float width, height;
};

window_t window_of(int view)
{
    int geometry[4] = {};
    win_get_geom(view, geometry);
    return {static_cast<float>(geometry[2]), static_cast<float>(geometry[3])};
}

bool is_drawn(double spacing, int view)
{
    return prefs.show_drawgrid != 0 && spacing * vesk_get_view(view)->scale >= smallest_spacing;
}

// The first line is the one that the window's corner snaps to.
point3_t first_line(double spacing, int view)
{
    point3_t corner = {0, 0, 0};
    point3_t world = {0, 0, 0};
    screen2point(&corner, &world, view);
    const auto g = static_cast<float>(spacing);
    snap_to_grid_float(&world, g, g, g);
    point3_t screen = {0, 0, 0};
    point2screen(&world, &screen, view);
    return screen;
}

grid_layer_t grid_lines(double spacing, float width, int view)
{
    grid_layer_t layer = {false, width, {}};
    const window_t window = window_of(view);
    const view_axes_t &axes = view_axes[view];
    const point3_t first = first_line(spacing, view);
    const float step = static_cast<float>(spacing) * vesk_get_view(view)->scale;
    for (int k = 0; static_cast<float>(k) * step <= window.width; ++k) {
        const float x = axis_of(first, axes.horizontal) + static_cast<float>(k) * step;
        layer.lines.push_back({x, 0, x, window.height});
    }
    for (int k = 0; static_cast<float>(k) * step <= window.height; ++k) {
        const float y = axis_of(first, axes.vertical) + static_cast<float>(k) * step;
        layer.lines.push_back({0, y, window.width, y});
    }
    return layer;
}

grid_layer_t axis_lines(int view)
{
    const VESKView &record = *vesk_get_view(view);
    const window_t window = window_of(view);
    const view_axes_t &axes = view_axes[view];
    const float x = record.centre[axes.horizontal] + record.pan[axes.horizontal];
    const float y = record.centre[axes.vertical] + record.pan[axes.vertical];
    return {true, 2.0f, {{x, 0, x, window.height}, {1, y, window.width - 1, y}}};
}

float fade(float x, float z, float radius)
{
    const float t = std::clamp(1.0f - std::sqrt(x * x + z * z) / radius, 0.0f, 1.0f);
    return t * t * (3.0f - 2.0f * t);
}

void add_ground_line(std::vector<ground_segment_t> &out, float at, bool along_x, float radius)
{
    const int axis = at != 0 ? -1 : along_x ? 0 : 2;
    for (int piece = 0; piece < pieces_per_line; ++piece) {
        const float from = radius * (2.0f * static_cast<float>(piece) / pieces_per_line - 1.0f);
        const float to = radius * (2.0f * static_cast<float>(piece + 1) / pieces_per_line - 1.0f);
        const float alpha1 = fade(from, at, radius);
        const float alpha2 = fade(to, at, radius);
        if (alpha1 <= 0 && alpha2 <= 0)
            continue;
        if (along_x)
            out.push_back({from, at, alpha1, to, at, alpha2, axis});
        else
            out.push_back({at, from, alpha1, at, to, alpha2, axis});
    }
}

} // namespace

std::vector<grid_layer_t> orthographic_grid(int view)
{
    std::vector<grid_layer_t> layers;
    if (!is_orthographic(view))
        return layers;
    const bool fine = is_drawn(prefs.grid, view);
    if (fine)
        layers.push_back(grid_lines(prefs.grid, 1.0f, view));
    if (is_drawn(prefs.drawgrid, view))
        layers.push_back(grid_lines(prefs.drawgrid, fine ? 2.0f : 1.0f, view));
    layers.push_back(axis_lines(view));
    return layers;
}

std::vector<ground_segment_t> ground_grid()
{
    std::vector<ground_segment_t> segments;
    const auto radius = static_cast<float>(prefs.grid3d_size / 2.0);
    const auto square = static_cast<float>(prefs.grid3d_square);
    if (!(radius > 0) || !(square > 0) || radius / square > max_ground_lines)
        return segments;
    const int count = static_cast<int>(radius / square);
    for (int i = -count; i <= count; ++i) {
        add_ground_line(segments, static_cast<float>(i) * square, true, radius);
        add_ground_line(segments, static_cast<float>(i) * square, false, radius);
    }
    return segments;
}
