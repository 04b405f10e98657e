#include "edit/hull.h"

#include "base/aside.h"
#include "base/messages.h"
#include "base/prefs.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo.h"
#include "model/bounds.h"
#include "model/normals.h"
#include "model/object_tree.h"
#include "model/vector.h"
#include "model/world.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <libqhull_r/qhull_ra.h>
#include <string>
#include <utility>

namespace {

struct file_closer {
    void operator()(std::FILE *file) const { std::fclose(file); }
};

// One run of the library: numbers in, facets out.
class qhull_run {
public:
    qhull_run() : silent_(std::fopen("/dev/null", "w")) { qh_zero(&state_, silent_.get()); }
    ~qhull_run()
    {
        int longs = 0, long_bytes = 0;
        qh_freeqhull(&state_, qh_ALL);
        qh_memfreeshort(&state_, &longs, &long_bytes);
    }
    qhull_run(const qhull_run &) = delete;
    qhull_run &operator=(const qhull_run &) = delete;

    // `numbers` must outlive the run.
    hull_result run(std::vector<double> &numbers, int dimension, const std::string &options)
    {
        std::string command = "qhull " + options;
        const int n = static_cast<int>(numbers.size()) / dimension;
        const int code = qh_new_qhull(&state_, dimension, n, numbers.data(), False, command.data(),
                                      silent_.get(), silent_.get());
        if (code == qh_ERRsingular || code == qh_ERRinput)
            return hull_result::flat;
        return code == 0 ? hull_result::done : hull_result::failed;
    }

    // Calls visit(facet, corners) with the places of each facet's points, in order. False when the
    // library gave up on a facet.
    template <class Visit>
    bool for_each_polygon(Visit &&visit)
    {
        std::vector<int> corners; // made before the jump: it must be destroyed
        if (setjmp(state_.errexit) != 0) {
            state_.NOerrexit = True;
            return false;
        }
        state_.NOerrexit = False;
        for (facetT *facet = state_.facet_list; facet != nullptr && facet->next != nullptr;
             facet = facet->next)
            visit_polygon(facet, &corners, visit);
        state_.NOerrexit = True;
        return true;
    }
    // Calls visit(normal, offset) for the plane of each facet.
    template <class Visit>
    void for_each_plane(Visit &&visit)
    {
        for (facetT *facet = state_.facet_list; facet != nullptr && facet->next != nullptr;
             facet = facet->next)
            visit(facet->normal, facet->offset);
    }
    // The same for simplices of the lower Delaunay hull: their points in the library's order.
    template <class Visit>
    void for_each_simplex(Visit &&visit)
    {
        std::array<int, 3> corners = {};
        for (facetT *facet = state_.facet_list; facet != nullptr && facet->next != nullptr;
             facet = facet->next) {
            if (facet->upperdelaunay != 0)
                continue;
            std::size_t n = 0;
            for (int i = 0; i < qh_setsize(&state_, facet->vertices) && n < 3; ++i)
                corners[n++] = point_of(vertex_at(facet->vertices, i));
            if (n == 3)
                visit(corners);
        }
    }

private:
    static vertexT *vertex_at(setT *set, int i) { return static_cast<vertexT *>(set->e[i].p); }
    int point_of(const vertexT *v) { return qh_pointid(&state_, v->point); }

    template <class Visit>
    void visit_polygon(facetT *facet, std::vector<int> *corners, Visit &&visit)
    {
        setT *vertices = qh_facet3vertex(&state_, facet);
        corners->clear();
        for (int i = 0; i < qh_setsize(&state_, vertices); ++i)
            corners->push_back(point_of(vertex_at(vertices, i)));
        qh_settempfree(&state_, &vertices);
        visit(facet, *corners);
    }

    std::unique_ptr<std::FILE, file_closer> silent_;
    qhT state_;
};

void append_polygon(const std::vector<int> &corners, polygons_t *out)
{
    out->corners.insert(out->corners.end(), corners.begin(), corners.end());
    out->offsets.push_back(static_cast<int>(out->corners.size()));
}

// Whether a polygon runs round against a normal.
bool faces_against(const double *normal, const std::vector<point3_t> &points,
                   const std::vector<int> &corners)
{
    const point3_t &origin = points[corners[0]];
    double turn = 0;
    for (std::size_t i = 1; i + 1 < corners.size(); ++i) {
        const point3_t cross = point_cross(point_sub(points[corners[i]], origin),
                                           point_sub(points[corners[i + 1]], origin));
        turn += cross.x * normal[0] + cross.y * normal[1] + cross.z * normal[2];
    }
    return turn < 0;
}

// Twice the signed area of a triangle as seen along an axis.
double turn_about(int axis, const point3_t &a, const point3_t &b, const point3_t &c)
{
    const point3_t cross = point_cross(point_sub(b, a), point_sub(c, a));
    return axis_of(cross, axis);
}

} // namespace

namespace {

// Planes of faces: inside is where all of them are negative.
struct plane_t {
    double x, y, z, offset;
    [[nodiscard]] double height(const double *p) const
    {
        return x * p[0] + y * p[1] + z * p[2] + offset;
    }
};

std::string precision_option(double precision)
{
    char option[64];
    std::snprintf(option, sizeof option, "C-%.9g", std::max(precision, 0.0));
    return option;
}

// The points that are furthest in some sixty directions.
std::vector<double> furthest_points(const std::vector<double> &numbers)
{
    std::vector<std::array<double, 3>> directions;
    for (int i = -2; i <= 2; ++i) {
        for (int j = -2; j <= 2; ++j) {
            for (int k = -2; k <= 2; ++k) {
                const int most = std::max({std::abs(i), std::abs(j), std::abs(k)});
                const bool one_side = i > 0 || (i == 0 && (j > 0 || (j == 0 && k > 0)));
                if (most == 2 && one_side)
                    directions.push_back({i / 2.0, j / 2.0, k / 2.0});
            }
        }
    }
    std::vector<double> found;
    for (const auto &[x, y, z] : directions) {
        const double *least = numbers.data(), *most = least;
        double low = 1e300, high = -1e300;
        for (const double *p = numbers.data(), *end = p + numbers.size(); p != end; p += 3) {
            const double along = x * p[0] + y * p[1] + z * p[2];
            if (along < low) {
                low = along;
                least = p;
            }
            if (along > high) {
                high = along;
                most = p;
            }
        }
        found.insert(found.end(), least, least + 3);
        found.insert(found.end(), most, most + 3);
    }
    return found;
}

// Takes out the points that lie well inside the hull of a few: they cannot be part of the whole
// one. Of a body most points are dropped. (S. Akl, G. Toussaint, A fast convex hull algorithm,
// 1978.)
void drop_inner_points(double precision, std::vector<double> *numbers, std::vector<int> *names)
{
    constexpr std::size_t few = 1000;
    if (names->size() < few)
        return;
    std::vector<double> outer = furthest_points(*numbers);
    std::vector<plane_t> planes;
    double extent = 0;
    for (const double x : outer)
        extent = std::max(extent, std::fabs(x));
    qhull_run qhull;
    if (qhull.run(outer, 3, precision_option(precision)) != hull_result::done)
        return;
    qhull.for_each_plane([&](const double *normal, double offset) {
        planes.push_back({normal[0], normal[1], normal[2], offset});
    });
    const double deep = -(2 * precision + 1e-4 * extent);
    std::size_t kept = 0;
    for (std::size_t i = 0; i < names->size(); ++i) {
        const double *p = numbers->data() + 3 * i;
        // The plane that showed the last point to be outside often does so again.
        const auto outside = std::find_if(planes.begin(), planes.end(),
                                          [&](const plane_t &at) { return at.height(p) > deep; });
        if (outside == planes.end())
            continue;
        std::swap(*outside, planes.front());
        std::copy(p, p + 3, numbers->data() + 3 * kept);
        (*names)[kept++] = (*names)[i];
    }
    numbers->resize(3 * kept);
    names->resize(kept);
}

} // namespace

hull_result convex_hull(const std::vector<point3_t> &points, double precision, polygons_t *out)
{
    *out = {{0}, {}};
    std::vector<double> numbers;
    std::vector<int> names; // place of each point that is a number
    numbers.reserve(3 * points.size());
    names.reserve(points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (!point_is_finite(points[i]))
            continue;
        numbers.insert(numbers.end(), {points[i].x, points[i].y, points[i].z});
        names.push_back(static_cast<int>(i));
    }
    const bool apart = std::any_of(names.begin(), names.end(), [&](int name) {
        return !point_equal(points[name], points[names[0]]);
    });
    if (names.size() < 4 || !apart)
        return hull_result::flat;
    drop_inner_points(std::max(precision, 0.0), &numbers, &names);
    qhull_run qhull;
    const hull_result result = qhull.run(numbers, 3, precision_option(precision));
    if (result != hull_result::done)
        return result;
    const bool whole = qhull.for_each_polygon([&](const facetT *facet, std::vector<int> &corners) {
        for (int &corner : corners)
            corner = names[corner];
        if (faces_against(facet->normal, points, corners))
            std::reverse(corners.begin(), corners.end());
        append_polygon(corners, out);
    });
    return whole ? hull_result::done : hull_result::failed;
}

hull_result delaunay_triangulation(const std::vector<point3_t> &points, int axis, polygons_t *out)
{
    *out = {{0}, {}};
    std::vector<double> numbers;
    std::vector<int> names;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const point3_t &p = points[i];
        if (!point_is_finite(p))
            continue;
        numbers.push_back(axis == 0 ? p.y : p.x);
        numbers.push_back(axis == 2 ? p.y : p.z);
        names.push_back(static_cast<int>(i));
    }
    if (names.size() < 3)
        return hull_result::flat;
    qhull_run qhull;
    const hull_result result = qhull.run(numbers, 2, "d Qt Qbb Qc Qz Q12");
    if (result != hull_result::done)
        return result;
    std::vector<int> corners;
    qhull.for_each_simplex([&](const std::array<int, 3> &simplex) {
        corners.clear();
        for (const int corner : simplex) {
            if (std::cmp_less(corner, names.size())) // Qz adds a point at infinity
                corners.push_back(names[corner]);
        }
        if (corners.size() != 3)
            return;
        const auto at = [&](std::size_t i) -> const point3_t & { return points[corners[i]]; };
        const double turn = turn_about(axis, at(0), at(1), at(2));
        if (turn == 0)
            return;
        if (turn < 0)
            std::swap(corners[1], corners[2]);
        append_polygon(corners, out);
    });
    return out->size() > 0 ? hull_result::done : hull_result::flat;
}

// ---- commands ----

namespace {

// Data of the worker, which may outlive a cancelled command.
struct hull_work {
    std::vector<point3_t> points;
    polygons_t polygons;
    hull_result result = hull_result::failed;
};

// The places of everything selected; vertices of several selected surfaces once.
std::vector<point3_t> selected_points()
{
    std::vector<point3_t> points;
    const auto add = [&](const listitem *vertices) {
        for (const vertex *point : each<vertex>(vertices))
            points.push_back(point->position);
    };
    if (mode_has_elements(select_mode())) {
        const owned_list vertices(selection_get_selected_vertices());
        add(vertices.get());
    } else {
        for (object_t *top : selected_top_objects())
            for_each_object(top, [&](const object_t *object) { add(object->vertices); });
    }
    return points;
}

// A new object of the polygons and the points that they use.
object_t *object_of(const std::vector<point3_t> &points, const polygons_t &polygons,
                    const char *name)
{
    std::vector<int> number(points.size(), -1);
    for (const int corner : polygons.corners)
        number[corner] = 0;
    std::vector<float> xyz;
    int used = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (number[i] < 0)
            continue;
        number[i] = used++;
        xyz.insert(xyz.end(), {points[i].x, points[i].y, points[i].z});
    }
    std::vector<int> corners;
    for (const int corner : polygons.corners)
        corners.push_back(number[corner]);
    constexpr int new_surface_material = 1;
    object_t *object = new_object(OBJECT_POLY);
    object_set_name(object, name);
    vesk_object_add_vertices_from_float_array(object, xyz.data(), used);
    vesk_object_add_surfaces_from_arrays(object, polygons.size(), polygons.offsets.data(),
                                         corners.data(), nullptr, new_surface_material);
    object_calculate_centre(object);
    object_calc_normals_force(object);
    return object;
}

template <class Compute>
void make_object(const char *what, const char *name, const char *flat_text, Compute compute)
{
    const auto work = std::make_shared<hull_work>();
    work->points = selected_points();
    if (work->points.empty()) {
        display_message("%s - nothing selected", what);
        return;
    }
    display_message("%s...", what);
    if (!run_aside([work, compute] { compute(*work); })) {
        display_message("%s - cancelled", what);
        return;
    }
    if (work->result == hull_result::flat) {
        windows_message_dialog("%s", flat_text);
        display_message("%s - nothing made", what);
        return;
    }
    if (work->result == hull_result::failed) {
        display_message("%s - the points cannot be joined", what);
        return;
    }
    object_t *object = object_of(work->points, work->polygons, name);
    new_undo(UNDO_OBJECT, what);
    set_undo_object(object);
    object_add_child(vesk_get_world(), object);
    select_results({object});
    finish_edit();
    display_message("%s - %d surfaces", what, work->polygons.size());
}

int axis_of_least_extent(const std::vector<point3_t> &points)
{
    point3_t min, max;
    bounds_clear(&min, &max);
    for (const point3_t &p : points)
        bounds_add(p, &min, &max);
    const point3_t size = point_sub(max, min);
    if (size.x < size.y && size.x < size.z)
        return 0;
    return size.y < size.z ? 1 : 2;
}

} // namespace

void command_convexhull()
{
    const double precision = prefs.convexhull_precision;
    make_object("convex hull", "convexhull",
                "Convex hull: select at least 4 vertices that do not lie in one plane",
                [precision](hull_work &work) {
                    work.result = convex_hull(work.points, precision, &work.polygons);
                });
}

void command_delaunay()
{
    make_object("delaunay", "delaunay",
                "Delaunay: select at least 3 vertices that do not lie on one line",
                [](hull_work &work) {
                    work.result = delaunay_triangulation(
                        work.points, axis_of_least_extent(work.points), &work.polygons);
                });
}
