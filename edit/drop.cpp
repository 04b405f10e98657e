#include "edit/drop.h"

#include "base/messages.h"
#include "base/numbers.h"
#include "base/progress.h"
#include "edit/document/edge_selection.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_scan.h"
#include "edit/mesh/box_tree.h"
#include "edit/mesh/tessellator.h"
#include "edit/part_moves.h"
#include "model/each.h"
#include "model/object_tree.h"
#include "model/vec3d.h"
#include "model/vector.h"
#include "model/world.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <numeric>
#include <unordered_set>

namespace {

constexpr double nothing_below = std::numeric_limits<double>::infinity();
constexpr double wall = 1e-9; // of a triangle's sides: seen from above it is a line

struct triangle_t {
    vec3d p[3];
};

box_t box_of(const triangle_t &t)
{
    box_t box = box_t::none();
    for (const vec3d &p : t.p)
        box.add(to_point(p));
    return box;
}

// Seen from above: twice the area between a, b and c, positive when they turn left.
double area_above(const vec3d &a, const vec3d &b, const vec3d &c)
{
    return (b.x - a.x) * (c.z - a.z) - (b.z - a.z) * (c.x - a.x);
}

// Turned left; false for one that stands upright.
bool lie_flat(triangle_t &t)
{
    const double area = area_above(t.p[0], t.p[1], t.p[2]);
    const vec3d u = t.p[1] - t.p[0], v = t.p[2] - t.p[0];
    if (std::abs(area) <= wall * (dot(u, u) + dot(v, v)))
        return false;
    if (area < 0)
        std::swap(t.p[1], t.p[2]);
    return true;
}

double height_at(const triangle_t &t, const vec3d &at)
{
    const double all = area_above(t.p[0], t.p[1], t.p[2]);
    return (t.p[0].y * area_above(t.p[1], t.p[2], at) + t.p[1].y * area_above(t.p[2], t.p[0], at) +
            t.p[2].y * area_above(t.p[0], t.p[1], at)) /
           all;
}

// What two have in common, seen from above: corners of the part of `upper`, a polygon, a line or a
// point, that lies over the triangle.
std::vector<vec3d> part_above(std::vector<vec3d> common, const triangle_t &lower)
{
    for (int side = 0; side < 3 && !common.empty(); ++side) {
        const vec3d &a = lower.p[side], &b = lower.p[(side + 1) % 3];
        std::vector<vec3d> inside;
        for (std::size_t i = 0; i < common.size(); ++i) {
            const vec3d &from = common[i], &to = common[(i + 1) % common.size()];
            const double before = area_above(a, b, from), after = area_above(a, b, to);
            if (before >= 0)
                inside.push_back(from);
            if ((before > 0 && after < 0) || (before < 0 && after > 0))
                inside.push_back(from + (to - from) * (before / (before - after)));
        }
        common = std::move(inside);
    }
    return common;
}

// The smallest way down from `upper` to `lower` over the area that they have in common: it is at a
// corner of that.
double way_down(const triangle_t &upper, const triangle_t &lower)
{
    const std::vector<vec3d> common = part_above({upper.p, upper.p + 3}, lower);
    double area = 0, way = nothing_below;
    for (std::size_t i = 1; i + 1 < common.size(); ++i)
        area += area_above(common[0], common[i], common[i + 1]);
    if (area <= wall * area_above(upper.p[0], upper.p[1], upper.p[2]))
        return nothing_below; // they only touch
    for (const vec3d &at : common)
        way = std::min(way, height_at(upper, at) - height_at(lower, at));
    return way;
}

// The triangles of objects, and where they are.
struct ground_t {
    std::vector<triangle_t> triangles;
    std::unique_ptr<box_tree> tree;
    box_t box = box_t::none();

    // Of an object all surfaces, or those with these marks.
    void add(object_t *object, tessellator_t &cutter, const std::vector<bool> *only = nullptr)
    {
        const flat_ptr mesh = object_flat(object);
        std::vector<point3_t> outline;
        for (int s = 0; s < mesh->num_surfaces(); ++s) {
            if (only != nullptr && !(*only)[s])
                continue;
            outline.clear();
            for (const int v : mesh->surface_corners(s))
                outline.push_back(mesh->position(v));
            if (mesh->surface(s).is_line() || !cutter.cut(outline))
                continue;
            const auto cut = cutter.triangles();
            for (std::size_t i = 0; i + 2 < cut.size(); i += 3) {
                triangle_t t = {{to_vec3d(outline[cut[i]]), to_vec3d(outline[cut[i + 1]]),
                                 to_vec3d(outline[cut[i + 2]])}};
                if (lie_flat(t))
                    triangles.push_back(t);
            }
        }
    }
    void plant()
    {
        std::vector<box_t> boxes;
        box = box_t::none();
        for (const triangle_t &t : triangles) {
            boxes.push_back(box_of(t));
            box.add(boxes.back());
        }
        tree = std::make_unique<box_tree>(std::move(boxes));
    }
    void lower(double by)
    {
        for (triangle_t &t : triangles) {
            for (vec3d &p : t.p)
                p.y -= by;
        }
        plant();
    }
};

// How far one can fall until it touches the other; what it is in already does not stop it.
double fall(const ground_t &falling, const ground_t &on)
{
    double way = nothing_below;
    if (falling.box.low[0] > on.box.high[0] || on.box.low[0] > falling.box.high[0] ||
        falling.box.low[2] > on.box.high[2] || on.box.low[2] > falling.box.high[2])
        return way;
    for (const triangle_t &t : falling.triangles) {
        box_t box = box_of(t);
        box.low[1] = -std::numeric_limits<float>::max();
        on.tree->query(box, [&](int i) {
            const double here = way_down(t, on.triangles[i]);
            if (here >= -wall && here < way)
                way = std::max(here, 0.0);
        });
    }
    return way;
}

// The same for a line or a point.
double fall(const std::vector<vec3d> &ends, const ground_t &on)
{
    double way = nothing_below;
    box_t box = box_t::none();
    for (const vec3d &end : ends)
        box.add(to_point(end));
    box.low[1] = -std::numeric_limits<float>::max();
    on.tree->query(box, [&](int i) {
        // Where the ends of the part lie on the line, from which a crossing is interpolated.
        for (const vec3d &at : part_above(ends, on.triangles[i])) {
            const double here = at.y - height_at(on.triangles[i], at);
            if (here >= -wall && here < way)
                way = std::max(here, 0.0);
        }
    });
    return way;
}

void drop_to(part_moves &parts, double height)
{
    const bool by_object = parts.object(0) != nullptr;
    float lowest = parts.box_min(0).y;
    for (int i = 0; i < parts.count(); ++i)
        lowest = std::min(lowest, parts.box_min(i).y);
    for (int i = 0; i < parts.count(); ++i) {
        const float low = by_object ? parts.box_min(i).y : lowest;
        parts.set_offset(i, {0, static_cast<float>(height) - low, 0});
    }
}

// What does not fall: the visible objects outside the parts.
ground_t ground_outside(const part_moves &parts)
{
    std::unordered_set<const object_t *> falling;
    for (int i = 0; i < parts.count(); ++i)
        for_each_object(parts.object(i), [&](const object_t *object) { falling.insert(object); });
    ground_t ground;
    tessellator_t cutter;
    for_each_object(vesk_get_world(), [&](object_t *object) {
        if (object->visible != 0 && !falling.contains(object))
            ground.add(object, cutter);
    });
    ground.plant();
    return ground;
}

// Returns how many have nothing below, or -1 when the user cancelled.
int drop_onto_others(part_moves &parts)
{
    std::vector<int> order(parts.count());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return parts.box_min(a).y < parts.box_min(b).y; });
    const ground_t ground = ground_outside(parts);
    std::vector<ground_t> landed(parts.count());
    progress_t progress(parts.count());
    tessellator_t cutter;
    int without = 0;
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (!progress.step(static_cast<double>(i)))
            return -1;
        ground_t &part = landed[i];
        for_each_object(parts.object(order[i]),
                        [&](object_t *object) { part.add(object, cutter); });
        part.plant();
        double way = fall(part, ground);
        for (std::size_t j = 0; j < i; ++j)
            way = std::min(way, fall(part, landed[j]));
        if (way == nothing_below) {
            ++without;
            way = 0;
        }
        part.lower(way);
        parts.set_offset(order[i], {0, static_cast<float>(-way), 0});
    }
    return without;
}

// Selected vertices, edges and surfaces fall as one, onto everything that does not hang on them.
class falling_elements {
public:
    explicit falling_elements(part_moves &parts) : parts_(parts)
    {
        std::vector<vertex *> points;
        for (int i = 0; i < parts.count(); ++i)
            points.push_back(parts.point(i));
        owners_ = unique_objects(owners_of_vertices(points));
        moving_.insert(points.begin(), points.end());
        for_each_object(vesk_get_world(), [&](object_t *object) {
            if (object->visible != 0)
                sort(object);
        });
        ground_.plant();
        falling_.plant();
    }

    [[nodiscard]] double way() const
    {
        double least = falling_.triangles.empty() ? nothing_below : fall(falling_, ground_);
        for (int i = 0; i < parts_.count(); ++i)
            least = std::min(least, fall({to_vec3d(parts_.point(i)->position)}, ground_));
        for (const owned_edges &owned : selected_edges()) {
            const flat_mesh &mesh = owned.topology->mesh();
            for (const int e : owned.edges) {
                const mesh_edge &edge = owned.topology->edge(e);
                least = std::min(
                    least, fall({to_vec3d(mesh.position(edge.a)), to_vec3d(mesh.position(edge.b))},
                                ground_));
            }
        }
        return least;
    }

private:
    // Surfaces with none of the vertices are ground, those with all of them fall.
    void sort(object_t *object)
    {
        if (std::find(owners_.begin(), owners_.end(), object) == owners_.end()) {
            ground_.add(object, cutter_);
            return;
        }
        const flat_ptr mesh = object_flat(object);
        std::vector<bool> stays(mesh->num_surfaces()), falls(mesh->num_surfaces());
        for (int s = 0; s < mesh->num_surfaces(); ++s) {
            const auto corners = mesh->surface_corners(s);
            const auto moves = std::count_if(corners.begin(), corners.end(), [&](int v) {
                return moving_.contains(mesh->vertex_record(v));
            });
            stays[s] = moves == 0;
            falls[s] = moves == static_cast<std::ptrdiff_t>(corners.size());
        }
        ground_.add(object, cutter_, &stays);
        falling_.add(object, cutter_, &falls);
    }

    part_moves &parts_;
    std::vector<object_t *> owners_;
    std::unordered_set<const vertex *> moving_;
    tessellator_t cutter_;
    ground_t ground_, falling_;
};

void drop_elements(part_moves &parts)
{
    const double way = falling_elements(parts).way();
    if (way == nothing_below) {
        display_message("drop - nothing lies below");
        return;
    }
    for (int i = 0; i < parts.count(); ++i)
        parts.set_offset(i, {0, static_cast<float>(-way), 0});
    parts.commit("drop");
}

} // namespace

// ---- commands ----

void command_drop(const char *height)
{
    part_moves parts;
    if (!parts.any("drop"))
        return;
    if (std::strcmp(height, "below") != 0) {
        drop_to(parts, double_of(height));
        parts.commit("drop");
        return;
    }
    if (parts.object(0) == nullptr) {
        drop_elements(parts);
        return;
    }
    const int without = drop_onto_others(parts);
    if (without < 0) {
        display_message("drop - cancelled");
        return;
    }
    parts.commit("drop");
    if (without > 0)
        display_message("drop - %d have nothing below", without);
}
