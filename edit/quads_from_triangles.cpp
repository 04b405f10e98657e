#include "edit/quads_from_triangles.h"

#include "base/messages.h"
#include "edit/mesh/edge_table.h"
#include "edit/mesh/polygon_plane.h"
#include "edit/surface_edit.h"
#include "model/angle.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

struct pair_t {
    double badness; // the sum of what is wrong, in radians
    int edge;
};

// The pairs of one object's triangles.
class triangle_pairs {
public:
    triangle_pairs(surface_edit &edit, double limit)
        : edit_(edit), mesh_(edit.change.before()), edges_(mesh_), free_(mesh_.num_surfaces()),
          limit_(limit)
    {
        for (const int s : polygons_with_plane(mesh_, edit.surfaces))
            free_[s] = mesh_.surface_corners(s).size() == 3;
    }

    // False when the user cancelled.
    bool find()
    {
        const double each = static_cast<double>(edit_.surfaces.size()) / std::max(edges_.size(), 1);
        for (int e = 0; e < edges_.size(); ++e) {
            if (const double badness = badness_of(e); badness >= 0)
                pairs_.push_back({badness, e});
            if (!edit_.progress.step(edit_.done += each))
                return false;
        }
        std::sort(pairs_.begin(), pairs_.end(), [](const pair_t &a, const pair_t &b) {
            return a.badness != b.badness ? a.badness < b.badness : a.edge < b.edge;
        });
        return true;
    }

    void join()
    {
        for (const pair_t &pair : pairs_) {
            const auto uses = edges_.uses(pair.edge);
            const int a = uses[0].surface, b = uses[1].surface;
            if (!free_[a] || !free_[b])
                continue;
            free_[a] = free_[b] = false;
            const int tip = opposite(uses[1]);
            edit_.change.insert_corner_after(uses[0].corner, mesh_.corner(tip), mesh_.uv(tip));
            edit_.change.remove_surface(b);
            edit_.kept.push_back(mesh_.surface_record(a));
            ++edit_.changed;
        }
    }

private:
    [[nodiscard]] int turned(const edge_use &use, int by) const
    {
        const int first = mesh_.first_corner(use.surface);
        return first + (use.corner - first + by) % 3;
    }
    // The corner that the edge does not touch.
    [[nodiscard]] int opposite(const edge_use &use) const { return turned(use, 2); }
    [[nodiscard]] vec3d place(int corner) const
    {
        return to_vec3d(mesh_.position(mesh_.corner(corner)));
    }
    [[nodiscard]] bool same_uv(int a, int b) const
    {
        constexpr float close = 1e-5f;
        return std::abs(mesh_.uv(a).u - mesh_.uv(b).u) <= close &&
               std::abs(mesh_.uv(a).v - mesh_.uv(b).v) <= close;
    }

    // Below 0 where the two must not be joined.
    [[nodiscard]] double badness_of(int e) const
    {
        const auto uses = edges_.uses(e);
        if (uses.size() != 2)
            return -1;
        const edge_use &a = uses[0], &b = uses[1];
        if (a.surface == b.surface || a.forward == b.forward || !free_[a.surface] ||
            !free_[b.surface] || !(mesh_.surface(a.surface) == mesh_.surface(b.surface)) ||
            !same_uv(a.corner, turned(b, 1)) || !same_uv(turned(a, 1), b.corner))
            return -1;
        const vec3d one = unit_of(polygon_area_vector(mesh_, a.surface));
        const vec3d two = unit_of(polygon_area_vector(mesh_, b.surface));
        const double fold = std::atan2(length(cross(one, two)), dot(one, two));
        if (fold > limit_)
            return -1;
        const double off = angles_off(
            {place(a.corner), place(opposite(b)), place(turned(a, 1)), place(opposite(a))},
            one + two);
        return off < 0 ? -1 : off + fold / 2;
    }

    // The largest difference of a corner from a right angle; below 0 where one is not convex.
    static double angles_off(const std::array<vec3d, 4> &corners, const vec3d &normal)
    {
        double off = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            const vec3d in = corners[(i + 3) % 4] - corners[i];
            const vec3d out = corners[(i + 1) % 4] - corners[i];
            const vec3d turn = cross(out, in);
            const double angle = std::atan2(length(turn), dot(in, out));
            if (dot(turn, normal) <= 0 || angle > pi - 1e-3)
                return -1;
            off = std::max(off, std::abs(angle - pi / 2));
        }
        return off;
    }

    surface_edit &edit_;
    const flat_mesh &mesh_;
    edge_table edges_;
    std::vector<bool> free_; // triangles that may still be joined
    double limit_;
    std::vector<pair_t> pairs_;
};

} // namespace

// ---- commands ----

void command_quads_from_triangles(float degrees)
{
    if (!(degrees >= 0 && degrees <= 180)) {
        display_message("quads from triangles - give an angle from 0 to 180");
        return;
    }
    const double limit = static_cast<double>(degrees) / degrees_per_radian + 1e-6;
    run_surface_edit("quads from triangles", [limit](surface_edit &edit) {
        triangle_pairs pairs(edit, limit);
        if (!pairs.find())
            return false;
        pairs.join();
        if (edit.changed == 0)
            edit.reason = "no triangles that fit together";
        return true;
    });
}
