#include "edit/edit_support.h"

#include "app/messages.h"
#include "app/prefs.h"
#include "edit/selection_scan.h"
#include "edit/undo_internal.h"
#include "model/flat_mesh.h"
#include "model/normals.h"
#include "view/redraw.h"

#include <algorithm>
#include <unordered_set>

std::vector<object_t *> without_descendants(const std::vector<object_t *> &objects)
{
    const std::unordered_set<const object_t *> all(objects.begin(), objects.end());
    std::vector<object_t *> top;
    for (object_t *object : unique_objects(objects)) {
        const object_t *above = object->parent;
        while (above != nullptr && all.count(above) == 0)
            above = above->parent;
        if (above == nullptr)
            top.push_back(object);
    }
    return top;
}

std::vector<object_t *> selected_objects() { return elements_of<object_t>(selection().objects); }

std::vector<object_t *> selected_top_objects() { return without_descendants(selected_objects()); }

void select_results(const std::vector<object_t *> &objects)
{
    clear_selection();
    if (select_mode() == SELECT_SURFACE || select_mode() == SELECT_VERTEX) {
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

std::vector<owned_elements> surfaces_by_owner_in_order(const listitem *surfaces)
{
    std::vector<owned_elements> owners = surfaces_by_owner(surfaces);
    uint32_t rank = 0;
    for (surface_t *surface : each<surface_t>(surfaces))
        set_scratch(surface, rank++);
    for (owned_elements &owned : owners) {
        const flat_ptr mesh = object_flat(owned.object);
        const auto earlier = [&](int a, int b) {
            return scratch((*mesh->surface_records)[static_cast<std::size_t>(a)]) <
                   scratch((*mesh->surface_records)[static_cast<std::size_t>(b)]);
        };
        if (!std::is_sorted(owned.indices.begin(), owned.indices.end(), earlier))
            std::sort(owned.indices.begin(), owned.indices.end(), earlier);
    }
    return owners;
}

void calc_normals_of(const std::vector<object_t *> &objects)
{
    for (object_t *object : without_descendants(objects))
        object_calc_normals(object);
}

void cancelled(const char *what)
{
    if (prefs.undo_levels > 0)
        undo_drop_newest();
    display_message("%s - cancelled", what);
}

void finish_edit()
{
    find_bounding_box();
    redraw_all();
    display_status();
}
