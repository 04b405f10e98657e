#include "edit/mesh/point_in_solid.h"

#include <algorithm>
#include <limits>
#include <map>

namespace {

constexpr int axis = 2;

// As turn, for a point that lies by next to nothing to the right of where it is, and by far less
// above: it is on no side that is seen as one.
int turn_beside(const exact_points &points, int a, int b, int p)
{
    if (const int sign = points.turn(axis, a, b, p); sign != 0)
        return sign;
    const int up = points.order(1, b, a);
    return up != 0 ? -up : points.order(0, b, a);
}

} // namespace

bool is_in_solids(const solid_meshes &solids, int parts, int point)
{
    const exact_points &points = solids.points();
    box_t ray = box_t::none();
    ray.add(points.rounded(point));
    ray.high[axis] = std::numeric_limits<float>::infinity();
    std::map<int, int> layers;
    bool on = false;
    solids.tree().query(ray, [&](int which) {
        const solid_triangle &t = solids.triangles()[which];
        if (t.part >= parts || on)
            return;
        const int side = points.side(points.plane(t.v[0], t.v[1], t.v[2]), point);
        if (side == 0) {
            const auto outside = [&](int i) {
                return points.turn(t.axis, t.v[i], t.v[(i + 1) % 3], point) * t.facing < 0;
            };
            on = !outside(0) && !outside(1) && !outside(2);
            return;
        }
        const int facing = points.turn(axis, t.v[0], t.v[1], t.v[2]);
        if (facing == 0 || side * facing > 0)
            return; // seen edge on, or below the point
        for (int i = 0; i < 3; ++i) {
            if (turn_beside(points, t.v[i], t.v[(i + 1) % 3], point) != facing)
                return;
        }
        layers[t.part] += facing;
    });
    return !on && std::any_of(layers.begin(), layers.end(),
                              [](const auto &layer) { return layer.second != 0; });
}
