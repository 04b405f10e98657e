#include "edit/mesh/solid_meshes.h"

#include "base/big_vector.h"
#include "base/worker.h"
#include "model/ear_cut.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <tuple>

void solid_meshes::add(const flat_ptr &mesh, int part)
{
    meshes_.push_back(mesh);
    parts_.push_back(part);
}

// Gives the vertices of each place one number. False when a coordinate is not finite.
bool solid_meshes::number_points()
{
    std::size_t total = 0;
    for (const flat_ptr &mesh : meshes_)
        total += mesh->positions->size();
    places_ = position_index(total);
    constexpr std::size_t ahead = 16; // so that memory has the time of so many
    std::vector<point3_t> points;
    points.reserve(total);
    vertices_.reserve(total);
    for (int m = 0; m < static_cast<int>(meshes_.size()); ++m) {
        std::vector<int> &own = point_of_.emplace_back();
        own.reserve(meshes_[m]->positions->size());
        const std::vector<point3_t> &positions = *meshes_[m]->positions;
        for (std::size_t v = 0; v < positions.size(); ++v) {
            const point3_t &p = positions[v];
            places_.bring(positions[std::min(v + ahead, positions.size() - 1)]);
            if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z))
                return false;
            const int number = places_.find_or_add(p, static_cast<int>(points.size()));
            if (number == static_cast<int>(points.size())) {
                points.push_back(p);
                vertices_.emplace_back(m, static_cast<int>(own.size()));
            }
            own.push_back(number);
        }
    }
    points_ = std::make_unique<exact_points>(std::move(points));
    return true;
}

bool solid_meshes::finish(const std::function<bool()> &go_on)
{
    if (!number_points())
        return false;
    if (!keeps_places_)
        places_ = position_index(0);
    reserve();
    for (int m = 0; m < static_cast<int>(meshes_.size()); ++m) {
        for (int s = 0; s < meshes_[m]->num_surfaces(); ++s) {
            if (meshes_[m]->surface(s).is_line())
                continue;
            for (const int v : meshes_[m]->surface_corners(s))
                corners_.push_back(point_of_[m][v]);
            first_corner_.push_back(static_cast<int>(corners_.size()));
            units_.push_back({m, s, parts_[m], 0, 0});
        }
    }
    if (!cut_into_triangles(go_on))
        return false;
    std::vector<box_t> boxes(triangles_.size());
    in_parallel_ranges(static_cast<int>(boxes.size()), [&](int begin, int end) {
        for (int i = begin; i < end; ++i) {
            boxes[i] = box_t::none();
            for (const int v : triangles_[i].v)
                boxes[i].add(points_->rounded(v));
        }
    });
    tree_ = std::make_unique<box_tree>(std::move(boxes));
    return true;
}

void solid_meshes::reserve()
{
    std::size_t corners = 0, surfaces = 0;
    for (const flat_ptr &mesh : meshes_) {
        corners += static_cast<std::size_t>(mesh->num_corners());
        surfaces += static_cast<std::size_t>(mesh->num_surfaces());
    }
    reserve_big(corners_, corners);
    reserve_big(first_corner_, surfaces + 1);
    reserve_big(units_, surfaces);
}

// Blocks of polygons side by side, in order.
bool solid_meshes::cut_into_triangles(const std::function<bool()> &go_on)
{
    constexpr int block = 16384;
    const int count = static_cast<int>(units_.size());
    const auto end_of = [&](int i) { return std::min((i + 1) * block, count); };
    std::vector<std::vector<solid_triangle>> cut((units_.size() + block - 1) / block);
    const auto cut_block = [&](int i) {
        cut[i].reserve(block);
        for (int unit = i * block; unit < end_of(i); ++unit)
            cut_unit(unit, cut[i]);
    };
    if (!in_parallel(static_cast<int>(cut.size()), cut_block, go_on))
        return false;
    std::size_t total = 0;
    for (const std::vector<solid_triangle> &some : cut)
        total += some.size();
    reserve_big(triangles_, total);
    for (int i = 0; i < static_cast<int>(cut.size()); ++i) {
        const int first = static_cast<int>(triangles_.size());
        for (int unit = i * block; unit < end_of(i); ++unit) {
            units_[unit].first_triangle += first;
            units_[unit].end_triangle += first;
        }
        triangles_.insert(triangles_.end(), cut[i].begin(), cut[i].end());
        cut[i] = {};
    }
    return true;
}

// Its first and end triangle are places in `triangles`.
void solid_meshes::cut_unit(int number, std::vector<solid_triangle> &triangles)
{
    unit_t &unit = units_[number];
    const auto corners = outline(number);
    unit.first_triangle = static_cast<int>(triangles.size());
    static constexpr int whole[] = {0, 1, 2};
    std::span<const int> ears = whole;
    std::vector<int> cut;
    if (corners.size() > 3) {
        std::vector<point3_t> at;
        for (const int p : corners)
            at.push_back(points_->rounded(p));
        cut_ears(at.data(), static_cast<int>(at.size()), cut);
        ears = cut;
    }
    const int first = meshes_[unit.mesh]->first_corner(unit.surface);
    for (std::size_t i = 0; i + 2 < ears.size() && corners.size() > 2; i += 3) {
        solid_triangle t = {};
        for (std::size_t k = 0; k < 3; ++k) {
            t.v[k] = corners[ears[i + k]];
            t.corner[k] = first + ears[i + k];
        }
        t.unit = number;
        t.part = unit.part;
        const exact_plane plane = points_->plane(t.v[0], t.v[1], t.v[2]);
        t.axis = points_->best_axis(plane);
        if (t.axis < 0)
            continue;
        t.facing = points_->turn(t.axis, t.v[0], t.v[1], t.v[2]);
        t.plane = exact_points::rough(plane);
        triangles.push_back(t);
    }
    unit.end_triangle = static_cast<int>(triangles.size());
}

// ---- edges ----

namespace {

struct side_t {
    int high, part, unit;
    int corner; // where it begins
    bool forward;
};

} // namespace

// Calls visit(low, side) for each side of a polygon whose `low` end is in the range.
template <class Visit>
void solid_meshes::for_sides(int begin, int end, const Visit &visit) const
{
    for (int u = 0; u < static_cast<int>(units_.size()); ++u) {
        const int first = first_corner_[u], last = first_corner_[u + 1] - 1;
        for (int c = first; c <= last; ++c) {
            const int a = corners_[c], b = corners_[c < last ? c + 1 : first];
            const int low = std::min(a, b);
            if (low >= begin && low < end && a != b)
                visit(low, side_t{std::max(a, b), units_[u].part, u, c, a < b});
        }
    }
}

// The sides between the same two points, by their parts.
template <class Sides>
void solid_meshes::look_at_edge(int low, const Sides &sides, std::vector<open_edge_t> &open)
{
    for (auto side = sides.begin(); side != sides.end();) {
        const auto first = side;
        int balance = 0;
        for (; side != sides.end() && side->part == first->part; ++side)
            balance += side->forward ? 1 : -1;
        if (balance != 0)
            open.push_back({low, first->high, first->unit});
    }
    if (sides.size() == 2 && sides[0].forward != sides[1].forward &&
        sides[0].unit != sides[1].unit) {
        mates_[sides[0].corner] = sides[1].unit;
        mates_[sides[1].corner] = sides[0].unit;
    }
}

void solid_meshes::pair_sides(int begin, int end, std::vector<open_edge_t> &open)
{
    std::vector<int> starts(static_cast<std::size_t>(end - begin) + 1, 0);
    for_sides(begin, end, [&](int low, const side_t &) { ++starts[low - begin + 1]; });
    std::partial_sum(starts.begin(), starts.end(), starts.begin());
    std::vector<int> next(starts.begin(), starts.end() - 1);
    std::vector<side_t> sides(starts.back());
    for_sides(begin, end, [&](int low, const side_t &side) { sides[next[low - begin]++] = side; });
    for (int low = begin; low < end; ++low) {
        const auto first = sides.begin() + starts[low - begin];
        const auto last = sides.begin() + starts[low - begin + 1];
        std::sort(first, last, [](const side_t &a, const side_t &b) {
            return std::tie(a.high, a.part, a.corner) < std::tie(b.high, b.part, b.corner);
        });
        for (auto side = first; side != last;) {
            const auto edge = side;
            while (side != last && side->high == edge->high)
                ++side;
            look_at_edge(low, std::span(edge, side), open);
        }
    }
}

std::vector<solid_meshes::open_edge_t> solid_meshes::open_edges()
{
    // Each piece reads all corners, and keeps those of its points.
    constexpr int few = 16384, most_pieces = 4;
    const int count = points_->num_input();
    const int pieces = count < few ? 1 : most_pieces;
    mates_.assign(corners_.size(), -1);
    std::vector<std::vector<open_edge_t>> found(pieces);
    const auto begin_of = [&](int i) {
        return static_cast<int>(static_cast<std::int64_t>(count) * i / pieces);
    };
    in_parallel(pieces, [&](int i) { pair_sides(begin_of(i), begin_of(i + 1), found[i]); });
    std::vector<open_edge_t> open;
    for (const std::vector<open_edge_t> &some : found)
        open.insert(open.end(), some.begin(), some.end());
    return open;
}
