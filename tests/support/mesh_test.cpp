#include "tests/support/mesh_test.h"

#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo.h"
#include "fileio/vesk_writer.h"
#include "model/normals.h"
#include "model/object_tree.h"
#include "model/vector.h"
#include "model/world.h"

#include <map>
#include <numeric>
#include <ostream>
#include <stdexcept>
#include <unordered_map>
#include <unordered_set>

object_t *add_mesh(const std::vector<point3_t> &points, const faces_t &faces, int type)
{
    object_t *object = new_object(OBJECT_POLY);
    std::vector<vertex *> vertices;
    for (const point3_t &p : points)
        vertices.push_back(object_add_new_vertex(object, p.x, p.y, p.z));
    for (const std::vector<int> &face : faces) {
        surface_t *surface = new_surface();
        surface_set_type(surface, type);
        for (const int corner : face) {
            const point3_t &p = points.at(static_cast<std::size_t>(corner));
            surface_add_vertex(surface, vertices[corner], p.x, p.y);
        }
        object_add_surface(object, surface);
    }
    object_calc_normals_force(object);
    object_add_child(vesk_get_world(), object);
    return object;
}

object_t *add_squares(int n, int m)
{
    std::vector<point3_t> points;
    for (int y = 0; y <= m; ++y) {
        for (int x = 0; x <= n; ++x)
            points.push_back({static_cast<float>(x), static_cast<float>(y), 0});
    }
    faces_t faces;
    for (int y = 0; y < m; ++y) {
        for (int x = 0; x < n; ++x) {
            const int a = y * (n + 1) + x, b = a + n + 1;
            faces.push_back({a, a + 1, b + 1, b});
        }
    }
    return add_mesh(points, faces);
}

void fault_half_way()
{
    if (!vesk_get_world()->children)
        throw std::runtime_error("on purpose");
    object_t *first = item_of<object_t>(vesk_get_world()->children);
    if (!first->vertices)
        throw std::runtime_error("on purpose");
    new_undo(UNDO_MOVE, "half way"); // not filled
    item_of<vertex>(first->vertices)->position.x = 77;
    first->num_vertices = 3;
    throw std::runtime_error("on purpose");
}

std::string scene_text() { return vesk_object_text(vesk_get_world()); }

void expect_sound(const object_t *object)
{
    EXPECT_EQ(object->num_vertices, list_count(object->vertices));
    EXPECT_EQ(object->num_surfaces, list_count(object->surfaces));
    const std::vector<vertex *> vertices = elements_of<vertex>(object->vertices);
    const std::unordered_set<const vertex *> own(vertices.begin(), vertices.end());
    EXPECT_EQ(own.size(), vertices.size());
    const std::vector<surface_t *> surfaces = elements_of<surface_t>(object->surfaces);
    EXPECT_EQ(std::unordered_set<const surface_t *>(surfaces.begin(), surfaces.end()).size(),
              surfaces.size());
    for (const surface_t *surface : surfaces) {
        EXPECT_EQ(surface->num_refs, list_count(surface->refs));
        for (const svertex *reference : each<svertex>(surface->refs))
            EXPECT_EQ(own.count(reference->vertex), 1u);
    }
}

void expect_sound_scene() { for_each_object(vesk_get_world(), expect_sound); }

double doubled_area_xy(const surface_t *surface)
{
    double sum = 0;
    std::vector<vertex *> corners;
    append_surface_vertices(surface, &corners);
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const point3_t &a = corners[i]->position;
        const point3_t &b = corners[(i + 1) % corners.size()]->position;
        sum += static_cast<double>(a.x) * b.y - static_cast<double>(b.x) * a.y;
    }
    return sum;
}

double area_xy(const object_t *object)
{
    double sum = 0;
    for (const surface_t *surface : each<surface_t>(object->surfaces))
        sum += doubled_area_xy(surface) / 2;
    return sum;
}

double volume(const object_t *object)
{
    double sum = 0;
    for (const surface_t *surface : each<surface_t>(object->surfaces)) {
        std::vector<vertex *> corners;
        append_surface_vertices(surface, &corners);
        for (std::size_t i = 2; i < corners.size(); ++i) {
            sum += point_dot(corners[0]->position,
                             point_cross(corners[i - 1]->position, corners[i]->position)) /
                   6;
        }
    }
    return sum;
}

namespace {

std::unordered_map<const vertex *, int> places_of(const object_t *object)
{
    std::unordered_map<const vertex *, int> places;
    for (const vertex *point : each<vertex>(object->vertices))
        places.emplace(point, static_cast<int>(places.size()));
    return places;
}

std::vector<int> corners_at(const std::unordered_map<const vertex *, int> &places,
                            const surface_t *surface)
{
    std::vector<int> corners;
    for (const svertex *reference : each<svertex>(surface->refs)) {
        const auto found = places.find(reference->vertex);
        corners.push_back(found == places.end() ? -1 : found->second);
    }
    return corners;
}

} // namespace

std::vector<int> corners_of(const object_t *object, const surface_t *surface)
{
    return corners_at(places_of(object), surface);
}

faces_t faces_of(const object_t *object)
{
    const auto places = places_of(object);
    faces_t faces;
    for (const surface_t *surface : each<surface_t>(object->surfaces))
        faces.push_back(corners_at(places, surface));
    return faces;
}

std::vector<point3_t> points_of(const object_t *object)
{
    std::vector<point3_t> points;
    for (const vertex *point : each<vertex>(object->vertices))
        points.push_back(point->position);
    return points;
}

edge_counts count_edges(const object_t *object)
{
    std::map<std::pair<int, int>, int> uses;
    for (const std::vector<int> &face : faces_of(object)) {
        for (std::size_t i = 0; i < face.size(); ++i)
            ++uses[std::minmax(face[i], face[(i + 1) % face.size()])];
    }
    edge_counts counts;
    for (const auto &[edge, n] : uses)
        ++(n == 1 ? counts.once : n == 2 ? counts.twice : counts.more);
    return counts;
}

int euler_characteristic(const object_t *object)
{
    std::unordered_set<int> used;
    for (const std::vector<int> &face : faces_of(object))
        used.insert(face.begin(), face.end());
    return static_cast<int>(used.size()) - count_edges(object).all() + object->num_surfaces;
}

void select_surfaces_at(const object_t *object, const std::vector<int> &places)
{
    run("set_select_mode", "surface");
    clear_selection();
    const std::vector<surface_t *> all = elements_of<surface_t>(object->surfaces);
    owned_list list;
    for (const int at : places)
        list.add(all.at(static_cast<std::size_t>(at)));
    select_surfacelist(list.get());
}

void select_vertices_at(const object_t *object, const std::vector<int> &places)
{
    run("set_select_mode", "vertex");
    clear_selection();
    const std::vector<vertex *> all = elements_of<vertex>(object->vertices);
    owned_list list;
    for (const int at : places)
        list.add(all.at(static_cast<std::size_t>(at)));
    select_vertices(list.get());
}

void select_all_surfaces(const object_t *object)
{
    std::vector<int> places(static_cast<std::size_t>(object->num_surfaces));
    std::iota(places.begin(), places.end(), 0);
    select_surfaces_at(object, places);
}

std::vector<int> selected_vertices_of(const object_t *object)
{
    const auto places = places_of(object);
    std::vector<int> selected;
    for (const vertex *point : each<vertex>(selection().vertices)) {
        if (const auto found = places.find(point); found != places.end())
            selected.push_back(found->second);
    }
    return selected;
}

std::vector<int> selected_surfaces_of(const object_t *object)
{
    std::unordered_map<const surface_t *, int> places;
    for (const surface_t *surface : each<surface_t>(object->surfaces))
        places.emplace(surface, static_cast<int>(places.size()));
    std::vector<int> selected;
    for (const surface_t *surface : each<surface_t>(selection().surfaces)) {
        if (const auto found = places.find(surface); found != places.end())
            selected.push_back(found->second);
    }
    return selected;
}

bool operator==(const point3_t &a, const point3_t &b) { return point_equal(a, b); }

void PrintTo(const point3_t &p, std::ostream *out)
{
    *out << "{" << p.x << ", " << p.y << ", " << p.z << "}";
}
