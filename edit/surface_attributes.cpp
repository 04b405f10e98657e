#include "edit/surface_attributes.h"

#include "base/messages.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_scan.h"
#include "model/change_marks.h"
#include "model/normals.h"
#include "model/owners.h"
#include "model/palette.h"

namespace {

// Changes every surface of the selection; `change` says whether it took the surface.
template <class Change>
void change_surfaces(const char *what, unsigned aspects, Change &&change)
{
    const owned_list surfaces(find_selected_whole_surfaces());
    if (!surfaces && selection().objects == nullptr) {
        display_message("%s - nothing selected", what);
        return;
    }
    display_message("%s...", what);
    open_world_undo(what);
    int count = 0;
    std::vector<object_t *> touched;
    for (const owned_elements &owned : surfaces_by_owner(surfaces.get())) {
        touched.push_back(owned.object);
        object_mark(owned.object, aspects);
    }
    for (surface_t *surface : each<surface_t>(surfaces.get()))
        count += change(surface) ? 1 : 0;
    for (object_t *object : selected_top_objects()) {
        touched.push_back(object);
        for_each_object(object, [&](object_t *part) {
            for (surface_t *surface : each<surface_t>(part->surfaces))
                count += change(surface) ? 1 : 0;
            object_mark(part, aspects);
        });
    }
    if ((aspects & CHANGED_TOPOLOGY) != 0)
        calc_normals_of(touched);
    finish_edit();
    display_message("%s - %d surfaces", what, count);
}

bool flip(surface_t *surface)
{
    if (surface->type != SURFACE_POLYGON)
        return false;
    surface_reverse_normal(surface);
    return true;
}

bool first_to_end(surface_t *surface)
{
    listitem *first = surface->refs;
    if (first == nullptr || first->next == nullptr)
        return false;
    void *corner = item_of<void>(first);
    list_remove_item(&surface->refs, corner);
    list_add_item(&surface->refs, corner);
    return true;
}

} // namespace

// ---- commands ----

void command_surface_flip_normals() { change_surfaces("flip normals", CHANGED_TOPOLOGY, flip); }

void command_surface_change_vertex_order()
{
    change_surfaces("change vertex order", CHANGED_TOPOLOGY, first_to_end);
}

void command_surface_set_shaded(int smooth)
{
    change_surfaces("set shading", CHANGED_ATTRIBUTES, [smooth](surface_t *surface) {
        surface_set_shading(surface, smooth != 0 ? 1 : 0);
        return true;
    });
}

void command_surface_set_twosided(int twosided)
{
    change_surfaces("set sides", CHANGED_ATTRIBUTES, [twosided](surface_t *surface) {
        surface_set_twosided(surface, twosided != 0 ? 1 : 0);
        return true;
    });
}

void command_set_surface_type(int type)
{
    if (type < SURFACE_POLYGON || type > SURFACE_LINE) {
        display_message("set surface type - no type %d", type);
        return;
    }
    change_surfaces("set surface type", CHANGED_ATTRIBUTES, [type](surface_t *surface) {
        surface_set_type(surface, type);
        return true;
    });
}

void command_set_col(int entry)
{
    if (entry < 0 || entry >= vesk_get_num_palette()) {
        display_message("set colour - no palette entry %d", entry);
        return;
    }
    change_surfaces("set colour", CHANGED_ATTRIBUTES, [entry](surface_t *surface) {
        surface_set_col(surface, entry);
        return true;
    });
}
