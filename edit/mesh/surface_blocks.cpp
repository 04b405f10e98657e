#include "edit/mesh/surface_blocks.h"

#include <cmath>
#include <cstdint>

namespace {

double size_of(const box_t &box)
{
    double sum = 0;
    for (int i = 0; i < 3; ++i) {
        const double side = static_cast<double>(box.high[i]) - static_cast<double>(box.low[i]);
        sum += side > 0 ? side * side : 0;
    }
    return std::sqrt(sum);
}

// The bits of a number of 10 bits, each followed by two others.
std::uint32_t spread(std::uint32_t bits)
{
    bits = (bits | bits << 16) & 0x030000FFu;
    bits = (bits | bits << 8) & 0x0300F00Fu;
    bits = (bits | bits << 4) & 0x030C30C3u;
    return (bits | bits << 2) & 0x09249249u;
}

} // namespace

surface_blocks::surface_blocks(const flat_mesh &mesh, const std::vector<bool> &marked)
    : num_surfaces_(marked.size())
{
    build(mesh, marked);
    if (lie_apart()) {
        sort(mesh);
        build(mesh, marked);
    }
}

void surface_blocks::build(const flat_mesh &mesh, const std::vector<bool> &marked)
{
    levels_.clear();
    std::vector<box_t> boxes((num_surfaces_ + run - 1) / run, box_t::none());
    for (std::size_t i = 0; i < num_surfaces_; ++i) {
        const std::size_t s = order_.empty() ? i : static_cast<std::size_t>(order_[i]);
        if (!marked[s])
            continue;
        for (const int v : mesh.surface_corners(s))
            boxes[i / run].add(mesh.position(v));
    }
    if (boxes.empty())
        boxes.push_back(box_t::none());
    levels_.push_back(std::move(boxes));
    while (levels_.back().size() > 1) {
        const std::vector<box_t> &below = levels_.back();
        std::vector<box_t> above((below.size() + run - 1) / run, box_t::none());
        for (std::size_t i = 0; i < below.size(); ++i)
            above[i / run].add(below[i]);
        levels_.push_back(std::move(above));
    }
}

bool surface_blocks::lie_apart() const
{
    constexpr std::size_t few = 1000;
    constexpr double most = 0.1; // of the size of all, as the mean of the runs
    if (num_surfaces_ < few)
        return false;
    double sum = 0;
    for (const box_t &box : levels_.front())
        sum += size_of(box);
    return sum > most * size_of(all()) * static_cast<double>(levels_.front().size());
}

// Along a curve that fills the box and seldom jumps: by the places of the first corners, bits of the
// three coordinates in turn.
void surface_blocks::sort(const flat_mesh &mesh)
{
    const box_t box = all();
    std::vector<std::uint64_t> keys(num_surfaces_);
    for (std::size_t s = 0; s < num_surfaces_; ++s) {
        const auto corners = mesh.surface_corners(s);
        std::uint32_t key = 0;
        for (int i = 0; i < 3 && !corners.empty(); ++i) {
            const point3_t &p = mesh.position(corners.front());
            const float place[] = {p.x, p.y, p.z};
            const float width = box.high[i] - box.low[i];
            const float share = width > 0 ? (place[i] - box.low[i]) / width : 0;
            key |= spread(static_cast<std::uint32_t>(std::clamp(share * 1023, 0.0f, 1023.0f)))
                   << static_cast<unsigned>(i);
        }
        keys[s] = static_cast<std::uint64_t>(key) << 32 | s;
    }
    std::sort(keys.begin(), keys.end());
    for (const std::uint64_t key : keys)
        order_.push_back(static_cast<int>(key & 0xFFFFFFFFu));
}
