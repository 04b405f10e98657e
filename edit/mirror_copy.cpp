#include "edit/mirror_copy.h"

#include "base/messages.h"
#include "base/numbers.h"
#include "edit/axis_pivot.h"
#include "edit/copies.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_scan.h"
#include "edit/mesh/plane_cut.h"
#include "model/change_marks.h"
#include "model/freed.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <deque>
#include <numeric>

namespace {

struct plane_t {
    vec3d normal, at;
    [[nodiscard]] double height(const point3_t &p) const { return dot(normal, to_vec3d(p) - at); }
    [[nodiscard]] point3_t foot(const point3_t &p) const
    {
        return to_point(to_vec3d(p) - normal * height(p));
    }
    [[nodiscard]] affine_t mirror() const { return affine_mirror(normal).about(at); }
};

// The mirror image of some surfaces of an object in the same object.
class mirrored_half {
public:
    mirrored_half(mesh_change &change, const std::vector<int> &surfaces, const plane_t &plane,
                  double weld)
        : change_(change), mesh_(change.before()), plane_(plane), mirror_(plane.mirror()),
          weld_(weld), twins_(mesh_.num_vertices(), -1)
    {
        for (const int surface : surfaces) {
            const auto corners = mesh_.surface_corners(surface);
            if (std::all_of(corners.begin(), corners.end(), [&](int v) { return is_on_plane(v); }))
                change_.remove_surface(surface);
            else
                copy(surface);
        }
        change_.remove_unused();
    }

    // The surfaces that are mirrored.
    [[nodiscard]] const std::vector<int> &stay() const { return stay_; }
    // Old vertices that belong onto the plane, to be moved there when the change is written.
    [[nodiscard]] std::vector<vertex *> on_plane() const
    {
        std::vector<vertex *> records;
        for (int v = 0; v < mesh_.num_vertices(); ++v) {
            if (twins_[v] == v)
                records.push_back(mesh_.vertex_record(v));
        }
        return records;
    }

private:
    [[nodiscard]] bool is_on_plane(int v) const
    {
        return std::abs(plane_.height(mesh_.position(v))) <= weld_;
    }
    int twin_of(int v)
    {
        if (twins_[v] < 0)
            twins_[v] = is_on_plane(v) ? v : change_.add_vertex(mirror_(mesh_.position(v)), v);
        return twins_[v];
    }
    void copy(int surface)
    {
        stay_.push_back(surface);
        change_.add_surface(surface);
        int corner = mesh_.first_corner(surface);
        for (const int v : mesh_.surface_corners(surface))
            change_.add_corner(twin_of(v), mesh_.uv(corner++));
        change_.turn_corners();
    }

    mesh_change &change_;
    const flat_mesh &mesh_;
    plane_t plane_;
    affine_t mirror_;
    double weld_;
    std::vector<int> stay_;
    std::vector<int> twins_; // -1: none yet; a vertex on the plane is its own
};

// Writes the mirror images. Answers the new surfaces, and those of the owners' that stay.
struct halves_t {
    std::vector<surface_t *> made, stay;
};
halves_t mirror_into(const std::vector<owned_elements> &owners, const plane_t &plane, double weld)
{
    halves_t halves;
    freed_batch at_once;
    for (const owned_elements &owned : owners) {
        mesh_change change(owned.object);
        const mirrored_half half(change, owned.indices, plane, weld);
        const std::vector<vertex *> on_plane = half.on_plane();
        for (const int surface : half.stay())
            halves.stay.push_back(change.before().surface_record(surface));
        const mesh_result result = change.commit();
        for (vertex *v : on_plane)
            v->position = plane.foot(v->position);
        object_mark(owned.object, CHANGED_POSITIONS);
        halves.made.insert(halves.made.end(), result.surfaces.begin(), result.surfaces.end());
    }
    return halves;
}

void select_after(const std::vector<object_t *> &objects, const std::vector<surface_t *> &made)
{
    clear_selection();
    if (!objects.empty()) {
        select_results(objects);
        return;
    }
    owned_list list;
    for (surface_t *surface : made)
        list.add(surface);
    select_surfacelist(list.get());
}

std::vector<object_t *> owners_of(const std::vector<owned_elements> &owners)
{
    std::vector<object_t *> objects;
    for (const owned_elements &owned : owners)
        objects.push_back(owned.object);
    return objects;
}

// What rounding alone may bring about, of the size of the meshes.
double rounding_of(const std::vector<owned_elements> &owners)
{
    float largest = 0;
    for (const owned_elements &owned : owners) {
        for (const point3_t &p : *object_flat(owned.object)->positions)
            largest = std::max({largest, std::abs(p.x), std::abs(p.y), std::abs(p.z)});
    }
    return 1e-6 * static_cast<double>(largest);
}

std::optional<plane_t> plane_of(const char *what, const char *axis, const char *pivot)
{
    const std::optional<vec3d> normal = axis_of_word(what, axis);
    const std::optional<vec3d> at = pivot_of_word(what, pivot);
    if (!normal || !at)
        return {};
    return plane_t{*normal, *at};
}

// Vertices that rounding alone keeps off the plane, put onto it: a cut beside them would leave
// slivers.
class put_onto_plane {
public:
    put_onto_plane(const std::vector<owned_elements> &targets, const plane_t &plane, double near)
    {
        for (const owned_elements &owned : targets) {
            const flat_ptr mesh = object_flat(owned.object);
            for (int v = 0; v < mesh->num_vertices(); ++v) {
                const double height = plane.height(mesh->position(v));
                if (height != 0 && std::abs(height) <= near) {
                    put_.emplace_back(mesh->vertex_record(v), mesh->position(v));
                    mesh->vertex_record(v)->position = plane.foot(mesh->position(v));
                }
            }
            owners_.push_back(owned.object);
        }
        mark();
    }
    void take_back() const
    {
        for (const auto &[v, position] : put_)
            v->position = position;
        mark();
    }

private:
    void mark() const
    {
        for (object_t *owner : owners_) {
            if (!put_.empty())
                object_mark(owner, CHANGED_POSITIONS);
        }
    }
    std::vector<std::pair<vertex *, point3_t>> put_;
    std::vector<object_t *> owners_;
};

// The surfaces that are left of the targets on the front of the plane, as they are after it.
struct cut_half {
    std::deque<mesh_change> changes; // a deque, for the cuts keep references to the changes
    std::vector<std::vector<int>> kept;

    bool compute(const std::vector<owned_elements> &targets, const plane_t &plane)
    {
        progress_t progress(static_cast<double>(count_elements(targets)));
        double done = 0;
        const plane_cut_t how = {to_point(plane.at), to_point(plane.normal), true, false, false};
        for (const owned_elements &owned : targets) {
            plane_cut cut(changes.emplace_back(owned.object), owned.indices, how);
            if (!cut.apply(progress, done))
                return false;
            kept.push_back(cut.kept());
        }
        return true;
    }
    std::vector<owned_elements> commit()
    {
        owned_list left;
        freed_batch at_once;
        for (std::size_t i = 0; i < changes.size(); ++i) {
            const flat_mesh &before = changes[i].before();
            std::vector<surface_t *> surfaces;
            for (const int s : kept[i])
                surfaces.push_back(before.surface_record(s));
            for (surface_t *surface : changes[i].commit().surfaces)
                surfaces.push_back(surface);
            for (surface_t *surface : surfaces)
                left.add(surface);
        }
        return surfaces_by_owner(left.get());
    }
};

} // namespace

// ---- commands ----

void command_mirror_copy(int count, const char *const *words)
{
    const char *const what = "mirror copy";
    const std::optional<plane_t> plane = plane_of(what, words[0], count > 2 ? words[2] : "origin");
    if (!plane)
        return;
    const double weld = std::abs(double_of(words[1]));
    const std::vector<object_t *> objects = selected_objects();
    if (!objects.empty() && weld == 0) {
        copy_selection(what, {plane->mirror()});
        return;
    }
    const std::vector<owned_elements> targets = target_surfaces();
    const std::size_t total = count_elements(targets);
    if (total == 0) {
        display_message("%s - nothing selected", what);
        return;
    }
    open_world_undo(what);
    const std::vector<surface_t *> made = mirror_into(targets, *plane, weld).made;
    calc_normals_of(owners_of(targets));
    select_after(objects, made);
    finish_edit();
    display_message("%s - %d surfaces", what, static_cast<int>(made.size()));
}

void command_symmetrize(int count, const char *const *words)
{
    const char *const what = "symmetrize";
    std::optional<plane_t> plane = plane_of(what, words[0], count > 2 ? words[2] : "origin");
    if (!plane)
        return;
    if (std::strcmp(words[1], "negative") == 0) {
        plane->normal = plane->normal * -1;
    } else if (std::strcmp(words[1], "positive") != 0) {
        display_message("%s - the side is positive or negative, not '%s'", what, words[1]);
        return;
    }
    const std::vector<owned_elements> targets = target_surfaces();
    if (count_elements(targets) == 0) {
        display_message("%s - nothing selected", what);
        return;
    }
    const double rounding = rounding_of(targets);
    cut_half half;
    {
        const put_onto_plane put(targets, *plane, rounding);
        const bool done = half.compute(targets, *plane);
        put.take_back();
        if (!done) {
            display_message("%s - cancelled", what);
            return;
        }
    }
    const std::vector<object_t *> objects = selected_objects();
    open_world_undo(what);
    clear_selection();
    halves_t halves = mirror_into(half.commit(), *plane, rounding);
    calc_normals_of(owners_of(targets));
    const auto count_made = static_cast<int>(halves.made.size());
    halves.stay.insert(halves.stay.end(), halves.made.begin(), halves.made.end());
    select_after(objects, halves.stay);
    finish_edit();
    display_message("%s - %d surfaces", what, count_made);
}
