#include "edit/slice.h"

#include "base/messages.h"
#include "base/numbers.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_scan.h"
#include "edit/mesh/plane_cut.h"
#include "edit/mesh/surface_copy.h"
#include "edit/symmetry.h"
#include "edit/symmetry_elements.h"
#include "model/child_changes.h"
#include "model/freed.h"
#include "model/object_internal.h"
#include "model/vector.h"

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
    std::vector<surface_t *> pieces;                     // that are there afterwards
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

// Selects the results: objects with what was made of them, or surfaces.
void select_pieces(const slice_t &slice, std::vector<object_t *> results,
                   const std::vector<object_t *> &touched)
{
    if (!slice.by_objects) {
        owned_list surfaces;
        for (surface_t *surface : slice.pieces)
            surfaces.add(surface);
        select_surfacelist(surfaces.get());
        return;
    }
    std::vector<object_t *> empty;
    for (object_t *object : touched) {
        if (object->num_surfaces == 0 && object->num_vertices == 0 && object->children == nullptr)
            empty.push_back(object);
    }
    const std::unordered_set<const object_t *> going(empty.begin(), empty.end());
    std::erase_if(results, [&](const object_t *object) { return going.contains(object); });
    objects_delete(empty);
    select_results(results);
}

// Writes everything back and selects the results.
void commit(slice_t &slice, const std::vector<object_t *> &touched)
{
    std::vector<object_t *> results = selected_objects();
    clear_selection();
    {
        freed_batch at_once;
        for (std::size_t i = 0; i < slice.changes.size(); ++i) {
            const flat_mesh &before = slice.changes[i].before();
            for (const int s : slice.kept[i])
                slice.pieces.push_back(before.surface_record(s));
            for (surface_t *surface : slice.changes[i].commit().surfaces)
                slice.pieces.push_back(surface);
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
    select_pieces(slice, std::move(results), touched);
    finish_edit();
}

enum class outcome { done, nothing, cancelled };

outcome run_slice(slice_t &slice, const std::vector<owned_elements> &targets)
{
    std::vector<object_t *> touched;
    {
        progress_t progress(2.0 * static_cast<double>(count_elements(targets)));
        double done = 0;
        for (const owned_elements &owned : targets) {
            if (!compute(slice, owned, progress, done)) {
                drop_made(slice);
                return outcome::cancelled;
            }
            touched.push_back(owned.object);
        }
    }
    if (slice.cut + slice.gone == 0) {
        drop_made(slice);
        return outcome::nothing;
    }
    open_world_undo("slice");
    commit(slice, touched);
    return outcome::done;
}

// ---- with symmetry ----

using surfaces_t = std::vector<surface_t *>;

surfaces_t shared(const surfaces_t &these, const surfaces_t &those, bool are_in_both)
{
    const std::unordered_set<const surface_t *> in_those(those.begin(), those.end());
    surfaces_t found;
    for (surface_t *surface : these) {
        if (in_those.contains(surface) == are_in_both)
            found.push_back(surface);
    }
    return found;
}

plane_cut_t mirrored(plane_cut_t how, const object_t *owner)
{
    const int axis = symmetry_axis();
    axis_of(how.at, axis) = 2 * symmetry_plane(owner) - axis_of(how.at, axis);
    axis_of(how.normal, axis) *= -1;
    return how;
}

// The chosen surfaces by the plane, their counterparts by its mirror image, and those that are on
// both sides by both.
class slice_of_both_sides {
public:
    explicit slice_of_both_sides(const plane_cut_t &how) : here_(how) {}

    void run()
    {
        int without = 0;
        const owned_list chosen(find_selected_whole_surfaces());
        const surfaces_t ours = elements_of<surface_t>(chosen.get());
        const surfaces_t theirs = counterparts_of(chosen.get(), &without);
        const plane_cut_t there = mirrored(here_, target_surfaces().front().object);
        const surfaces_t only_ours = shared(ours, theirs, false),
                         only_theirs = shared(theirs, ours, false);
        single_record record;
        surfaces_t results = cut(cut(shared(ours, theirs, true), here_), there);
        const surfaces_t own = cut(only_ours, here_);
        cut(only_theirs, there);
        if (cancelled_) {
            record.take_back();
            display_message("slice - cancelled");
            return;
        }
        results.insert(results.end(), own.begin(), own.end());
        clear_selection();
        selection_add_surfaces(results);
        finish_edit();
        if (record.was_opened())
            display_message("slice - %d surfaces", num_cut_);
        else
            display_message("slice - the plane cuts nothing");
        tell_without_counterpart(without);
    }

private:
    // The pieces, or the surfaces themselves where nothing is cut.
    surfaces_t cut(const surfaces_t &surfaces, const plane_cut_t &how)
    {
        owned_list list;
        for (surface_t *surface : surfaces)
            list.add(surface);
        slice_t slice = {};
        slice.how = how;
        const outcome out =
            cancelled_ ? outcome::nothing : run_slice(slice, surfaces_by_owner(list.get()));
        cancelled_ = cancelled_ || out == outcome::cancelled;
        num_cut_ += out == outcome::done ? slice.cut : 0;
        return out == outcome::done ? slice.pieces : surfaces;
    }

    plane_cut_t here_;
    int num_cut_ = 0;
    bool cancelled_ = false;
};

void slice_selected(const plane_cut_t &how)
{
    const std::vector<owned_elements> targets = target_surfaces();
    if (count_elements(targets) == 0) {
        display_message("slice - nothing selected");
        return;
    }
    display_message("slice...");
    if (symmetry_acts()) {
        slice_of_both_sides(how).run();
        return;
    }
    slice_t slice = {};
    slice.how = how;
    slice.by_objects = selection().objects != nullptr;
    switch (run_slice(slice, targets)) {
    case outcome::done:
        display_message("slice - %d surfaces", slice.cut);
        break;
    case outcome::nothing:
        display_message("slice - the plane cuts nothing");
        break;
    default:
        display_message("slice - cancelled");
    }
}

} // namespace

// ---- commands ----

void command_slice(int, const char *const *words)
{
    plane_cut_t how = {};
    float numbers[6];
    for (int i = 0; i < 6; ++i)
        numbers[i] = finite_float_of(words[i]);
    how.at = {numbers[0], numbers[1], numbers[2]};
    how.normal = {numbers[3], numbers[4], numbers[5]};
    if (numbers[3] == 0 && numbers[4] == 0 && numbers[5] == 0) {
        display_message("slice - the plane has no normal");
        return;
    }
    const char *keep = words[6];
    how.front = std::strcmp(keep, "back") != 0;
    how.back = std::strcmp(keep, "front") != 0;
    if (how.front && how.back && std::strcmp(keep, "both") != 0) {
        display_message("slice - keep both, front or back, not '%s'", keep);
        return;
    }
    how.cap = int_of(words[7]) != 0;
    slice_selected(how);
}
