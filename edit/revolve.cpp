#include "edit/revolve.h"

#include "base/messages.h"
#include "base/prefs.h"
#include "base/redraw.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "edit/link_surfaces.h"
#include "edit/mesh/kept_colours.h"
#include "model/angle.h"
#include "model/bounds.h"
#include "model/change_marks.h"
#include "model/freed.h"
#include "model/matrix.h"
#include "model/normals.h"

#include <unordered_set>

namespace {

// The object's vertices turned about the axis.
listitem *ring(const object_t *object, int axis, float angle)
{
    float m[9];
    matrix_set_rotate(m, axis == 0 ? angle : 0.0f, axis == 1 ? angle : 0.0f,
                      axis == 2 ? angle : 0.0f);
    return copy_vertices_rotated(object->vertices, m);
}

void free_surfaces(listitem *surfaces)
{
    for (surface_t *surface : each<surface_t>(surfaces))
        surface_free_record(surface);
    list_free(&surfaces);
}

void remove_lines(object_t *object)
{
    freed_batch batch;
    object->num_surfaces -= list_unlink_if<surface_t>(
        &object->surfaces, batch, [](const surface_t *surface, std::size_t /*place*/) {
            return surface->type != SURFACE_POLYGON;
        });
    object_mark(object, CHANGED_TOPOLOGY);
}

// The polygons of the last copy, reversed; its lines are dropped.
void add_end_cap(object_t *object, listitem *copies)
{
    for (surface_t *copy : each<surface_t>(copies)) {
        if (copy->type != SURFACE_POLYGON) {
            surface_free_record(copy);
            continue;
        }
        surface_reverse_normal(copy);
        object_add_surface(object, copy);
    }
    list_free(&copies);
}

void revolve_one(object_t *object, int axis, float degrees, int n)
{
    const kept_colours colours(object);
    const float step = radians(degrees) / static_cast<float>(n);
    const bool closes = degrees == 360.0f;
    // Of the rings, the links and the surfaces of the ring before only.
    std::vector<owned_list> rings, links;
    listitem *copies = nullptr;
    for (int k = 0; k < n; ++k) {
        rings.emplace_back(ring(object, axis, static_cast<float>(k + 1) * step));
        const listitem *current = rings.back().get();
        if (k == 0) {
            links.emplace_back(create_link_surfaces(object->surfaces, object->vertices, current));
        } else {
            const listitem *before = rings[rings.size() - 2].get();
            const listitem *target = closes && k == n - 1 ? object->vertices : current;
            links.emplace_back(create_link_surfaces(copies, before, target));
        }
        free_surfaces(copies);
        copies = copy_surfacelist(object->surfaces, object->vertices, current);
    }
    remove_lines(object);
    for (const owned_list &points : rings)
        object_add_vertices(object, points.get());
    add_end_cap(object, copies);
    for (const owned_list &surfaces : links)
        object_add_surfaces(object, surfaces.get());
    colours.give_back();
}

} // namespace

void object_revolve(object_t *object, int axis, float degrees, int n)
{
    if (n < 1)
        return;
    for_each_object(object, [&](object_t *part) { revolve_one(part, axis, degrees, n); });
}

void rotate_form_selected_objects_param(int axis, float degrees, int n)
{
    if (!(degrees > 0 && degrees <= 360)) {
        windows_message_dialog("The setting 'revolve degrees' is out of range (should be 1-360)");
        return;
    }
    open_world_undo("revolve");
    for (object_t *object : selected_top_objects()) {
        object_revolve(object, axis, degrees, n);
        object_calc_normals(object);
        object_calculate_centre(object);
    }
    find_bounding_box();
    redraw_all();
}

// ---- commands ----

void rotate_form_selected_objects(int axis)
{
    rotate_form_selected_objects_param(axis, static_cast<float>(prefs.revolve_degs),
                                       prefs.revolve_segments);
    display_status();
}
