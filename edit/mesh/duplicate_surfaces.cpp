#include "edit/mesh/duplicate_surfaces.h"

#include <algorithm>
#include <bit>
#include <optional>
#include <span>

namespace {

// The vertices of each surface, ascending, each once.
struct vertex_sets {
    std::vector<std::int32_t> begin{0};
    std::vector<std::int32_t> vertices;

    explicit vertex_sets(const flat_mesh &mesh)
    {
        vertices.reserve(mesh.num_corners());
        begin.reserve(mesh.num_surfaces() + 1);
        for (int i = 0; i < mesh.num_surfaces(); ++i) {
            const auto corners = mesh.surface_corners(i);
            const auto first = static_cast<std::ptrdiff_t>(vertices.size());
            vertices.insert(vertices.end(), corners.begin(), corners.end());
            std::sort(vertices.begin() + first, vertices.end());
            vertices.erase(std::unique(vertices.begin() + first, vertices.end()), vertices.end());
            begin.push_back(static_cast<std::int32_t>(vertices.size()));
        }
    }
    [[nodiscard]] std::span<const std::int32_t> of(int surface) const
    {
        return std::span(vertices).subspan(begin[surface], begin[surface + 1] - begin[surface]);
    }
};

std::size_t num_corners(const flat_mesh &mesh, int surface)
{
    return mesh.surface_corners(surface).size();
}

// Surfaces by number of corners and set of vertices: finds the first of equal ones.
class set_table {
public:
    set_table(const flat_mesh &mesh, const vertex_sets &sets)
        : mesh_(mesh), sets_(sets), slots_(std::bit_ceil(2 * mesh.surfaces->size() + 2), -1)
    {
    }
    // The first surface that was added and equals this one: itself when it is the first.
    int find_or_add(int surface)
    {
        const auto set = sets_.of(surface);
        std::uint64_t h = num_corners(mesh_, surface);
        for (const std::int32_t v : set)
            h = (h ^ static_cast<std::uint64_t>(v)) * 0x9E3779B97F4A7C15ULL, h ^= h >> 29;
        const std::size_t mask = slots_.size() - 1;
        for (std::size_t i = h & mask;; i = (i + 1) & mask) {
            if (slots_[i] < 0)
                return slots_[i] = surface;
            const auto other = sets_.of(slots_[i]);
            if (num_corners(mesh_, slots_[i]) == num_corners(mesh_, surface) &&
                std::equal(set.begin(), set.end(), other.begin(), other.end()))
                return slots_[i];
        }
    }

private:
    const flat_mesh &mesh_;
    const vertex_sets &sets_;
    std::vector<std::int32_t> slots_;
};

// Surfaces that have a vertex more than once may lie within a larger set. Each is filed under the
// vertex that the fewest surfaces have.
class repeating_surfaces {
public:
    repeating_surfaces(const flat_mesh &mesh, const vertex_sets &sets)
        : mesh_(mesh), sets_(sets), uses_(mesh.num_vertices()), filed_(mesh.num_vertices())
    {
        for (const std::int32_t v : sets.vertices)
            ++uses_[v];
    }
    void add(int surface)
    {
        const auto set = sets_.of(surface);
        const auto rarest =
            std::min_element(set.begin(), set.end(), [this](std::int32_t a, std::int32_t b) {
                return uses_[a] < uses_[b];
            });
        filed_[*rarest].push_back(surface);
    }
    // Whether one of them has as many corners as this surface and only vertices of it.
    [[nodiscard]] bool any_within(int surface) const
    {
        const auto set = sets_.of(surface);
        return std::any_of(set.begin(), set.end(), [&](std::int32_t v) {
            const std::vector<int> &filed = filed_[v];
            return std::any_of(filed.begin(), filed.end(), [&](int other) {
                const auto smaller = sets_.of(other);
                return num_corners(mesh_, other) == num_corners(mesh_, surface) &&
                       std::includes(set.begin(), set.end(), smaller.begin(), smaller.end());
            });
        });
    }

private:
    const flat_mesh &mesh_;
    const vertex_sets &sets_;
    std::vector<int> uses_;
    std::vector<std::vector<int>> filed_;
};

} // namespace

std::vector<bool> duplicate_surfaces(const flat_mesh &mesh)
{
    const vertex_sets sets(mesh);
    set_table table(mesh, sets);
    std::optional<repeating_surfaces> repeating;
    if (sets.vertices.size() != mesh.corners->size())
        repeating.emplace(mesh, sets);
    std::vector<bool> duplicate(mesh.num_surfaces());
    for (int i = 0; i < mesh.num_surfaces(); ++i) {
        const bool again = table.find_or_add(i) != i;
        duplicate[i] = again || (repeating && repeating->any_within(i));
        if (!again && sets.of(i).size() != num_corners(mesh, i))
            repeating->add(i);
    }
    return duplicate;
}
