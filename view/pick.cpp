#include "view/pick.h"

#include "base/prefs.h"
#include "edit/document/selection_internal.h"
#include "model/each.h"
#include "model/flat_mesh.h"
#include "model/world.h"
#include "view/pick_index.h"
#include "view/pick_outline.h"
#include "view/projector.h"
#include "view/shown_elements.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <span>
#include <unordered_set>

namespace {

enum side { LEFT = 1, RIGHT = 2, ABOVE = 4, BELOW = 8, BEHIND = 16 };

// A rectangle, and on which sides of it a point lies: whatever has all its corners beyond one side
// is out, which most surfaces are.
struct window_t {
    float x0, y0, x1, y1;

    [[nodiscard]] unsigned char sides(const screen_point_t &p) const
    {
        return static_cast<unsigned char>((p.x < x0 ? LEFT : 0) | (p.x > x1 ? RIGHT : 0) |
                                          (p.y < y0 ? ABOVE : 0) | (p.y > y1 ? BELOW : 0) |
                                          (std::isnan(p.x) ? BEHIND : 0));
    }
    // Whether an outline may have a part in it.
    [[nodiscard]] bool may_hold(const outline_t &outline) const
    {
        unsigned char all = 0xFF;
        for (const screen_point_t &p : outline)
            all &= sides(p);
        return all == 0;
    }
    [[nodiscard]] bool may_hold(const pick_block_t &block, const projector_t &projector) const
    {
        unsigned char all = 0xFF, any = 0;
        for (int corner = 0; corner < 8; ++corner) {
            const unsigned char where =
                sides(projector({(corner & 1) != 0 ? block.max.x : block.min.x,
                                 (corner & 2) != 0 ? block.max.y : block.min.y,
                                 (corner & 4) != 0 ? block.max.z : block.min.z}));
            all &= where;
            any |= where;
        }
        return all == 0 || (any & BEHIND) != 0;
    }
};

// What one search looks at.
struct search_t {
    const projector_t projector;
    const window_t window;
    const bool filled;
    const bool hides; // what lies behind a surface is not found
    const bool edges; // are drawn
    outline_t outline;
    bool in_order = false; // elements are looked at by number, or as they come
};

bool pickable(const object_t *object)
{
    return object->visible != 0 && object->locked == 0 && object != vesk_get_world();
}

bool view_is_filled(int view)
{
    return view == VIEW_XYZ ? prefs.view3dmode == 0 : prefs.filled_orth != 0;
}

search_t search_of(int view, const window_t &window)
{
    const bool filled = view_is_filled(view);
    const bool edges = view_shows_edges(view);
    return {projector_t(view), window, filled, filled && prefs.select_through == 0,
            edges || !filled,  {}};
}

// The elements of one kind that may lie in the window, by number.
template <class Visit>
void for_near(const pick_order_t *order, int count, const search_t &search, Visit &&visit)
{
    if (order == nullptr) {
        for (int i = 0; i < count; ++i)
            visit(i);
        return;
    }
    std::vector<std::int32_t> found;
    for (const pick_block_t &block : order->blocks) {
        if (!search.window.may_hold(block, search.projector))
            continue;
        const std::span<const std::int32_t> members = order->members(block);
        if (search.in_order)
            found.insert(found.end(), members.begin(), members.end());
        else
            std::for_each(members.begin(), members.end(), visit);
    }
    std::sort(found.begin(), found.end());
    std::for_each(found.begin(), found.end(), visit);
}

// Calls visit(i) for each surface with its outline in search.outline.
template <class Visit>
void for_near_surfaces(const object_t *object, const flat_mesh &mesh, search_t &search,
                       Visit &&visit)
{
    for_near(pick_order(object, mesh, pick_elements::surfaces), mesh.num_surfaces(), search,
             [&](int i) {
                 surface_outline(mesh, i, search.projector, &search.outline);
                 if (!search.outline.empty() && search.window.may_hold(search.outline))
                     visit(i);
             });
}

template <class Visit>
void for_near_vertices(const object_t *object, const flat_mesh &mesh, const search_t &search,
                       Visit &&visit)
{
    for_near(pick_order(object, mesh, pick_elements::vertices), mesh.num_vertices(), search,
             [&](int i) {
                 const screen_point_t p = search.projector(mesh.position(i));
                 if (search.window.sides(p) == 0)
                     visit(i, p);
             });
}

// ---- one position ----

// How a hit stands to the pointer, as its `pixels`.
constexpr float under_pointer = 0;
constexpr float beside_pointer = 1;
constexpr float beside_back = 2;   // the outline of a face that is not drawn
constexpr float line_reach = 1.5f; // pixels at which a drawn line is under the pointer

near_place_t near_outline(const outline_t &outline, bool open, bool perspective, float x, float y)
{
    near_place_t best = {std::numeric_limits<float>::max(), 0};
    const size_t n = outline.size();
    for (size_t k = 0; k + (open ? 1 : 0) < n; ++k) {
        const near_place_t edge = near_segment(outline[k], outline[(k + 1) % n], perspective, x, y);
        if (edge.pixels < best.pixels)
            best = edge;
    }
    return best;
}

// Surface i, whose outline is in hand, against the position; false: it is not near.
bool find_on_surface(const search_t &search, const flat_surface &record, float x, float y,
                     float range, bool faces, pick_hit_t *hit)
{
    const bool perspective = search.projector.has_perspective();
    const bool is_line = record.is_line() || search.outline.size() < 3;
    const bool is_back =
        search.hides && !is_line && record.twosided == 0 && !outline_faces_viewer(search.outline);
    if (faces && !is_line) {
        const place_on_face_t place = place_on_face(search.outline, perspective, x, y);
        if (place.inside && (!search.hides || record.twosided != 0 || place.faces_viewer)) {
            hit->pixels = under_pointer;
            hit->depth = place.depth;
            return true;
        }
    }
    if (is_back && !search.edges)
        return false;
    const near_place_t edge =
        near_outline(search.outline, record.type == SURFACE_LINE, perspective, x, y);
    if (edge.pixels > range)
        return false;
    hit->pixels = is_back                                ? beside_back
                  : is_line && edge.pixels <= line_reach ? under_pointer
                                                         : beside_pointer;
    hit->depth = edge.depth;
    return true;
}

void pick_surfaces(object_t *object, const flat_mesh &mesh, search_t &search, float x, float y,
                   float range, bool faces, std::vector<pick_hit_t> *hits)
{
    for_near_surfaces(object, mesh, search, [&](int i) {
        pick_hit_t hit = {object, mesh.surface_record(i), nullptr, nullptr, 0, 0};
        if (find_on_surface(search, mesh.surface(i), x, y, range, faces, &hit))
            hits->push_back(hit);
    });
}

void pick_vertices(object_t *object, const flat_mesh &mesh, const search_t &search, float x,
                   float y, float range, std::vector<pick_hit_t> *hits)
{
    for_near_vertices(object, mesh, search, [&](int i, const screen_point_t &p) {
        const float pixels = std::hypot(p.x - x, p.y - y);
        if (pixels <= range)
            hits->push_back(
                {object, nullptr, mesh.vertex_record(i), nullptr, std::round(pixels), p.depth});
    });
}

// Of the first vertices one that no face hides goes to the front.
void seen_vertex_first(search_t &search, std::vector<pick_hit_t> *hits)
{
    constexpr size_t most_looked_at = 16;
    struct looked_at_t {
        screen_point_t place;
        bool hidden;
    };
    std::vector<looked_at_t> first;
    for (size_t i = 0; i < std::min(hits->size(), most_looked_at); ++i)
        first.push_back({search.projector((*hits)[i].point->position), false});
    const bool perspective = search.projector.has_perspective();
    const auto hide = [&](const flat_surface &record) {
        if (record.is_line())
            return;
        for (looked_at_t &vertex : first) {
            const place_on_face_t face =
                place_on_face(search.outline, perspective, vertex.place.x, vertex.place.y);
            // The faces of the vertex itself lie as deep as it, but for rounding.
            const float slack = 1e-3f * std::fabs(vertex.place.depth) + 1e-6f;
            if (face.inside && (record.twosided != 0 || face.faces_viewer) &&
                face.depth < vertex.place.depth - slack)
                vertex.hidden = true;
        }
    };
    for_each_object(vesk_get_world(), [&](object_t *object) {
        if (!pickable(object) || object->surfaces == nullptr)
            return;
        const flat_ptr mesh = object_flat(object);
        for_near_surfaces(object, *mesh, search, [&](int i) { hide(mesh->surface(i)); });
    });
    const auto seen = std::find_if(first.begin(), first.end(),
                                   [](const looked_at_t &vertex) { return !vertex.hidden; });
    if (seen != first.end())
        std::rotate(hits->begin(), hits->begin() + (seen - first.begin()),
                    hits->begin() + (seen - first.begin()) + 1);
}

// ---- edges ----

// Calls visit(i, a, b) for every side of the polygons that may lie in the window, as often as it has
// polygons; lines have no edges.
template <class Visit>
void for_near_sides(const object_t *object, const flat_mesh &mesh, search_t &search, Visit &&visit)
{
    for_near_surfaces(object, mesh, search, [&](int i) {
        const auto corners = mesh.surface_corners(i);
        for (size_t k = 0; k < corners.size() && !mesh.surface(i).is_line(); ++k)
            visit(i, corners[k], corners[(k + 1) % corners.size()]);
    });
}

struct face_there_t {
    const vertex *const *records; // of its mesh
    std::span<const std::int32_t> corners;
    float depth;
    [[nodiscard]] bool has(const vertex *v) const
    {
        return std::any_of(corners.begin(), corners.end(), [&](int c) { return records[c] == v; });
    }
};

void pick_edges(object_t *object, const flat_mesh &mesh, search_t &search, float x, float y,
                float range, std::vector<pick_hit_t> *hits)
{
    std::set<std::pair<int, int>> known;
    const bool perspective = search.projector.has_perspective();
    for_near_sides(object, mesh, search, [&](int, int a, int b) {
        const screen_point_t p = search.projector(mesh.position(a));
        const screen_point_t q = search.projector(mesh.position(b));
        if (std::isnan(p.x) || std::isnan(q.x))
            return;
        const near_place_t near = near_segment(p, q, perspective, x, y);
        if (near.pixels <= range && known.insert(std::minmax(a, b)).second)
            hits->push_back({object, nullptr, mesh.vertex_record(a), mesh.vertex_record(b),
                             std::round(near.pixels), near.depth});
    });
}

// Takes out edges behind a face at the pointer that is not their own.
void drop_hidden_edges(search_t &search, float x, float y, std::vector<pick_hit_t> *hits)
{
    std::vector<face_there_t> faces;
    std::vector<flat_ptr> held;
    const bool perspective = search.projector.has_perspective();
    for_each_object(vesk_get_world(), [&](object_t *object) {
        if (!pickable(object) || object->surfaces == nullptr)
            return;
        held.push_back(object_flat(object));
        const flat_mesh &mesh = *held.back();
        for_near_surfaces(object, mesh, search, [&](int i) {
            const place_on_face_t face = place_on_face(search.outline, perspective, x, y);
            if (face.inside && !mesh.surface(i).is_line() &&
                (mesh.surface(i).twosided != 0 || face.faces_viewer))
                faces.push_back({mesh.vertex_records->data(), mesh.surface_corners(i), face.depth});
        });
    });
    std::erase_if(*hits, [&](const pick_hit_t &hit) {
        const float slack = 1e-3f * std::fabs(hit.depth) + 1e-6f;
        return std::any_of(faces.begin(), faces.end(), [&](const face_there_t &face) {
            return face.depth < hit.depth - slack && !(face.has(hit.point) && face.has(hit.end));
        });
    });
}

void pick_centre(object_t *object, const projector_t &projector, float x, float y, float range,
                 std::vector<pick_hit_t> *hits)
{
    const screen_point_t p = projector(object->centre);
    const float pixels = std::hypot(p.x - x, p.y - y);
    if (pixels <= range)
        hits->push_back({object, nullptr, nullptr, nullptr, 0, p.depth});
}

// The nearest hit of each object.
void keep_objects_once(std::vector<pick_hit_t> *hits)
{
    std::unordered_set<const object_t *> known;
    std::erase_if(*hits, [&](const pick_hit_t &hit) { return !known.insert(hit.object).second; });
    for (pick_hit_t &hit : *hits)
        hit.surface = nullptr;
}

bool nearer(const pick_hit_t &a, const pick_hit_t &b)
{
    return a.pixels != b.pixels ? a.pixels < b.pixels : a.depth < b.depth;
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

// Of a surface with its outline in hand.
bool surface_in_band(const search_t &search, bool touching)
{
    const window_t &w = search.window;
    const outline_t &outline = search.outline;
    unsigned char any = 0;
    for (const screen_point_t &p : outline)
        any |= w.sides(p);
    if (any == 0)
        return true;
    if (!touching)
        return false;
    const size_t n = outline.size();
    for (size_t k = 0; k < n; ++k) {
        if (crosses(outline[k], outline[(k + 1) % n], w))
            return true;
    }
    // The band may lie wholly inside the face.
    return place_on_face(outline, search.projector.has_perspective(), w.x0, w.y0).inside;
}

// Wholly inside is only what has no corner behind the viewer, too.
bool is_before_viewer(const flat_mesh &mesh, int surface, const projector_t &projector)
{
    const auto corners = mesh.surface_corners(surface);
    return std::none_of(corners.begin(), corners.end(),
                        [&](int corner) { return std::isnan(projector(mesh.position(corner)).x); });
}

bool object_in_band(const object_t *object, const flat_mesh &mesh, search_t &search, bool touching)
{
    if (!touching)
        return std::all_of(mesh.positions->begin(), mesh.positions->end(), [&](const point3_t &p) {
            return search.window.sides(search.projector(p)) == 0;
        });
    bool found = false;
    for_near_vertices(object, mesh, search, [&](int, const screen_point_t &) { found = true; });
    if (!found)
        for_near_surfaces(object, mesh, search,
                          [&](int) { found = found || surface_in_band(search, true); });
    return found;
}

// Whether a surface, its outline in hand, can be seen from where the viewer stands.
bool looks_at_viewer(const search_t &search, const flat_surface &record)
{
    return record.twosided != 0 || record.is_line() || outline_faces_viewer(search.outline);
}

// The vertices of the surfaces that look at the viewer, and those of no surface.
std::vector<char> vertices_before(const object_t *object, const flat_mesh &mesh, search_t &search)
{
    std::vector<char> seen(static_cast<size_t>(mesh.num_vertices()), 0);
    for_near_surfaces(object, mesh, search, [&](int i) {
        if (looks_at_viewer(search, mesh.surface(i)))
            for (const int corner : mesh.surface_corners(i))
                seen[static_cast<size_t>(corner)] = 1;
    });
    for (const int loose : flat_loose_vertices(mesh))
        seen[static_cast<size_t>(loose)] = 1;
    return seen;
}

void band_edges(object_t *object, const flat_mesh &mesh, search_t &search, const band_t &band,
                bool seen_only, std::vector<pick_hit_t> *hits)
{
    std::set<std::pair<int, int>> found;
    for_near_sides(object, mesh, search, [&](int i, int a, int b) {
        const screen_point_t p = search.projector(mesh.position(a));
        const screen_point_t q = search.projector(mesh.position(b));
        if (std::isnan(p.x) || std::isnan(q.x) ||
            (seen_only && !looks_at_viewer(search, mesh.surface(i))))
            return;
        const window_t &w = search.window;
        if (band.touching ? crosses(p, q, w) : (w.sides(p) | w.sides(q)) == 0)
            found.insert(std::minmax(a, b));
    });
    for (const auto &[a, b] : found)
        hits->push_back({object, nullptr, mesh.vertex_record(a), mesh.vertex_record(b), 0, 0});
}

void band_elements(object_t *object, const flat_mesh &mesh, pick_kind kind, search_t &search,
                   const band_t &band, bool seen_only, std::vector<pick_hit_t> *hits)
{
    const size_t before = hits->size();
    std::vector<int> found;
    if (kind == pick_kind::VERTEX) {
        const std::vector<char> seen =
            seen_only ? vertices_before(object, mesh, search) : std::vector<char>();
        for_near_vertices(object, mesh, search, [&](int i, const screen_point_t &) {
            if (!seen_only || seen[static_cast<size_t>(i)] != 0)
                found.push_back(i);
        });
    } else if (kind == pick_kind::SURFACE) {
        for_near_surfaces(object, mesh, search, [&](int i) {
            if (surface_in_band(search, band.touching) &&
                (!seen_only || looks_at_viewer(search, mesh.surface(i))) &&
                (band.touching || is_before_viewer(mesh, i, search.projector)))
                found.push_back(i);
        });
    } else if (object_in_band(object, mesh, search, band.touching)) {
        hits->push_back({object});
    }
    std::sort(found.begin(), found.end()); // the index has an order of its own
    hits->reserve(before + found.size());
    for (const int i : found)
        hits->push_back(kind == pick_kind::VERTEX
                            ? pick_hit_t{object, nullptr, mesh.vertex_record(i)}
                            : pick_hit_t{object, mesh.surface_record(i)});
}

} // namespace

std::vector<pick_hit_t> pick_at(int view, pick_kind kind, int x, int y, int range)
{
    const auto px = static_cast<float>(x);
    const auto py = static_cast<float>(y);
    const auto reach = static_cast<float>(range);
    search_t search = search_of(view, {px - reach, py - reach, px + reach, py + reach});
    search.in_order = true; // of hits that are equally near the first is taken
    const bool faces = kind == pick_kind::SURFACE || search.filled;
    std::vector<pick_hit_t> hits;
    for_each_object(vesk_get_world(), [&](object_t *object) {
        if (!pickable(object))
            return;
        if (object->type == OBJECT_LIGHT && kind != pick_kind::SURFACE &&
            kind != pick_kind::VERTEX && kind != pick_kind::EDGE)
            pick_centre(object, search.projector, px, py, std::max(reach, light_icon_pixels),
                        &hits);
        if (kind == pick_kind::LIGHT || object->vertices == nullptr)
            return;
        const flat_ptr mesh = object_flat(object);
        if (kind == pick_kind::EDGE)
            pick_edges(object, *mesh, search, px, py, reach, &hits);
        else if (kind == pick_kind::VERTEX)
            pick_vertices(object, *mesh, search, px, py, reach, &hits);
        else
            pick_surfaces(object, *mesh, search, px, py, reach, faces, &hits);
    });
    std::stable_sort(hits.begin(), hits.end(), nearer);
    if (kind == pick_kind::OBJECT || kind == pick_kind::LIGHT)
        keep_objects_once(&hits);
    if (kind == pick_kind::EDGE && search.hides)
        drop_hidden_edges(search, px, py, &hits);
    if (kind == pick_kind::VERTEX && search.hides && hits.size() > 1)
        seen_vertex_first(search, &hits);
    return hits;
}

std::vector<pick_hit_t> pick_band(int view, pick_kind kind, const band_t &band)
{
    search_t search = search_of(view, {static_cast<float>(std::min(band.x0, band.x1)),
                                       static_cast<float>(std::min(band.y0, band.y1)),
                                       static_cast<float>(std::max(band.x0, band.x1)),
                                       static_cast<float>(std::max(band.y0, band.y1))});
    const bool seen_only = view == VIEW_XYZ && search.hides;
    std::vector<pick_hit_t> hits;
    for_each_object(vesk_get_world(), [&](object_t *object) {
        if (!pickable(object))
            return;
        if (object->type == OBJECT_LIGHT &&
            (kind == pick_kind::OBJECT || kind == pick_kind::LIGHT) &&
            search.window.sides(search.projector(object->centre)) == 0)
            hits.push_back({object});
        if (kind == pick_kind::LIGHT || object->vertices == nullptr)
            return;
        const flat_ptr mesh = object_flat(object);
        if (kind == pick_kind::EDGE)
            band_edges(object, *mesh, search, band, seen_only, &hits);
        else
            band_elements(object, *mesh, kind, search, band, seen_only, &hits);
    });
    return hits;
}

void pick_prepare()
{
    for_each_object(vesk_get_world(), [](object_t *object) {
        if (std::max(object->num_surfaces, object->num_vertices) < least_prepared ||
            !pickable(object))
            return;
        const flat_ptr mesh = object_flat(object);
        pick_order(object, *mesh, pick_elements::surfaces);
        if (select_mode() == SELECT_VERTEX)
            pick_order(object, *mesh, pick_elements::vertices);
    });
}
