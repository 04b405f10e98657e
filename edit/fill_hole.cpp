#include "edit/fill_hole.h"

#include "base/messages.h"
#include "edit/edge_operation.h"
#include "edit/mesh/borders.h"
#include "model/vec3d.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

using corners_t = std::vector<border_corner>;

vec3d point_of(const mesh_change &change, const border_corner &corner)
{
    return to_vec3d(change.position(corner.vertex));
}

void add_polygon(mesh_change &change, const corners_t &corners)
{
    change.add_surface(corners.front().like);
    for (const border_corner &corner : corners)
        change.add_corner(corner.vertex, corner.uv);
}

void fill_by_fan(mesh_change &change, const corners_t &corners)
{
    const auto n = static_cast<double>(corners.size());
    vec3d middle;
    double u = 0, v = 0;
    for (const border_corner &corner : corners) {
        middle += point_of(change, corner) / n;
        u += static_cast<double>(corner.uv.u) / n;
        v += static_cast<double>(corner.uv.v) / n;
    }
    const int centre = change.add_vertex(to_point(middle));
    const flat_uv uv = {static_cast<float>(u), static_cast<float>(v)};
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const border_corner &next = corners[(i + 1) % corners.size()];
        change.add_surface(corners[i].like);
        change.add_corner(corners[i].vertex, corners[i].uv);
        change.add_corner(next.vertex, next.uv);
        change.add_corner(centre, uv);
    }
}

// How far the outline turns at a corner: 0 straight on.
double turn_at(const mesh_change &change, const corners_t &corners, std::size_t i)
{
    const std::size_t n = corners.size();
    const vec3d here = point_of(change, corners[i]);
    const vec3d in = here - point_of(change, corners[(i + n - 1) % n]);
    const vec3d out = point_of(change, corners[(i + 1) % n]) - here;
    const double lengths = length(in) * length(out);
    return lengths > 0 ? std::acos(std::clamp(dot(in, out) / lengths, -1.0, 1.0)) : 0;
}

// Turns the outline so that its sharpest corners are those of a grid of `width` by `height`.
void turn_to_sharpest(const mesh_change &change, corners_t *corners, std::size_t width,
                      std::size_t height)
{
    const std::size_t n = corners->size();
    std::vector<double> turns(n);
    for (std::size_t i = 0; i < n; ++i)
        turns[i] = turn_at(change, *corners, i);
    const auto sharpness = [&](std::size_t i) {
        return turns[i] + turns[(i + width) % n] + turns[(i + width + height) % n] +
               turns[(i + 2 * width + height) % n];
    };
    std::size_t best = 0;
    for (std::size_t i = 1; i < n; ++i) {
        if (sharpness(i) > sharpness(best) + 1e-9)
            best = i;
    }
    std::rotate(corners->begin(), corners->begin() + static_cast<std::ptrdiff_t>(best),
                corners->end());
}

// Quads between the four sides: inner points are blended from the points on them.
void fill_by_grid(mesh_change &change, corners_t corners)
{
    const std::size_t width = (corners.size() + 2) / 4, height = corners.size() / 2 - width;
    turn_to_sharpest(change, &corners, width, height);
    std::vector<border_corner> grid((width + 1) * (height + 1));
    const auto at = [&](std::size_t i, std::size_t j) -> border_corner & {
        return grid[j * (width + 1) + i];
    };
    for (std::size_t k = 0; k < corners.size(); ++k) {
        if (k <= width)
            at(k, 0) = corners[k];
        else if (k <= width + height)
            at(width, k - width) = corners[k];
        else if (k <= 2 * width + height)
            at(2 * width + height - k, height) = corners[k];
        else
            at(0, corners.size() - k) = corners[k];
    }
    const auto blend = [&](std::size_t i, std::size_t j, auto value) {
        const double x = static_cast<double>(i) / static_cast<double>(width);
        const double y = static_cast<double>(j) / static_cast<double>(height);
        return value(at(i, 0)) * (1 - y) + value(at(i, height)) * y + value(at(0, j)) * (1 - x) +
               value(at(width, j)) * x - value(at(0, 0)) * ((1 - x) * (1 - y)) -
               value(at(width, 0)) * (x * (1 - y)) - value(at(0, height)) * ((1 - x) * y) -
               value(at(width, height)) * (x * y);
    };
    for (std::size_t j = 1; j < height; ++j) {
        for (std::size_t i = 1; i < width; ++i) {
            const vec3d point =
                blend(i, j, [&](const border_corner &c) { return point_of(change, c); });
            const double u =
                blend(i, j, [](const border_corner &c) { return static_cast<double>(c.uv.u); });
            const double v =
                blend(i, j, [](const border_corner &c) { return static_cast<double>(c.uv.v); });
            at(i, j) = {change.add_vertex(to_point(point)),
                        {static_cast<float>(u), static_cast<float>(v)},
                        at(i, 0).like};
        }
    }
    for (std::size_t j = 0; j < height; ++j) {
        for (std::size_t i = 0; i < width; ++i)
            add_polygon(change, {at(i, j), at(i + 1, j), at(i + 1, j + 1), at(i, j + 1)});
    }
}

} // namespace

// ---- commands ----

void command_fill_hole(int count, const char *const *words)
{
    const char *how = count > 0 ? words[0] : "polygon";
    const bool grid = std::strcmp(how, "grid") == 0, fan = std::strcmp(how, "fan") == 0;
    if (!grid && !fan && std::strcmp(how, "polygon") != 0) {
        display_message("fill hole - '%s' is none of polygon, grid and fan", how);
        return;
    }
    run_edge_operation("fill hole", "holes", [&](edge_work &work) {
        for (border_chain &hole : holes_at(work.topology, work.edges)) {
            const std::size_t n = hole.corners.size();
            for (std::size_t i = 0; i < n; ++i)
                work.made_edges.push_back(
                    {hole.corners[i].vertex, hole.corners[(i + 1) % n].vertex});
            ++work.changed;
            if (fan)
                fill_by_fan(work.change, hole.corners);
            else if (grid && n >= 4 && n % 2 == 0)
                fill_by_grid(work.change, std::move(hole.corners));
            else
                add_polygon(work.change, hole.corners);
        }
    });
}
