#include "view/pick_index.h"

#include "base/job_queue.h"
#include "model/bounds.h"
#include "model/vector.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <unordered_map>

namespace {

constexpr int smallest_indexed = 512; // elements
constexpr std::uint32_t block_size = 64;

// A worker makes the order of a large mesh, or fits the boxes of the one it has.
struct order_job_t : queued_job_t {
    flat_mesh mesh;
    pick_elements kind;
    pick_order_t order; // without elements: they are to be sorted

    void run();
};

struct kept_order_t {
    std::weak_ptr<const std::vector<point3_t>> positions; // that the boxes are of
    pick_order_t found;
    std::shared_ptr<order_job_t> job;
    bool given_up = false; // after a fault
};

struct kept_t {
    std::weak_ptr<const std::vector<std::int32_t>> corners, offsets;
    int num_vertices = 0;
    kept_order_t surfaces, vertices;
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

// By the places on the curve, digit by digit; at one place by number.
void sort_by_keys(std::vector<std::uint64_t> &keys)
{
    constexpr unsigned digit_bits = 10, first_bit = 32, end_bit = 62;
    constexpr std::size_t num_digits = 1U << digit_bits;
    std::vector<std::uint64_t> sorted(keys.size());
    for (unsigned shift = first_bit; shift < end_bit; shift += digit_bits) {
        const auto digit = [shift](std::uint64_t key) { return key >> shift & (num_digits - 1); };
        std::array<std::size_t, num_digits + 1> starts = {};
        for (const std::uint64_t key : keys)
            ++starts[digit(key) + 1];
        std::partial_sum(starts.begin(), starts.end(), starts.begin());
        for (const std::uint64_t key : keys)
            sorted[starts[digit(key)]++] = key;
        keys.swap(sorted);
    }
}

template <class Place>
void sort_elements(const std::vector<std::int32_t> &elements, Place &&place, pick_order_t *out)
{
    std::vector<std::uint64_t> keys; // the place above the element's number
    keys.reserve(elements.size());
    for (const std::int32_t element : elements)
        keys.push_back(std::uint64_t{place(element)} << 32 | static_cast<std::uint32_t>(element));
    sort_by_keys(keys);
    out->order.resize(keys.size());
    std::transform(keys.begin(), keys.end(), out->order.begin(),
                   [](std::uint64_t key) { return static_cast<std::int32_t>(key & 0xFFFFFFFF); });
}

using add_bounds_t = void(const flat_mesh &, int, point3_t *, point3_t *);

void fit_blocks(const flat_mesh &mesh, add_bounds_t *add, pick_order_t *out)
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

curve_t curve_of(const flat_mesh &mesh)
{
    point3_t min, max;
    bounds_clear(&min, &max);
    for (const point3_t &position : *mesh.positions)
        bounds_add(position, &min, &max);
    return {min, max};
}

void sort_surfaces(const flat_mesh &mesh, pick_order_t *out)
{
    std::vector<std::int32_t> surfaces;
    surfaces.reserve(mesh.surfaces->size());
    for (int i = 0; i < mesh.num_surfaces(); ++i)
        if (!mesh.surface_corners(i).empty())
            surfaces.push_back(i);
    const curve_t curve = curve_of(mesh);
    sort_elements(
        surfaces, [&](int i) { return curve(mesh.position(mesh.surface_corners(i).front())); },
        out);
}

void sort_vertices(const flat_mesh &mesh, pick_order_t *out)
{
    std::vector<std::int32_t> vertices(mesh.positions->size());
    std::iota(vertices.begin(), vertices.end(), 0);
    const curve_t curve = curve_of(mesh);
    sort_elements(
        vertices, [&](int i) { return curve(mesh.position(i)); }, out);
}

void make_order(const flat_mesh &mesh, pick_elements kind, pick_order_t *out)
{
    const bool of_surfaces = kind == pick_elements::surfaces;
    if (out->order.empty())
        (of_surfaces ? sort_surfaces : sort_vertices)(mesh, out);
    fit_blocks(mesh, of_surfaces ? add_corners : add_position, out);
}

void order_job_t::run() { make_order(mesh, kind, &order); }

job_queue<order_job_t> &queue()
{
    static job_queue<order_job_t> jobs;
    return jobs;
}

void take_order(kept_order_t &kept)
{
    if (kept.job == nullptr || !kept.job->ended)
        return;
    kept.given_up = kept.job->failed;
    kept.found = std::move(kept.job->order);
    kept.positions = kept.job->mesh.positions;
    kept.job = nullptr;
}

void start_job(kept_order_t &kept, const flat_mesh &mesh, pick_elements kind)
{
    kept.job = std::make_shared<order_job_t>();
    kept.job->mesh = mesh.without_records();
    kept.job->kind = kind;
    kept.job->order = std::move(kept.found);
    kept.found = {};
    kept.positions.reset();
    queue().add(kept.job);
}

void drop_job(const kept_order_t &kept)
{
    if (kept.job != nullptr)
        kept.job->cancelled = true;
}

// What is kept of the object, as far as it still fits.
kept_t &kept_of(const object_t *object, const flat_mesh &mesh)
{
    kept_t &kept = kept_indices()[object];
    if (kept.num_vertices == mesh.num_vertices() && kept.corners.lock() == mesh.corners &&
        kept.offsets.lock() == mesh.corner_offsets)
        return kept;
    drop_job(kept.surfaces);
    drop_job(kept.vertices);
    kept = {mesh.corners, mesh.corner_offsets, mesh.num_vertices(), {}, {}};
    return kept;
}

// Objects whose arrays are gone.
void sweep(const object_t *but)
{
    std::erase_if(kept_indices(), [but](const auto &row) {
        const kept_t &kept = row.second;
        return row.first != but && kept.surfaces.job == nullptr && kept.vertices.job == nullptr &&
               kept.surfaces.positions.expired() && kept.vertices.positions.expired();
    });
}

} // namespace

const pick_order_t *pick_order(const object_t *object, const flat_mesh &mesh, pick_elements kind)
{
    const int size = std::max(mesh.num_vertices(), mesh.num_surfaces());
    if (size < smallest_indexed)
        return nullptr;
    kept_t &row = kept_of(object, mesh);
    kept_order_t &kept = kind == pick_elements::surfaces ? row.surfaces : row.vertices;
    take_order(kept);
    if (kept.given_up)
        return nullptr;
    if (kept.positions.lock() == mesh.positions)
        return &kept.found;
    sweep(object);
    if (size >= least_prepared) {
        if (kept.job == nullptr)
            start_job(kept, mesh, kind);
        return nullptr;
    }
    make_order(mesh, kind, &kept.found);
    kept.positions = mesh.positions;
    return &kept.found;
}

void pick_orders_wait() { queue().wait(false); }
