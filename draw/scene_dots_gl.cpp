#include "draw/scene_dots_gl.h"

#include "draw/crowding_gl.h"
#include "draw/selected_parts_gl.h"

#include <algorithm>
#include <utility>

namespace {

constexpr double smallest = 2; // pixels of radius: less is no more than a dot

} // namespace

void draw_dots(const scene_t &scene)
{
    glPointSize(2);
    draw_coloured(GL_POINTS, scene.dots);
    const pending_place_t place;
    draw_coloured(GL_POINTS, scene.selected_dots);
}

scene_t largest_items(const scene_t &scene, double share)
{
    scene_t found = {{}, scene.min, scene.max, scene.complete};
    for (const std::size_t i : scene.large)
        found.items.push_back(scene.items[i]);
    const crowding_t screen;
    std::vector<std::pair<double, std::size_t>> seen;
    auto large = scene.large.begin();
    for (std::size_t i = 0; i < scene.items.size(); ++i) {
        if (large != scene.large.end() && *large == i) {
            ++large;
            continue;
        }
        const double radius = screen.radius_of(scene.spheres[i]);
        if (radius >= smallest)
            seen.emplace_back(radius, i);
    }
    const auto others = static_cast<double>(scene.items.size() - scene.large.size());
    const auto most = std::min(seen.size(), static_cast<std::size_t>(share * others) + 1);
    std::partial_sort(seen.begin(), seen.begin() + static_cast<std::ptrdiff_t>(most), seen.end(),
                      [](const auto &a, const auto &b) { return a.first > b.first; });
    double room = share * scene.other_edges;
    for (std::size_t at = 0; at < most && room > 0; ++at) {
        const scene_item_t &item = scene.items[seen[at].second];
        found.items.push_back(item);
        room -= item.buffers->edges.count;
    }
    for (const scene_item_t &item : found.items)
        found.selected_elements += num_selected_elements(item);
    found.in_motion = scene.in_motion;
    return found;
}
