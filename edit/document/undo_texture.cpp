#include "edit/document/undo_texture.h"

#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "model/change_marks.h"
#include "model/deferred_records.h"
#include "model/each.h"
#include "model/flat_array.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace {

std::vector<object_t *> living_owners(const std::vector<surface_t *> &surfaces)
{
    std::vector<object_t *> owners = owners_of_surfaces(surfaces);
    std::erase(owners, nullptr);
    return unique_objects(owners);
}

void restore_surfaces(const std::vector<saved_texture_coords> &all)
{
    std::vector<surface_t *> surfaces;
    for (const saved_texture_coords &coords : all) {
        if (!coords.surface)
            continue;
        surfaces.push_back(coords.surface);
        // The corners may have changed since: those that are still there are in the same order.
        auto saved = coords.corners.begin();
        for (svertex *reference : each<svertex>(coords.surface->refs)) {
            const auto same = std::find_if(saved, coords.corners.end(), [&](const auto &corner) {
                return corner.reference == reference;
            });
            if (same == coords.corners.end())
                continue;
            reference->u = same->u;
            reference->v = same->v;
            saved = same + 1;
        }
    }
    for (object_t *owner : living_owners(surfaces))
        object_mark(owner, CHANGED_TEXTURE_COORDS);
}

template <class Visit>
void for_each_saved(const saved_object_coords &saved, const Visit &visit)
{
    if (saved.surfaces.empty()) {
        const auto count = static_cast<int>(saved.lists.surface_records->size());
        for (int s = 0; s < count; ++s)
            visit(s);
        return;
    }
    for (const int s : saved.surfaces)
        visit(s);
}

// Whether the object has the surfaces and corners that it had.
bool has_same_lists(const flat_mesh &now, const flat_mesh &saved)
{
    return now.whole && flat_equal(now.surface_records, saved.surface_records) &&
           flat_equal(now.vertex_records, saved.vertex_records) &&
           flat_equal(now.corners, saved.corners) &&
           flat_equal(now.corner_offsets, saved.corner_offsets);
}

flat_array<flat_uv> with_saved(const flat_mesh &now, const saved_object_coords &saved)
{
    if (saved.surfaces.empty())
        return saved.lists.texture_coords;
    std::vector<flat_uv> coords = *now.texture_coords;
    for (const int s : saved.surfaces) {
        for (int c = now.first_corner(s); c < now.end_corner(s); ++c)
            coords[c] = saved.lists.uv(c);
    }
    return flat_shared(std::move(coords));
}

// Those that are left, of other lists: corners of the same vertices, in the same order.
void restore_what_is_left(const saved_object_coords &saved)
{
    const flat_mesh &lists = saved.lists;
    std::unordered_map<const surface_t *, int> places;
    for_each_saved(saved, [&](int s) { places.emplace(lists.surface_record(s), s); });
    for (const surface_t *surface : each<surface_t>(saved.object->surfaces)) {
        const auto place = places.find(surface);
        if (place == places.end() || saved.freed.count(surface) != 0)
            continue;
        int from = lists.first_corner(place->second);
        const int end = lists.end_corner(place->second);
        for (svertex *reference : each<svertex>(surface->refs)) {
            int same = from;
            while (same < end && lists.vertex_record(lists.corner(same)) != reference->vertex)
                ++same;
            if (same == end)
                continue;
            reference->u = lists.uv(same).u;
            reference->v = lists.uv(same).v;
            from = same + 1;
        }
    }
    object_mark(saved.object, CHANGED_TEXTURE_COORDS);
}

void restore_object(const saved_object_coords &saved)
{
    if (saved.object == nullptr)
        return;
    const flat_ptr now = object_flat(saved.object);
    if (has_same_lists(*now, saved.lists))
        object_set_texture_coords(saved.object, with_saved(*now, saved), saved.surfaces);
    else
        restore_what_is_left(saved);
}

bool drop_from(saved_object_coords &saved, const freed_things &freed,
               const std::function<bool(surface_t *)> &is_freed)
{
    if (saved.object == nullptr)
        return false;
    const std::vector<surface_t *> &records = *saved.lists.surface_records;
    const auto &gone = freed.objects;
    if (freed.surfaces == records ||
        std::find(gone.begin(), gone.end(), saved.object) != gone.end()) {
        saved = {};
        return true;
    }
    if (freed.surfaces.empty())
        return false;
    const std::size_t before = saved.freed.size();
    const auto ends = std::minmax_element(freed.surfaces.begin(), freed.surfaces.end());
    for_each_saved(saved, [&](int s) {
        if (records[s] >= *ends.first && records[s] <= *ends.second && is_freed(records[s]))
            saved.freed.insert(records[s]);
    });
    return saved.freed.size() > before;
}

} // namespace

void undo_texture_coords::save(surface_t *surface)
{
    saved_texture_coords coords = {surface, {}};
    std::size_t count = 0;
    for ([[maybe_unused]] const svertex *reference : each<svertex>(surface->refs))
        ++count;
    coords.corners.reserve(count);
    for (svertex *reference : each<svertex>(surface->refs))
        coords.corners.push_back({reference, reference->u, reference->v});
    surfaces.push_back(std::move(coords));
}

void undo_texture_coords::save(object_t *object, std::span<const int> places)
{
    const flat_ptr flat = object_flat(object);
    if (!flat->whole || places.size() < flat->surfaces->size() / 2) {
        for (const int s : places)
            save(flat->surface_record(s));
        return;
    }
    saved_object_coords saved = {object, {}, {}, {}};
    if (places.size() < flat->surfaces->size())
        saved.surfaces.assign(places.begin(), places.end());
    saved.lists.vertex_records = flat->vertex_records;
    saved.lists.surface_records = flat->surface_records;
    saved.lists.corners = flat->corners;
    saved.lists.corner_offsets = flat->corner_offsets;
    saved.lists.texture_coords = flat->texture_coords;
    objects.push_back(std::move(saved));
}

void undo_texture_coords::restore() const
{
    restore_surfaces(surfaces);
    for (const saved_object_coords &saved : objects)
        restore_object(saved);
}

bool undo_texture_coords::drop(const freed_things &freed,
                               const std::function<bool(surface_t *)> &is_freed)
{
    bool any = false;
    for (saved_texture_coords &coords : surfaces) {
        if (coords.surface != nullptr && is_freed(coords.surface)) {
            coords.surface = nullptr;
            any = true;
        }
    }
    for (saved_object_coords &saved : objects)
        any |= drop_from(saved, freed, is_freed);
    return any;
}

void undo_texture_coords::hold(freed_things &held) const
{
    for (const saved_texture_coords &coords : surfaces) {
        if (coords.surface)
            held.surfaces.push_back(coords.surface);
    }
    for (const saved_object_coords &saved : objects) {
        if (saved.object == nullptr)
            continue;
        held.objects.push_back(saved.object);
        for_each_saved(saved, [&](int s) {
            if (saved.freed.count(saved.lists.surface_record(s)) == 0)
                held.surfaces.push_back(saved.lists.surface_record(s));
        });
    }
}
