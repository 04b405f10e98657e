#include "edit/delete.h"

#include "base/messages.h"
#include "edit/document/edit_support.h"
#include "edit/document/undo.h"
#include "edit/mesh/mesh_change.h"
#include "model/alloc.h"
#include "model/change_marks.h"
#include "model/child_changes.h"
#include "model/freed.h"
#include "model/owners.h"

namespace {

std::vector<object_t *> delete_surfaces(const listitem *surfaces, bool with_vertices)
{
    std::vector<object_t *> touched;
    freed_batch batch;
    for (const owned_elements &owned : surfaces_by_owner(surfaces)) {
        mesh_change change(owned.object);
        for (const int surface : owned.indices)
            change.remove_surface(surface);
        if (with_vertices)
            change.remove_unused();
        change.commit();
        touched.push_back(owned.object);
    }
    return touched;
}

std::vector<object_t *> delete_vertices(const listitem *vertices)
{
    std::vector<object_t *> touched;
    freed_batch batch;
    for (const owned_elements &owned : vertices_by_owner(vertices)) {
        mesh_change change(owned.object);
        for (const int v : owned.indices)
            change.remove_vertex(v);
        change.remove_unused();
        change.commit();
        touched.push_back(owned.object);
    }
    return touched;
}

void delete_selected_objects(const char *label)
{
    const std::vector<object_t *> objects = selected_top_objects();
    new_undo(UNDO_DELETE, label);
    if (set_undo_delete_selection() == 0)
        objects_delete(objects);
}

} // namespace

int object_remove_surface(object_t *object, surface_t *surface)
{
    if (list_remove_item(&object->surfaces, surface) == 0)
        return 0;
    --object->num_surfaces;
    object_mark(object, CHANGED_TOPOLOGY);
    freed_batch batch;
    batch.add(surface);
    return 1;
}

int surface_delete_svertex(surface_t *surface, svertex *reference)
{
    if (list_remove_item(&surface->refs, reference) == 0)
        return 0;
    --surface->num_refs;
    myfree(reference);
    return 1;
}

void surfacelist_delete_with_vertices(const listitem *surfaces) { delete_surfaces(surfaces, true); }

// ---- commands ----

void delete_selected(void) { delete_selection("delete"); }

void delete_selection(const char *label)
{
    if (nothing_is_selected() != 0) {
        display_message("%s - nothing selected", label);
        return;
    }
    display_message("%s...", label);
    const selection_t &all = selection();
    const int mode = select_mode();
    const bool surfaces = mode == SELECT_SURFACE;
    const int count = surfaces                  ? all.num_surfaces
                      : mode_has_vertices(mode) ? all.num_vertices
                                                : all.num_objects;
    std::vector<object_t *> touched;
    if (surfaces || mode_has_vertices(mode)) {
        open_world_undo(label);
        const owned_list elements(list_clone(surfaces ? all.surfaces : all.vertices));
        touched =
            surfaces ? delete_surfaces(elements.get(), true) : delete_vertices(elements.get());
    } else {
        delete_selected_objects(label);
    }
    clear_selection();
    calc_normals_of(touched);
    finish_edit();
    display_message("%s - %d %s", label, count,
                    surfaces ? "surfaces" : (mode_has_vertices(mode) ? "vertices" : "objects"));
}

void remove_selected_surfaces(void)
{
    const owned_list surfaces(find_selected_whole_surfaces());
    if (!surfaces) {
        display_message("remove surface - nothing selected");
        return;
    }
    display_message("remove surface...");
    const int count = list_count(surfaces.get());
    open_world_undo("remove surface");
    calc_normals_of(delete_surfaces(surfaces.get(), false));
    finish_edit();
    display_message("remove surface - %d surfaces", count);
}
