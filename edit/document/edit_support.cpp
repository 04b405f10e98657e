#include "edit/document/edit_support.h"

#include "base/messages.h"
#include "base/prefs.h"
#include "base/redraw.h"
#include "edit/document/following_normals.h"
#include "edit/document/select_made.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo.h"
#include "model/flat_mesh.h"
#include "model/freed.h"
#include "model/normals_internal.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <unordered_set>

std::vector<object_t *> without_descendants(const std::vector<object_t *> &objects)
{
    std::vector<object_t *> top = unique_objects(objects); // numbers them
    const auto is_listed = [&](const object_t *object) {
        const uint32_t place = scratch(object);
        return place < objects.size() && objects[place] == object;
    };
    // Neighbours mostly have the same parent.
    const object_t *parent = nullptr;
    bool is_below = false;
    std::erase_if(top, [&](const object_t *object) {
        if (object->parent != parent) {
            parent = object->parent;
            const object_t *above = parent;
            while (above != nullptr && !is_listed(above))
                above = above->parent;
            is_below = above != nullptr;
        }
        return object->parent != nullptr && is_below;
    });
    return top;
}

std::vector<object_t *> selected_objects() { return elements_of<object_t>(selection().objects); }

std::vector<object_t *> selected_top_objects() { return without_descendants(selected_objects()); }

void select_results(const std::vector<object_t *> &objects)
{
    clear_selection();
    if (mode_has_elements(select_mode())) {
        selection_add_by_rule(objects);
    } else {
        std::vector<object_t *> reachable;
        for (object_t *object : objects) {
            if (object->visible != 0 && object->locked == 0)
                reachable.push_back(object);
        }
        selection_add_objects(reachable);
    }
    selection_changed("select");
}

namespace {

// The scratch words of the listed elements are their ranks. `record` gives the element at a place.
template <class T, class Record>
void sort_by_rank(std::vector<owned_elements> &owners, const listitem *list, Record &&record)
{
    uint32_t rank = 0;
    for (T *element : each<T>(list))
        set_scratch(element, rank++);
    for (owned_elements &owned : owners) {
        const flat_ptr mesh = object_flat(owned.object);
        const auto earlier = [&](int a, int b) {
            return scratch(record(*mesh, a)) < scratch(record(*mesh, b));
        };
        if (!std::is_sorted(owned.indices.begin(), owned.indices.end(), earlier))
            std::sort(owned.indices.begin(), owned.indices.end(), earlier);
    }
}

} // namespace

std::vector<owned_elements> surfaces_by_owner_in_order(const listitem *surfaces)
{
    std::vector<owned_elements> owners = surfaces_by_owner(surfaces);
    sort_by_rank<surface_t>(owners, surfaces, [](const flat_mesh &mesh, int place) {
        return mesh.surface_record(place);
    });
    return owners;
}

std::vector<owned_elements> vertices_by_owner_in_order(const listitem *vertices)
{
    std::vector<owned_elements> owners = vertices_by_owner(vertices);
    for (const owned_elements &owned : owners)
        object_flat(owned.object); // numbers the vertices where it is built anew
    sort_by_rank<vertex>(owners, vertices, [](const flat_mesh &mesh, int place) {
        return mesh.vertex_record(place);
    });
    return owners;
}

std::vector<owned_elements> target_surfaces()
{
    std::vector<owned_elements> of_objects;
    std::unordered_set<const object_t *> whole;
    for (object_t *top : selected_top_objects()) {
        for_each_object(top, [&](object_t *object) {
            whole.insert(object);
            if (object->num_surfaces == 0)
                return;
            std::vector<int> all(object_flat(object)->surfaces->size());
            std::iota(all.begin(), all.end(), 0);
            of_objects.push_back({object, std::move(all)});
        });
    }
    const owned_list surfaces(find_selected_whole_surfaces());
    std::vector<owned_elements> targets = surfaces_by_owner_in_order(surfaces.get());
    std::erase_if(targets, [&](const owned_elements &owned) { return whole.count(owned.object); });
    std::move(of_objects.begin(), of_objects.end(), std::back_inserter(targets));
    return targets;
}

std::size_t count_elements(const std::vector<owned_elements> &owners)
{
    std::size_t count = 0;
    for (const owned_elements &owned : owners)
        count += owned.indices.size();
    return count;
}

void run_surface_operation(const char *what, bool (*compute)(surface_work &work))
{
    const std::vector<owned_elements> targets = target_surfaces();
    const std::size_t total = count_elements(targets);
    if (total > 0)
        display_message("%s...", what);
    progress_t progress(static_cast<double>(total));
    double done = 0;
    int changed = 0;
    std::vector<surface_t *> results;
    std::vector<mesh_change> changes;
    for (const owned_elements &owned : targets) {
        surface_work work = {changes.emplace_back(owned.object), owned.indices, progress, done};
        if (!compute(work)) {
            display_message("%s - cancelled", what);
            return;
        }
        changed += work.changed;
        results.insert(results.end(), work.kept.begin(), work.kept.end());
    }
    if (changed == 0) {
        display_message("%s - nothing selected", what);
        return;
    }
    open_world_undo(what);
    clear_selection(); // before: unselected elements need no search among those that are freed
    std::vector<object_t *> touched;
    {
        freed_batch at_once;
        for (std::size_t i = 0; i < changes.size(); ++i) {
            const std::vector<surface_t *> made = changes[i].commit().surfaces;
            results.insert(results.end(), made.begin(), made.end());
            touched.push_back(targets[i].object);
        }
    }
    calc_normals_of(touched);
    select_made_surfaces(results);
    finish_edit();
    display_message("%s - %d surfaces", what, changed);
}

void calc_normals_of(const std::vector<object_t *> &objects)
{
    for (object_t *object : without_descendants(objects)) {
        object_renew_normals(object);
        if (prefs.recalc_normals != 0)
            for_each_object(object,
                            [](object_t *part) { normals_were_computed(*object_flat(part)); });
    }
}

void open_world_undo(const char *label)
{
    new_undo(UNDO_WORLD, label);
    set_undo_all();
}

void finish_edit()
{
    find_bounding_box();
    redraw_all();
    display_status();
}
