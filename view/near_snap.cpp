#include "view/near_snap.h"

#include "base/prefs.h"
#include "edit/document/selection_scan.h"
#include "edit/snap.h"
#include "model/change_marks.h"
#include "model/matrix.h"
#include "model/world.h"
#include "view/camera_eye.h"
#include "view/interaction.h"
#include "view/projection.h"
#include "view/projector.h"
#include "view/views_internal.h"

#include <cmath>

namespace {

struct targets_t {
    std::vector<point3_t> points;
    bool held = false; // gathered for a drag
    std::uint64_t model_count = ~0ull, tree_count = ~0ull;
};
targets_t targets;

void gather(const std::vector<vertex *> &moving)
{
    targets.points.clear();
    for_each_object(vesk_get_world(), [](object_t *object) {
        for (vertex *v : each<vertex>(object->vertices))
            set_scratch(v, 0);
    });
    for (vertex *v : moving)
        set_scratch(v, 1);
    for_each_object(vesk_get_world(), [](object_t *object) {
        if (object->visible == 0)
            return;
        for (const vertex *v : each<vertex>(object->vertices))
            if (scratch(v) == 0)
                targets.points.push_back(v->position);
    });
}

void gather_when_changed()
{
    if (targets.held ||
        (targets.model_count == model_change_count() && targets.tree_count == tree_change_count()))
        return;
    targets.model_count = model_change_count();
    targets.tree_count = tree_change_count();
    gather({});
}

} // namespace

void snap_near(point3_t *point, int view)
{
    const vertex *nearest = find_nearest_vertex(point);
    if (nearest != nullptr && static_cast<double>(points_dist(&nearest->position, point)) <=
                                  pixels_to_distance(prefs.snap_near_pixels, view))
        *point = nearest->position;
}

void near_snap_begin(const std::vector<vertex *> &moving)
{
    gather(moving);
    targets.held = true;
}

void near_snap_end() { targets = {}; }

bool near_snap_at(int view, double x, double y, point3_t *found)
{
    gather_when_changed();
    const double range = prefs.snap_near_pixels * view_interface_scale();
    double nearest = range * range;
    bool any = false;
    for (const point3_t &target : targets.points) {
        double px = 0, py = 0;
        if (!window_position(view, target, &px, &py))
            continue;
        const double distance = (px - x) * (px - x) + (py - y) * (py - y);
        if (distance < nearest || (!any && distance <= nearest)) {
            nearest = distance;
            *found = target;
            any = true;
        }
    }
    return any;
}

bool front_vertex_at(int view, double x, double y, double range, point3_t *found)
{
    constexpr float equal = 0.5f; // pixels
    gather_when_changed();
    const projector_t projector(view);
    float nearest = static_cast<float>(range), depth = 0;
    bool any = false;
    for (const point3_t &target : targets.points) {
        const screen_point_t p = projector(target);
        const float pixels = std::hypot(p.x - static_cast<float>(x), p.y - static_cast<float>(y));
        if (!(pixels <= nearest + (any ? equal : 0)))
            continue;
        if (!any || pixels < nearest - equal || p.depth < depth) {
            nearest = pixels;
            depth = p.depth;
            *found = target;
            any = true;
        }
    }
    return any;
}

bool window_position(int view, const point3_t &point, double *x, double *y)
{
    if (!is_orthographic(view))
        return camera_project(point, x, y);
    const VESKView &record = *vesk_get_view(view);
    const view_axes_t axes = view_axes[view];
    const auto along = [&](int axis) {
        return double{record.scale} * axis_sign[axis] * axis_of(point, axis) + record.centre[axis] +
               record.pan[axis];
    };
    *x = along(axes.horizontal);
    *y = along(axes.vertical);
    return true;
}
