#include "edit/mesh/surface_region.h"

#include "edit/mesh/mesh_edges.h"
#include "edit/mesh/polygon_plane.h"
#include "edit/mesh/union_find.h"

#include <array>
#include <cmath>
#include <utility>

namespace {

struct side_t {
    int corner = -1, next = -1; // where it begins and ends
    int polygon = -1;           // its place in the list
};

// The two sides of an edge that only they have.
struct pair_t {
    side_t first, second;
    int uses = 0;
};

// The solution of a symmetric system of three; 0 0 0 where there is none.
struct plane_sums {
    double xx = 0, xy = 0, xz = 0, yy = 0, yz = 0, zz = 0;
    vec3d right, normals;

    void add(const vec3d &n)
    {
        xx += n.x * n.x, xy += n.x * n.y, xz += n.x * n.z;
        yy += n.y * n.y, yz += n.y * n.z, zz += n.z * n.z;
        right += n;
        normals += n;
    }
    // The least squares of n . d = 1; the directions that no plane minds are kept by a little
    // weight on the mean normal.
    [[nodiscard]] vec3d solve() const
    {
        constexpr double little = 1e-6;
        const vec3d mean = unit_of(normals);
        const vec3d r = right + mean * little;
        const vec3d a = {xx + little, xy, xz}, b = {xy, yy + little, yz}, c = {xz, yz, zz + little};
        const double d = dot(a, cross(b, c));
        const vec3d way = {dot(r, cross(b, c)) / d, dot(a, cross(r, c)) / d,
                           dot(a, cross(b, r)) / d};
        const double size = length(way);
        if (!std::isfinite(size))
            return mean;
        return size > longest_offset ? way * (longest_offset / size) : way;
    }
};

} // namespace

surface_region::surface_region(const flat_mesh &mesh, std::vector<int> polygons, parts how)
    : mesh_(mesh), polygons_(std::move(polygons)), how_(how), fans_(mesh.num_corners(), -1),
      border_(mesh.num_corners())
{
    normals_.reserve(polygons_.size());
    for (const int polygon : polygons_)
        normals_.push_back(unit_of(polygon_area_vector(mesh, polygon)));
    join_sides();
}

void surface_region::join_sides()
{
    // Numbers the corners of the polygons alone, so that little work is done for a small part.
    int count = 0;
    std::vector<side_t> sides;
    for (std::size_t i = 0; i < polygons_.size(); ++i) {
        const int s = polygons_[i];
        for (int c = mesh_.first_corner(s); c < mesh_.end_corner(s); ++c) {
            fans_[c] = count++;
            sides.push_back({c, next_corner(mesh_, s, c), static_cast<int>(i)});
        }
    }
    const mesh_edges edges = edges_of(mesh_, polygons_);
    std::vector<pair_t> pairs(edges.count);
    for (const side_t &side : sides) {
        pair_t &pair = pairs[edges.of_corner[side.corner]];
        (pair.uses++ == 0 ? pair.first : pair.second) = side;
    }
    union_find fans(count), polygon_sets(static_cast<int>(polygons_.size()));
    for (const pair_t &pair : pairs) {
        const auto &[a, b, uses] = pair;
        if (uses == 2 && how_ == parts::joined && a.polygon != b.polygon &&
            mesh_.corner(a.corner) == mesh_.corner(b.next)) {
            fans.join(fans_[a.corner], fans_[b.next]);
            fans.join(fans_[a.next], fans_[b.corner]);
            polygon_sets.join(a.polygon, b.polygon);
        }
    }
    for (const side_t &side : sides) {
        const pair_t &pair = pairs[edges.of_corner[side.corner]];
        const side_t &other = pair.first.corner == side.corner ? pair.second : pair.first;
        if (mesh_.corner(side.corner) == mesh_.corner(side.next)) { // no side
            fans.join(fans_[side.corner], fans_[side.next]);
        } else if (pair.uses != 2 || how_ == parts::apart || other.polygon == side.polygon ||
                   mesh_.corner(side.corner) != mesh_.corner(other.next)) {
            border_[side.corner] = true;
            has_border_ = true;
        }
    }
    std::vector<int> numbers;
    num_fans_ = fans.number(&numbers);
    for (const side_t &side : sides)
        fans_[side.corner] = numbers[fans_[side.corner]];
    num_parts_ = polygon_sets.number(&parts_);
}

std::vector<int> surface_region::fan_vertices() const
{
    std::vector<int> vertices(num_fans_, -1);
    for (const int s : polygons_) {
        for (int c = mesh_.first_corner(s); c < mesh_.end_corner(s); ++c)
            vertices[fans_[c]] = mesh_.corner(c);
    }
    return vertices;
}

std::vector<vec3d> surface_region::fan_offsets() const
{
    std::vector<vec3d> offsets(num_fans_);
    std::vector<plane_sums> sums(how_ == parts::joined ? num_fans_ : 0);
    for (std::size_t i = 0; i < polygons_.size(); ++i) {
        const int s = polygons_[i];
        for (int c = mesh_.first_corner(s); c < mesh_.end_corner(s); ++c) {
            if (sums.empty())
                offsets[fans_[c]] = normals_[i];
            else
                sums[fans_[c]].add(normals_[i]);
        }
    }
    for (std::size_t fan = 0; fan < sums.size(); ++fan)
        offsets[fan] = sums[fan].solve();
    return offsets;
}

std::vector<vec3d> surface_region::fan_slides() const
{
    // The inward directions of the border sides that end and begin at the fan.
    std::vector<std::array<vec3d, 2>> inward(num_fans_);
    for (std::size_t i = 0; i < polygons_.size(); ++i) {
        const int s = polygons_[i];
        for (int c = mesh_.first_corner(s); c < mesh_.end_corner(s); ++c) {
            if (!border_[c])
                continue;
            const int next = next_corner(mesh_, s, c);
            const vec3d along =
                between(mesh_.position(mesh_.corner(c)), mesh_.position(mesh_.corner(next)));
            const vec3d in = unit_of(cross(normals_[i], along));
            inward[fans_[c]][1] = in;
            inward[fans_[next]][0] = in;
        }
    }
    std::vector<vec3d> slides(num_fans_);
    for (int fan = 0; fan < num_fans_; ++fan) {
        auto [in, out] = inward[fan];
        if (length(in) == 0)
            in = out; // a side of no extent has no direction
        if (length(out) == 0)
            out = in;
        slides[fan] = (in + out) / std::max(1 + dot(in, out), 1e-4);
    }
    return slides;
}
