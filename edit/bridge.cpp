#include "edit/bridge.h"

#include "base/numbers.h"
#include "edit/document/edit_support.h"
#include "edit/edge_operation.h"
#include "edit/mesh/borders.h"
#include "edit/symmetry_elements.h"
#include "model/vec3d.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr int most_segments = 1000;
constexpr std::size_t most_samples = 64; // corners that decide which ones face each other

struct bridge_options {
    int segments = 1;
    int twist = 0;
    float smooth = 0;
};

using corners_t = std::vector<border_corner>;

vec3d point_of(const flat_mesh &mesh, const border_corner &corner)
{
    return to_vec3d(mesh.position(corner.vertex));
}

vec3d middle_of(const flat_mesh &mesh, const corners_t &corners)
{
    vec3d sum;
    for (const border_corner &corner : corners)
        sum += point_of(mesh, corner);
    return sum / static_cast<double>(corners.size());
}

vec3d normal_of(const flat_mesh &mesh, const corners_t &corners)
{
    const vec3d middle = middle_of(mesh, corners);
    vec3d sum;
    for (std::size_t i = 0; i < corners.size(); ++i)
        sum += cross(point_of(mesh, corners[i]) - middle,
                     point_of(mesh, corners[(i + 1) % corners.size()]) - middle);
    const double size = length(sum);
    return size > 0 ? sum / size : vec3d{};
}

// How unlike the outlines are when corner `offset` of the second faces the first one's first.
double unlikeness(const std::vector<vec3d> &first, const std::vector<vec3d> &second,
                  std::size_t offset)
{
    const std::size_t samples = std::min(first.size(), most_samples);
    double sum = 0;
    for (std::size_t k = 0; k < samples; ++k) {
        const std::size_t i = k * first.size() / samples;
        const std::size_t j = (k * second.size() / samples + offset) % second.size();
        const vec3d way = second[j] - first[i];
        sum += dot(way, way);
    }
    return sum;
}

// Turned about an axis of unit length.
vec3d turned(const vec3d &v, const vec3d &axis, double angle)
{
    return v * std::cos(angle) + cross(axis, v) * std::sin(angle) +
           axis * (dot(axis, v) * (1 - std::cos(angle)));
}

class bridge_builder {
public:
    bridge_builder(edge_work &work, border_chain first, border_chain second,
                   const bridge_options &options)
        : work_(work), first_(std::move(first.corners)), second_(std::move(second.corners)),
          closed_(first.closed), options_(options)
    {
        // Both are walked as surfaces beside them would fill them: against each other.
        std::reverse(second_.begin(), second_.end());
        if (closed_)
            turn_second();
    }

    void build()
    {
        const std::size_t n = steps_of(first_), m = steps_of(second_);
        const std::size_t columns = std::max(n, m);
        std::vector<corners_t> rows(options_.segments + 1);
        for (std::size_t k = 0; k < columns + (closed_ ? 0 : 1); ++k) {
            const border_corner &a = first_[k * n / columns % first_.size()];
            const border_corner &b = second_[k * m / columns % second_.size()];
            rows.front().push_back(a);
            rows.back().push_back(b);
            for (int row = 1; row < options_.segments; ++row)
                rows[row].push_back(between(a, b, static_cast<double>(row) / options_.segments));
        }
        for (std::size_t row = 0; row + 1 < rows.size(); ++row)
            join(rows[row], rows[row + 1]);
        for (std::size_t row = 1; row + 1 < rows.size(); ++row)
            note_edges(rows[row]);
        if (options_.segments == 1) {
            note_edges(rows.front());
            note_edges(rows.back());
        }
    }

private:
    [[nodiscard]] std::size_t steps_of(const corners_t &corners) const
    {
        return corners.size() - (closed_ ? 0 : 1);
    }

    // The way from the first outline to the second: how it leaves and arrives, and turns between.
    struct way_t {
        vec3d from, to, straight;
        double length = 0, turn = 0;
    };
    // Outlines that look away from each other are joined through the body between them.
    [[nodiscard]] way_t find_way() const
    {
        const flat_mesh &mesh = work_.mesh();
        way_t way;
        const vec3d between = middle_of(mesh, second_) - middle_of(mesh, first_);
        way.length = length(between);
        if (way.length == 0)
            return way;
        way.straight = between / way.length;
        constexpr double away = -0.5; // cosine
        const auto leaving = [&](const corners_t &corners) {
            const vec3d normal = normal_of(mesh, corners);
            return dot(normal, way.straight) < away ? normal * -1.0 : normal;
        };
        way.from = leaving(first_);
        way.to = leaving(second_);
        way.turn = std::acos(std::clamp(dot(way.from, way.to), -1.0, 1.0));
        return way;
    }

    // Corners that stand at one place when the way is bent straight face each other.
    void turn_second()
    {
        way_ = find_way();
        vec3d axis = cross(way_.to, way_.from);
        if (length(axis) < 1e-6) // back the way that it came
            axis = cross(way_.from, way_.straight) * -1.0;
        const double sine = length(axis);
        const auto around_middle = [&](const corners_t &corners, double angle) {
            const vec3d middle = middle_of(work_.mesh(), corners);
            std::vector<vec3d> all;
            for (const border_corner &corner : corners) {
                const vec3d v = point_of(work_.mesh(), corner) - middle;
                all.push_back(sine > 1e-6 ? turned(v, axis / sine, angle) : v);
            }
            return all;
        };
        const std::vector<vec3d> first = around_middle(first_, 0),
                                 second = around_middle(second_, way_.turn);
        std::size_t best = 0;
        double least = std::numeric_limits<double>::infinity();
        for (std::size_t offset = 0; offset < second_.size(); ++offset) {
            const double distance = unlikeness(first, second, offset);
            if (distance < least) {
                least = distance;
                best = offset;
            }
        }
        const auto size = static_cast<std::ptrdiff_t>(second_.size());
        const std::ptrdiff_t turned =
            ((static_cast<std::ptrdiff_t>(best) + options_.twist) % size + size) % size;
        std::rotate(second_.begin(), second_.begin() + turned, second_.end());
    }

    border_corner between(const border_corner &a, const border_corner &b, double share)
    {
        const vec3d p = point_of(work_.mesh(), a), q = point_of(work_.mesh(), b);
        vec3d point = p * (1 - share) + q * share;
        if (options_.smooth > 0 && closed_ && way_.length > 0)
            point = point + bulge(share) * (length(q - p) * static_cast<double>(options_.smooth));
        const auto mixed = [&](float x, float y) {
            return static_cast<float>(x * (1 - share) + y * share);
        };
        return {work_.change.add_vertex(to_point(point), a.vertex),
                {mixed(a.uv.u, b.uv.u), mixed(a.uv.v, b.uv.v)},
                a.like};
    }

    // The way off the straight line of a curve that leaves both outlines along their normals: an arc
    // between outlines that look the same way, as a handle has it.
    [[nodiscard]] vec3d bulge(double t) const
    {
        // As long as the tangents of an arc by that angle are for its chord.
        const double reach = 1 / (std::cos(way_.turn / 4) * std::cos(way_.turn / 4));
        const vec3d a = way_.from * reach - way_.straight, b = way_.to * reach - way_.straight;
        return a * (t * (1 - t) * (1 - t)) - b * (t * t * (1 - t));
    }

    void join(const corners_t &row, const corners_t &next)
    {
        const std::size_t columns = row.size() - (closed_ ? 0 : 1);
        for (std::size_t k = 0; k < columns; ++k) {
            const std::size_t right = (k + 1) % row.size();
            work_.change.add_surface(row[k].like);
            const border_corner *last = nullptr;
            for (const border_corner *corner : {&row[k], &row[right], &next[right], &next[k]}) {
                const bool again = (last != nullptr && last->vertex == corner->vertex) ||
                                   (corner == &next[k] && corner->vertex == row[k].vertex);
                if (!again)
                    work_.change.add_corner(corner->vertex, corner->uv);
                last = corner;
            }
        }
        work_.changed += static_cast<int>(columns);
    }

    void note_edges(const corners_t &row)
    {
        for (std::size_t k = 0; k + (closed_ ? 0 : 1) < row.size(); ++k) {
            const int a = row[k].vertex, b = row[(k + 1) % row.size()].vertex;
            if (a != b)
                work_.made_edges.push_back({a, b});
        }
    }

    edge_work &work_;
    corners_t first_, second_;
    const bool closed_;
    const bridge_options options_;
    way_t way_; // of closed ones
};

void bridge_chains(edge_work &work, std::vector<border_chain> chains, const bridge_options &options)
{
    if (chains.size() != 2 || chains[0].closed != chains[1].closed) {
        work.refusal = "select two borders, or two open chains of border edges";
        work.faulty = work.edges;
        return;
    }
    bridge_builder(work, std::move(chains[0]), std::move(chains[1]), options).build();
}

// In surface mode the selected surfaces go; their outlines are the sides of the surfaces that stay.
void bridge_surfaces(edge_work &work, const bridge_options &options)
{
    const flat_mesh &mesh = work.mesh();
    std::vector<bool> goes(mesh.num_surfaces());
    for (const owned_elements &owned : target_surfaces()) {
        if (object_flat(owned.object)->corners == mesh.corners) {
            for (const int s : owned.indices)
                goes[s] = true;
        }
    }
    std::vector<int> outline;
    for (const int e : work.edges) {
        const auto uses = work.topology.uses(e);
        const auto going = std::count_if(uses.begin(), uses.end(),
                                         [&](const edge_use &use) { return goes[use.surface]; });
        if (going == 1)
            outline.push_back(e);
    }
    // The direction of the surface that goes is that of a filling one; loose sheets have no other
    // side, so their own outline is walked, turned round.
    std::vector<border_chain> chains =
        chains_of(work.topology, outline, [&](const edge_use &use) { return goes[use.surface]; });
    for (border_chain &chain : chains)
        std::reverse(chain.corners.begin(), chain.corners.end());
    bridge_chains(work, std::move(chains), options);
    if (!work.refusal.empty())
        return;
    for (int s = 0; s < mesh.num_surfaces(); ++s) {
        if (goes[s])
            work.change.remove_surface(s);
    }
    work.change.remove_unused();
}

void bridge_selected(const bridge_options &options)
{
    const bool surfaces = !mode_has_vertices(select_mode());
    run_edge_operation("bridge", "surfaces", [&](edge_work &work) {
        if (surfaces) {
            bridge_surfaces(work, options);
            return;
        }
        std::vector<int> borders = work.edges;
        std::erase_if(borders, [&](int e) { return !work.topology.is_border(e); });
        bridge_chains(work,
                      chains_of(work.topology, borders, [](const edge_use &) { return true; }),
                      options);
    });
}

} // namespace

// ---- commands ----

void command_bridge(int count, const char *const *words)
{
    bridge_options options;
    if (count > 0)
        options.segments = std::clamp(int_of(words[0]), 1, most_segments);
    if (count > 1)
        options.twist = int_of(words[1]);
    if (count > 2)
        options.smooth = std::clamp(finite_float_of(words[2]), 0.0f, 1.0f);
    on_both_sides([&] { bridge_selected(options); });
}
