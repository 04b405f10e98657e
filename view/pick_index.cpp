#include "view/pick_index.h"

#include "model/bounds.h"
#include "model/vector.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace {

constexpr int smallest_indexed = 512; // elements
constexpr std::uint32_t block_size = 64;

struct kept_t {
    std::weak_ptr<const std::vector<point3_t>> positions;
    std::weak_ptr<const std::vector<std::int32_t>> corners, offsets;
    std::unique_ptr<pick_index_t> index;
};
using kept_map_t = std::unordered_map<const object_t *, kept_t>;

kept_map_t &kept_indices()
{
    static kept_map_t kept;
    return kept;
}

// Ten bits apart from each other by two.
std::uint32_t spread(std::uint32_t bits)
{
    bits = (bits | bits << 16) & 0x030000FF;
    bits = (bits | bits << 8) & 0x0300F00F;
    bits = (bits | bits << 4) & 0x030C30C3;
    return (bits | bits << 2) & 0x09249249;
}

// The place of a point along a curve that fills the box: near each other on the one, near in the
// other.
class curve_t {
public:
    curve_t(const point3_t &min, const point3_t &max) : min_(min)
    {
        const point3_t size = point_sub(max, min);
        const float largest = std::max({size.x, size.y, size.z});
        factor_ = largest > 0 && std::isfinite(largest) ? 1023 / largest : 0;
    }
    [[nodiscard]] std::uint32_t operator()(const point3_t &p) const
    {
        return spread(cell(p.x - min_.x)) | spread(cell(p.y - min_.y)) << 1 |
               spread(cell(p.z - min_.z)) << 2;
    }

private:
    [[nodiscard]] std::uint32_t cell(float offset) const
    {
        const float place = offset * factor_;
        return place > 0 ? static_cast<std::uint32_t>(std::min(place, 1023.0f)) : 0; // nan: 0
    }
    point3_t min_;
    float factor_;
};

void add_position(const flat_mesh &mesh, int vertex, point3_t *min, point3_t *max)
{
    bounds_add(mesh.position(vertex), min, max);
}

void add_corners(const flat_mesh &mesh, int surface, point3_t *min, point3_t *max)
{
    for (const std::int32_t corner : mesh.surface_corners(surface))
        bounds_add(mesh.position(corner), min, max);
}

template <class Place>
void sort_elements(std::vector<std::int32_t> elements, Place &&place, pick_order_t *out)
{
    std::vector<std::uint64_t> keys; // the place above the element's number
    keys.reserve(elements.size());
    for (const std::int32_t element : elements)
        keys.push_back(std::uint64_t{place(element)} << 32 | static_cast<std::uint32_t>(element));
    std::sort(keys.begin(), keys.end());
    out->order = std::move(elements);
    std::transform(keys.begin(), keys.end(), out->order.begin(),
                   [](std::uint64_t key) { return static_cast<std::int32_t>(key & 0xFFFFFFFF); });
}

template <class AddBounds>
void fit_blocks(const flat_mesh &mesh, AddBounds &&add, pick_order_t *out)
{
    out->blocks.clear();
    const auto count = static_cast<std::uint32_t>(out->order.size());
    for (std::uint32_t first = 0; first < count; first += block_size) {
        pick_block_t block = {first, std::min(block_size, count - first), {}, {}};
        bounds_clear(&block.min, &block.max);
        for (const std::int32_t element : out->members(block))
            add(mesh, element, &block.min, &block.max);
        out->blocks.push_back(block);
    }
}

void sort_all(const flat_mesh &mesh, pick_index_t *index)
{
    point3_t min, max;
    bounds_clear(&min, &max);
    std::vector<std::int32_t> vertices, surfaces;
    for (int i = 0; i < mesh.num_vertices(); ++i) {
        bounds_add(mesh.position(i), &min, &max);
        vertices.push_back(i);
    }
    for (int i = 0; i < mesh.num_surfaces(); ++i)
        if (!mesh.surface_corners(i).empty())
            surfaces.push_back(i);
    const curve_t curve(min, max);
    sort_elements(
        std::move(vertices), [&](int i) { return curve(mesh.position(i)); }, &index->vertices);
    sort_elements(
        std::move(surfaces),
        [&](int i) { return curve(mesh.position(mesh.surface_corners(i).front())); },
        &index->surfaces);
}

// Objects whose arrays are gone.
void sweep(kept_map_t &kept)
{
    std::erase_if(kept, [](const auto &row) { return row.second.positions.expired(); });
}

} // namespace

const pick_index_t *pick_index(const object_t *object, const flat_mesh &mesh)
{
    if (std::max(mesh.num_vertices(), mesh.num_surfaces()) < smallest_indexed)
        return nullptr;
    kept_t &kept = kept_indices()[object];
    const bool same_outlines = kept.index != nullptr && kept.corners.lock() == mesh.corners &&
                               kept.offsets.lock() == mesh.corner_offsets &&
                               kept.index->vertices.order.size() == mesh.positions->size();
    if (same_outlines && kept.positions.lock() == mesh.positions)
        return kept.index.get();
    if (!same_outlines) {
        kept.index = std::make_unique<pick_index_t>();
        sort_all(mesh, kept.index.get());
    }
    fit_blocks(mesh, add_corners, &kept.index->surfaces);
    fit_blocks(mesh, add_position, &kept.index->vertices);
    kept.positions = mesh.positions;
    kept.corners = mesh.corners;
    kept.offsets = mesh.corner_offsets;
    const pick_index_t *made = kept.index.get();
    sweep(kept_indices());
    return made;
}
