#include "edit/panel_transform.h"

#include "base/messages.h"
#include "base/redraw.h"
#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "edit/document/step.h"
#include "edit/document/undo.h"
#include "edit/drag_transform.h"
#include "edit/transform.h"
#include "model/angle.h"
#include "model/matrix.h"
#include "model/object.h"
#include "model/vector.h"

#include <cmath>
#include <cstring>
#include <memory>
#include <utility>

namespace {

constexpr const char *kind_names[] = {"move", "rotate", "scale"};
enum kind_code { MOVING, TURNING, SCALING };

struct running_t {
    std::unique_ptr<drag_transform_t> transform;
    std::unique_ptr<step_t> step;
    kind_code kind = MOVING;
    point3_t box_min, box_max, centre;
    bool changed = false;
};
running_t &running()
{
    static running_t state;
    return state;
}

bool is_zero(const point3_t &p) { return p.x == 0 && p.y == 0 && p.z == 0; }

bool something_selected(const char *what)
{
    if (nothing_is_selected() == 0) {
        return true;
    }
    display_message("%s - nothing selected", what);
    return false;
}

// A group without geometry has no box to turn or to mirror in.
bool something_with_box(const char *what)
{
    if (!something_selected(what)) {
        return false;
    }
    if (selection().box_valid != 0) {
        return true;
    }
    display_message("%s - nothing selected that has points", what);
    return false;
}

drag_change_t change_to(const running_t &now, const point3_t &p)
{
    drag_change_t change;
    switch (now.kind) {
    case MOVING:
        change.kind = drag_change_t::MOVE;
        change.offset = p;
        break;
    case TURNING:
        change.kind = drag_change_t::TURN;
        change.angles = p;
        change.centre = now.centre;
        break;
    case SCALING: {
        const auto about = [&](const point3_t &corner) {
            const point3_t from = point_sub(corner, now.centre);
            return point_add(now.centre, {from.x * p.x, from.y * p.y, from.z * p.z});
        };
        change.kind = drag_change_t::RESIZE;
        change.from_min = now.box_min;
        change.from_max = now.box_max;
        change.to_min = about(now.box_min);
        change.to_max = about(now.box_max);
        break;
    }
    }
    return change;
}

void make(const drag_change_t &change, const char *label = nullptr)
{
    drag_transform_t transform;
    transform.step(change);
    if (label != nullptr)
        transform.finish_as(label);
    else
        transform.finish();
    redraw_all();
    display_status();
}

void turn(const point3_t &angles, const point3_t &centre)
{
    if (!something_selected("rotate") || is_zero(angles)) {
        return;
    }
    drag_change_t change;
    change.kind = drag_change_t::TURN;
    change.angles = angles;
    change.centre = centre;
    make(change);
}

// Ends the running transform and keeps its change, or takes it back.
void end_transform(bool keep)
{
    running_t ended = std::exchange(running(), {});
    if (ended.transform == nullptr) {
        return;
    }
    if (!keep) {
        ended.transform->take_back();
    } else if (ended.changed) {
        ended.transform->finish();
    }
    ended.step.reset(); // the command's own step takes the state
    redraw_all();
    display_status();
}

} // namespace

void panel_transform_begin(const char *kind)
{
    panel_transform_cancel();
    for (const kind_code code : {MOVING, TURNING, SCALING}) {
        if (std::strcmp(kind, kind_names[code]) != 0) {
            continue;
        }
        if (code == MOVING ? !something_selected(kind) : !something_with_box(kind)) {
            return;
        }
        const selection_t &all = selection();
        running() = {std::make_unique<drag_transform_t>(),
                     std::make_unique<step_t>(step_t::of::drag),
                     code,
                     all.box_min,
                     all.box_max,
                     all.box_centre,
                     false};
        return;
    }
    display_message("transform - no kind named '%s'", kind);
}

void panel_transform_about(float x, float y, float z) { running().centre = {x, y, z}; }

void panel_transform_to(float x, float y, float z)
{
    running_t &now = running();
    if (now.transform == nullptr) {
        return;
    }
    now.transform->step(change_to(now, {x, y, z}));
    now.changed = true;
    redraw_all();
    display_status();
}

void panel_transform_end() { end_transform(true); }

void panel_transform_cancel() { end_transform(false); }

// ---- commands ----

void move_with_undo(float x, float y, float z)
{
    drag_change_t change;
    change.offset = {x, y, z};
    if (something_selected("move") && !is_zero(change.offset)) {
        make(change);
    }
}

void rotate_with_undo(float rx, float ry, float rz)
{
    if (something_with_box("rotate")) {
        turn({rx, ry, rz}, selection().box_centre);
    }
}

void rotate_about_with_undo(float rx, float ry, float rz, float x, float y, float z)
{
    turn({rx, ry, rz}, {x, y, z});
}

void rotate_to_with_undo(float rx, float ry, float rz, float x, float y, float z)
{
    const std::vector<object_t *> objects = elements_of<object_t>(selection().objects);
    if (objects.empty()) {
        display_message("rotate - select objects first");
        return;
    }
    float wanted[9], back[9], missing[9];
    matrix_set_rotate(wanted, radians(rx), radians(ry), radians(rz));
    rotinvert(back, objects.front()->rotation);
    matrix_multiply(wanted, back, missing);
    turn(point_scale(matrix_angles(missing), static_cast<float>(degrees_per_radian)), {x, y, z});
}

void rotate_axis_angle_with_undo(float axis, float degrees)
{
    if (!(axis > -1 && axis < 3)) {
        display_message("rotate - no axis %g", static_cast<double>(axis));
        return;
    }
    if (!something_with_box("rotate")) {
        return;
    }
    // The axis is truncated, as the plain command does.
    turn({axis > -1 && axis < 1 ? degrees : 0, axis >= 1 && axis < 2 ? degrees : 0,
          axis >= 2 ? degrees : 0},
         selection().box_centre);
}

void rotate_each_with_undo(int view, float degrees)
{
    if (view < VIEW_XY || view > VIEW_XZ) {
        display_message("rotate - there is no flat view %d", view);
        return;
    }
    if (!something_selected("rotate") || degrees == 0) {
        return;
    }
    drag_change_t change;
    change.kind = drag_change_t::ROTATE;
    change.view = view;
    change.degrees = degrees;
    change.centre = selection().box_centre;
    change.own_centres = true;
    make(change);
}

void resize_with_undo(float min_x, float min_y, float min_z, float max_x, float max_y, float max_z)
{
    if (!something_with_box("resize")) {
        return;
    }
    drag_change_t change;
    change.kind = drag_change_t::RESIZE;
    change.from_min = selection().box_min;
    change.from_max = selection().box_max;
    change.to_min = {min_x, min_y, min_z};
    change.to_max = {max_x, max_y, max_z};
    make(change);
}

// A mirroring is a scaling by -1 along an axis.
void scale_about_with_undo(float sx, float sy, float sz, float x, float y, float z)
{
    const point3_t low = selection().box_min, high = selection().box_max;
    const auto scaled = [](float from, float factor, float about) {
        return about + (from - about) * factor;
    };
    resize_with_undo(scaled(low.x, sx, x), scaled(low.y, sy, y), scaled(low.z, sz, z),
                     scaled(high.x, sx, x), scaled(high.y, sy, y), scaled(high.z, sz, z));
}

// Mirrored once more it is as before: the record of a scaling by -1 does that.
void mirror_with_undo(int axis)
{
    if (!something_with_box("mirror")) {
        return;
    }
    if (axis < 0 || axis > 2) {
        display_message("mirror - no axis %d", axis);
        return;
    }
    if (transform_reaches_further()) {
        const point3_t low = selection().box_min, high = selection().box_max;
        drag_change_t change;
        change.kind = drag_change_t::RESIZE;
        change.from_min = change.to_min = low;
        change.from_max = change.to_max = high;
        axis_of(change.to_min, axis) = axis_of(high, axis);
        axis_of(change.to_max, axis) = axis_of(low, axis);
        make(change, "mirror");
        return;
    }
    new_undo(UNDO_SCALE, "mirror");
    set_undo_vert(axis == 0 ? -1.0f : 1.0f, axis == 1 ? -1.0f : 1.0f, axis == 2 ? -1.0f : 1.0f);
    mirror_selected(axis);
    display_status();
}
