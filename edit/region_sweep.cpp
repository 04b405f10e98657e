#include "edit/region_sweep.h"

#include "base/prefs.h"
#include "base/progress.h"
#include "edit/document/edit_support.h"
#include "edit/document/select_made.h"
#include "edit/mesh/mesh_change.h"
#include "edit/mesh/mesh_edges.h"
#include "edit/mesh/polygon_plane.h"
#include "edit/mesh/position_index.h"
#include "edit/mesh/union_find.h"
#include "edit/symmetry_scope.h"
#include "model/freed.h"
#include "model/outline_normal.h"

#include <algorithm>
#include <memory>
#include <numeric>
#include <utility>

namespace {

// What becomes of one surface of the region.
struct fate_t {
    bool flips_walls; // and the cap
    bool cap;
    bool remove;
    bool turn; // stays, but faces the other way
};

// The sweep of one object's surfaces.
class region_sweep {
public:
    region_sweep(object_t *object, const std::vector<int> &surfaces, const sweep_t &sweep)
        : change_(object), mesh_(change_.before()), surfaces_(surfaces),
          edges_(sweep.along_body != nullptr ? edges_of(mesh_) : edges_of(mesh_, surfaces)),
          outer_(outer_edges()),
          fates_(sweep.along_body != nullptr ? fates_of_body(*sweep.along_body)
                                             : fates_of_preferences()),
          sweep_(sweep), index_(*mesh_.positions, mesh_.positions->size()),
          top_(mesh_.num_vertices(), -1)
    {
    }

    // False when the user cancelled.
    bool add_walls(progress_t &progress, double &done);
    bool add_caps(progress_t &progress, double &done);
    void change_originals();
    [[nodiscard]] bool has_walls() const { return num_walls_ > 0; }
    // Appends the caps, or the walls where there are none, to `ends`; null: not.
    mesh_result commit(std::vector<surface_t *> *ends);

private:
    // Of each edge, whether only one of the surfaces has it.
    [[nodiscard]] std::vector<bool> outer_edges() const;
    // The parts that hang together by edges: a number of each surface, by its place in surfaces_.
    [[nodiscard]] std::vector<int> parts() const;
    // Of each edge, whether a surface outside the region has it.
    [[nodiscard]] std::vector<bool> edges_beyond() const;
    [[nodiscard]] std::vector<fate_t> fates_of_preferences() const;
    [[nodiscard]] std::vector<fate_t> fates_of_body(const point3_t &way) const;
    void add_strip(int surface, bool flip, int a, int b);
    int vertex_at(const point3_t &to);
    int moved(int level, int base, int before);
    [[nodiscard]] point3_t end_of_sweep(int at) const;
    void find_tops();

    mesh_change change_;
    const flat_mesh &mesh_;
    const std::vector<int> &surfaces_; // in the order of the selection
    mesh_edges edges_;
    std::vector<bool> outer_;
    std::vector<fate_t> fates_; // one for each of surfaces_
    const sweep_t &sweep_;
    position_index index_;
    std::vector<std::int32_t> top_; // of each vertex, the one at the end of the sweep, or -1
    std::size_t num_walls_ = 0, num_caps_ = 0;
};

std::vector<bool> region_sweep::outer_edges() const
{
    std::vector<std::int32_t> owner(edges_.count, -1);
    std::vector<bool> outer(edges_.count, true);
    for (const int surface : surfaces_) {
        for (int c = mesh_.first_corner(surface); c < mesh_.end_corner(surface); ++c) {
            const int edge = edges_.of_corner[c];
            if (edge < 0)
                continue;
            // Deliberate: an edge that one surface has twice is an outer one, for no other surface has it.
            if (owner[edge] >= 0 && owner[edge] != surface)
                outer[edge] = false;
            owner[edge] = surface;
        }
    }
    return outer;
}

std::vector<int> region_sweep::parts() const
{
    union_find joined(static_cast<int>(surfaces_.size()));
    std::vector<int> first(edges_.count, -1);
    for (std::size_t i = 0; i < surfaces_.size(); ++i) {
        for (int c = mesh_.first_corner(surfaces_[i]); c < mesh_.end_corner(surfaces_[i]); ++c) {
            const int edge = edges_.of_corner[c];
            if (edge < 0)
                continue;
            if (first[edge] < 0)
                first[edge] = static_cast<int>(i);
            joined.join(first[edge], static_cast<int>(i));
        }
    }
    std::vector<int> numbers;
    joined.number(&numbers);
    return numbers;
}

std::vector<bool> region_sweep::edges_beyond() const
{
    std::vector<bool> chosen(mesh_.num_surfaces());
    for (const int surface : surfaces_)
        chosen[surface] = true;
    std::vector<bool> beyond(edges_.count);
    for (int surface = 0; surface < mesh_.num_surfaces(); ++surface) {
        for (int c = mesh_.first_corner(surface); c < mesh_.end_corner(surface); ++c) {
            if (!chosen[surface] && edges_.of_corner[c] >= 0)
                beyond[edges_.of_corner[c]] = true;
        }
    }
    return beyond;
}

std::vector<fate_t> region_sweep::fates_of_preferences() const
{
    return std::vector<fate_t>(surfaces_.size(), {.flips_walls = prefs.extrude_flip_cap != 0,
                                                  .cap = prefs.extrude_cap_end != 0,
                                                  .remove = prefs.extrude_delete_original != 0,
                                                  .turn = false});
}

std::vector<fate_t> region_sweep::fates_of_body(const point3_t &way) const
{
    const std::vector<int> part = parts();
    const std::vector<bool> beyond = edges_beyond();
    std::vector<bool> goes_on(surfaces_.size());    // by part
    std::vector<double> forwards(surfaces_.size()); // the part's area seen along the way
    for (std::size_t i = 0; i < surfaces_.size(); ++i) {
        const int surface = surfaces_[i];
        for (int c = mesh_.first_corner(surface); c < mesh_.end_corner(surface); ++c)
            goes_on[part[i]] =
                goes_on[part[i]] || (edges_.of_corner[c] >= 0 && beyond[edges_.of_corner[c]]);
        const point3_t middle = to_point(polygon_middle(mesh_, surface));
        forwards[part[i]] += dot(outline_normal(mesh_, mesh_.surface_corners(surface)),
                                 to_vec3d(symmetry_offset(middle, way)));
    }
    std::vector<fate_t> fates;
    for (std::size_t i = 0; i < surfaces_.size(); ++i) {
        const bool polygon = mesh_.surface(surfaces_[i]).type == SURFACE_POLYGON;
        const bool stays = polygon && !goes_on[part[i]];
        const bool back = stays && forwards[part[i]] < 0;
        fates.push_back(
            {.flips_walls = back, .cap = polygon, .remove = !stays, .turn = stays && !back});
    }
    return fates;
}

// The vertex that stands there, or a new one.
int region_sweep::vertex_at(const point3_t &to)
{
    const int next = change_.num_vertices();
    const int found = index_.find_or_add(to, next);
    if (found == next)
        change_.add_vertex(to);
    return found;
}

int region_sweep::moved(int level, int base, int before)
{
    return vertex_at(sweep_.place(level, change_.position(base), change_.position(before)));
}

// Level by level, as the walls go, so that rounding opens no seam.
point3_t region_sweep::end_of_sweep(int at) const
{
    const point3_t base = mesh_.position(at);
    point3_t to = base;
    for (int k = 1; k <= sweep_.levels; ++k)
        to = sweep_.place(k, base, to);
    return to;
}

// The vertices of the caps, in the order in which the caps have them.
void region_sweep::find_tops()
{
    std::vector<int> bases;
    for (std::size_t i = 0; i < surfaces_.size(); ++i) {
        if (!fates_[i].cap)
            continue;
        for (const int v : mesh_.surface_corners(surfaces_[i])) {
            if (std::exchange(top_[v], 0) < 0)
                bases.push_back(v);
        }
    }
    constexpr std::size_t ahead = 16;
    std::vector<point3_t> tops;
    tops.reserve(bases.size());
    change_.reserve(bases.size(), 0, 0);
    for (std::size_t i = 0; i < bases.size() + ahead; ++i) {
        if (i < bases.size()) {
            tops.push_back(end_of_sweep(bases[i]));
            index_.bring(tops.back());
        }
        if (i >= ahead)
            top_[bases[i - ahead]] = vertex_at(tops[i - ahead]);
    }
}

// Between the edge from a to b and its copies.
void region_sweep::add_strip(int surface, bool flip, int a, int b)
{
    int low_a = a, low_b = b;
    for (int k = 1; k <= sweep_.levels; ++k) {
        const int high_a = moved(k, a, low_a);
        const int high_b = moved(k, b, low_b);
        change_.add_surface(surface);
        change_.set_type(SURFACE_POLYGON);
        if (high_a != low_a || !sweep_.drops_resting_corners)
            change_.add_corner(low_a, {0, 0});
        change_.add_corner(high_a, {0, 0});
        change_.add_corner(high_b, {0, 0});
        if (high_b != low_b || !sweep_.drops_resting_corners)
            change_.add_corner(low_b, {0, 0});
        if (!flip)
            change_.turn_corners();
        ++num_walls_;
        low_a = high_a;
        low_b = high_b;
    }
}

bool region_sweep::add_walls(progress_t &progress, double &done)
{
    for (std::size_t i = 0; i < surfaces_.size(); ++i) {
        const int surface = surfaces_[i];
        for (int c = mesh_.first_corner(surface); c < mesh_.end_corner(surface); ++c) {
            const int edge = edges_.of_corner[c];
            if (edge >= 0 && outer_[edge])
                add_strip(surface, fates_[i].flips_walls, mesh_.corner(c),
                          mesh_.corner(next_corner(mesh_, surface, c)));
        }
        if (!progress.step(++done))
            return false;
    }
    return true;
}

bool region_sweep::add_caps(progress_t &progress, double &done)
{
    find_tops();
    std::vector<int> places(surfaces_.size()); // in surfaces_
    std::iota(places.begin(), places.end(), 0);
    const auto corners_of_cap = [this](int i) {
        return fates_[i].cap ? static_cast<int>(mesh_.surface_corners(surfaces_[i]).size()) : 0;
    };
    const auto room_of = [&](int i) {
        const int corners = corners_of_cap(i);
        return mesh_room{0, corners > 0 ? 1 : 0, corners};
    };
    const auto make = [&](int i, mesh_change::writer &out) {
        if (corners_of_cap(i) == 0)
            return;
        const int surface = surfaces_[i];
        out.add_surface(surface);
        for (int c = mesh_.first_corner(surface); c < mesh_.end_corner(surface); ++c)
            out.add_corner(top_[mesh_.corner(c)], mesh_.uv(c));
        if (fates_[i].flips_walls)
            out.reverse_corners();
    };
    for (const int i : places)
        num_caps_ += corners_of_cap(i) > 0 ? 1 : 0;
    const bool finished = change_each(change_, places, room_of, make, [&](int of_object) {
        return progress.step(done + of_object);
    });
    done += static_cast<double>(surfaces_.size());
    return finished;
}

void region_sweep::change_originals()
{
    for (std::size_t i = 0; i < surfaces_.size(); ++i) {
        const int surface = surfaces_[i];
        if (fates_[i].turn) {
            change_.add_surface(surface);
            for (int c = mesh_.first_corner(surface); c < mesh_.end_corner(surface); ++c)
                change_.add_corner(mesh_.corner(c), mesh_.uv(c));
            change_.reverse_corners();
        }
        if (fates_[i].turn || fates_[i].remove)
            change_.remove_surface(surface);
    }
    change_.remove_unused();
}

mesh_result region_sweep::commit(std::vector<surface_t *> *ends)
{
    change_.renew_records();
    mesh_result result = change_.commit();
    const std::size_t first = num_caps_ > 0 ? num_walls_ : 0;
    const std::size_t count = num_caps_ > 0 ? num_caps_ : num_walls_;
    for (std::size_t i = first; ends && i < std::min(first + count, result.surfaces.size()); ++i)
        ends->push_back(result.surfaces[i]);
    return result;
}

using region_sweeps = std::vector<std::unique_ptr<region_sweep>>;

// The computing half.
sweep_outcome compute(const std::vector<owned_elements> &owners, const sweep_t &sweep,
                      region_sweeps &parts)
{
    progress_t progress(2.0 * static_cast<double>(count_elements(owners)));
    double done = 0;
    bool going = true;
    for (const owned_elements &owned : owners) {
        parts.push_back(std::make_unique<region_sweep>(owned.object, owned.indices, sweep));
        going = going && parts.back()->add_walls(progress, done);
    }
    const bool outer =
        std::any_of(parts.begin(), parts.end(), [](const auto &part) { return part->has_walls(); });
    if (going && !outer)
        return sweep_outcome::no_outer_edge;
    for (const auto &part : parts) {
        going = going && part->add_caps(progress, done);
        part->change_originals();
    }
    return going ? sweep_outcome::done : sweep_outcome::cancelled;
}

} // namespace

sweep_outcome sweep_surfaces(const listitem *surfaces, const sweep_t &sweep, std::size_t &made)
{
    made = 0;
    const std::vector<owned_elements> owners = surfaces_by_owner_in_order(surfaces);
    region_sweeps parts;
    const sweep_outcome outcome = compute(owners, sweep, parts);
    if (outcome != sweep_outcome::done)
        return outcome;
    if (sweep.undo_label != nullptr)
        open_world_undo(sweep.undo_label);
    if (sweep.selects_ends)
        clear_selection(); // before: the unselected need no search among those that are freed
    std::vector<object_t *> touched;
    std::vector<surface_t *> ends;
    {
        freed_batch at_once;
        for (std::size_t i = 0; i < owners.size(); ++i) {
            made += parts[i]->commit(sweep.selects_ends ? &ends : nullptr).surfaces.size();
            parts[i].reset();
            touched.push_back(owners[i].object);
        }
    }
    calc_normals_of(touched);
    if (sweep.selects_ends)
        select_made_surfaces(ends);
    return outcome;
}
