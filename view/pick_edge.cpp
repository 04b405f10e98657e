#include "view/pick_edge.h"

#include "base/prefs.h"
#include "model/each.h"
#include "model/flat_mesh.h"
#include "model/world.h"
#include "view/camera_internal.h"
#include "view/pick.h"
#include "view/projector.h"
#include "view/screen_ray.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float about_equal = 2; // pixels

struct candidate_t {
    edge_hit_t hit;
    float pixels = 0;
    float depth = 0; // where it is nearest
};

struct search_t {
    int view;
    float x, y, range;
    float deepest; // a face hides farther edges
    candidate_t best;
};

bool covers(int view) { return view == VIEW_XYZ ? prefs.view3dmode == 0 : prefs.filled_orth != 0; }

// Depth of the frontmost face at the position; infinite where there is none.
float depth_of_face(int view, int x, int y)
{
    if (!covers(view))
        return std::numeric_limits<float>::infinity();
    const projector_t projector(view);
    float depth = std::numeric_limits<float>::infinity();
    for (const pick_hit_t &hit : pick_at(view, pick_kind::SURFACE, x, y, 0)) {
        point3_t at;
        if (hit.pixels == 0 && ray_meets_surface(screen_ray(view, x, y), hit.surface, &at))
            depth = std::min(depth, projector(at).depth);
    }
    return depth;
}

// The nearest place of a segment on the screen, as a share of the segment in the world: with
// perspective the nearer half takes more of the screen.
bool nearest_place(const screen_point_t &a, const screen_point_t &b, search_t &search,
                   candidate_t *found)
{
    const float dx = b.x - a.x, dy = b.y - a.y;
    const float square = dx * dx + dy * dy;
    if (!(square > 0))
        return false;
    const float s =
        std::clamp(((search.x - a.x) * dx + (search.y - a.y) * dy) / square, 0.0f, 1.0f);
    found->pixels = std::hypot(a.x + dx * s - search.x, a.y + dy * s - search.y);
    if (!(found->pixels <= search.range))
        return false;
    const bool perspective = search.view == VIEW_XYZ && camera_is_perspective();
    const float share = perspective ? s * a.depth / ((1 - s) * b.depth + s * a.depth) : s;
    found->hit.share = share;
    found->depth = a.depth + (b.depth - a.depth) * share;
    return found->depth <= search.deepest;
}

bool is_better(const candidate_t &a, const candidate_t &b)
{
    if (b.hit.object == nullptr)
        return true;
    if (std::fabs(a.pixels - b.pixels) > about_equal)
        return a.pixels < b.pixels;
    return a.depth != b.depth ? a.depth < b.depth : a.pixels < b.pixels;
}

void search_object(object_t *object, const projector_t &projector, search_t &search)
{
    const flat_ptr mesh = object_flat(object);
    std::vector<screen_point_t> points;
    points.reserve(mesh->positions->size());
    for (const point3_t &p : *mesh->positions)
        points.push_back(projector(p));
    for (int surface = 0; surface < mesh->num_surfaces(); ++surface) {
        const auto corners = mesh->surface_corners(surface);
        const bool open = mesh->surface(surface).type == SURFACE_LINE;
        for (std::size_t k = 0; k + (open ? 1 : 0) < corners.size(); ++k) {
            const int a = corners[k], b = corners[(k + 1) % corners.size()];
            const screen_point_t &p = points[a], &q = points[b];
            if ((p.x < search.x - search.range && q.x < search.x - search.range) ||
                (p.x > search.x + search.range && q.x > search.x + search.range) ||
                (p.y < search.y - search.range && q.y < search.y - search.range) ||
                (p.y > search.y + search.range && q.y > search.y + search.range))
                continue;
            candidate_t found;
            if (!nearest_place(p, q, search, &found))
                continue;
            found.hit = {object, a, b, found.hit.share, mesh->position(a), mesh->position(b)};
            if (is_better(found, search.best))
                search.best = found;
        }
    }
}

} // namespace

edge_hit_t pick_edge_at(int view, int x, int y, int range)
{
    // An edge a little behind the face at the pointer may be the face's own.
    const projector_t projector(view);
    const float face = depth_of_face(view, x, y);
    const auto slack =
        static_cast<float>((range + 1) * units_per_pixel_at(view, static_cast<double>(face)) * 4);
    search_t search = {view,
                       static_cast<float>(x),
                       static_cast<float>(y),
                       static_cast<float>(range),
                       std::isinf(face) ? face : face + slack,
                       {}};
    for_each_object(vesk_get_world(), [&](object_t *object) {
        if (object->visible != 0 && object->locked == 0 && object->vertices != nullptr)
            search_object(object, projector, search);
    });
    return search.best.hit;
}

float share_of_edge_at(int view, const point3_t &from, const point3_t &to, int x, int y)
{
    constexpr float any = std::numeric_limits<float>::infinity();
    const projector_t projector(view);
    search_t search = {view, static_cast<float>(x), static_cast<float>(y), any, any, {}};
    candidate_t found;
    return nearest_place(projector(from), projector(to), search, &found) ? found.hit.share : 0.5f;
}
