#include "edit/inset.h"

#include "base/messages.h"
#include "edit/mesh/mesh_edges.h"
#include "edit/mesh/outline.h"
#include "edit/mesh/polygon_plane.h"
#include "edit/surface_edit.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>

namespace {

constexpr double share_of_limit = 0.99; // so that no side shrinks to nothing

// How far the corners of one polygon can slide before its outline runs into itself.
class slide_limit {
public:
    slide_limit(const surface_region &region, const std::vector<vec3d> &slides, std::size_t i)
        : mesh_(region.mesh()), surface_(region.polygons()[i]), normal_(region.normal(i))
    {
        for (int c = mesh_.first_corner(surface_); c < mesh_.end_corner(surface_); ++c) {
            const vec3d p = to_vec3d(mesh_.position(mesh_.corner(c)));
            if (!places_.empty() && p == places_.back())
                continue; // a corner twice
            places_.push_back(p);
            slides_.push_back(slides[region.fan(c)]);
        }
        if (places_.size() > 1 && places_.front() == places_.back()) {
            places_.pop_back();
            slides_.pop_back();
        }
    }

    // At most `wanted`. Polygons all of whose sides move in parallel keep their angles: then
    // convex ones are stopped by their sides alone.
    [[nodiscard]] double find(double wanted, bool parallel)
    {
        const double by_sides = share_of_limit * shortest_life();
        const double width = std::min(wanted, by_sides);
        find_turns(0, turns_);
        const bool convex =
            std::none_of(turns_.begin(), turns_.end(), [](double t) { return t < 0; });
        if ((convex && parallel) || fits(width, convex) || !fits(0, convex))
            return width;
        double low = 0, high = width;
        for (int i = 0; i < 24; ++i) {
            const double middle = (low + high) / 2;
            (fits(middle, convex) ? low : high) = middle;
        }
        return low * share_of_limit;
    }

private:
    [[nodiscard]] std::size_t after(std::size_t i) const
    {
        return i + 1 < places_.size() ? i + 1 : 0;
    }
    [[nodiscard]] vec3d place(std::size_t i, double width) const
    {
        return places_[i] + slides_[i] * width;
    }

    // The width at which the first side has no length any more.
    [[nodiscard]] double shortest_life() const
    {
        double life = std::numeric_limits<double>::max();
        for (std::size_t i = 0; i < places_.size(); ++i) {
            const vec3d side = places_[after(i)] - places_[i];
            const double rate = dot(side, slides_[after(i)] - slides_[i]);
            if (rate < 0)
                life = std::min(life, -dot(side, side) / rate);
        }
        return life;
    }

    void find_turns(double width, std::vector<double> &turns) const
    {
        turns.clear();
        for (std::size_t i = 0; i < places_.size(); ++i) {
            const std::size_t b = after(i), c = after(b);
            const vec3d one = unit_of(place(b, width) - place(i, width));
            const vec3d two = unit_of(place(c, width) - place(b, width));
            const double turn = dot(normal_, cross(one, two));
            turns.push_back(std::abs(turn) < 1e-6 ? 0 : turn);
        }
    }

    [[nodiscard]] bool fits(double width, bool convex)
    {
        if (convex) {
            find_turns(width, now_);
            for (std::size_t i = 0; i < now_.size(); ++i) {
                if (now_[i] < 0 || (now_[i] == 0 && turns_[i] > 0))
                    return false;
            }
            return true;
        }
        const vec3d x = unit_of(places_[1] - places_[0]);
        const vec3d y = cross(normal_, x);
        std::vector<plane_point> outline;
        for (std::size_t i = 0; i < places_.size(); ++i) {
            const vec3d away = place(i, width) - places_[0];
            outline.push_back({dot(away, x), dot(away, y)});
        }
        return !outline_crosses_itself(outline);
    }

    const flat_mesh &mesh_;
    int surface_;
    vec3d normal_;
    std::vector<vec3d> places_, slides_;
    std::vector<double> turns_, now_;
};

// The inset of one object's polygons.
class inset_t {
public:
    inset_t(surface_edit &edit, const surface_region &region, double width, double depth)
        : edit_(edit), region_(region), mesh_(region.mesh()), depth_(depth),
          slides_(region.fan_slides()), widths_(region.num_parts(), width),
          bordered_(region.num_parts())
    {
        for (std::size_t i = 0; i < region.polygons().size(); ++i) {
            const int s = region.polygons()[i];
            for (int c = mesh_.first_corner(s); c < mesh_.end_corner(s); ++c)
                bordered_[region.part(i)] = bordered_[region.part(i)] || region.is_border(c);
        }
    }

    // Both false when the user cancelled.
    bool find_widths(bool parallel)
    {
        for (std::size_t i = 0; i < region_.polygons().size(); ++i) {
            double &width = widths_[region_.part(i)];
            const double found = slide_limit(region_, slides_, i).find(width, parallel);
            limited_ = limited_ || found < width;
            width = found;
            if (!edit_.progress.step(edit_.done + static_cast<double>(i) / 2))
                return false;
        }
        return true;
    }
    bool build()
    {
        move_fans();
        edit_.change.reserve(0, 2 * region_.polygons().size(), 5 * region_.polygons().size());
        for (std::size_t i = 0; i < region_.polygons().size(); ++i) {
            if (bordered_[region_.part(i)])
                build_polygon(i);
            if (!edit_.step())
                return false;
        }
        edit_.change.remove_unused();
        edit_.reason = limited_ ? ", width limited" : "";
        return true;
    }

private:
    void move_fans()
    {
        std::vector<double> width_of(region_.num_fans());
        std::vector<bool> on_border(region_.num_fans()), lifted(region_.num_fans());
        for (std::size_t i = 0; i < region_.polygons().size(); ++i) {
            const int s = region_.polygons()[i];
            for (int c = mesh_.first_corner(s); c < mesh_.end_corner(s); ++c) {
                width_of[region_.fan(c)] = widths_[region_.part(i)];
                lifted[region_.fan(c)] = depth_ != 0 && bordered_[region_.part(i)];
                if (!region_.is_border(c))
                    continue;
                on_border[region_.fan(c)] = true;
                on_border[region_.fan(next_corner(mesh_, s, c))] = true;
            }
        }
        std::vector<vec3d> offsets;
        if (depth_ != 0)
            offsets = region_.fan_offsets();
        vertices_ = region_.fan_vertices();
        slid_.resize(vertices_.size());
        for (std::size_t fan = 0; fan < vertices_.size(); ++fan) {
            const int old = vertices_[fan];
            slid_[fan] = to_vec3d(mesh_.position(old)) + slides_[fan] * width_of[fan];
            if (!on_border[fan] && !lifted[fan])
                continue; // stays
            const vec3d lift = lifted[fan] ? offsets[fan] * depth_ : vec3d{};
            vertices_[fan] = edit_.change.add_vertex(to_point(slid_[fan] + lift), old);
        }
    }

    void build_polygon(std::size_t i)
    {
        const int s = region_.polygons()[i];
        const int first = mesh_.first_corner(s), end = mesh_.end_corner(s);
        const polygon_picture picture(mesh_, s);
        inner_.clear();
        for (int c = first; c < end; ++c) {
            const int fan = region_.fan(c);
            inner_.push_back(slides_[fan] == vec3d{} ? mesh_.uv(c) : picture.at(slid_[fan], c));
        }
        edit_.made.push_back(edit_.add_surface(s));
        for (int c = first; c < end; ++c)
            edit_.change.add_corner(vertices_[region_.fan(c)], inner_[c - first]);
        for (int c = first; c < end; ++c) {
            if (!region_.is_border(c))
                continue;
            const int next = next_corner(mesh_, s, c);
            edit_.add_surface(s);
            edit_.change.add_corner(mesh_.corner(c), mesh_.uv(c));
            edit_.change.add_corner(mesh_.corner(next), mesh_.uv(next));
            edit_.change.add_corner(vertices_[region_.fan(next)], inner_[next - first]);
            edit_.change.add_corner(vertices_[region_.fan(c)], inner_[c - first]);
        }
        edit_.change.remove_surface(s);
        ++edit_.changed;
    }

    surface_edit &edit_;
    const surface_region &region_;
    const flat_mesh &mesh_;
    double depth_;
    std::vector<vec3d> slides_;
    std::vector<double> widths_; // of the parts
    std::vector<bool> bordered_; // the parts that are no closed bodies: those stay as they are
    bool limited_ = false;
    std::vector<int> vertices_; // of each fan, the one of the inner polygons
    std::vector<vec3d> slid_;   // and its place, before it is lifted
    std::vector<flat_uv> inner_;
};

} // namespace

// ---- commands ----

void command_inset(float width, float depth, const char *how)
{
    const std::string_view word = how;
    if (word != "each" && word != "region") {
        display_message("inset - each or region");
        return;
    }
    if (!std::isfinite(width) || !std::isfinite(depth) || width < 0 || (width == 0 && depth == 0)) {
        display_message("inset - give a width above 0, or a depth");
        return;
    }
    const bool apart = word == "each";
    run_surface_edit("inset", [&](surface_edit &edit) {
        const surface_region region(
            edit.change.before(), polygons_with_plane(edit.change.before(), edit.surfaces),
            apart ? surface_region::parts::apart : surface_region::parts::joined);
        if (!region.has_border()) {
            edit.reason = region.polygons().empty() ? "" : "the surfaces have no border";
            return true;
        }
        inset_t inset(edit, region, width, depth);
        return inset.find_widths(apart) && inset.build();
    });
}
