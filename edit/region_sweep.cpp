#include "edit/region_sweep.h"

#include "base/prefs.h"
#include "base/progress.h"
#include "edit/document/edit_support.h"
#include "edit/mesh/mesh_change.h"
#include "edit/mesh/mesh_edges.h"
#include "edit/mesh/position_index.h"
#include "model/freed.h"

#include <algorithm>
#include <memory>

namespace {

// The sweep of one object's surfaces.
class region_sweep {
public:
    region_sweep(object_t *object, const std::vector<int> &surfaces, const sweep_t &sweep)
        : change_(object), mesh_(change_.before()), surfaces_(surfaces),
          edges_(edges_of(mesh_, surfaces)), sweep_(sweep), index_(*mesh_.positions),
          top_(mesh_.num_vertices(), -1)
    {
    }

    // False when the user cancelled.
    bool add_walls(progress_t &progress, double &done);
    bool add_caps(progress_t &progress, double &done);
    void remove_originals();
    [[nodiscard]] bool has_walls() const { return has_walls_; }
    mesh_result commit() { return change_.commit(); }

private:
    // Of each edge, whether only one of the surfaces has it.
    [[nodiscard]] std::vector<bool> outer_edges() const;
    void add_strip(int surface, int a, int b);
    int vertex_at(const point3_t &to);
    int moved(int level, int base, int before);
    int moved_to_end(int at);

    mesh_change change_;
    const flat_mesh &mesh_;
    const std::vector<int> &surfaces_; // in the order of the selection
    mesh_edges edges_;
    const sweep_t &sweep_;
    position_index index_;
    std::vector<std::int32_t> top_; // of each vertex, the one at the end of the sweep, or -1
    bool has_walls_ = false;
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
int region_sweep::moved_to_end(int at)
{
    if (top_[at] < 0) {
        const point3_t base = change_.position(at);
        point3_t to = base;
        for (int k = 1; k <= sweep_.levels; ++k)
            to = sweep_.place(k, base, to);
        top_[at] = vertex_at(to);
    }
    return top_[at];
}

// Between the edge from a to b and its copies.
void region_sweep::add_strip(int surface, int a, int b)
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
        if (prefs.extrude_flip_cap == 0)
            change_.turn_corners();
        low_a = high_a;
        low_b = high_b;
    }
    has_walls_ = true;
}

bool region_sweep::add_walls(progress_t &progress, double &done)
{
    const std::vector<bool> outer = outer_edges();
    for (const int surface : surfaces_) {
        for (int c = mesh_.first_corner(surface); c < mesh_.end_corner(surface); ++c) {
            const int edge = edges_.of_corner[c];
            if (edge >= 0 && outer[edge]) {
                add_strip(surface, mesh_.corner(c), mesh_.corner(next_corner(mesh_, surface, c)));
            }
        }
        if (!progress.step(++done))
            return false;
    }
    return true;
}

bool region_sweep::add_caps(progress_t &progress, double &done)
{
    change_.reserve(mesh_.positions->size(), surfaces_.size(), mesh_.corners->size());
    for (const int surface : surfaces_) {
        change_.add_surface(surface);
        for (int c = mesh_.first_corner(surface); c < mesh_.end_corner(surface); ++c) {
            change_.add_corner(moved_to_end(mesh_.corner(c)), mesh_.uv(c));
        }
        if (prefs.extrude_flip_cap != 0)
            change_.reverse_corners();
        if (!progress.step(++done))
            return false;
    }
    return true;
}

void region_sweep::remove_originals()
{
    for (const int surface : surfaces_)
        change_.remove_surface(surface);
    change_.remove_unused();
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
        if (prefs.extrude_cap_end != 0)
            going = going && part->add_caps(progress, done);
        if (prefs.extrude_delete_original != 0)
            part->remove_originals();
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
    std::vector<object_t *> touched;
    freed_batch at_once;
    for (std::size_t i = 0; i < owners.size(); ++i) {
        made += parts[i]->commit().surfaces.size();
        parts[i].reset();
        touched.push_back(owners[i].object);
    }
    calc_normals_of(touched);
    return outcome;
}
