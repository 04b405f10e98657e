#include "edit/symmetry.h"

#include "base/messages.h"
#include "base/prefs.h"
#include "base/redraw.h"
#include "base/ui_port.h"
#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/flat_mesh.h"
#include "model/vec3d.h"
#include "model/vector.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr float closeness = 1e-5f; // of an object's size: within it places count as the same

float size_of(const flat_mesh &mesh)
{
    float size = 0;
    for (int axis = 0; axis < 3 && mesh.num_vertices() > 0; ++axis) {
        const auto [low, high] = std::minmax_element(mesh.positions->begin(), mesh.positions->end(),
                                                     [axis](const point3_t &a, const point3_t &b) {
                                                         return axis_of(a, axis) < axis_of(b, axis);
                                                     });
        size = std::max(size, axis_of(*high, axis) - axis_of(*low, axis));
    }
    return size;
}

point3_t mirrored(point3_t p, int axis, float plane)
{
    axis_of(p, axis) = 2 * plane - axis_of(p, axis);
    return p;
}

// Vertices by their places, rounded to cubes a little wider than the closeness.
class place_index {
public:
    place_index(const flat_mesh &mesh, float near) : mesh_(mesh), near_(near), width_(4 * near)
    {
        cells_.reserve(mesh.num_vertices());
        for (int v = 0; v < mesh.num_vertices(); ++v)
            cells_.emplace_back(key_of(mesh.position(v)), v);
        std::sort(cells_.begin(), cells_.end());
        taken_.resize(mesh.num_vertices());
    }
    // The nearest one that nobody has taken, or -1; it is taken then.
    int take(const point3_t &at)
    {
        int best = -1;
        double smallest = static_cast<double>(near_) * near_;
        std::uint64_t seen[8];
        for (int i = 0; i < 8; ++i) {
            const auto off = [&](int bit) { return (i >> bit & 1) != 0 ? near_ : -near_; };
            seen[i] = key_of({at.x + off(0), at.y + off(1), at.z + off(2)});
            if (std::find(seen, seen + i, seen[i]) != seen + i)
                continue;
            auto cell = std::lower_bound(cells_.begin(), cells_.end(), std::pair(seen[i], 0));
            for (; cell != cells_.end() && cell->first == seen[i]; ++cell) {
                const vec3d way = between(mesh_.position(cell->second), at);
                if (taken_[cell->second] || dot(way, way) > smallest ||
                    (best >= 0 && dot(way, way) == smallest))
                    continue;
                smallest = dot(way, way);
                best = cell->second;
            }
        }
        if (best >= 0)
            taken_[best] = true;
        return best;
    }

private:
    [[nodiscard]] std::uint64_t key_of(const point3_t &p) const
    {
        const auto part = [this](float coordinate) {
            const double cell = std::floor(static_cast<double>(coordinate) / width_);
            return static_cast<std::uint64_t>(
                static_cast<std::int64_t>(std::clamp(cell, -9e15, 9e15)));
        };
        return part(p.x) * 0x9E3779B97F4A7C15ULL ^ part(p.y) * 0xC2B2AE3D27D4EB4FULL ^
               part(p.z) * 0x165667B19E3779F9ULL;
    }

    const flat_mesh &mesh_;
    float near_;
    double width_;
    std::vector<std::pair<std::uint64_t, int>> cells_;
    std::vector<bool> taken_;
};

} // namespace

bool symmetry_is_on() { return prefs.symmetry_axis >= 1 && prefs.symmetry_axis <= 3; }

bool symmetry_acts()
{
    return symmetry_is_on() && selection().objects == nullptr && mode_has_elements(select_mode());
}

int symmetry_axis() { return prefs.symmetry_axis - 1; }

float symmetry_plane(const object_t *object)
{
    return prefs.symmetry_at_centre != 0 ? axis_of(object->centre, symmetry_axis()) : 0.0f;
}

bool symmetry_shown(float *at)
{
    struct shown_t {
        unsigned selection = ~0U;
        std::uint64_t model = 0;
        const object_t *owner = nullptr;
    };
    static shown_t last;
    *at = 0;
    if (!symmetry_is_on())
        return false;
    if (prefs.symmetry_at_centre == 0)
        return true;
    if (last.selection != selection_change_count() || last.model != model_change_count()) {
        const selection_t &all = selection();
        last = {selection_change_count(), model_change_count(), nullptr};
        if (all.objects != nullptr)
            last.owner = item_of<object_t>(all.objects);
        else if (all.vertices != nullptr)
            last.owner = owners_of_vertices({item_of<vertex>(all.vertices)}).front();
        else if (all.surfaces != nullptr)
            last.owner = owners_of_surfaces({item_of<surface_t>(all.surfaces)}).front();
    }
    if (last.owner == nullptr)
        return false;
    *at = symmetry_plane(last.owner);
    return true;
}

point3_t symmetric_point(const object_t *object, const point3_t &p)
{
    return mirrored(p, symmetry_axis(), symmetry_plane(object));
}

float symmetry_closeness(object_t *object)
{
    return std::max(size_of(*object_flat(object)) * closeness, 1e-30f);
}

std::vector<int> symmetric_places(object_t *object)
{
    const flat_ptr mesh = object_flat(object);
    const float plane = symmetry_plane(object), near = symmetry_closeness(object);
    place_index index(*mesh, near);
    std::vector<int> places(mesh->num_vertices(), -1);
    for (int v = 0; v < mesh->num_vertices(); ++v) {
        const point3_t &at = mesh->position(v);
        if (std::abs(axis_of(at, symmetry_axis()) - plane) <= near)
            places[v] = v;
        else if (places[v] < 0)
            places[v] = index.take(mirrored(at, symmetry_axis(), plane));
        if (places[v] >= 0)
            places[places[v]] = v;
    }
    return places;
}

namespace {

struct kept_places_t {
    flat_ptr mesh;
    int axis = 0;
    float plane = 0;
    std::vector<int> places;
};
kept_places_t kept;

} // namespace

const std::vector<int> &kept_symmetric_places(object_t *object)
{
    static const std::vector<int> none;
    if (!symmetry_is_on())
        return none;
    const flat_ptr mesh = object_flat(object);
    const float plane = symmetry_plane(object);
    if (kept.mesh != mesh || kept.axis != symmetry_axis() || kept.plane != plane)
        kept = {mesh, symmetry_axis(), plane, symmetric_places(object)};
    return kept.places;
}

void forget_symmetric_places() { kept = {}; }

symmetric_pairs::symmetric_pairs(const std::vector<vertex *> &changing,
                                 const std::vector<float> &shares,
                                 const std::vector<object_t *> &owners)
    : axis_(symmetry_axis())
{
    // All vertices of the owners are numbered one after another.
    std::vector<vertex *> all;
    for (object_t *owner : owners) {
        for (vertex *v : *object_flat(owner)->vertex_records)
            all.push_back(v);
    }
    for (std::size_t i = 0; i < all.size(); ++i)
        set_scratch(all[i], static_cast<std::uint32_t>(i));
    std::vector<float> share_of(all.size(), -1.0f); // -1: does not change
    for (std::size_t i = 0; i < changing.size(); ++i) {
        const std::uint32_t at = scratch(changing[i]);
        if (at < all.size() && all[at] == changing[i])
            share_of[at] = shares.empty() ? 1.0f : shares[i];
    }
    auto first = share_of.begin();
    for (object_t *owner : owners) {
        const auto end = first + object_flat(owner)->num_vertices();
        pair_in(owner, {first, end});
        first = end;
    }
}

void symmetric_pairs::pair_in(object_t *owner, const std::vector<float> &share_of)
{
    const flat_ptr mesh = object_flat(owner);
    const float plane = symmetry_plane(owner);
    const float near = symmetry_closeness(owner);
    place_index index(*mesh, near);
    std::vector<bool> paired(share_of.size());
    for (int v = 0; v < mesh->num_vertices(); ++v) {
        if (share_of[v] < 0 || paired[v])
            continue;
        const point3_t &at = mesh->position(v);
        if (std::abs(axis_of(at, axis_) - plane) <= near) {
            on_plane_.push_back({mesh->vertex_record(v), axis_of(at, axis_)});
            continue;
        }
        const int other = index.take(mirrored(at, axis_, plane));
        if (other < 0) {
            ++num_without_;
            continue;
        }
        paired[v] = paired[other] = true;
        const bool leads = share_of[v] != share_of[other] ? share_of[v] > share_of[other]
                                                          : axis_of(at, axis_) > plane;
        pairs_.push_back({mesh->vertex_record(leads ? v : other),
                          mesh->vertex_record(leads ? other : v), plane, share_of[other] >= 0});
    }
}

std::vector<vertex *> symmetric_pairs::counterparts() const
{
    std::vector<vertex *> others;
    for (const pair_t &pair : pairs_) {
        if (!pair.follower_changes)
            others.push_back(pair.follower);
    }
    return others;
}

void symmetric_pairs::follow() const
{
    for (const pair_t &pair : pairs_)
        pair.follower->position = mirrored(pair.leader->position, axis_, pair.plane);
    for (const rest_t &rest : on_plane_)
        axis_of(rest.point->position, axis_) = rest.place;
}

void tell_without_counterpart(int count)
{
    if (count > 0)
        display_message("symmetry - %d without a counterpart", count);
}

// ---- commands ----

void command_symmetry(int count, const char *const *words)
{
    static constexpr const char *axes[] = {"off", "x", "y", "z"};
    const auto *axis = std::find_if(
        axes, std::end(axes), [&](const char *name) { return std::strcmp(words[0], name) == 0; });
    const bool centre = count > 1 && std::strcmp(words[1], "centre") == 0;
    if (axis == std::end(axes) || (count > 1 && !centre && std::strcmp(words[1], "origin") != 0)) {
        display_message("symmetry - off, x, y or z, and origin or centre");
        return;
    }
    prefs.symmetry_axis = static_cast<int>(axis - axes);
    if (count > 1)
        prefs.symmetry_at_centre = centre ? 1 : 0;
    ui_port().update_linked("prefs_symmetry_axis");
    ui_port().update_linked("prefs_symmetry_at_centre");
    redraw_all();
    if (prefs.symmetry_axis == 0)
        display_message("symmetry - off");
    else
        display_message("symmetry - %s, through the %s", *axis,
                        prefs.symmetry_at_centre != 0 ? "object's centre" : "origin");
}
