#include "edit/surface_edit.h"

#include "base/messages.h"
#include "edit/mesh/polygon_plane.h"
#include "model/freed.h"
#include "model/vector.h"

namespace {

bool new_places_are_finite(const mesh_change &change)
{
    for (int v = change.before().num_vertices(); v < change.num_vertices(); ++v) {
        if (!point_is_finite(change.position(v)))
            return false;
    }
    return true;
}

// What is selected afterwards, of one object.
struct results_t {
    std::vector<surface_t *> kept;
    std::vector<int> made;
};

} // namespace

std::vector<int> polygons_with_plane(const flat_mesh &mesh, const std::vector<int> &surfaces)
{
    std::vector<int> polygons;
    for (const int surface : surfaces) {
        if (polygon_has_plane(mesh, surface))
            polygons.push_back(surface);
    }
    return polygons;
}

void run_surface_edit(const char *what, const std::function<bool(surface_edit &)> &compute)
{
    const std::vector<owned_elements> targets = target_surfaces();
    const std::size_t total = count_elements(targets);
    if (total == 0) {
        display_message("%s - nothing selected", what);
        return;
    }
    display_message("%s...", what);
    progress_t progress(static_cast<double>(total));
    double done = 0;
    int changed = 0;
    std::string reason;
    std::vector<mesh_change> changes;
    std::vector<results_t> results;
    for (const owned_elements &owned : targets) {
        surface_edit edit = {changes.emplace_back(owned.object), owned.indices, progress, done};
        if (!compute(edit)) {
            display_message("%s - cancelled", what);
            return;
        }
        if (!new_places_are_finite(edit.change)) {
            display_message("%s - the result would lie too far out", what);
            return;
        }
        if (edit.kept.empty())
            edit.change.renew_records();
        changed += edit.changed;
        if (!edit.reason.empty())
            reason = edit.reason;
        results.push_back({std::move(edit.kept), std::move(edit.made)});
    }
    if (changed == 0) {
        display_message("%s - %s", what, reason.empty() ? "nothing selected" : reason.c_str());
        return;
    }
    open_world_undo(what);
    clear_selection(); // before: unselected elements need no search among those that are freed
    owned_list chosen;
    std::vector<object_t *> touched;
    {
        freed_batch at_once;
        for (std::size_t i = 0; i < changes.size(); ++i) {
            const mesh_result made = changes[i].commit();
            for (surface_t *surface : results[i].kept)
                chosen.add(surface);
            for (const int number : results[i].made)
                chosen.add(made.surfaces[number]);
            touched.push_back(targets[i].object);
        }
    }
    calc_normals_of(touched);
    select_surfacelist(chosen.get());
    finish_edit();
    display_message("%s - %d surfaces%s", what, changed, reason.c_str());
}
