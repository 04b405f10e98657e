#include "edit/duplicate.h"

#include "base/command_result.h"
#include "base/messages.h"
#include "base/numbers.h"
#include "base/prefs.h"
#include "edit/axis_pivot.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo.h"
#include "edit/mesh/mesh_change.h"
#include "edit/snap.h"
#include "edit/transform.h"
#include "model/child_changes.h"
#include "model/identity.h"
#include "model/object_tree.h"
#include "model/owners.h"
#include "model/vector.h"

namespace {

point3_t shift_of_copies()
{
    if (prefs.shift_duplicated == 0)
        return {0, 0, 0};
    const auto step = static_cast<float>(prefs.grid);
    point3_t offset = {step, step, step};
    snap_to_grid(&offset);
    return offset;
}

} // namespace

void commit_copies(const char *what, const std::vector<object_t *> &copies, child_changes &changes)
{
    owned_list undo;
    for (object_t *copy : copies)
        undo.add(copy);
    new_undo(UNDO_OBJECTS, what);
    set_undo_objectlist(undo.get());
    changes.commit();
    select_results(copies);
}

namespace {

// Each copy follows its original. Their marks are their own: a copy is visible where it can be
// selected.
std::vector<object_t *> duplicate_objects(const char *what, const point3_t &offset)
{
    std::vector<object_t *> copies;
    child_changes changes;
    for (object_t *object : selected_top_objects()) {
        object_t *copy = object_clone(object);
        translate_object(copy, &offset);
        changes.replace(object, {object, copy});
        copies.push_back(copy);
    }
    commit_copies(what, copies, changes);
    return copies;
}

// Copies of the surfaces of one object in it; normals of the originals hold for them too.
mesh_result copy_surfaces(const owned_elements &owned, const point3_t &offset)
{
    mesh_change change(owned.object);
    const flat_mesh &mesh = change.before();
    std::vector<int> copies(mesh.num_vertices(), -1);
    for (const int surface : owned.indices) {
        change.add_surface(surface);
        auto corner = mesh.first_corner(surface);
        for (const int v : mesh.surface_corners(surface)) {
            if (copies[v] < 0)
                copies[v] = change.add_vertex(point_add(change.position(v), offset), v);
            change.add_corner(copies[v], mesh.uv(corner++));
        }
    }
    return change.commit();
}

void open_undo(const char *what, const std::vector<owned_elements> &owners)
{
    if (owners.size() == 1) {
        new_undo(UNDO_SURFACES, what);
        return;
    }
    open_world_undo(what);
}

std::vector<surface_t *> duplicate_surfaces(const char *what, const listitem *surfaces,
                                            const point3_t &offset)
{
    const std::vector<owned_elements> owners = surfaces_by_owner(surfaces);
    open_undo(what, owners);
    owned_list made, vertices;
    std::vector<object_t *> touched;
    for (const owned_elements &owned : owners) {
        const mesh_result result = copy_surfaces(owned, offset);
        for (surface_t *surface : result.surfaces)
            made.add(surface);
        for (vertex *point : result.vertices)
            vertices.add(point);
        touched.push_back(owned.object);
    }
    if (owners.size() == 1) {
        set_undo_object_surfacelist(owners.front().object, made.get());
        set_undo_vertices(vertices.get());
    }
    calc_normals_of(touched);
    clear_selection();
    select_surfacelist(made.get());
    return elements_of<surface_t>(made.get());
}

void append_places(const std::vector<surface_t *> &surfaces)
{
    owned_list list;
    for (surface_t *surface : surfaces)
        list.add(surface);
    for (const owned_elements &owned : surfaces_by_owner(list.get())) {
        for (const int index : owned.indices)
            command_result_append_element(index);
    }
}

// `what` names it to the user.
void duplicate(const char *what, const point3_t &offset, bool wants_result)
{
    if (mode_has_elements(select_mode())) {
        const owned_list surfaces(find_selected_whole_surfaces());
        if (!surfaces) {
            display_message("%s - nothing selected", what);
            return;
        }
        display_message("%s...", what);
        const std::vector<surface_t *> made = duplicate_surfaces(what, surfaces.get(), offset);
        if (wants_result)
            append_places(made);
        finish_edit();
        display_message("%s - %d surfaces", what, static_cast<int>(made.size()));
        return;
    }
    if (selection().objects == nullptr) {
        display_message("%s - nothing selected", what);
        return;
    }
    display_message("%s...", what);
    const std::vector<object_t *> copies = duplicate_objects(what, offset);
    for (const object_t *copy : copies) {
        if (wants_result)
            command_result_append_element(object_identity(copy));
    }
    finish_edit();
    display_message("%s - %d objects", what, static_cast<int>(copies.size()));
}

} // namespace

// ---- commands ----

void duplicate_selected(void) { duplicate("duplicate", shift_of_copies(), false); }

void command_duplicate_along(int count, const char *const *words)
{
    const std::optional<vec3d> axis = axis_of_word("duplicate", count > 1 ? words[1] : "normal");
    if (axis)
        duplicate("duplicate", to_point(*axis * double_of(words[0])), false);
}

void command_clone_selection()
{
    command_result_set("");
    duplicate("clone", {0, 0, 0}, true);
}
