#include "view/pick.h"

#include "base/prefs.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/flat_mesh.h"
#include "model/world.h"
#include "view/projector.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// A rectangle, and on which sides of it a point lies: whatever has all its corners beyond one side
// is out, which most surfaces are.
struct window_t {
    float x0, y0, x1, y1;

    [[nodiscard]] unsigned char sides(const screen_point_t &p) const
    {
        return static_cast<unsigned char>((p.x < x0 ? 1 : 0) | (p.x > x1 ? 2 : 0) |
                                          (p.y < y0 ? 4 : 0) | (p.y > y1 ? 8 : 0) |
                                          (std::isnan(p.x) ? 16 : 0));
    }
};

// One object on the screen.
struct projected_t {
    object_t *object = nullptr;
    flat_ptr mesh;
    std::vector<screen_point_t> points;
    std::vector<unsigned char> sides;
    bool any_inside = false; // some vertex, or an edge may cross

    void project(object_t *projected, const projector_t &projector, const window_t &window)
    {
        object = projected;
        mesh = object_flat(projected);
        const auto n = static_cast<size_t>(mesh->num_vertices());
        points.resize(n);
        sides.resize(n);
        unsigned char all = 0xFF;
        for (size_t i = 0; i < n; ++i) {
            points[i] = projector(mesh->position(i));
            sides[i] = window.sides(points[i]);
            all &= sides[i];
        }
        any_inside = n > 0 && all == 0;
    }

    // Whether surface i may touch the window.
    [[nodiscard]] bool may_touch(int i) const
    {
        unsigned char all = 0xFF;
        unsigned char any = 0;
        for (const int corner : mesh->surface_corners(i)) {
            all &= sides[corner];
            any |= sides[corner];
        }
        return all == 0 && (any & 16) == 0;
    }
};

bool pickable(const object_t *object)
{
    return object->visible != 0 && object->locked == 0 && object != vesk_get_world();
}

// ---- one position ----

struct found_t {
    float pixels = std::numeric_limits<float>::max();
    float depth = 0;
};

float lerp(float a, float b, float t) { return a + (b - a) * t; }

// Distance from (x, y) to the segment, and the depth there.
found_t near_segment(const screen_point_t &a, const screen_point_t &b, float x, float y)
{
    const float dx = b.x - a.x;
    const float dy = b.y - a.y;
    const float length = dx * dx + dy * dy;
    const float t =
        length > 0 ? std::clamp(((x - a.x) * dx + (y - a.y) * dy) / length, 0.0f, 1.0f) : 0.0f;
    return {std::hypot(lerp(a.x, b.x, t) - x, lerp(a.y, b.y, t) - y), lerp(a.depth, b.depth, t)};
}

// Surface i against the position: 0 pixels inside a face, else the distance to its outline.
found_t find_on_surface(const projected_t &p, int i, float x, float y, bool faces)
{
    const auto corners = p.mesh->surface_corners(i);
    const flat_surface &record = p.mesh->surface(i);
    found_t best;
    bool inside = false;
    float depth_sum = 0;
    const size_t n = corners.size();
    for (size_t k = 0; k < n; ++k) {
        const screen_point_t &a = p.points[corners[k]];
        const screen_point_t &b = p.points[corners[(k + 1) % n]];
        depth_sum += a.depth;
        if (k + 1 == n && record.type == SURFACE_LINE)
            break;
        const found_t edge = near_segment(a, b, x, y);
        if (edge.pixels < best.pixels)
            best = edge;
        if ((a.y > y) != (b.y > y) && x < lerp(a.x, b.x, (y - a.y) / (b.y - a.y)))
            inside = !inside;
    }
    if (faces && !record.is_line() && inside && n > 2)
        return {0, depth_sum / static_cast<float>(n)};
    return best;
}

void pick_vertices(const projected_t &p, float x, float y, float range,
                   std::vector<pick_hit_t> *hits)
{
    for (size_t i = 0; i < p.points.size(); ++i) {
        if (p.sides[i] != 0)
            continue;
        const float pixels = std::hypot(p.points[i].x - x, p.points[i].y - y);
        if (pixels <= range)
            hits->push_back({p.object, nullptr, p.mesh->vertex_record(i), std::round(pixels),
                             p.points[i].depth});
    }
}

void pick_surfaces(const projected_t &p, float x, float y, float range, bool faces,
                   std::vector<pick_hit_t> *hits)
{
    for (int i = 0; i < p.mesh->num_surfaces(); ++i) {
        if (!p.may_touch(i))
            continue;
        const found_t found = find_on_surface(p, i, x, y, faces);
        if (found.pixels <= range)
            hits->push_back({p.object, p.mesh->surface_record(i), nullptr,
                             found.pixels > 0 ? 1.0f : 0.0f, found.depth});
    }
}

void pick_centre(object_t *object, const projector_t &projector, float x, float y, float range,
                 std::vector<pick_hit_t> *hits)
{
    const screen_point_t p = projector(object->centre);
    const float pixels = std::hypot(p.x - x, p.y - y);
    if (pixels <= range)
        hits->push_back({object, nullptr, nullptr, 0, p.depth});
}

// The nearest hit of each object.
void keep_objects_once(std::vector<pick_hit_t> *hits)
{
    std::vector<pick_hit_t> once;
    for (const pick_hit_t &hit : *hits) {
        const bool known = std::any_of(once.begin(), once.end(), [&](const pick_hit_t &other) {
            return other.object == hit.object;
        });
        if (!known)
            once.push_back({hit.object, nullptr, nullptr, hit.pixels, hit.depth});
    }
    *hits = std::move(once);
}

bool nearer(const pick_hit_t &a, const pick_hit_t &b)
{
    return a.pixels != b.pixels ? a.pixels < b.pixels : a.depth < b.depth;
}

bool view_is_filled(int view)
{
    return view == VIEW_XYZ ? prefs.view3dmode == 0 : prefs.filled_orth != 0;
}

constexpr float light_icon_pixels = 10;

// ---- rubber band ----

bool crosses(const screen_point_t &a, const screen_point_t &b, const window_t &w)
{
    // Clip the segment against the four sides in turn.
    float from = 0;
    float to = 1;
    const float delta[2] = {b.x - a.x, b.y - a.y};
    const float start[2] = {a.x, a.y};
    const float low[2] = {w.x0, w.y0};
    const float high[2] = {w.x1, w.y1};
    for (int axis = 0; axis < 2; ++axis) {
        if (delta[axis] == 0) {
            if (start[axis] < low[axis] || start[axis] > high[axis])
                return false;
            continue;
        }
        const float t0 = (low[axis] - start[axis]) / delta[axis];
        const float t1 = (high[axis] - start[axis]) / delta[axis];
        from = std::max(from, std::min(t0, t1));
        to = std::min(to, std::max(t0, t1));
    }
    return from <= to;
}

bool surface_in_band(const projected_t &p, int i, const window_t &w, bool touching)
{
    const auto corners = p.mesh->surface_corners(i);
    if (corners.empty())
        return false;
    unsigned char any = 0;
    unsigned char all = 0xFF;
    for (const int corner : corners) {
        any |= p.sides[corner];
        all &= p.sides[corner];
    }
    if (any == 0)
        return true;
    if (!touching || all != 0 || (any & 16) != 0)
        return false;
    const size_t n = corners.size();
    for (size_t k = 0; k < n; ++k) {
        if (crosses(p.points[corners[k]], p.points[corners[(k + 1) % n]], w))
            return true;
    }
    // The band may lie wholly inside the face.
    return find_on_surface(p, i, w.x0, w.y0, true).pixels == 0;
}

bool object_in_band(const projected_t &p, const window_t &w, bool touching)
{
    if (!touching)
        return !p.sides.empty() && std::all_of(p.sides.begin(), p.sides.end(),
                                               [](unsigned char sides) { return sides == 0; });
    if (std::any_of(p.sides.begin(), p.sides.end(), [](unsigned char s) { return s == 0; }))
        return true;
    for (int i = 0; i < p.mesh->num_surfaces(); ++i) {
        if (surface_in_band(p, i, w, true))
            return true;
    }
    return false;
}

void band_elements(const projected_t &p, pick_kind kind, const window_t &w, bool touching,
                   std::vector<pick_hit_t> *hits)
{
    if (kind == pick_kind::VERTEX) {
        for (size_t i = 0; i < p.sides.size(); ++i) {
            if (p.sides[i] == 0)
                hits->push_back({p.object, nullptr, p.mesh->vertex_record(i), 0, 0});
        }
    } else if (kind == pick_kind::SURFACE) {
        for (int i = 0; i < p.mesh->num_surfaces(); ++i) {
            if (surface_in_band(p, i, w, touching))
                hits->push_back({p.object, p.mesh->surface_record(i), nullptr, 0, 0});
        }
    } else if (object_in_band(p, w, touching)) {
        hits->push_back({p.object, nullptr, nullptr, 0, 0});
    }
}

} // namespace

std::vector<pick_hit_t> pick_at(int view, pick_kind kind, int x, int y, int range)
{
    const projector_t projector(view);
    const auto px = static_cast<float>(x);
    const auto py = static_cast<float>(y);
    const auto reach = static_cast<float>(range);
    const window_t window = {px - reach, py - reach, px + reach, py + reach};
    const bool faces = kind == pick_kind::SURFACE || view_is_filled(view);
    std::vector<pick_hit_t> hits;
    projected_t projected; // its arrays are reused from object to object
    for_each_object(vesk_get_world(), [&](object_t *object) {
        if (!pickable(object))
            return;
        if (object->type == OBJECT_LIGHT && kind != pick_kind::SURFACE && kind != pick_kind::VERTEX)
            pick_centre(object, projector, px, py, std::max(reach, light_icon_pixels), &hits);
        if (kind == pick_kind::LIGHT || object->vertices == nullptr)
            return;
        projected.project(object, projector, window);
        if (!projected.any_inside)
            return;
        if (kind == pick_kind::VERTEX)
            pick_vertices(projected, px, py, reach, &hits);
        else
            pick_surfaces(projected, px, py, reach, faces, &hits);
    });
    std::stable_sort(hits.begin(), hits.end(), nearer);
    if (kind == pick_kind::OBJECT || kind == pick_kind::LIGHT)
        keep_objects_once(&hits);
    return hits;
}

std::vector<pick_hit_t> pick_band(int view, pick_kind kind, const band_t &band)
{
    const projector_t projector(view);
    const window_t window = {static_cast<float>(std::min(band.x0, band.x1)),
                             static_cast<float>(std::min(band.y0, band.y1)),
                             static_cast<float>(std::max(band.x0, band.x1)),
                             static_cast<float>(std::max(band.y0, band.y1))};
    std::vector<pick_hit_t> hits;
    projected_t projected;
    for_each_object(vesk_get_world(), [&](object_t *object) {
        if (!pickable(object))
            return;
        if (object->type == OBJECT_LIGHT &&
            (kind == pick_kind::OBJECT || kind == pick_kind::LIGHT) &&
            window.sides(projector(object->centre)) == 0)
            hits.push_back({object, nullptr, nullptr, 0, 0});
        if (kind == pick_kind::LIGHT || object->vertices == nullptr)
            return;
        projected.project(object, projector, window);
        if (projected.any_inside)
            band_elements(projected, kind, window, band.touching, &hits);
    });
    return hits;
}
