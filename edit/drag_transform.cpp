#include "edit/drag_transform.h"

#include "edit/document/edit_support.h"
#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo_internal.h"
#include "edit/soft_selection.h"
#include "edit/transform.h"
#include "edit/uv/uv_keep.h"
#include "model/angle.h"
#include "model/bounds.h"
#include "model/change_marks.h"
#include "model/identity.h"
#include "model/matrix.h"
#include "model/move_vertices.h"
#include "model/normals.h"
#include "model/vector.h"

#include <cmath>

namespace {

bool turns(const drag_change_t &change)
{
    return change.kind == drag_change_t::ROTATE || change.kind == drag_change_t::TURN ||
           (change.kind == drag_change_t::PLACE && !change.keeps_frames);
}

float map_axis(float value, float from_min, float from_max, float to_min, float to_max)
{
    const float size = from_max - from_min;
    if (size == 0) {
        return value + (to_min - from_min);
    }
    return to_min + (value - from_min) * ((to_max - to_min) / size);
}

// Where a change takes points. Its rotation is computed once.
class mapping_t {
public:
    explicit mapping_t(const drag_change_t &change) : change_(change), centre_(change.centre)
    {
        if (change.kind == drag_change_t::PLACE)
            affine_matrix(change.place, rotation_);
        else if (change.kind == drag_change_t::TURN)
            matrix_set_rotate(rotation_, radians(change.angles.x), radians(change.angles.y),
                              radians(change.angles.z));
        else
            matrix_set_turn_in_view(rotation_, change.view, change.degrees);
    }
    // Turns about another centre from now on.
    void set_centre(const point3_t &centre) { centre_ = centre; }
    [[nodiscard]] const float *rotation() const { return rotation_; }

    // Where a point comes that takes a share of the change: of a turn a share of its angle.
    [[nodiscard]] point3_t shared(const point3_t &p, float share) const
    {
        if (share >= 1)
            return (*this)(p);
        if (!turns(change_) || change_.kind == drag_change_t::PLACE) {
            const point3_t to = (*this)(p);
            return point_add(p, point_scale(point_sub(to, p), share));
        }
        drag_change_t part = change_;
        part.degrees *= share;
        part.angles = point_scale(part.angles, share);
        return mapping_t(part)(p);
    }
    [[nodiscard]] point3_t operator()(const point3_t &p) const
    {
        if (change_.kind == drag_change_t::MOVE)
            return point_add(p, change_.offset);
        if (change_.kind == drag_change_t::PLACE)
            return change_.place(p);
        if (!turns(change_))
            return map_between_boxes(p, change_);
        point3_t turned = point_sub(p, centre_);
        matrix_rotate_point(rotation_, &turned);
        return point_add(turned, centre_);
    }

private:
    const drag_change_t &change_;
    point3_t centre_;
    float rotation_[9];
};

// The one axis and angle of a rotation.
float angle_axis_of_rotation(const float *m, point3_t *axis)
{
    point3_t x = {1, 0, 0}, y = {0, 1, 0}, z = {0, 0, 1};
    for (point3_t *p : {&x, &y, &z}) {
        matrix_rotate_point(m, p);
    }
    // The skew part points along the axis, as long as twice the sine.
    *axis = {y.z - z.y, z.x - x.z, x.y - y.x};
    const auto length = std::sqrt(double{axis->x} * axis->x + double{axis->y} * axis->y +
                                  double{axis->z} * axis->z);
    const double angle = std::atan2(length, double{x.x} + y.y + z.z - 1);
    if (length < 1e-3 && angle > 1) { // half a turn: the longest column of m + 1
        const point3_t columns[3] = {{x.x + 1, x.y, x.z}, {y.x, y.y + 1, y.z}, {z.x, z.y, z.z + 1}};
        *axis = columns[0];
        for (const point3_t &column : columns) {
            if (point_length(column) > point_length(*axis)) {
                *axis = column;
            }
        }
    }
    return static_cast<float>(angle);
}

// A record for a turn: about the axis that looks into a view where it is only one, else about the
// one axis that stands for the three angles.
void open_turn_record(const drag_change_t &turn)
{
    const point3_t &a = turn.angles;
    if ((a.x != 0) + (a.y != 0) + (a.z != 0) <= 1) {
        const int view = a.x != 0 ? VIEW_ZY : a.y != 0 ? VIEW_XZ : VIEW_XY;
        new_undo(UNDO_ROTATE, "rotate");
        set_undo_rotate(view == VIEW_ZY ? a.x : -(a.y + a.z), view, &turn.centre);
        return;
    }
    point3_t axis;
    const float angle = angle_axis_of_rotation(mapping_t(turn).rotation(), &axis);
    new_undo(UNDO_ROTATE_AXIS, "rotate");
    set_undo_rotate_axis_angle(&axis, angle * 180.0f / pi_f);
    if (!undo_records().empty()) {
        auto &saved = std::get<undo_turn>(undo_records().back()->data);
        saved.centre = turn.centre;
        saved.has_centre = true;
    }
}

// Objects, by identity, that were turned about their own centres.
struct own_turn_t {
    struct part_t {
        int identity;
        point3_t pivot;
    };
    std::vector<part_t> parts;
    drag_change_t change;

    void perform() {} // the drag did it
    void undo() const
    {
        drag_change_t back = change;
        back.degrees = -back.degrees;
        mapping_t map(back);
        for (const part_t &part : parts) {
            if (object_t *object = object_by_identity(part.identity)) {
                map.set_centre(part.pivot);
                turn_back(object, map);
            }
        }
        find_bounding_box();
    }

private:
    static void turn_back(object_t *object, const mapping_t &map)
    {
        object->centre = map(object->centre);
        for (vertex *v : each<vertex>(object->vertices)) {
            v->position = map(v->position);
        }
        float turned[9];
        matrix_multiply(map.rotation(), object->rotation, turned);
        matrix_copy(turned, object->rotation);
        object_mark(object, CHANGED_POSITIONS | CHANGED_RECORD);
        object_calc_normals(object);
    }
};

// Of the box of the object and its descendants; its centre when nothing has an extent.
point3_t middle_of(object_t *top)
{
    point3_t min, max;
    return object_bounds(top, &min, &max) == 0 ? top->centre
                                               : point_scale(point_add(min, max), 0.5f);
}

} // namespace

bool transform_reaches_further() { return soft_selection_acts() || symmetry_acts(); }

void drag_matrix(const drag_change_t &change, float out[16])
{
    const mapping_t map(change);
    const point3_t zero = map({0, 0, 0});
    const point3_t columns[4] = {point_sub(map({1, 0, 0}), zero), point_sub(map({0, 1, 0}), zero),
                                 point_sub(map({0, 0, 1}), zero), zero};
    for (int i = 0; i < 4; ++i) {
        out[i * 4] = columns[i].x;
        out[i * 4 + 1] = columns[i].y;
        out[i * 4 + 2] = columns[i].z;
        out[i * 4 + 3] = i == 3 ? 1.0f : 0.0f;
    }
}

point3_t map_between_boxes(const point3_t &p, const drag_change_t &c)
{
    return {map_axis(p.x, c.from_min.x, c.from_max.x, c.to_min.x, c.to_max.x),
            map_axis(p.y, c.from_min.y, c.from_max.y, c.to_min.y, c.to_max.y),
            map_axis(p.z, c.from_min.z, c.from_max.z, c.to_min.z, c.to_max.z)};
}

drag_transform_t::drag_transform_t() : box_min(selection().box_min), box_max(selection().box_max)
{
    const selection_t &all = selection();
    has_own_centres = all.objects != nullptr && all.vertices == nullptr && all.surfaces == nullptr;
    vertices = elements_of<vertex>(all.vertices);
    const std::vector<vertex *> of_surfaces = vertices_of_selected_surfaces();
    vertices.insert(vertices.end(), of_surfaces.begin(), of_surfaces.end());
    if (all.vertices != nullptr && !of_surfaces.empty())
        make_unique(&vertices);
    add_objects();
    bool have_owners = true; // all vertices
    if (objects.empty()) {
        owners = owners_of_vertices(vertices);
        have_owners = std::erase(owners, nullptr) == 0;
        owners = unique_objects(owners);
    }
    if (are_whole(have_owners)) {
        for (object_t *owner : owners)
            wholes.push_back({owner, object_flat(owner)->positions});
        vertices = {};
        return;
    }
    for (moved_object_t &moved : objects) {
        moved.first_vertex = vertices.size();
        append_elements(moved.object->vertices, &vertices);
        moved.end_vertex = vertices.size();
    }
    positions.reserve(vertices.size());
    for (const vertex *v : vertices) {
        positions.push_back(v->position);
    }
    num_moving = vertices.size();
    if (objects.empty())
        add_further();
}

void drag_transform_t::add_objects()
{
    for (object_t *top : selected_top_objects()) {
        const point3_t pivot = top->vertices != nullptr ? top->centre : middle_of(top);
        for_each_object(top, [&](object_t *object) {
            moved_object_t moved = {object, object->centre, {}, pivot, 0, 0};
            matrix_copy(object->rotation, moved.rotation);
            objects.push_back(moved);
            owners.push_back(object);
        });
    }
}

bool drag_transform_t::are_whole(bool have_owners) const
{
    std::size_t count = 0;
    for (const object_t *owner : owners)
        count += owner->num_vertices;
    if (count < live_limit)
        return false;
    return objects.empty() ? have_owners && count == vertices.size() && !transform_reaches_further()
                           : vertices.empty();
}

const std::vector<vertex *> &drag_transform_t::moving()
{
    gather();
    return vertices;
}

void drag_transform_t::gather()
{
    for (std::size_t i = 0; i < wholes.size(); ++i) {
        const std::size_t first = vertices.size();
        append_elements(wholes[i].object->vertices, &vertices);
        positions.insert(positions.end(), wholes[i].positions->begin(), wholes[i].positions->end());
        if (!objects.empty()) {
            objects[i].first_vertex = first;
            objects[i].end_vertex = vertices.size();
        }
    }
    if (!wholes.empty())
        num_moving = vertices.size();
    wholes.clear();
}

// What soft selection takes along, and the counterparts of it all.
void drag_transform_t::add_further()
{
    if (soft_selection_acts()) {
        shares.assign(vertices.size(), 1.0f);
        for (const soft_vertex &near : soft_neighbours(vertices, owners)) {
            vertices.push_back(near.point);
            positions.push_back(near.point->position);
            shares.push_back(near.share);
        }
    }
    num_moving = vertices.size();
    is_symmetric = symmetry_acts();
    if (!is_symmetric)
        return;
    pairs = symmetric_pairs(vertices, shares, owners);
    for (vertex *other : pairs.counterparts()) {
        vertices.push_back(other);
        positions.push_back(other->position);
    }
}

void drag_transform_t::mark()
{
    if (objects.empty() && wholes.empty() && parts.empty())
        parts = find_moved(owners, vertices);
    for (size_t i = 0; i < owners.size(); ++i) {
        if (!objects.empty())
            object_mark(owners[i], CHANGED_RECORD);
        if (!wholes.empty())
            continue; // their positions are marked where they moved
        if (objects.empty())
            object_mark_moved(owners[i], parts[i]);
        else
            object_mark(owners[i], CHANGED_POSITIONS);
    }
    uv_keep_follow(owners);
}

void drag_transform_t::apply(const drag_change_t &change)
{
    mapping_t map(change);
    const bool own = turns_own(change);
    for (size_t i = 0; i < wholes.size(); ++i) {
        if (own)
            map.set_centre(objects[i].pivot);
        object_move_vertices(wholes[i].object, map, wholes[i].positions);
    }
    for (size_t i = 0; i < num_moving && !own; ++i) {
        vertices[i]->position =
            shares.empty() ? map(positions[i]) : map.shared(positions[i], shares[i]);
    }
    for (const moved_object_t &moved : objects) {
        if (own)
            map.set_centre(moved.pivot);
        for (size_t i = moved.first_vertex; i < moved.end_vertex && own; ++i) {
            vertices[i]->position = map(positions[i]);
        }
        moved.object->centre = map(moved.centre);
        if (turns(change)) {
            matrix_multiply(map.rotation(), moved.rotation, moved.object->rotation);
        } else {
            matrix_copy(moved.rotation, moved.object->rotation);
        }
    }
    after_change();
}

void drag_transform_t::after_change()
{
    pairs.follow();
    mark();
    changed = true;
}

void drag_transform_t::deform(const deform_t &to)
{
    gather();
    deformer = to;
    for (size_t i = normals.size(); i < num_moving; ++i)
        normals.push_back(vertices[i]->normal);
    for (size_t i = 0; i < num_moving; ++i) {
        const vec3d from = to_vec3d(positions[i]);
        const vec3d moved = to(from, to_vec3d(normals[i]));
        const double share = shares.empty() ? 1.0 : static_cast<double>(shares[i]);
        vertices[i]->position = to_point(from + (moved - from) * share);
    }
    after_change();
    find_bounding_box();
}

void drag_transform_t::step(const drag_change_t &change)
{
    last = change;
    if (is_live() || turns_own(change)) { // one matrix cannot show the latter
        apply(change);
        find_bounding_box();
    } else {
        show_box(change);
    }
}

// The box of a selection that is drawn by a matrix.
void drag_transform_t::show_box(const drag_change_t &change) const
{
    const mapping_t map(change);
    selection_t &all = selection();
    bounds_clear(&all.box_min, &all.box_max);
    for (int i = 0; i < 8; ++i) {
        const point3_t corner = {(i & 1) != 0 ? box_max.x : box_min.x,
                                 (i & 2) != 0 ? box_max.y : box_min.y,
                                 (i & 4) != 0 ? box_max.z : box_min.z};
        bounds_add(map(corner), &all.box_min, &all.box_max);
    }
    recalc_bb_info();
}

void drag_transform_t::take_back()
{
    if (!changed) {
        find_bounding_box();
        return;
    }
    for (const whole_object_t &whole : wholes)
        object_move_vertices(
            whole.object, [](const point3_t &p) { return p; }, whole.positions);
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

void drag_transform_t::open_record() const
{
    switch (last.kind) {
    case drag_change_t::MOVE:
        new_undo(UNDO_MOVE, "move");
        set_undo_vert(last.offset.x, last.offset.y, last.offset.z);
        break;
    case drag_change_t::ROTATE:
        if (turns_own(last)) {
            auto *operation = new own_turn_t{{}, last};
            for (const moved_object_t &moved : objects) {
                operation->parts.push_back({object_identity(moved.object), moved.pivot});
            }
            add_undoable_object("rotate", operation);
            break;
        }
        new_undo(UNDO_ROTATE, "rotate");
        set_undo_rotate(last.degrees, last.view, &last.centre);
        break;
    case drag_change_t::TURN:
        open_turn_record(last);
        break;
    default:
        new_undo(UNDO_RESIZE, "resize");
        set_undo_resize(&last.from_min, &last.from_max, &last.to_min, &last.to_max);
        break;
    }
}

void drag_transform_t::finish()
{
    if (reaches_further()) {
        static constexpr const char *labels[] = {"move", "rotate", "rotate", "resize"};
        finish_as(last.kind == drag_change_t::PLACE ? last.label : labels[last.kind]);
        return;
    }
    if (last.kind == drag_change_t::PLACE) { // no record of a transform holds both of its halves
        take_back();
        open_world_undo(last.label);
        apply(last);
    } else {
        apply(last);
        open_record();
    }
    if (wholes.empty() || last.kind != drag_change_t::MOVE) // what moves as a whole keeps them
        selected_calc_normals();
    find_bounding_box();
}

// The reversal of a transform knows the selection alone.
void drag_transform_t::finish_as(const char *label)
{
    gather();
    if (label != nullptr) {
        take_back();
        owned_list all;
        for (vertex *v : vertices)
            all.add(v);
        new_undo(UNDO_POSITIONS, label);
        set_undo_vertex_positions(all.get(), nullptr);
    }
    if (deformer)
        deform(deformer);
    else
        apply(last);
    calc_normals_of(owners);
    find_bounding_box();
    tell_without_counterpart(pairs.num_without());
}
