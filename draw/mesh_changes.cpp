#include "draw/mesh_changes.h"

#include <algorithm>
#include <cstring>

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
        changed.resize(now.size(), 0);
        for (std::size_t i = first; i < end; ++i)
            changed[i] = std::memcmp(&before[i], &now[i], sizeof(point3_t)) != 0 ? 1 : 0;
    }
    return changed;
}

bool layout_fits(const mesh_layout_t &layout, const flat_mesh &flat, const changed_t &moved)
{
    if (moved.empty())
        return true;
    const auto moves = [&](std::int32_t v) { return moved[static_cast<std::size_t>(v)] != 0; };
    for (int surface = 0; surface < flat.num_surfaces(); ++surface) {
        const std::span<const std::int32_t> corners = flat.surface_corners(surface);
        if (flat.surface(surface).is_line() || std::none_of(corners.begin(), corners.end(), moves))
            continue;
        // The ears of a concave one may lie differently now.
        if (std::binary_search(layout.concave.begin(), layout.concave.end(), surface) ||
            !polygon_is_convex(flat, corners))
            return false;
    }
    return true;
}

std::vector<slot_run_t> moved_slots(const mesh_layout_t &layout, const changed_t &moved)
{
    if (moved.empty())
        return {};
    return runs_of(layout.num_slots(),
                   [&](std::size_t slot) { return moved[layout.vertex_of(slot)] != 0; });
}

std::vector<slot_run_t> turned_slots(const mesh_layout_t &layout, const changed_t &vertices,
                                     const changed_t &faces)
{
    if (vertices.empty() && faces.empty())
        return {};
    return runs_of(layout.num_slots(), [&](std::size_t slot) {
        const std::int32_t face = layout.slot_face[slot];
        if (face >= 0)
            return !faces.empty() && faces[static_cast<std::size_t>(face)] != 0;
        return !vertices.empty() && vertices[layout.vertex_of(slot)] != 0;
    });
}
