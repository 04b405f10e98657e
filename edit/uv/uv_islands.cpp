#include "edit/uv/uv_islands.h"

#include "edit/mesh/union_find.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <tuple>

namespace {

// One side of a surface, its ends in the order of their vertices.
struct side_t {
    int low, high; // vertices
    int low_corner, high_corner;
    int surface;
};

bool same(const flat_uv &a, const flat_uv &b)
{
    return std::fabs(a.u - b.u) <= uv_tolerance && std::fabs(a.v - b.v) <= uv_tolerance;
}

// Calls visit(side) for each side of each surface.
template <class Visit>
void for_sides(const uv_mesh &mesh, Visit &&visit)
{
    for (int surface = 0; surface < mesh.num_surfaces(); ++surface) {
        for (int c = mesh.corners_begin(surface); c < mesh.corners_end(surface); ++c) {
            const int next = mesh.next_corner(surface, c);
            const int a = mesh.vertices[c], b = mesh.vertices[next];
            visit(a <= b ? side_t{a, b, c, next, surface} : side_t{b, a, next, c, surface});
        }
    }
}

// The sides in the order of their vertices, some vertices at a time: all at once they would take more room than
// what is found.
class sides_by_edge {
public:
    explicit sides_by_edge(const uv_mesh &mesh) : mesh_(mesh), next_(mesh.positions.size() + 1, 0)
    {
        for_sides(mesh, [&](const side_t &side) { ++next_[side.low + 1]; });
        std::partial_sum(next_.begin(), next_.end(), next_.begin());
    }

    // The next ones, at most so many unless those of one vertex are more. False: there are none.
    bool take(std::size_t most, std::vector<side_t> &sides)
    {
        const std::size_t num_vertices = next_.size() - 1;
        const std::size_t from = to_, first = begin_of(from);
        while (to_ < num_vertices && (to_ == from || begin_of(to_ + 1) - first <= most))
            ++to_;
        sides.resize(begin_of(to_) - first);
        for_sides(mesh_, [&](const side_t &side) {
            const auto low = static_cast<std::size_t>(side.low);
            if (low >= from && low < to_)
                sides[static_cast<std::size_t>(next_[low]++) - first] = side;
        });
        auto begin = sides.begin();
        for (std::size_t v = from; v < to_; ++v) { // next_ has their ends now
            const auto end = sides.begin() + static_cast<std::ptrdiff_t>(begin_of(v) - first);
            std::stable_sort(begin, end,
                             [](const side_t &a, const side_t &b) { return a.high < b.high; });
            begin = end;
        }
        return to_ > from;
    }

private:
    [[nodiscard]] std::size_t begin_of(std::size_t v) const
    {
        return static_cast<std::size_t>(next_[v]);
    }

    const uv_mesh &mesh_;
    std::vector<int> next_; // where the next side of each lower vertex goes
    std::size_t to_ = 0;    // the first vertex whose sides were not taken
};

// The surfaces of one edge.
class edge_joiner {
public:
    edge_joiner(const uv_mesh &mesh, union_find &corners, union_find &surfaces)
        : mesh_(mesh), corners_(corners), surfaces_(surfaces)
    {
    }

    void join(std::vector<side_t>::iterator begin, std::vector<side_t>::iterator end,
              std::vector<uv_edge> &edges)
    {
        // Of more surfaces than a model has, only those that lie next to each other when they are
        // sorted by their coordinates: all that agree exactly are.
        constexpr std::ptrdiff_t most_compared = 12;
        if (end - begin > most_compared) {
            std::sort(begin, end,
                      [&](const side_t &a, const side_t &b) { return key(a) < key(b); });
        }
        std::vector<bool> drawn(end - begin, false);
        for (auto a = begin; a != end; ++a) {
            const auto last = end - begin > most_compared ? std::min(a + 2, end) : end;
            const bool is_later = drawn[a - begin];
            uv_edge edge = {a->low_corner, a->high_corner};
            for (auto b = a + 1; b < last; ++b) {
                if (b->surface == a->surface || !agree(*a, *b))
                    continue;
                corners_.join(a->low_corner, b->low_corner);
                corners_.join(a->high_corner, b->high_corner);
                surfaces_.join(a->surface, b->surface);
                drawn[b - begin] = true;
                if (edge.is_border()) {
                    edge.twin = b->low_corner;
                    edge.twin_next = b->high_corner;
                }
            }
            if (!is_later)
                edges.push_back(edge);
        }
    }

private:
    [[nodiscard]] const flat_uv &uv(int corner) const { return mesh_.at[corner]; }
    [[nodiscard]] std::tuple<float, float, float, float> key(const side_t &side) const
    {
        const flat_uv &a = uv(side.low_corner), &b = uv(side.high_corner);
        const auto number = [](float value) { return std::isnan(value) ? 0.0f : value; };
        return {number(a.u), number(a.v), number(b.u), number(b.v)};
    }
    [[nodiscard]] bool agree(const side_t &a, const side_t &b) const
    {
        return same(uv(a.low_corner), uv(b.low_corner)) &&
               same(uv(a.high_corner), uv(b.high_corner));
    }

    const uv_mesh &mesh_;
    union_find &corners_, &surfaces_;
};

} // namespace

uv_islands uv_find_islands(const uv_mesh &mesh, std::size_t sides_at_once)
{
    uv_islands found;
    union_find corners(mesh.num_corners()), surfaces(mesh.num_surfaces());
    edge_joiner joiner(mesh, corners, surfaces);
    sides_by_edge all(mesh);
    std::vector<side_t> sides;
    found.edges.reserve(mesh.at.size()); // what is not needed of it is never touched
    while (all.take(sides_at_once, sides)) {
        for (auto begin = sides.begin(); begin != sides.end();) {
            auto end = begin + 1;
            while (end != sides.end() && end->low == begin->low && end->high == begin->high)
                ++end;
            joiner.join(begin, end, found.edges);
            begin = end;
        }
    }
    sides = {};
    for (std::size_t i = 0; i < found.edges.size(); ++i) {
        if (found.edges[i].is_border())
            found.borders.push_back(static_cast<int>(i));
        if (found.borders.size() > most_uv_borders) {
            found.borders = {};
            break;
        }
    }
    found.num_points = corners.number(&found.point);
    found.num_islands = surfaces.number(&found.island);
    return found;
}

std::vector<uv_box> uv_island_boxes(const uv_mesh &mesh, const uv_islands &islands)
{
    std::vector<uv_box> boxes(islands.num_islands);
    for (int surface = 0; surface < mesh.num_surfaces(); ++surface) {
        uv_box &box = boxes[islands.island[surface]];
        for (int c = mesh.corners_begin(surface); c < mesh.corners_end(surface); ++c)
            box.add(mesh.at[c]);
    }
    return boxes;
}
