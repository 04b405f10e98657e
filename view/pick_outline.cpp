#include "view/pick_outline.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// As much before the viewer as it takes to divide by.
constexpr float cut_depth = 1e-4f;

screen_point_t between(const screen_point_t &a, const screen_point_t &b, float depth)
{
    const float t = (depth - a.depth) / (b.depth - a.depth);
    return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t, depth};
}

// Twice the area of the triangle, positive where the corners run against the clock on the screen,
// whose y grows downwards.
double area_of(const screen_point_t &a, const screen_point_t &b, double x, double y)
{
    return (double{b.y} - a.y) * (x - a.x) - (double{b.x} - a.x) * (y - a.y);
}

// Shares of the corners at a place give the depth; with perspective it is its inverse that is even.
float depth_at(const screen_point_t corners[3], const double shares[3], bool perspective)
{
    double sum = 0;
    for (int i = 0; i < 3; ++i)
        sum += shares[i] * (perspective ? 1.0 / corners[i].depth : double{corners[i].depth});
    return static_cast<float>(perspective ? 1.0 / sum : sum);
}

} // namespace

void surface_outline(const flat_mesh &mesh, int i, const projector_t &projector, outline_t *out)
{
    out->clear();
    const auto corners = mesh.surface_corners(i);
    const bool open = mesh.surface(i).type == SURFACE_LINE;
    if (corners.empty())
        return;
    screen_point_t before = projector.eye(mesh.position(open ? corners.front() : corners.back()));
    const auto seen = [&](const screen_point_t &p) {
        return !projector.has_perspective() || p.depth >= cut_depth;
    };
    for (const int corner : corners) {
        const screen_point_t now = projector.eye(mesh.position(corner));
        if (seen(before) != seen(now))
            out->push_back(projector.divided(between(before, now, cut_depth)));
        if (seen(now))
            out->push_back(projector.divided(now));
        before = now;
    }
}

place_on_face_t place_on_face(const outline_t &outline, bool perspective, float x, float y)
{
    place_on_face_t place;
    float nearest[2] = {std::numeric_limits<float>::infinity(),
                        std::numeric_limits<float>::infinity()};
    int turns = 0; // triangles that look at the viewer, less those that look away
    for (size_t k = 1; k + 1 < outline.size(); ++k) {
        const screen_point_t corners[3] = {outline[0], outline[k], outline[k + 1]};
        double shares[3] = {area_of(corners[1], corners[2], x, y),
                            area_of(corners[2], corners[0], x, y),
                            area_of(corners[0], corners[1], x, y)};
        const double area = shares[0] + shares[1] + shares[2];
        if (area == 0 || std::isnan(area))
            continue;
        bool inside = true;
        for (double &share : shares) {
            share /= area;
            inside = inside && share >= 0;
        }
        if (!inside)
            continue;
        turns += area > 0 ? 1 : -1;
        float &depth = nearest[area > 0 ? 0 : 1];
        depth = std::min(depth, depth_at(corners, shares, perspective));
    }
    // A fan over a concave outline covers the outside as often one way as the other.
    place.inside = turns != 0;
    place.faces_viewer = turns > 0;
    place.depth = nearest[turns > 0 ? 0 : 1];
    return place;
}

near_place_t near_segment(const screen_point_t &a, const screen_point_t &b, bool perspective,
                          float x, float y)
{
    const float dx = b.x - a.x;
    const float dy = b.y - a.y;
    const float length = dx * dx + dy * dy;
    const float t =
        length > 0 ? std::clamp(((x - a.x) * dx + (y - a.y) * dy) / length, 0.0f, 1.0f) : 0.0f;
    const float depth =
        perspective ? 1 / ((1 - t) / a.depth + t / b.depth) : a.depth + (b.depth - a.depth) * t;
    return {std::hypot(a.x + dx * t - x, a.y + dy * t - y), depth};
}

bool outline_faces_viewer(const outline_t &outline)
{
    double area = 0;
    for (size_t k = 1; k + 1 < outline.size(); ++k)
        area += area_of(outline[0], outline[k], outline[k + 1].x, outline[k + 1].y);
    return area > 0;
}
