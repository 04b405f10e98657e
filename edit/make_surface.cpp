#include "edit/make_surface.h"

#include "base/messages.h"
#include "edit/delete.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo.h"
#include "edit/mesh/outline.h"
#include "edit/mesh/surface_copy.h"
#include "edit/mesh/vertex_use.h"
#include "edit/symmetry.h"
#include "edit/symmetry_elements.h"
#include "model/freed.h"
#include "model/object_tree.h"
#include "model/world.h"

#include <algorithm>

namespace {

// The vertices in an order in which the polygon's outline does not cross itself.
void untangle(std::vector<vertex *> &vertices)
{
    std::vector<point3_t> points;
    points.reserve(vertices.size());
    for (const vertex *point : vertices)
        points.push_back(point->position);
    const std::vector<plane_point> outline = in_best_fit_plane(points);
    if (!outline_crosses_itself(outline))
        return;
    std::vector<vertex *> ordered;
    ordered.reserve(vertices.size());
    for (const int i : order_by_angle(outline))
        ordered.push_back(vertices[i]);
    vertices = std::move(ordered);
}

surface_t *add_surface(object_t *object, const std::vector<vertex *> &vertices, int type)
{
    mesh_change change(object);
    const flat_mesh &mesh = change.before();
    const vertex_corners corners(mesh);
    number_vertices(object);
    change.add_surface(-1);
    change.set_type(type);
    for (const vertex *point : vertices) {
        const int at = static_cast<int>(vertex_number(point));
        const auto uses = corners.of(at);
        change.add_corner(at, uses.empty() ? flat_uv{0, 0} : mesh.uv(uses.front()));
    }
    return change.commit().surfaces.front();
}

// The copies of several owners' surfaces as one object.
object_t *joined(const std::vector<object_t *> &objects)
{
    object_t *first = objects.front();
    freed_batch at_once;
    for (std::size_t i = 1; i < objects.size(); ++i) {
        object_t *other = objects[i];
        object_add_vertices(first, other->vertices);
        object_add_surfaces(first, other->surfaces);
        list_free(&other->vertices);
        list_free(&other->surfaces);
        other->num_vertices = other->num_surfaces = 0;
        object_free(other);
    }
    return first;
}

void make_surface_of_selection(int type)
{
    const int fewest = type == SURFACE_LINE ? 2 : 3;
    std::vector<vertex *> vertices;
    if (mode_has_vertices(select_mode()))
        vertices = elements_of<vertex>(selection().vertices);
    const std::vector<object_t *> owners = owners_of_vertices(vertices);
    const bool one_object = std::all_of(owners.begin(), owners.end(),
                                        [&](object_t *owner) { return owner == owners.front(); });
    if (!one_object || static_cast<int>(vertices.size()) < fewest) {
        display_message("select at least %d vertices of one object", fewest);
        return;
    }
    display_message("create surface...");
    if (type == SURFACE_POLYGON)
        untangle(vertices);
    // The record of one surface would not take back the two of symmetry.
    const bool whole = symmetry_acts();
    if (whole)
        open_world_undo("create surface");
    else
        new_undo(UNDO_SURFACE, "create surface");
    surface_t *surface = add_surface(owners.front(), vertices, type);
    if (!whole)
        set_undo_surface(surface);
    calc_normals_of({owners.front()});
    finish_edit();
    display_message("create surface - %d vertices", static_cast<int>(vertices.size()));
}

} // namespace

std::vector<object_t *> separate_selected_surfaces()
{
    const owned_list surfaces(find_selected_whole_surfaces());
    std::vector<object_t *> made;
    std::vector<object_t *> parents;
    owned_list leaving;
    for (const owned_elements &owned : surfaces_by_owner(surfaces.get())) {
        if (static_cast<int>(owned.indices.size()) == owned.object->num_surfaces) {
            made.push_back(owned.object);
            continue;
        }
        parents.push_back(owned.object->parent);
        for (const int place : owned.indices)
            leaving.add(object_flat(owned.object)->surface_record(place));
    }
    const std::vector<object_t *> pieces = objects_of_surfaces(leaving.get());
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        object_add_child(parents[i], pieces[i]);
        made.push_back(pieces[i]);
    }
    clear_selection();
    surfacelist_delete_with_vertices(leaving.get());
    calc_normals_of(made);
    owned_list chosen;
    for (object_t *object : made)
        chosen.add(object);
    select_objectlist(chosen.get());
    return made;
}

// ---- commands ----

void command_createsurface(int type)
{
    if (type < SURFACE_POLYGON || type > SURFACE_LINE) {
        display_message("create surface - no type %d", type);
        return;
    }
    on_both_sides([&] { make_surface_of_selection(type); });
}

void command_surface_create_object()
{
    const owned_list surfaces(find_selected_whole_surfaces());
    if (!surfaces) {
        display_message("create object - nothing selected");
        return;
    }
    display_message("create object...");
    object_t *object = joined(objects_of_surfaces(surfaces.get()));
    object_add_child(vesk_get_world(), object);
    new_undo(UNDO_OBJECT, "create object");
    set_undo_object(object);
    calc_normals_of({object});
    clear_selection();
    select_object(object);
    finish_edit();
    display_message("create object - %d surfaces", object->num_surfaces);
}

void command_surfaces_separate()
{
    if (!owned_list(find_selected_whole_surfaces())) {
        display_message("separate - nothing selected");
        return;
    }
    display_message("separate...");
    new_undo(UNDO_WORLD, "separate");
    set_undo_all();
    const std::vector<object_t *> made = separate_selected_surfaces();
    finish_edit();
    display_message("separate - %d objects", static_cast<int>(made.size()));
}
