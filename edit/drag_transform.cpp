#include "edit/drag_transform.h"

#include "edit/selection_internal.h"
#include "edit/selection_scan.h"
#include "edit/transform.h"
#include "edit/undo.h"
#include "model/change_marks.h"
#include "model/matrix.h"
#include "model/normals.h"
#include "model/vector.h"

namespace {

constexpr float pi = 3.1415927f;

// The rotation of rotate_selected as the global matrix.
void set_drawn_rotation(const drag_change_t &change)
{
    const float a = change.degrees * pi / 180.0f;
    set_global_matrix_rotate(change.view == VIEW_ZY ? a : 0.0f, change.view == VIEW_XZ ? -a : 0.0f,
                             change.view == VIEW_XY ? -a : 0.0f);
}

float map_axis(float value, float from_min, float from_max, float to_min, float to_max)
{
    const float size = from_max - from_min;
    if (size == 0) {
        return value + (to_min - from_min);
    }
    return to_min + (value - from_min) * ((to_max - to_min) / size);
}

point3_t transformed(const point3_t &p, const drag_change_t &change)
{
    switch (change.kind) {
    case drag_change_t::MOVE:
        return point_add(p, change.offset);
    case drag_change_t::ROTATE: {
        point3_t turned = point_sub(p, change.centre);
        rotate_point_3d(&turned);
        return point_add(turned, change.centre);
    }
    default:
        return map_between_boxes(p, change);
    }
}

} // namespace

point3_t map_between_boxes(const point3_t &p, const drag_change_t &c)
{
    return {map_axis(p.x, c.from_min.x, c.from_max.x, c.to_min.x, c.to_max.x),
            map_axis(p.y, c.from_min.y, c.from_max.y, c.to_min.y, c.to_max.y),
            map_axis(p.z, c.from_min.z, c.from_max.z, c.to_min.z, c.to_max.z)};
}

drag_transform_t::drag_transform_t() : box_min(selection().box_min), box_max(selection().box_max)
{
    const selection_t &all = selection();
    std::vector<vertex *> found = elements_of<vertex>(all.vertices);
    for (const surface_t *surface : each<surface_t>(all.surfaces)) {
        append_surface_vertices(surface, &found);
    }
    for (object_t *top : each<object_t>(all.objects)) {
        for_each_object(top, [&](object_t *object) {
            append_elements(object->vertices, &found);
            moved_object_t moved = {object, object->centre, {}};
            matrix_copy(object->rotation, moved.rotation);
            objects.push_back(moved);
            owners.push_back(object);
        });
    }
    listitem *unique = nullptr;
    add_unique(&unique, found);
    vertices = elements_of<vertex>(unique);
    list_free(&unique);
    positions.reserve(vertices.size());
    for (const vertex *v : vertices) {
        positions.push_back(v->position);
    }
    if (objects.empty()) {
        owners = owners_of_vertices(vertices);
        std::erase(owners, nullptr);
        owners = unique_objects(owners);
    }
}

void drag_transform_t::mark() const
{
    unsigned aspects = CHANGED_POSITIONS;
    if (!objects.empty()) {
        aspects |= CHANGED_RECORD;
    }
    for (object_t *owner : owners) {
        object_mark(owner, aspects);
    }
}

void drag_transform_t::apply(const drag_change_t &change)
{
    if (change.kind == drag_change_t::ROTATE) {
        set_drawn_rotation(change);
    }
    for (size_t i = 0; i < vertices.size(); ++i) {
        vertices[i]->position = transformed(positions[i], change);
    }
    for (const moved_object_t &moved : objects) {
        moved.object->centre = transformed(moved.centre, change);
        if (change.kind == drag_change_t::ROTATE) {
            matrix_multiply(global_matrix(), moved.rotation, moved.object->rotation);
        }
    }
    mark();
    changed = true;
}

void drag_transform_t::step(const drag_change_t &change)
{
    last = change;
    if (is_live()) {
        apply(change);
        find_bounding_box();
    }
}

void drag_transform_t::take_back()
{
    if (!changed) {
        return;
    }
    for (size_t i = 0; i < vertices.size(); ++i) {
        vertices[i]->position = positions[i];
    }
    for (const moved_object_t &moved : objects) {
        moved.object->centre = moved.centre;
        matrix_copy(moved.rotation, moved.object->rotation);
    }
    mark();
    find_bounding_box();
    changed = false;
}

void drag_transform_t::finish()
{
    apply(last);
    switch (last.kind) {
    case drag_change_t::MOVE:
        new_undo(UNDO_MOVE, "move");
        set_undo_vert(last.offset.x, last.offset.y, last.offset.z);
        break;
    case drag_change_t::ROTATE:
        new_undo(UNDO_ROTATE, "rotate");
        set_undo_rotate(last.degrees, last.view, &last.centre);
        break;
    default:
        new_undo(UNDO_RESIZE, "resize");
        set_undo_resize(&last.from_min, &last.from_max, &last.to_min, &last.to_max);
        break;
    }
    selected_calc_normals();
    find_bounding_box();
}
