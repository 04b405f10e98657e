#include "draw/mesh_changes.h"

#include "model/moved_vertices.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace {

// Joins what lies near: one longer run costs less than two.
template <class Changed>
std::vector<slot_run_t> runs_of(std::size_t num_slots, Changed &&changed)
{
    constexpr std::size_t near = 256;
    std::vector<slot_run_t> runs;
    for (std::size_t slot = 0; slot < num_slots; ++slot) {
        if (!changed(slot))
            continue;
        if (!runs.empty() && slot - (runs.back().first + runs.back().count) < near)
            runs.back().count = slot + 1 - runs.back().first;
        else
            runs.push_back({slot, 1});
    }
    return runs;
}

std::vector<bool> flags_of(const changed_t &changed, std::size_t count)
{
    std::vector<bool> flags(count, false);
    for (const std::int32_t i : changed)
        flags[static_cast<std::size_t>(i)] = true;
    return flags;
}

} // namespace

changed_t changed_points(const std::vector<point3_t> &before, const std::vector<point3_t> &now)
{
    changed_t changed;
    if (&before == &now)
        return changed;
    const std::size_t count = std::min(before.size(), now.size());
    constexpr std::size_t block = 1024; // most of them are alike
    for (std::size_t first = 0; first < count; first += block) {
        const std::size_t end = std::min(first + block, count);
        if (std::memcmp(&before[first], &now[first], (end - first) * sizeof(point3_t)) == 0)
            continue;
        for (std::size_t i = first; i < end; ++i)
            if (std::memcmp(&before[i], &now[i], sizeof(point3_t)) != 0)
                changed.push_back(static_cast<std::int32_t>(i));
    }
    return changed;
}

changed_t changed_positions(const flat_mesh &before, const flat_mesh &now)
{
    if (before.positions == now.positions)
        return {};
    const std::vector<std::int32_t> *known = moved_between(before.positions, now.positions);
    return known != nullptr ? *known : changed_points(*before.positions, *now.positions);
}

void add_changed(changed_t &all, const changed_t &more)
{
    if (std::includes(all.begin(), all.end(), more.begin(), more.end()))
        return;
    changed_t both;
    both.reserve(all.size() + more.size());
    std::set_union(all.begin(), all.end(), more.begin(), more.end(), std::back_inserter(both));
    all = std::move(both);
}

bool layout_fits(const std::vector<std::int32_t> &concave, const flat_mesh &flat,
                 const changed_t &moved)
{
    if (moved.empty())
        return true;
    const std::vector<bool> moving = flags_of(moved, flat.positions->size());
    const auto moves = [&](std::int32_t v) { return moving[static_cast<std::size_t>(v)]; };
    for (int surface = 0; surface < flat.num_surfaces(); ++surface) {
        const std::span<const std::int32_t> corners = flat.surface_corners(surface);
        if (flat.surface(surface).is_line() || std::none_of(corners.begin(), corners.end(), moves))
            continue;
        // The ears of a concave one may lie differently now.
        if (std::binary_search(concave.begin(), concave.end(), surface) ||
            !polygon_is_convex(flat, corners))
            return false;
    }
    return true;
}

std::vector<slot_run_t> moved_slots(const mesh_layout_t &layout, const changed_t &moved)
{
    if (moved.empty())
        return {};
    if (moved.size() == layout.num_vertices)
        return {{0, layout.num_slots()}};
    const std::vector<bool> moving = flags_of(moved, layout.num_vertices);
    return runs_of(layout.num_slots(),
                   [&](std::size_t slot) { return moving[layout.vertex_of(slot)]; });
}

std::vector<slot_run_t> turned_slots(const mesh_layout_t &layout, const changed_t &vertices,
                                     const changed_t &faces)
{
    if (vertices.empty() && faces.empty())
        return {};
    const std::vector<bool> turning = flags_of(vertices, layout.num_vertices);
    const std::vector<bool> faces_turning =
        flags_of(faces, faces.empty() ? 0 : static_cast<std::size_t>(faces.back()) + 1);
    return runs_of(layout.num_slots(), [&](std::size_t slot) {
        const auto face = static_cast<std::size_t>(layout.slot_face[slot]);
        if (layout.slot_face[slot] >= 0)
            return face < faces_turning.size() && faces_turning[face];
        return bool{turning[layout.vertex_of(slot)]};
    });
}
