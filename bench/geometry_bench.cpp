// The operations on surfaces and vertices at three sizes: time, nanoseconds a vertex, and the ratio
// to a bare limit measured in the same run (a hash table of positions, the tessellator alone, the
// records of the result made by array). Growth above 1 from size to size is more than linear.
//   geometry_bench [part of a name]

#include "bench/terrain.h"
#include "edit/catmull_clark.h"
#include "edit/document/selection_internal.h"
#include "edit/document/undo.h"
#include "edit/extrude.h"
#include "edit/holes.h"
#include "edit/optimize.h"
#include "edit/triangulate.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/normals.h"
#include "program/command_table.h"

#include <GL/glu.h>

#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <map>
#include <string>

namespace {

void command(std::initializer_list<const char *> words)
{
    do_command(static_cast<int>(words.size()), words.begin());
}

void clear() { command({"clear_all"}); }

// ---- models of about n vertices ----

object_t *terrain(int n)
{
    object_t *object = terrain_arrays(static_cast<int>(std::lround(std::sqrt(n)))).build();
    object_calc_normals_force(object);
    return object;
}

object_t *build(const std::vector<float> &xyz, const std::vector<int> &offsets,
                const std::vector<int> &indices)
{
    object_t *object = new_object(OBJECT_POLY);
    vesk_object_add_vertices_from_float_array(object, xyz.data(), static_cast<int>(xyz.size() / 3));
    vesk_object_add_surfaces_from_arrays(object, static_cast<int>(offsets.size()) - 1,
                                         offsets.data(), indices.data(), nullptr, 3);
    object_calc_normals_force(object);
    object_add_child(vesk_get_world(), object);
    return object;
}

// Every quad has vertices of its own.
object_t *loose_quads(int n)
{
    const terrain_arrays grid(static_cast<int>(std::lround(std::sqrt(n / 4.0))) + 1);
    std::vector<float> xyz;
    std::vector<int> indices;
    for (const int at : grid.indices) {
        indices.push_back(static_cast<int>(indices.size()));
        xyz.insert(xyz.end(), {grid.xyz[3 * at], grid.xyz[3 * at + 1], grid.xyz[3 * at + 2]});
    }
    return build(xyz, grid.offsets, indices);
}

// Every quad twice, the second time reversed.
object_t *double_quads(int n)
{
    terrain_arrays grid(static_cast<int>(std::lround(std::sqrt(n))));
    const std::size_t corners = grid.indices.size();
    for (std::size_t i = 0; i < corners; i += 4) {
        for (std::size_t c = 4; c-- > 0;)
            grid.indices.push_back(grid.indices[i + c]);
        grid.offsets.push_back(static_cast<int>(grid.indices.size()));
    }
    return build(grid.xyz, grid.offsets, grid.indices);
}

// Stars of ten corners.
object_t *stars(int n)
{
    std::vector<float> xyz;
    std::vector<int> offsets{0}, indices;
    for (int i = 0; i < n; ++i) {
        const double angle = 2 * 3.14159265358979 * (i % 10) / 10;
        const double radius = i % 2 == 0 ? 1 : 0.4;
        xyz.insert(xyz.end(), {static_cast<float>(radius * std::cos(angle) + i / 10 % 300 * 3),
                               static_cast<float>(radius * std::sin(angle) + i / 3000 * 3), 0});
        indices.push_back(i);
        if (i % 10 == 9)
            offsets.push_back(i + 1);
    }
    return build(xyz, offsets, indices);
}

object_t *long_line(int n)
{
    object_t *object = stars(n);
    std::vector<int> indices(n);
    for (int i = 0; i < n; ++i)
        indices[i] = i;
    const int offsets[] = {0, n};
    clear();
    object = new_object(OBJECT_POLY);
    std::vector<float> xyz;
    for (int i = 0; i < n; ++i)
        xyz.insert(xyz.end(), {static_cast<float>(i), std::sin(static_cast<float>(i)), 0});
    vesk_object_add_vertices_from_float_array(object, xyz.data(), n);
    vesk_object_add_surfaces_from_arrays(object, 1, offsets, indices.data(), nullptr, 3);
    surface_set_type(item_of<surface_t>(object->surfaces), SURFACE_LINE);
    object_add_child(vesk_get_world(), object);
    return object;
}

// ---- bare limits ----

double bare_hash(const object_t *object)
{
    std::vector<point3_t> points;
    for (const vertex *point : each<vertex>(object->vertices))
        points.push_back(point->position);
    std::size_t capacity = 1;
    while (capacity < 2 * points.size())
        capacity *= 2;
    std::size_t found = 0;
    const double took =
        best_of(1, [&] {
            std::vector<std::uint32_t> slots(capacity, 0);
            for (std::uint32_t i = 0; i < points.size(); ++i) {
                std::uint32_t bits[3];
                std::memcpy(bits, &points[i], sizeof bits);
                std::uint64_t h = bits[0] * 0x9E3779B97F4A7C15ULL;
                h = (h ^ bits[1]) * 0xBF58476D1CE4E5B9ULL;
                h = (h ^ (h >> 31) ^ bits[2]) * 0x94D049BB133111EBULL;
                std::size_t at = (h >> 32) & (capacity - 1);
                while (slots[at] != 0 &&
                       std::memcmp(&points[slots[at] - 1], &points[i], sizeof(point3_t)) != 0)
                    at = (at + 1) & (capacity - 1);
                found += slots[at] != 0 ? 1 : 0;
                slots[at] = slots[at] != 0 ? slots[at] : i + 1;
            }
        }).cpu;
    return found == static_cast<std::size_t>(-1) ? 0 : took;
}

double bare_tessellator(const object_t *object)
{
    static long corners;
    GLUtesselator *tess = gluNewTess();
    gluTessCallback(tess, GLU_TESS_VERTEX,
                    reinterpret_cast<_GLUfuncptr>(+[](void *) { ++corners; }));
    gluTessCallback(tess, GLU_TESS_EDGE_FLAG, reinterpret_cast<_GLUfuncptr>(+[](GLboolean) {}));
    const double took = best_of(1, [&] {
                            GLdouble at[16][3];
                            for (const surface_t *surface : each<surface_t>(object->surfaces)) {
                                gluTessBeginPolygon(tess, nullptr);
                                gluTessBeginContour(tess);
                                int i = 0;
                                for (const svertex *corner : each<svertex>(surface->refs)) {
                                    const point3_t &p = corner->vertex->position;
                                    at[i][0] = p.x;
                                    at[i][1] = p.y;
                                    at[i][2] = p.z;
                                    gluTessVertex(tess, at[i], at[i]);
                                    ++i;
                                }
                                gluTessEndContour(tess);
                                gluTessEndPolygon(tess);
                            }
                        }).cpu;
    gluDeleteTess(tess);
    return took;
}

// The time to make records by array as many as the model has now.
double bare_records(const object_t *object)
{
    std::vector<float> xyz;
    std::vector<int> offsets{0}, indices(static_cast<std::size_t>(4 * object->num_surfaces));
    for (const vertex *point : each<vertex>(object->vertices))
        xyz.insert(xyz.end(), {point->position.x, point->position.y, point->position.z});
    for (int i = 0; i < object->num_surfaces; ++i) {
        offsets.push_back(offsets.back() + object_get_surface_at(object, 0)->num_refs);
    }
    indices.assign(offsets.back(), 0);
    for (std::size_t i = 0; i < indices.size(); ++i)
        indices[i] = static_cast<int>(i % object->num_vertices);
    object_t *copy = nullptr;
    const double took =
        best_of(1, [&] {
            copy = new_object(OBJECT_POLY);
            vesk_object_add_vertices_from_float_array(copy, xyz.data(), object->num_vertices);
            vesk_object_add_surfaces_from_arrays(copy, object->num_surfaces, offsets.data(),
                                                 indices.data(), nullptr, 3);
        }).cpu;
    object_free(copy);
    return took;
}

// The same, one record after the other on one thread.
double single_records(const object_t *object)
{
    const flat_ptr flat = object_flat(const_cast<object_t *>(object));
    object_t *copy = nullptr;
    const double took =
        best_of(1, [&] {
            copy = new_object(OBJECT_POLY);
            std::vector<vertex *> points;
            listitem *last = nullptr;
            for (const point3_t &at : *flat->positions) {
                points.push_back(new_vertex_set(at.x, at.y, at.z));
                last = list_add_item_fast(&copy->vertices, last, points.back());
            }
            last = nullptr;
            for (int s = 0; s < flat->num_surfaces(); ++s) {
                surface_t *surface = new_surface();
                listitem *corner = nullptr;
                for (const int v : flat->surface_corners(s))
                    corner =
                        list_add_item_fast(&surface->refs, corner, new_svertex(points[v], 0, 0));
                surface->num_refs = static_cast<int>(flat->surface_corners(s).size());
                last = list_add_item_fast(&copy->surfaces, last, surface);
            }
            copy->num_vertices = flat->num_vertices();
            copy->num_surfaces = flat->num_surfaces();
            object_mark(copy, CHANGED_TOPOLOGY);
        }).cpu;
    object_free(copy);
    return took;
}

// ---- the operations ----

void weld_alone(object_t *object) { object_optimize(object); }
void clean_alone(object_t *object) { object_optimize_surfaces(object); }
void triangulate_alone(object_t *object)
{
    listitem *triangles = object_triangulate_surfaces(object);
    list_free(&triangles);
}
void extrude_alone(object_t *)
{
    const point3_t up = {0, 1, 0};
    extrude_selected_diff(&up);
}
void hole_alone(object_t *object) { object_make_holes(object, 0.5f); }
void catmull_alone(object_t *object) { object_catmull_clark(object, 1); }
void bevel_alone(object_t *object) { object_bevel(object); }

struct operation_t {
    const char *name;
    object_t *(*model)(int n);
    const char *mode;                // what is selected of it: everything in this mode
    const char *words[4];            // the command
    void (*alone)(object_t *object); // the same without undo, history and selection, or null
    const char *limit_name;
    double (*limit_before)(const object_t *object);
    double (*limit_after)(const object_t *object);
};
// clang-format off
const operation_t operations[] = {
    {"weld loose quads",     loose_quads,  "object",  {"optimize"}, weld_alone,            "bare hash table", bare_hash, nullptr},
    {"remove duplicate quads", double_quads, "object", {"optimize_surfaces"}, clean_alone,  nullptr, nullptr, nullptr},
    {"triangulate quads",    terrain,      "surface", {"surface_triangulate"}, nullptr, "bare tessellator", bare_tessellator, nullptr},
    {"triangulate quads, by object", terrain, "object", {"surface_triangulate"}, triangulate_alone, "bare tessellator", bare_tessellator, nullptr},
    {"triangulate stars of 10", stars,     "object",  {"surface_triangulate"}, triangulate_alone, "bare tessellator", bare_tessellator, nullptr},
    {"extrude region of all", terrain,     "surface", {"extrude", "0", "1", "0"}, extrude_alone, "bare records", nullptr, bare_records},
    {"hole every face",      terrain,      "object",  {"surface_make_hole"}, hole_alone,   "bare records", nullptr, bare_records},
    {"bevel every face",     terrain,      "object",  {"surface_bevel"}, bevel_alone,       "bare records", nullptr, bare_records},
    {"subdivide all",        terrain,      "object",  {"surface_subdivide"}, nullptr,   "bare records", nullptr, bare_records},
    {"catmull-clark all",    terrain,      "object",  {"catmull_clark", "1"}, catmull_alone,  "bare records", nullptr, bare_records},
    {"inset each",           terrain,      "surface", {"inset", "0.02", "0", "each"}, nullptr, "bare records", nullptr, bare_records},
    {"inset region",         terrain,      "surface", {"inset", "0.02", "0", "region"}, nullptr, "bare records", nullptr, bare_records},
    {"extrude each",         terrain,      "surface", {"extrude_each", "0.1"}, nullptr, "bare records", nullptr, bare_records},
    {"extrude normals",      terrain,      "surface", {"extrude_normals", "0.1"}, nullptr, "bare records", nullptr, bare_records},
    {"shell",                terrain,      "surface", {"shell", "0.1", "1"}, nullptr, "bare records", nullptr, bare_records},
    {"spike all",            terrain,      "object",  {"surface_spike"}, nullptr,       "bare records", nullptr, bare_records},
    {"insert vertices",      terrain,      "object",  {"insert_vertex"}, nullptr,       "bare records", nullptr, bare_records},
    {"unshare all",          terrain,      "vertex",  {"unshare_vertices"}, nullptr,    "bare records", nullptr, bare_records},
    {"snap to grid",         terrain,      "vertex",  {"snaptogrid"}, nullptr,          nullptr, nullptr, nullptr},
    {"snap together",        terrain,      "vertex",  {"snaptogether"}, nullptr,        nullptr, nullptr, nullptr},
    {"snap by distance",     terrain,      "vertex",  {"snaptogetherdistance", "0.15"}, nullptr, "bare hash table", bare_hash, nullptr},
    {"spline of one line",   long_line,    "object",  {"surface_spline"}, nullptr,      "bare records", nullptr, bare_records},
    {"initial coordinates",  terrain,      "object",  {"inituv"}, nullptr,              nullptr, nullptr, nullptr},
    {"object from surfaces", terrain,      "surface", {"surface_create_object"}, nullptr, "bare records", bare_records, nullptr},
};
// clang-format on

object_t *selected_model(const operation_t &op, int n)
{
    object_t *object = op.model(n);
    command({"set_select_mode", op.mode});
    command({"select_all"});
    return object;
}

void bench(const operation_t &op)
{
    double last = 0;
    for (const int n : {10000, 100000, 1000000}) {
        timing alone = {0, 0};
        if (op.alone != nullptr) {
            object_t *object = selected_model(op, n);
            alone = best_of(1, [&] { op.alone(object); });
            clear();
        }
        object_t *object = selected_model(op, n);
        const int vertices = object->num_vertices;
        double limit = op.limit_before != nullptr ? op.limit_before(object) : 0;
        int count = 0;
        while (count < 4 && op.words[count] != nullptr)
            ++count;
        const timing took = best_of(1, [&] { do_command(count, op.words); });
        if (op.limit_after != nullptr)
            limit = op.limit_after(item_of<object_t>(vesk_get_world()->children));
        const double each_vertex = took.cpu * 1e9 / vertices;
        std::printf("%-30s %8d %8.4f s %8.4f s cpu %6.0f ns a vertex", op.name, vertices, took.wall,
                    took.cpu, each_vertex);
        if (op.alone != nullptr)
            std::printf("  alone %7.4f s %7.4f s cpu", alone.wall, alone.cpu);
        if (last > 0)
            std::printf("  growth %4.2f", each_vertex / last);
        if (limit > 0)
            std::printf("  %5.2f of %s", took.cpu / limit, op.limit_name);
        if (op.limit_after == bare_records) {
            const object_t *result = item_of<object_t>(vesk_get_world()->children);
            std::printf(", %5.2f of them one by one", took.cpu / single_records(result));
        }
        std::printf("\n");
        last = each_vertex;
        clear();
    }
}

} // namespace

int main(int argc, char **argv)
{
    bench_begin();
    register_commands();
    for (const operation_t &op : operations) {
        if (argc < 2 || std::strstr(op.name, argv[1]) != nullptr)
            bench(op);
    }
    return 0;
}
