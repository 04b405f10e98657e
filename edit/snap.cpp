#include "edit/snap.h"

#include "base/messages.h"
#include "base/prefs.h"
#include "base/progress.h"
#include "base/redraw.h"
#include "base/worker.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo.h"
#include "edit/mesh/mesh_change.h"
#include "edit/mesh/position_index.h"
#include "edit/transform.h"
#include "model/change_marks.h"
#include "model/flat_mesh.h"
#include "model/freed.h"
#include "model/matrix.h"
#include "model/vec3d.h"
#include "model/vector.h"
#include "model/world.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>
#include <vector>

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

// Points in cubes a little larger than twice the distance: the neighbours of a point lie in its own
// cube and in those at the sides, edges and the corner that are nearer. Seeds are farther apart than the
// distance, so few look into the same cube.
class cluster_grid {
public:
    cluster_grid(const std::vector<point3_t> &points, float distance)
        : points_(points), distance_(distance),
          size_(distance > 0 ? static_cast<double>(distance) * 2.002 : 1e-60),
          first_(std::bit_ceil(2 * points.size() + 1), none), next_(points.size(), none)
    {
        std::vector<std::uint32_t> places(points.size(), none);
        in_parallel_ranges(static_cast<int>(points.size()), [&](int begin, int end) {
            for (int i = begin; i < end; ++i) {
                if (point_is_finite(points[i]))
                    places[i] = static_cast<std::uint32_t>(place_of(cell_of(points[i])));
            }
        });
        for (std::size_t i = 0; i < points.size(); ++i) {
            if (places[i] != none)
                next_[i] = std::exchange(first_[places[i]], static_cast<std::uint32_t>(i));
        }
    }
    // Takes out the points within the distance of this one, ascending.
    void take(std::uint32_t seed, std::vector<std::uint32_t> &out);
    // Whether no other point lies within the distance. Asked before anything is taken out.
    [[nodiscard]] bool is_alone(std::uint32_t point) const;

private:
    using cell = vec3d; // by whole numbers
    static constexpr std::uint32_t none = UINT32_MAX;

    // In the table; other cells may share it.
    [[nodiscard]] std::size_t place_of(const cell &c) const
    {
        // The low half of a small whole number as a double is all zeros: it is mixed in from above.
        std::uint64_t h = 0;
        for (const double v : {c.x, c.y, c.z}) {
            h ^= std::bit_cast<std::uint64_t>(v + 0.0);
            h = (h ^ (h >> 32)) * 0x9E3779B97F4A7C15ULL;
            h ^= h >> 29;
        }
        return h & (first_.size() - 1);
    }
    [[nodiscard]] cell cell_of(const point3_t &p) const
    {
        return {std::floor(p.x / size_), std::floor(p.y / size_), std::floor(p.z / size_)};
    }
    [[nodiscard]] bool is_near(const point3_t &a, const point3_t &b) const
    {
        return static_cast<float>(point_length(point_sub(a, b))) <= distance_;
    }
    // Calls visit(place) for the cubes round the point until one answers false.
    template <class Visit>
    void visit_around(const point3_t &p, const Visit &visit) const;
    void take_from(std::size_t place, const point3_t &seed, std::vector<std::uint32_t> &out);

    const std::vector<point3_t> &points_;
    float distance_;
    double size_;
    std::vector<std::uint32_t> first_, next_; // points of a place, linked
};

template <class Visit>
void cluster_grid::visit_around(const point3_t &p, const Visit &visit) const
{
    const cell middle = cell_of(p);
    const auto beside = [&](double at, double cube) {
        return cube + (at / size_ - cube < 0.5 ? -1 : 1);
    };
    const cell side = {beside(p.x, middle.x), beside(p.y, middle.y), beside(p.z, middle.z)};
    for (int i = 0; i < 8; ++i) {
        // Far out a step is lost in rounding.
        if (((i & 1) != 0 && side.x == middle.x) || ((i & 2) != 0 && side.y == middle.y) ||
            ((i & 4) != 0 && side.z == middle.z))
            continue;
        if (!visit(place_of({(i & 1) != 0 ? side.x : middle.x, (i & 2) != 0 ? side.y : middle.y,
                             (i & 4) != 0 ? side.z : middle.z})))
            return;
    }
}

void cluster_grid::take_from(std::size_t place, const point3_t &seed,
                             std::vector<std::uint32_t> &out)
{
    for (std::uint32_t *link = &first_[place]; *link != none;) {
        const std::uint32_t i = *link;
        if (is_near(points_[i], seed)) {
            out.push_back(i);
            *link = next_[i];
        } else {
            link = &next_[i];
        }
    }
}

void cluster_grid::take(std::uint32_t seed, std::vector<std::uint32_t> &out)
{
    visit_around(points_[seed], [&](std::size_t place) {
        take_from(place, points_[seed], out);
        return true;
    });
    std::sort(out.begin(), out.end());
}

bool cluster_grid::is_alone(std::uint32_t point) const
{
    bool alone = true;
    visit_around(points_[point], [&](std::size_t place) {
        for (std::uint32_t i = first_[place]; i != none && alone; i = next_[i])
            alone = i == point || !is_near(points_[i], points_[point]);
        return alone;
    });
    return alone;
}

// Of each point whether it is a cluster of its own. False when the user cancelled.
bool find_alone(const cluster_grid &grid, std::vector<char> &alone, progress_t &progress)
{
    constexpr int piece = 16384;
    const auto n = static_cast<int>(alone.size());
    return in_parallel((n + piece - 1) / piece,
                       [&](int i) {
                           for (int p = i * piece; p < std::min((i + 1) * piece, n); ++p)
                               alone[p] = grid.is_alone(p) ? 1 : 0;
                       },
                       [&] { return progress.look(0); });
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
    std::vector<char> alone(points.size());
    if (!find_alone(grid, alone, progress))
        return false;
    std::vector<bool> taken(points.size());
    std::vector<std::uint32_t> members;
    for (std::uint32_t i = 0; i < points.size(); ++i) {
        if (!progress.step(i))
            return false;
        if (taken[i] || !point_is_finite(points[i]))
            continue;
        members.clear();
        if (alone[i] != 0)
            members.push_back(i);
        else
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

// ---- joining what stands at one place ----

// The corners of a surface as they refer after the joining lose those that repeat the one before.
// A surface that has no area left, a line no length, goes.
void drop_repeated_corners(mesh_change &change, int surface,
                           const std::vector<std::int32_t> &corners)
{
    const flat_mesh &mesh = change.before();
    const int first = mesh.first_corner(surface), end = mesh.end_corner(surface);
    const int type = mesh.surface(surface).type;
    std::vector<int> repeated;
    int left = end - first;
    for (int c = first; c < end; ++c) {
        const bool closes = c + 1 == end;
        if (closes && type == SURFACE_LINE)
            break;
        if (corners[c] == corners[closes ? first : c + 1]) {
            repeated.push_back(c);
            --left;
        }
    }
    if (repeated.empty())
        return;
    if (left < (type == SURFACE_POLYGON ? 3 : 2)) {
        change.remove_surface(surface);
        return;
    }
    for (const int c : repeated)
        change.remove_corner(c);
}

// Those of the vertices that stand at one place become one; returns how many are left.
int join_vertices(object_t *object, const std::vector<int> &vertices)
{
    mesh_change change(object);
    const flat_mesh &mesh = change.before();
    position_index places(vertices.size());
    std::vector<std::int32_t> joined(mesh.num_vertices());
    std::iota(joined.begin(), joined.end(), 0);
    int left = 0;
    for (const int v : vertices) {
        joined[v] = places.find_or_add(mesh.position(v), v);
        if (joined[v] == v)
            ++left;
        else
            change.remove_vertex(v);
    }
    std::vector<std::int32_t> corners = *mesh.corners;
    for (int surface = 0; surface < mesh.num_surfaces(); ++surface) {
        bool joins = false;
        for (int c = mesh.first_corner(surface); c < mesh.end_corner(surface); ++c) {
            const std::int32_t to = joined[corners[c]];
            if (to == corners[c])
                continue;
            change.redirect_corner(c, to);
            corners[c] = to;
            joins = true;
        }
        if (joins)
            drop_repeated_corners(change, surface, corners);
    }
    change.remove_unused();
    change.commit();
    return left;
}

// Puts the selected vertices to their places and joins those of one object that meet.
void weld(const std::vector<vertex *> &vertices, const std::vector<point3_t> &to)
{
    open_world_undo("weld");
    for (std::size_t i = 0; i < vertices.size(); ++i)
        vertices[i]->position = to[i];
    mark_owners(selection().vertices);
    int left = 0;
    std::vector<object_t *> touched;
    {
        freed_batch at_once;
        for (const owned_elements &owned : vertices_by_owner(selection().vertices)) {
            left += join_vertices(owned.object, owned.indices);
            touched.push_back(owned.object);
        }
    }
    calc_normals_of(touched);
    selection_changed("weld");
    finish_edit();
    display_message("weld - %d vertices became %d", static_cast<int>(vertices.size()), left);
}

// False, told, when there are none.
bool has_vertices_to_weld(const std::vector<vertex *> &vertices)
{
    if (vertices.size() < 2)
        display_message("weld - select at least 2 vertices");
    return vertices.size() >= 2;
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

void command_weld()
{
    const std::vector<vertex *> vertices = elements_of<vertex>(selection().vertices);
    if (!has_vertices_to_weld(vertices))
        return;
    sum_t sum;
    for (const vertex *point : vertices)
        sum.add(point->position);
    weld(vertices, std::vector<point3_t>(vertices.size(), sum.mean()));
}

void command_weld_distance(float distance)
{
    const std::vector<vertex *> vertices = elements_of<vertex>(selection().vertices);
    if (!has_vertices_to_weld(vertices))
        return;
    std::vector<point3_t> points, to;
    for (const vertex *point : vertices)
        points.push_back(point->position);
    cluster_result result;
    if (find_clusters(points, distance, to, result))
        weld(vertices, to);
    else
        display_message("weld - cancelled");
}
