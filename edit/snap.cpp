#include "edit/snap.h"

#include "base/messages.h"
#include "base/prefs.h"
#include "base/progress.h"
#include "base/redraw.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo.h"
#include "edit/transform.h"
#include "model/change_marks.h"
#include "model/flat_mesh.h"
#include "model/matrix.h"
#include "model/vec3d.h"
#include "model/vector.h"
#include "model/world.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <unordered_map>

namespace {

// The multiple of `spacing`; 0 where there is none to take.
double snap_coordinate(float &coordinate, float spacing)
{
    if (!(spacing > 0) || !std::isfinite(coordinate))
        return 0;
    const double g = spacing;
    const double half = coordinate >= 0 ? g / 2 : -g / 2;
    const double multiple = std::trunc((coordinate + half) / g);
    coordinate = static_cast<float>(multiple * g);
    return multiple;
}

struct sum_t {
    vec3d sum;
    int count = 0;

    void add(const point3_t &p)
    {
        sum += to_vec3d(p);
        ++count;
    }
    // 0 0 0 of nothing.
    [[nodiscard]] point3_t mean() const { return to_point(sum / std::max(count, 1)); }
};

// ---- clusters ----

// Points in cubes a little larger than the distance: the neighbours of a point lie in the cubes
// around. Seeds are farther apart than the distance, so few look into the same cube.
class cluster_grid {
public:
    cluster_grid(const std::vector<point3_t> &points, float distance)
        : points_(points), distance_(distance),
          size_(distance > 0 ? static_cast<double>(distance) * 1.001 : 1e-60)
    {
        for (std::size_t i = 0; i < points.size(); ++i) {
            if (point_is_finite(points[i]))
                cells_[cell_of(points[i])].push_back(static_cast<std::uint32_t>(i));
        }
    }
    // Takes out the points within the distance of this one, ascending.
    void take(std::uint32_t seed, std::vector<std::uint32_t> &out);

private:
    using cell = vec3d; // by whole numbers
    struct cell_hash {
        std::size_t operator()(const cell &c) const
        {
            std::uint64_t h = 0;
            for (const double v : {c.x, c.y, c.z})
                h = (h ^ std::bit_cast<std::uint64_t>(v + 0.0)) * 0x9E3779B97F4A7C15ULL;
            return h ^ (h >> 32);
        }
    };

    [[nodiscard]] cell cell_of(const point3_t &p) const
    {
        return {std::floor(p.x / size_), std::floor(p.y / size_), std::floor(p.z / size_)};
    }
    void take_from(const cell &where, const point3_t &seed, std::vector<std::uint32_t> &out);

    const std::vector<point3_t> &points_;
    float distance_;
    double size_;
    std::unordered_map<cell, std::vector<std::uint32_t>, cell_hash> cells_;
};

void cluster_grid::take_from(const cell &where, const point3_t &seed,
                             std::vector<std::uint32_t> &out)
{
    const auto found = cells_.find(where);
    if (found == cells_.end())
        return;
    std::erase_if(found->second, [&](std::uint32_t i) {
        if (!(points_dist(&points_[i], &seed) <= distance_))
            return false;
        out.push_back(i);
        return true;
    });
    if (found->second.empty())
        cells_.erase(found);
}

void cluster_grid::take(std::uint32_t seed, std::vector<std::uint32_t> &out)
{
    const point3_t &p = points_[seed];
    const cell middle = cell_of(p);
    for (const double dx : {-1.0, 0.0, 1.0}) {
        for (const double dy : {-1.0, 0.0, 1.0}) {
            for (const double dz : {-1.0, 0.0, 1.0}) {
                const cell near = {middle.x + dx, middle.y + dy, middle.z + dz};
                // Far out a step is lost in rounding.
                if ((dx == 0) == (near.x == middle.x) && (dy == 0) == (near.y == middle.y) &&
                    (dz == 0) == (near.z == middle.z))
                    take_from(near, p, out);
            }
        }
    }
    std::sort(out.begin(), out.end());
}

struct cluster_result {
    int moved = 0, clusters = 0;
};

// The new place of each point. False when the user cancelled.
bool find_clusters(const std::vector<point3_t> &points, float distance, std::vector<point3_t> &to,
                   cluster_result &result)
{
    to = points;
    if (!(distance >= 0))
        return true;
    progress_t progress(static_cast<double>(points.size()));
    cluster_grid grid(points, distance);
    std::vector<bool> taken(points.size());
    std::vector<std::uint32_t> members;
    for (std::uint32_t i = 0; i < points.size(); ++i) {
        if (!progress.step(i))
            return false;
        if (taken[i] || !point_is_finite(points[i]))
            continue;
        members.clear();
        grid.take(i, members);
        sum_t sum;
        for (const std::uint32_t m : members)
            sum.add(points[m]);
        for (const std::uint32_t m : members) {
            to[m] = sum.mean();
            taken[m] = true;
        }
        result.moved += sum.count;
        ++result.clusters;
    }
    return true;
}

// ---- the selected vertices ----

void open_positions_undo(const char *label)
{
    new_undo(UNDO_POSITIONS, label);
    set_undo_vertex_positions(selection().vertices, selection().objects);
}

void mark_owners(const listitem *vertices)
{
    for (const owned_elements &owned : vertices_by_owner(vertices))
        object_mark(owned.object, CHANGED_POSITIONS);
}

} // namespace

int snap_to_grid_float(point3_t *point, float gx, float gy, float gz)
{
    snap_coordinate(point->x, gx);
    snap_coordinate(point->y, gy);
    const double multiple = snap_coordinate(point->z, gz);
    return static_cast<int>(std::clamp<double>(multiple, std::numeric_limits<int>::min(),
                                               std::numeric_limits<int>::max()));
}

void snap_to_grid(point3_t *point)
{
    const auto g = static_cast<float>(prefs.grid);
    if (prefs.gridsnap != 0)
        snap_to_grid_float(point, g, g, g);
}

vertex *find_nearest_vertex(const point3_t *point)
{
    vertex *nearest = nullptr;
    double best = std::numeric_limits<double>::infinity();
    for_each_object(vesk_get_world(), [&](object_t *object) {
        const flat_ptr mesh = object_flat(object);
        for (std::size_t i = 0; i < mesh->positions->size(); ++i) {
            const point3_t away = point_sub(mesh->position(i), *point);
            const double squared = point_dot(away, away);
            if (squared < best) {
                best = squared;
                nearest = mesh->vertex_record(i);
            }
        }
    });
    return nearest;
}

listitem *vertexlist_get_closest(const listitem *vertices, const point3_t *point, float distance,
                                 point3_t *centroid)
{
    listitem *closest = nullptr;
    sum_t sum;
    for (vertex *other : each<vertex>(vertices)) {
        if (points_dist(&other->position, point) <= distance) {
            list_add_item_head(&closest, other);
            sum.add(other->position);
        }
    }
    if (centroid != nullptr)
        *centroid = sum.mean();
    return closest;
}

// ---- commands ----

void selected_snap_to_grid(void)
{
    open_positions_undo("snap to grid");
    const auto g = static_cast<float>(prefs.grid);
    for (vertex *point : each<vertex>(selection().vertices))
        snap_to_grid_float(&point->position, g, g, g);
    mark_owners(selection().vertices);
    find_bounding_box();
    redraw_all();
}

void selected_snap_together(void)
{
    open_positions_undo("snap vertices together");
    sum_t sum;
    for (const vertex *point : each<vertex>(selection().vertices))
        sum.add(point->position);
    const point3_t mean = sum.mean();
    for (vertex *point : each<vertex>(selection().vertices))
        vertex_set_point(point, mean.x, mean.y, mean.z);
    mark_owners(selection().vertices);
    find_bounding_box();
    selected_calc_normals();
    redraw_all();
}

void selected_snap_together_distance(float distance)
{
    display_message("snapping together...");
    const std::vector<vertex *> vertices = elements_of<vertex>(selection().vertices);
    std::vector<point3_t> points;
    points.reserve(vertices.size());
    for (const vertex *point : vertices)
        points.push_back(point->position);
    std::vector<point3_t> to;
    cluster_result result;
    if (!find_clusters(points, distance, to, result)) {
        display_message("snap together - cancelled");
        return;
    }
    open_positions_undo("snap vertices together by distance");
    for (std::size_t i = 0; i < vertices.size(); ++i)
        vertices[i]->position = to[i];
    mark_owners(selection().vertices);
    redraw_all();
    display_message("vertices moved: %d (%d clusters)", result.moved, result.clusters);
}
