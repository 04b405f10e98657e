#include "draw/scene_dots_gl.h"

#include "draw/crowding_gl.h"
#include "draw/selected_parts_gl.h"

#include <algorithm>
#include <utility>

namespace {

constexpr double smallest = 2; // pixels of radius: less is no more than a dot
constexpr std::size_t most_dots = 30000;

// Every so many of them, where there are more than a quick picture has time for.
void draw_some(const std::vector<coloured_vertex_t> &dots, std::size_t stride)
{
    if (stride == 1) {
        draw_coloured(GL_POINTS, dots);
        return;
    }
    std::vector<coloured_vertex_t> some;
    some.reserve(dots.size() / stride + 1);
    for (std::size_t i = 0; i < dots.size(); i += stride)
        some.push_back(dots[i]);
    draw_coloured(GL_POINTS, some);
}

} // namespace

void draw_dots(const scene_t &scene)
{
    const std::size_t stride = (scene.dots.size() + scene.selected_dots.size()) / most_dots + 1;
    glPointSize(2);
    draw_some(scene.dots, stride);
    const pending_place_t place;
    draw_some(scene.selected_dots, stride);
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
