#include "edit/check/model_check_search.h"
#include "edit/mesh/solid_meshes.h"
#include "model/bounds.h"
#include "model/vec3d.h"
#include "model/vector.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>
#include <utility>

namespace {

// A model of which half goes through the other half is told soon enough.
constexpr std::size_t most_pairs = 1000;
// Neighbours of a triangle that are looked at, in the mean: many more are there only where very many
// boxes lie in one another.
constexpr long most_neighbours = 64, always = 1'000'000;
constexpr long between_looks = 16384; // at whether to go on

using distances_t = std::array<double, 3>;

vec3d unit(const vec3d &v) { return v / length(v); }

// In double precision throughout: what goes through less than `depth` deep does not count, so that
// nothing hangs on the last bits.
class finder {
public:
    finder(const solid_meshes &solid, double depth) : solid_(solid), depth_(depth) {}

    // Whether one goes through the other's plane on both sides, and both do so at one place.
    [[nodiscard]] bool go_through(int a, int b) const;

private:
    struct plane_t {
        vec3d normal;
        double offset;
    };
    [[nodiscard]] vec3d corner(int triangle, std::size_t i) const
    {
        const auto &at = solid_.points().at(solid_.triangles()[triangle].v[i]);
        return {at[0], at[1], at[2]};
    }
    [[nodiscard]] plane_t plane_of(int triangle) const
    {
        const vec3d a = corner(triangle, 0);
        const vec3d normal = unit(cross(corner(triangle, 1) - a, corner(triangle, 2) - a));
        return {normal, dot(normal, a)};
    }
    [[nodiscard]] distances_t distances(int triangle, const plane_t &plane) const;
    [[nodiscard]] bool is_through(const distances_t &distances) const
    {
        const auto [low, high] = std::minmax({distances[0], distances[1], distances[2]});
        return low < -depth_ && high > depth_;
    }
    [[nodiscard]] std::pair<double, double> stretch(int triangle, const distances_t &distances,
                                                    const vec3d &along) const;

    const solid_meshes &solid_;
    double depth_;
};

distances_t finder::distances(int triangle, const plane_t &plane) const
{
    distances_t result;
    for (std::size_t i = 0; i < 3; ++i)
        result[i] = dot(plane.normal, corner(triangle, i)) - plane.offset;
    return result;
}

// Where the triangle lies in the plane that it goes through, as seen along the line of both planes.
std::pair<double, double> finder::stretch(int triangle, const distances_t &distances,
                                          const vec3d &along) const
{
    double ends[2] = {};
    int found = 0;
    for (std::size_t i = 0; i < 3 && found < 2; ++i) {
        const std::size_t j = (i + 1) % 3;
        if ((distances[i] < 0) == (distances[j] < 0))
            continue;
        const double from = dot(along, corner(triangle, i)), to = dot(along, corner(triangle, j));
        ends[found++] = from + (to - from) * distances[i] / (distances[i] - distances[j]);
    }
    return std::minmax(ends[0], ends[1]);
}

bool finder::go_through(int a, int b) const
{
    const plane_t b_plane = plane_of(b);
    const distances_t of_a = distances(a, b_plane);
    if (!is_through(of_a))
        return false;
    const plane_t a_plane = plane_of(a);
    const distances_t of_b = distances(b, a_plane);
    if (!is_through(of_b))
        return false;
    const vec3d along = unit(cross(a_plane.normal, b_plane.normal));
    const auto [a_from, a_to] = stretch(a, of_a, along);
    const auto [b_from, b_to] = stretch(b, of_b, along);
    return std::min(a_to, b_to) - std::max(a_from, b_from) > depth_;
}

} // namespace

std::vector<std::pair<int, int>> crossing_surfaces(const flat_ptr &mesh,
                                                   const std::function<bool()> &go_on)
{
    constexpr double no_depth = 1e-5; // of the size
    solid_meshes solid;
    solid.add(mesh, 0);
    solid.without_places();
    if (!solid.finish(go_on))
        return {};
    point3_t min, max;
    bounds_clear(&min, &max);
    for (const point3_t &p : *mesh->positions)
        bounds_add(p, &min, &max);
    if (!go_on())
        return {};
    const finder search(solid, no_depth * point_length(point_sub(max, min)));

    std::set<std::pair<int, int>> pairs;
    long rest = most_neighbours * static_cast<long>(solid.triangles().size()) + always;
    const auto surface_of = [&](int t) { return solid.units()[solid.triangles()[t].unit].surface; };
    solid.tree().pairs([&](int a, int b) {
        if (const int one = surface_of(a), other = surface_of(b);
            one != other && search.go_through(a, b))
            pairs.insert(std::minmax(one, other));
        return pairs.size() < most_pairs && --rest > 0 && (rest % between_looks != 0 || go_on());
    });
    return {pairs.begin(), pairs.end()};
}
