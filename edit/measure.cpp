#include "edit/measure.h"

#include "base/command_result.h"
#include "base/messages.h"
#include "edit/document/selection_internal.h"
#include "edit/mesh/edge_table.h"
#include "model/angle.h"
#include "model/each.h"
#include "model/flat_mesh.h"
#include "model/object_tree.h"

#include <cmath>
#include <cstdio>
#include <unordered_set>

namespace {

std::string number(double value)
{
    char text[32];
    snprintf(text, sizeof text, "%.6g", std::abs(value) < 1e-9 ? 0.0 : value);
    return text;
}

std::string count_of(std::size_t count, const char *what)
{
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

// ---- vertices ----

std::string measure_vertices(const std::vector<vec3d> &points)
{
    if (points.size() == 1)
        return "X " + number(points[0].x) + "  Y " + number(points[0].y) + "  Z " +
               number(points[0].z);
    double way = 0;
    for (std::size_t i = 1; i < points.size(); ++i)
        way += length(points[i] - points[i - 1]);
    const vec3d d = points[1] - points[0];
    if (points.size() == 2)
        return "distance " + number(way) + "  dX " + number(d.x) + "  dY " + number(d.y) + "  dZ " +
               number(d.z);
    if (points.size() == 3)
        return "angle " + number(corner_degrees(points[1], points[0], points[2])) +
               " degrees  lengths " + number(length(d)) + " and " +
               number(length(points[2] - points[1]));
    return std::to_string(points.size()) + " vertices  way along them " + number(way);
}

// ---- surfaces ----

// Twice the area vector of an outline.
vec3d area_vector(const std::vector<vec3d> &corners)
{
    vec3d sum;
    for (std::size_t i = 0; i + 2 < corners.size(); ++i)
        sum += cross(corners[i + 1] - corners[0], corners[i + 2] - corners[0]);
    return sum;
}

double outline(const std::vector<vec3d> &corners, bool closed)
{
    double sum = 0;
    for (std::size_t i = 1; i < corners.size(); ++i)
        sum += length(corners[i] - corners[i - 1]);
    if (closed && corners.size() > 2)
        sum += length(corners.front() - corners.back());
    return sum;
}

std::string measure_surfaces(const listitem *surfaces)
{
    double area = 0;
    double way = 0;
    std::size_t count = 0;
    for (const surface_t *surface : each<surface_t>(surfaces)) {
        std::vector<vec3d> corners;
        for (const svertex *corner : each<svertex>(surface->refs)) {
            if (corner->vertex != nullptr)
                corners.push_back(to_vec3d(corner->vertex->position));
        }
        const int type = surface->type & SURFACE_TYPE_MASK;
        if (type == SURFACE_POLYGON)
            area += length(area_vector(corners)) / 2;
        way += outline(corners, type != SURFACE_LINE);
        ++count;
    }
    return count_of(count, "surface") + "  area " + number(area) + "  outline " + number(way);
}

// ---- objects ----

struct body_t {
    double area = 0;
    double volume = 0;
    bool closed = true;
};

void add_object(object_t *object, body_t *body)
{
    const flat_ptr mesh = object_flat(object);
    for (int s = 0; s < mesh->num_surfaces(); ++s) {
        if ((mesh->surface(s).type & SURFACE_TYPE_MASK) != SURFACE_POLYGON)
            continue;
        std::vector<vec3d> corners;
        for (const int v : mesh->surface_corners(s))
            corners.push_back(to_vec3d(mesh->position(v)));
        if (corners.size() < 3)
            continue;
        const vec3d twice = area_vector(corners);
        body->area += length(twice) / 2;
        // The cone from the origin over the polygon.
        body->volume += dot(corners[0], twice) / 6;
    }
    const edge_table edges(*mesh);
    for (int e = 0; e < edges.size(); ++e)
        body->closed = body->closed && edges.uses(e).size() == 2;
}

std::string measure_objects(const listitem *objects)
{
    body_t body;
    std::unordered_set<const object_t *> seen;
    for (object_t *top : each<object_t>(objects)) {
        for_each_object(top, [&](object_t *object) {
            if (seen.insert(object).second)
                add_object(object, &body);
        });
    }
    std::string text = count_of(seen.size(), "object") + "  area " + number(body.area);
    if (body.closed && body.area > 0)
        text += "  volume " + number(std::abs(body.volume));
    return text;
}

} // namespace

double corner_degrees(const vec3d &corner, const vec3d &a, const vec3d &b)
{
    const vec3d u = a - corner, v = b - corner;
    return std::atan2(length(cross(u, v)), dot(u, v)) * 180 / pi;
}

std::string selection_measures()
{
    listitem *vertices = nullptr;
    listitem *surfaces = nullptr;
    listitem *objects = nullptr;
    vesk_get_current_selection(&vertices, &surfaces, &objects);
    if (objects != nullptr)
        return measure_objects(objects);
    if (surfaces != nullptr)
        return measure_surfaces(surfaces);
    std::vector<vec3d> points;
    for (const vertex *v : each<vertex>(vertices))
        points.push_back(to_vec3d(v->position));
    return points.empty() ? "" : measure_vertices(points);
}

std::string points_measures(const std::vector<point3_t> &points)
{
    std::vector<vec3d> places;
    for (const point3_t &p : points)
        places.push_back(to_vec3d(p));
    return places.empty() ? "" : measure_vertices(places);
}

void command_get_measures() { command_result_set(selection_measures().c_str()); }

void command_measure()
{
    const std::string text = selection_measures();
    command_result_set(text.c_str());
    display_message("%s", text.empty() ? "measure - nothing is selected" : text.c_str());
}
