#include "edit/slice.h"

#include "base/messages.h"
#include "base/numbers.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_scan.h"
#include "edit/mesh/plane_cut.h"
#include "edit/mesh/surface_copy.h"
#include "model/child_changes.h"
#include "model/freed.h"
#include "model/object_internal.h"

#include <cmath>
#include <cstring>
#include <deque>
#include <unordered_set>

namespace {

struct slice_t {
    plane_cut_t how;
    bool by_objects;
    // a deque, for the cuts keep references to the changes
    std::deque<mesh_change> changes;
    std::vector<std::vector<int>> kept;                  // of each change: surfaces that stay
    std::vector<std::pair<object_t *, object_t *>> made; // each behind its original
    int cut = 0, gone = 0;
};

bool compute_cut(slice_t &slice, object_t *object, std::span<const int> surfaces,
                 const plane_cut_t &how, progress_t &progress, double &done)
{
    plane_cut cut(slice.changes.emplace_back(object), surfaces, how);
    if (!cut.apply(progress, done))
        return false;
    slice.cut += cut.num_cut();
    slice.gone += cut.num_gone();
    slice.kept.push_back(cut.kept());
    return true;
}

bool compute(slice_t &slice, const owned_elements &owned, progress_t &progress, double &done)
{
    plane_cut_t how = slice.how;
    if (!(how.cap && how.front && how.back))
        return compute_cut(slice, owned.object, owned.indices, how, progress, done);
    how.cap = slice.by_objects;
    if (!slice.by_objects)
        return compute_cut(slice, owned.object, owned.indices, how, progress, done);
    {
        mesh_change nothing(owned.object);
        if (!plane_cut(nothing, owned.indices, how).parts())
            return true;
    }
    object_t *front = surface_copier(owned.object).copy(owned.indices);
    slice.made.emplace_back(owned.object, front);
    how.front = false;
    if (!compute_cut(slice, owned.object, owned.indices, how, progress, done))
        return false;
    std::swap(how.front, how.back);
    return compute_cut(slice, front, owned.indices, how, progress, done);
}

void drop_made(const slice_t &slice)
{
    freed_batch batch;
    for (const auto &[original, made] : slice.made)
        batch.add(made);
}

// Writes everything back and selects the results.
void commit(slice_t &slice, const std::vector<object_t *> &touched)
{
    std::vector<object_t *> results = selected_objects();
    clear_selection();
    owned_list surfaces;
    {
        freed_batch at_once;
        for (std::size_t i = 0; i < slice.changes.size(); ++i) {
            const flat_mesh &before = slice.changes[i].before();
            for (const int s : slice.kept[i])
                surfaces.add(before.surface_record(s));
            for (surface_t *surface : slice.changes[i].commit().surfaces)
                surfaces.add(surface);
        }
    }
    child_changes places;
    for (const auto &[original, made] : slice.made) {
        places.replace(original, {original, made});
        results.push_back(made);
    }
    places.commit();
    std::vector<object_t *> changed = touched;
    for (const auto &[original, made] : slice.made)
        changed.push_back(made);
    calc_normals_of(changed);
    std::vector<object_t *> empty;
    if (slice.by_objects) {
        for (object_t *object : touched) {
            if (object->num_surfaces == 0 && object->num_vertices == 0 &&
                object->children == nullptr)
                empty.push_back(object);
        }
        const std::unordered_set<const object_t *> going(empty.begin(), empty.end());
        std::erase_if(results, [&](const object_t *object) { return going.contains(object); });
        objects_delete(empty);
        select_results(results);
    } else {
        select_surfacelist(surfaces.get());
    }
    finish_edit();
}

void run_slice(slice_t &slice)
{
    const std::vector<owned_elements> targets = target_surfaces();
    const std::size_t total = count_elements(targets);
    if (total == 0) {
        display_message("slice - nothing selected");
        return;
    }
    display_message("slice...");
    slice.by_objects = selection().objects != nullptr;
    std::vector<object_t *> touched;
    {
        progress_t progress(2.0 * static_cast<double>(total));
        double done = 0;
        for (const owned_elements &owned : targets) {
            if (!compute(slice, owned, progress, done)) {
                drop_made(slice);
                display_message("slice - cancelled");
                return;
            }
            touched.push_back(owned.object);
        }
    }
    if (slice.cut + slice.gone == 0) {
        drop_made(slice);
        display_message("slice - the plane cuts nothing");
        return;
    }
    open_world_undo("slice");
    const int cut = slice.cut;
    commit(slice, touched);
    display_message("slice - %d surfaces", cut);
}

} // namespace

// ---- commands ----

void command_slice(int, const char *const *words)
{
    slice_t slice = {};
    float numbers[6];
    for (int i = 0; i < 6; ++i)
        numbers[i] = finite_float_of(words[i]);
    slice.how.at = {numbers[0], numbers[1], numbers[2]};
    slice.how.normal = {numbers[3], numbers[4], numbers[5]};
    if (numbers[3] == 0 && numbers[4] == 0 && numbers[5] == 0) {
        display_message("slice - the plane has no normal");
        return;
    }
    const char *keep = words[6];
    slice.how.front = std::strcmp(keep, "back") != 0;
    slice.how.back = std::strcmp(keep, "front") != 0;
    if (slice.how.front && slice.how.back && std::strcmp(keep, "both") != 0) {
        display_message("slice - keep both, front or back, not \"%s\"", keep);
        return;
    }
    slice.how.cap = int_of(words[7]) != 0;
    run_slice(slice);
}
