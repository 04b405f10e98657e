#include "edit/transform.h"

#include "base/messages.h"
#include "base/redraw.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo.h"
#include "edit/drag_transform.h"
#include "model/angle.h"
#include "model/change_marks.h"
#include "model/matrix.h"
#include "model/move_vertices.h"
#include "model/normals.h"
#include "model/object_tree.h"
#include "model/vector.h"

#include <cmath>

namespace {

void multiply(point3_t *p, const point3_t &factors)
{
    p->x *= factors.x;
    p->y *= factors.y;
    p->z *= factors.z;
}

// The selected vertices and those of the selected surfaces: every selected vertex once as such, and
// once as part of a surface (the two lists are never filled together). And the topmost selected
// objects: what lies below them goes with them, once, though it is selected itself.
struct selected_parts_t {
    std::vector<vertex *> vertices;
    std::vector<vertex *> of_surfaces;
    std::vector<object_t *> owners; // of all of them: to be marked
    std::vector<object_t *> tops = selected_top_objects();
    bool have_owners = true; // all of them

    selected_parts_t()
    {
        const selection_t &all = selection();
        append_elements(all.vertices, &vertices);
        of_surfaces = vertices_of_selected_surfaces();
        if (vertices.empty() && of_surfaces.empty())
            return;
        owners = owners_of_vertices(vertices);
        const std::vector<object_t *> more = owners_of_vertices(of_surfaces);
        owners.insert(owners.end(), more.begin(), more.end());
        have_owners = std::erase(owners, nullptr) == 0;
        owners = unique_objects(owners);
    }

    // Every vertex of the owners is among them; each is there once.
    [[nodiscard]] bool are_whole_objects() const
    {
        std::size_t count = 0;
        for (const object_t *owner : owners)
            count += owner->num_vertices;
        return have_owners && (vertices.empty() || of_surfaces.empty()) &&
               count == vertices.size() + of_surfaces.size();
    }

    // Changes every point and marks whose it is; `change_point` may be called on several threads at once.
    template <class Change>
    void change(Change &&change_point) const
    {
        if (are_whole_objects()) {
            for (object_t *owner : owners)
                object_move_vertices(owner, [&](point3_t p) {
                    change_point(&p);
                    return p;
                });
            return;
        }
        for (vertex *v : vertices)
            change_point(&v->position);
        for (vertex *v : of_surfaces)
            change_point(&v->position);
        for (object_t *owner : owners)
            object_mark(owner, CHANGED_POSITIONS);
    }
};

// Points, then objects by `change_object`.
template <class ChangePoint, class ChangeObject>
void change_selected(const selected_parts_t &parts, ChangePoint &&change_point,
                     ChangeObject &&change_object)
{
    parts.change(change_point);
    for (object_t *object : parts.tops)
        change_object(object);
}

void translate_selected(const selected_parts_t &parts, const point3_t &offset)
{
    change_selected(
        parts, [&](point3_t *p) { *p = point_add(*p, offset); },
        [&](object_t *object) { translate_object(object, &offset); });
}

point3_t negated(const point3_t &p) { return {-p.x, -p.y, -p.z}; }

// Deliberate: corner A plus half the absolute size.
point3_t rotation_centre()
{
    const selection_t &all = selection();
    const point3_t &a = all.box_min;
    const point3_t &b = all.box_max;
    return {a.x + std::fabs((b.x - a.x) / 2), a.y + std::fabs((b.y - a.y) / 2),
            a.z + std::fabs((b.z - a.z) / 2)};
}

// Whether all numbers of the scaled box are numbers.
bool fits_when_scaled(const point3_t &factors)
{
    const selection_t &all = selection();
    const auto fits = [](float low, float high, float factor) {
        const float extent = (high - low) * factor;
        return std::isfinite(extent) && std::isfinite(low + extent) && std::isfinite(high + extent);
    };
    return fits(all.box_min.x, all.box_max.x, factors.x) &&
           fits(all.box_min.y, all.box_max.y, factors.y) &&
           fits(all.box_min.z, all.box_max.z, factors.z);
}

// While soft selection or symmetry is on the commands are the same as drags, with a record of this
// label or without any.
bool made_further(const drag_change_t &change, const char *label)
{
    if (!transform_reaches_further())
        return false;
    drag_transform_t transform;
    transform.step(change);
    transform.finish_as(label);
    redraw_all();
    display_status();
    return true;
}

drag_change_t move_by(const point3_t &offset)
{
    drag_change_t change;
    change.offset = offset;
    return change;
}

drag_change_t turn_by(float rx, float ry, float rz, const point3_t &centre)
{
    drag_change_t change;
    change.kind = drag_change_t::TURN;
    change.angles = {rx, ry, rz};
    change.centre = centre;
    return change;
}

// Of the selection's box about its middle.
drag_change_t scale_by(const point3_t &factors)
{
    const selection_t &all = selection();
    drag_change_t change;
    change.kind = drag_change_t::RESIZE;
    change.from_min = all.box_min;
    change.from_max = all.box_max;
    for (int axis = 0; axis < 3; ++axis) {
        const float low = axis_of(all.box_min, axis), high = axis_of(all.box_max, axis);
        const float middle = low + (high - low) / 2, half = (high - low) / 2;
        axis_of(change.to_min, axis) = middle - half * axis_of(factors, axis);
        axis_of(change.to_max, axis) = middle + half * axis_of(factors, axis);
    }
    return change;
}

void finish_rotation()
{
    selected_calc_normals();
    find_bounding_box();
    display_status();
}

} // namespace

// ---- objects ----

void translate_object_only(object_t *object, const point3_t *offset)
{
    object->centre = point_add(object->centre, *offset);
    object_move_vertices(object, [offset](const point3_t &p) { return point_add(p, *offset); });
    object_mark(object, CHANGED_RECORD);
}

void translate_object(object_t *object, const point3_t *offset)
{
    for_each_object(object, [&](object_t *o) { translate_object_only(o, offset); });
}

void translate_objectlist(const listitem *objects, const point3_t *offset)
{
    for (object_t *object : each<object_t>(objects))
        translate_object(object, offset);
}

void translate_object_abs(object_t *object, const point3_t *point)
{
    const point3_t offset = point_sub(*point, object->centre);
    translate_object(object, &offset);
}

void rotate_object(object_t *object) { object_rotate(object, global_matrix()); }

void object_rotate(object_t *object, const float *m)
{
    for_each_object(object, [m](object_t *o) {
        matrix_rotate_point(m, &o->centre);
        float turned[9];
        matrix_multiply(m, o->rotation, turned);
        matrix_copy(turned, o->rotation);
        object_move_vertices(o, [m](point3_t p) {
            matrix_rotate_point(m, &p);
            return p;
        });
        object_mark(o, CHANGED_RECORD);
    });
}

void object_scale(object_t *object, float sx, float sy, float sz)
{
    const point3_t factors = {sx, sy, sz};
    for_each_object(object, [&](object_t *o) {
        multiply(&o->centre, factors);
        object_move_vertices(o, [&](point3_t p) {
            multiply(&p, factors);
            return p;
        });
        object_mark(o, CHANGED_RECORD);
    });
}

void matrix_set_turn_in_view(float *m, int view, float degrees)
{
    const float a = radians(degrees);
    // Deliberate: the signs differ between the views: the hidden axis of the side view points away
    // from the viewer, those of the others towards it.
    matrix_set_rotate(m, view == VIEW_ZY ? a : 0.0f, view == VIEW_XZ ? -a : 0.0f,
                      view == VIEW_XY ? -a : 0.0f);
}

// ---- the selection ----

listitem *selected_surfaces_get_unique_vertices(void)
{
    return make_nodes(vertices_of_selected_surfaces()).first;
}

void translate_all_selected(const point3_t *offset)
{
    translate_selected(selected_parts_t(), *offset);
}

void move_selection(const point3_t *offset)
{
    selection_t &all = selection();
    const selected_parts_t parts;
    translate_selected(parts, *offset);
    all.box_min = point_add(all.box_min, *offset);
    all.box_max = point_add(all.box_max, *offset);
    // Objects that move as a whole keep their normals.
    if (all.num_objects == 0 && !parts.are_whole_objects()) {
        for (object_t *owner : parts.owners)
            object_calc_normals(owner);
    }
    recalc_bb_info();
    display_status();
}

void translate_multiply_selected(const point3_t *first, const point3_t *factors,
                                 const point3_t *second)
{
    const selected_parts_t parts;
    translate_selected(parts, *first);
    change_selected(
        parts, [&](point3_t *p) { multiply(p, *factors); },
        [&](object_t *object) { object_scale(object, factors->x, factors->y, factors->z); });
    translate_selected(parts, *second);
}

void rotate_selected_with_global_matrix(const point3_t *centre)
{
    selection_rotate(global_matrix(), centre);
}

void selection_rotate(const float *m, const point3_t *centre)
{
    const selection_t &all = selection();
    if (centre == nullptr && all.box_valid == 0)
        return;
    const point3_t middle = centre == nullptr ? rotation_centre() : *centre;
    const selected_parts_t parts;
    translate_selected(parts, negated(middle));
    change_selected(
        parts, [m](point3_t *p) { matrix_rotate_point(m, p); },
        [m](object_t *object) { object_rotate(object, m); });
    translate_selected(parts, middle);
}

void rotate_selection(float rx, float ry, float rz) { rotate_selection_about(rx, ry, rz, nullptr); }

void rotate_selection_about(float rx, float ry, float rz, const point3_t *centre)
{
    float m[9];
    matrix_set_rotate(m, radians(rx), radians(ry), radians(rz));
    selection_rotate(m, centre);
    finish_rotation();
}

void rotate_selection_axis_angle(int axis, float degrees)
{
    rotate_selection(axis == 0 ? degrees : 0.0f, axis == 1 ? degrees : 0.0f,
                     axis == 2 ? degrees : 0.0f);
}

void rotate_selected(float degrees, int view, const point3_t *centre)
{
    display_message("rotating...");
    float m[9];
    matrix_set_turn_in_view(m, view, degrees);
    selection_rotate(m, centre);
    finish_rotation();
    display_message("rotation done");
}

void find_box_centre(const point3_t *a, const point3_t *b, point3_t *out)
{
    *out = {a->x + (b->x - a->x) / 2, a->y + (b->y - a->y) / 2, a->z + (b->z - a->z) / 2};
}

void scale_selection(float sx, float sy, float sz)
{
    const selection_t &all = selection();
    if (all.box_valid == 0)
        return;
    point3_t centre;
    find_box_centre(&all.box_min, &all.box_max, &centre);
    const point3_t back = negated(centre);
    const point3_t factors = {sx, sy, sz};
    translate_multiply_selected(&back, &factors, &centre);
    selected_calc_normals();
    find_bounding_box();
}

void selected_calc_normals(void)
{
    const selection_t &all = selection();
    calc_normals_of(selected_objects());
    if (all.vertices == nullptr && all.surfaces == nullptr)
        return;
    for (object_t *owner : selected_parts_t().owners)
        object_calc_normals(owner);
}

// ---- commands ----

void move_selection_f(float x, float y, float z)
{
    const point3_t offset = {x, y, z};
    if (made_further(move_by(offset), nullptr))
        return;
    if (nothing_is_selected() == 0)
        move_selection(&offset);
    redraw_all();
}

void selection_move_to_f(float x, float y, float z)
{
    const selection_t &all = selection();
    if (all.box_valid == 0)
        return;
    const point3_t offset = {x - all.box_centre.x, y - all.box_centre.y, z - all.box_centre.z};
    if (made_further(move_by(offset), "move to"))
        return;
    new_undo(UNDO_MOVE, "move to");
    set_undo_vert(offset.x, offset.y, offset.z);
    move_selection(&offset);
    redraw_all();
}

void rotate_selection_f(float rx, float ry, float rz)
{
    if (selection().box_valid != 0 && made_further(turn_by(rx, ry, rz, rotation_centre()), nullptr))
        return;
    rotate_selection(rx, ry, rz);
    redraw_all();
}

void rotate_selection_about_f(float rx, float ry, float rz, float x, float y, float z)
{
    const point3_t centre = {x, y, z};
    if (made_further(turn_by(rx, ry, rz, centre), nullptr))
        return;
    rotate_selection_about(rx, ry, rz, &centre);
    redraw_all();
}

void selection_rotate_axis_angle(float axis, float degrees)
{
    const int a = axis > -1 && axis < 3 ? static_cast<int>(axis) : -1; // also what is no number
    rotate_selection_f(a == 0 ? degrees : 0.0f, a == 1 ? degrees : 0.0f, a == 2 ? degrees : 0.0f);
}

void selected_scale(float sx, float sy, float sz)
{
    if (selection().box_valid == 0)
        return;
    if (!fits_when_scaled({sx, sy, sz})) {
        display_message("scale - the result would be too large");
        return;
    }
    if (made_further(scale_by({sx, sy, sz}), "size selection"))
        return;
    new_undo(UNDO_SCALE, "size selection");
    const auto reciprocal = [](float s) { return s == 0.0f ? 1.0f : 1.0f / s; };
    set_undo_vert(reciprocal(sx), reciprocal(sy), reciprocal(sz));
    scale_selection(sx, sy, sz);
    redraw_all();
    display_status();
}

void selection_size_to(const point3_t *size)
{
    const selection_t &all = selection();
    if (all.box_valid == 0)
        return;
    const auto factor = [](float wanted, float now) {
        return now > 0.0f && wanted >= 0.0f ? wanted / now : 1.0f;
    };
    selected_scale(factor(size->x, all.box_size.x), factor(size->y, all.box_size.y),
                   factor(size->z, all.box_size.z));
}

void selection_size_to_f(float x, float y, float z)
{
    const point3_t size = {x, y, z};
    selection_size_to(&size);
}

void mirror_selected(int axis)
{
    const selection_t &all = selection();
    if (all.box_valid != 0 &&
        made_further(scale_by({axis == 0 ? -1.0f : 1.0f, axis == 1 ? -1.0f : 1.0f,
                               axis == 2 ? -1.0f : 1.0f}),
                     nullptr))
        return;
    if (all.box_valid != 0) {
        const float a[3] = {all.box_min.x, all.box_min.y, all.box_min.z};
        const float b[3] = {all.box_max.x, all.box_max.y, all.box_max.z};
        const auto on_axis = [&](int i, float value, float otherwise) {
            return axis == i ? value : otherwise;
        };
        const point3_t first = {on_axis(0, -a[0], 0), on_axis(1, -a[1], 0), on_axis(2, -a[2], 0)};
        const point3_t factors = {on_axis(0, -1, 1), on_axis(1, -1, 1), on_axis(2, -1, 1)};
        const point3_t second = {on_axis(0, b[0], 0), on_axis(1, b[1], 0), on_axis(2, b[2], 0)};
        translate_multiply_selected(&first, &factors, &second);
    }
    selected_calc_normals();
    find_bounding_box();
    redraw_all();
}
