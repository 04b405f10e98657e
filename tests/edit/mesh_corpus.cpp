#include "tests/edit/mesh_corpus.h"

#include "edit/check/model_check.h"
#include "edit/document/undo_internal.h"
#include "edit/mesh/edge_table.h"
#include "model/angle.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/flat_mesh.h"
#include "model/normals.h"

#include <algorithm>
#include <cmath>
#include <ostream>

namespace {

// Each surface differs from the one before.
object_t *varied(object_t *object)
{
    int i = 0;
    for (surface_t *surface : each<surface_t>(object->surfaces)) {
        surface_set_col(surface, i % 3);
        surface_set_shading(surface, i / 2 % 2);
        surface_set_twosided(surface, i / 3 % 2);
        ++i;
    }
    object_mark(object, CHANGED_ATTRIBUTES);
    return object;
}

point3_t at(double x, double y, double z)
{
    return {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
}

// Rows of n vertices each, joined by quads to the next row; wrapping along, and across.
faces_t quads_of_rows(int rows, int n, bool wrap_rows, bool wrap_n)
{
    faces_t faces;
    for (int r = 0; r + (wrap_rows ? 0 : 1) < rows; ++r) {
        for (int i = 0; i + (wrap_n ? 0 : 1) < n; ++i) {
            const int next = (i + 1) % n, a = r * n, b = (r + 1) % rows * n;
            faces.push_back({a + i, a + next, b + next, b + i});
        }
    }
    return faces;
}

const faces_t box_faces = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4},
                           {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};

std::vector<point3_t> box_points(double x, double y, double z)
{
    std::vector<point3_t> points;
    for (int i = 0; i < 8; ++i)
        points.push_back(at(x + i % 2, y + i / 2 % 2, z + i / 4));
    return points;
}

faces_t shifted(const faces_t &faces, int by)
{
    faces_t result = faces;
    for (std::vector<int> &face : result) {
        for (int &v : face)
            v += by;
    }
    return result;
}

template <class T>
std::vector<T> joined(std::vector<T> a, const std::vector<T> &b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

object_t *add_grid() { return varied(add_squares(5, 4)); }

// In every cell the diagonal of its own.
object_t *add_triangle_grid()
{
    std::vector<point3_t> points;
    for (int i = 0; i < 30; ++i)
        points.push_back(at(i % 6, i / 6, 0));
    faces_t faces;
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 5; ++x) {
            const int a = 6 * y + x;
            if ((x + y) % 2 == 0) {
                faces.push_back({a, a + 1, a + 7});
                faces.push_back({a, a + 7, a + 6});
            } else {
                faces.push_back({a, a + 1, a + 6});
                faces.push_back({a + 1, a + 7, a + 6});
            }
        }
    }
    return varied(add_mesh(points, faces));
}

object_t *add_box() { return varied(add_mesh(box_points(0, 0, 0), box_faces)); }

// Every side has the whole picture.
object_t *add_box_with_seams()
{
    object_t *box = add_box();
    for (const surface_t *surface : each<surface_t>(box->surfaces)) {
        int i = 0;
        for (svertex *corner : each<svertex>(surface->refs)) {
            corner->u = i == 1 || i == 2 ? 1.0f : 0.0f;
            corner->v = i >= 2 ? 1.0f : 0.0f;
            ++i;
        }
    }
    object_mark(box, CHANGED_TOPOLOGY);
    return box;
}

object_t *add_two_boxes()
{
    return varied(add_mesh(joined(box_points(0, 0, 0), box_points(3, 0, 0)),
                           joined(box_faces, shifted(box_faces, 8))));
}

object_t *add_tetrahedron()
{
    return varied(add_mesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
                           {{0, 2, 1}, {0, 1, 3}, {1, 2, 3}, {2, 0, 3}}));
}

object_t *add_torus()
{
    constexpr int rows = 12, n = 8;
    std::vector<point3_t> points;
    for (int r = 0; r < rows; ++r) {
        const double a = 2 * pi * r / rows;
        for (int i = 0; i < n; ++i) {
            const double b = 2 * pi * i / n, radius = 3 + std::cos(b);
            points.push_back(at(radius * std::cos(a), radius * std::sin(a), std::sin(b)));
        }
    }
    faces_t faces = quads_of_rows(rows, n, true, true);
    for (std::vector<int> &face : faces)
        std::reverse(face.begin(), face.end());
    return varied(add_mesh(points, faces));
}

// Eight sides and two caps of eight corners.
object_t *add_drum()
{
    std::vector<point3_t> points;
    for (int i = 0; i < 16; ++i)
        points.push_back(at(std::cos(pi / 4 * i), std::sin(pi / 4 * i), i / 8));
    faces_t faces = quads_of_rows(2, 8, false, true);
    faces.push_back({7, 6, 5, 4, 3, 2, 1, 0});
    faces.push_back({8, 9, 10, 11, 12, 13, 14, 15});
    return varied(add_mesh(points, faces));
}

object_t *add_fan()
{
    std::vector<point3_t> points = {at(0, 0, 0.5)};
    faces_t faces;
    for (int i = 0; i < 8; ++i) {
        points.push_back(at(std::cos(pi / 4 * i), std::sin(pi / 4 * i), 0));
        faces.push_back({0, 1 + i, 1 + (i + 1) % 8});
    }
    return varied(add_mesh(points, faces));
}

object_t *add_notched_polygon()
{
    return varied(add_mesh({{0, 0, 0}, {3, 0, 0}, {3, 1, 0}, {1, 1, 0}, {1, 3, 0}, {0, 3, 0}},
                           {{0, 1, 2, 3, 4, 5}}));
}

object_t *add_frame() // a flat ring: two open borders
{
    std::vector<point3_t> points;
    for (int i = 0; i < 16; ++i) {
        const double radius = i < 8 ? 2 : 1;
        points.push_back(at(radius * std::cos(pi / 4 * i), radius * std::sin(pi / 4 * i), 0));
    }
    return varied(add_mesh(points, quads_of_rows(2, 8, false, true)));
}

object_t *add_moebius()
{
    constexpr int n = 12;
    std::vector<point3_t> points;
    faces_t faces;
    for (int i = 0; i < n; ++i) {
        const double a = 2 * pi * i / n;
        for (const double side : {-0.5, 0.5}) {
            const double radius = 3 + side * std::cos(a / 2);
            points.push_back(
                at(radius * std::cos(a), radius * std::sin(a), side * std::sin(a / 2)));
        }
    }
    for (int i = 0; i < n; ++i) {
        const int a = 2 * i;
        if (i + 1 < n)
            faces.push_back({a, a + 2, a + 3, a + 1});
        else
            faces.push_back({a, 1, 0, a + 1});
    }
    return varied(add_mesh(points, faces));
}

object_t *add_book() // three pages on one spine
{
    return varied(add_mesh(
        {{0, 0, 0}, {0, 1, 0}, {1, 0, 0}, {1, 1, 0}, {0, 0, 1}, {0, 1, 1}, {-1, 0, 0}, {-1, 1, 0}},
        {{0, 2, 3, 1}, {0, 4, 5, 1}, {0, 1, 7, 6}}));
}

object_t *add_boxes_on_one_edge()
{
    faces_t second = shifted(box_faces, 8);
    for (std::vector<int> &face : second) { // its edge 0-4 is the first box' edge 3-7
        for (int &v : face)
            v = v == 8 ? 3 : v == 12 ? 7 : v;
    }
    return varied(
        add_mesh(joined(box_points(0, 0, 0), box_points(1, 1, 0)), joined(box_faces, second)));
}

object_t *add_bow_tie() // two triangles that share one vertex
{
    return varied(add_mesh({{0, 0, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}, {-1, -1, 0}},
                           {{0, 1, 2}, {0, 3, 4}}));
}

object_t *add_sheet_with_lines()
{
    object_t *object = add_squares(3, 3);
    for (const int type : {SURFACE_LINE, SURFACE_CLOSED_LINE}) {
        surface_t *line = new_surface();
        surface_set_type(line, type);
        for (const int v : {0, 5, 10, 3}) {
            vertex *corner = object_get_vertex_at(object, v);
            surface_add_vertex(line, corner, corner->position.x, corner->position.y);
        }
        object_add_surface(object, line);
    }
    object_add_new_vertex(object, 9, 9, 9); // of no surface
    object_calc_normals_force(object);
    return varied(object);
}

// Corners twice, polygons of two and of no extent, one over the other, far and near.
object_t *add_degenerate()
{
    return varied(add_mesh({{0, 0, 0},
                            {1, 0, 0},
                            {1, 1, 0},
                            {0, 1, 0},
                            {2, 0, 0},
                            {2, 0, 0},
                            {5, 5, 5},
                            {1e7f, 0, 0},
                            {1, 1e-7f, 0}},
                           {{0, 1, 2, 3},
                            {0, 1, 1, 2, 3},
                            {3, 2, 1, 0},
                            {1, 4, 5},
                            {0, 1, 4},
                            {6, 6, 6},
                            {0, 2},
                            {1},
                            {1, 7, 2},
                            {0, 1, 8},
                            {0, 1, 0, 3}}));
}

object_t *add_soup()
{
    random_source random(11);
    return add_random_soup(random, 60, 90);
}

object_t *add_bumpy_ball()
{
    random_source random(5);
    return add_random_shell(random, 4);
}

constexpr unsigned sheet = MESH_ORIENTED | MESH_SOUND;
constexpr unsigned body = MESH_CLOSED | MESH_ORIENTED | MESH_SOUND;

// clang-format off
const corpus_mesh corpus[] = {
    {"grid",              add_grid,              1, 0, sheet | MESH_FLAT},
    {"triangle_grid",     add_triangle_grid,     1, 0, sheet | MESH_FLAT},
    {"fan",               add_fan,               1, 0, sheet},
    {"notched_polygon",   add_notched_polygon,   1, 0, sheet | MESH_FLAT},
    {"frame",             add_frame,             0, 0, sheet | MESH_FLAT},
    {"box",               add_box,               2, 1, body},
    {"box_with_seams",    add_box_with_seams,    2, 1, body | MESH_SEAMS},
    {"two_boxes",         add_two_boxes,         4, 2, body},
    {"tetrahedron",       add_tetrahedron,       2, 1.0 / 6, body},
    {"torus",             add_torus,             0, 50.911688245, body},
    {"drum",              add_drum,              2, 2.8284271247, body},
    {"bumpy_ball",        add_bumpy_ball,        2, 0, body | MESH_SEAMS},
    {"moebius",           add_moebius,           0, 0, 0},
    {"book",              add_book,              1, 0, 0},
    {"boxes_on_one_edge", add_boxes_on_one_edge, 3, 2, 0},
    {"bow_tie",           add_bow_tie,           1, 0, sheet | MESH_FLAT},
    {"sheet_with_lines",  add_sheet_with_lines,  1, 0, MESH_ORIENTED | MESH_LINES},
    {"degenerate",        add_degenerate,        any_euler, 0, 0},
    {"soup",              add_soup,              any_euler, 0, MESH_SEAMS | MESH_LINES},
};
// clang-format on

void expect_edges(object_t *object, bool closed)
{
    const flat_ptr mesh = object_flat(object);
    const edge_table edges(*mesh);
    int open = 0, crowded = 0, against = 0;
    for (int e = 0; e < edges.size(); ++e) {
        const auto uses = edges.uses(e);
        open += uses.size() == 1 ? 1 : 0;
        crowded += uses.size() > 2 ? 1 : 0;
        against += uses.size() == 2 && uses[0].forward == uses[1].forward ? 1 : 0;
    }
    EXPECT_EQ(crowded, 0) << "edges of more than two polygons";
    EXPECT_EQ(against, 0) << "edges whose polygons face against each other";
    if (closed) {
        EXPECT_EQ(open, 0) << "open edges";
    }
}

std::vector<int> random_places(random_source &random, int count, double share)
{
    std::vector<int> places;
    for (int i = 0; i < count; ++i) {
        if (static_cast<double>(random.between(0, 1)) < share)
            places.push_back(i);
    }
    if (places.empty() && count > 0)
        places.push_back(random.below(count));
    return places;
}

} // namespace

void PrintTo(const corpus_mesh &mesh, std::ostream *out) { *out << mesh.name; }

std::span<const corpus_mesh> mesh_corpus() { return corpus; }

std::vector<corpus_mesh> corpus_with(unsigned traits)
{
    std::vector<corpus_mesh> found;
    for (const corpus_mesh &mesh : corpus) {
        if (mesh.is(traits))
            found.push_back(mesh);
    }
    return found;
}

int euler_of_polygons(object_t *object)
{
    const flat_ptr mesh = object_flat(object);
    std::vector<bool> used(mesh->num_vertices());
    int polygons = 0;
    for (int s = 0; s < mesh->num_surfaces(); ++s) {
        if (mesh->surface(s).is_line())
            continue;
        ++polygons;
        for (const int v : mesh->surface_corners(s))
            used[v] = true;
    }
    const auto vertices = static_cast<int>(std::count(used.begin(), used.end(), true));
    return vertices - edge_table(*mesh).size() + polygons;
}

void expect_closed(object_t *object) { expect_edges(object, true); }

void expect_oriented(object_t *object) { expect_edges(object, false); }

void expect_no_problems(object_t *object)
{
    const model_findings found = object_find_problems(object, 3);
    for (const found_problem &problem : found.problems) {
        // Deep insets may well reach through the other side of a thin body.
        if (problem.kind != model_problem::open_edge && problem.kind != model_problem::non_planar &&
            problem.kind != model_problem::crossing)
            ADD_FAILURE() << model_problem_name(problem.kind) << ": " << problem_text(problem);
    }
}

void expect_picture_in_place(const object_t *object, double tolerance)
{
    int slid = 0;
    for (const surface_t *surface : each<surface_t>(object->surfaces)) {
        for (const svertex *corner : each<svertex>(surface->refs)) {
            const point3_t &p = corner->vertex->position;
            const double off = std::max(std::abs(static_cast<double>(corner->u - p.x)),
                                        std::abs(static_cast<double>(corner->v - p.y)));
            slid += off <= tolerance ? 0 : 1;
        }
    }
    EXPECT_EQ(slid, 0) << "corners whose picture slid";
}

bool run_and_expect_exact_undo(const std::vector<std::string> &words)
{
    const std::string before = scene_text();
    const unsigned serial = undo_last_serial();
    run_words(words);
    if (undo_last_serial() == serial) {
        EXPECT_TRUE(scene_text() == before) << words.front() << " changed without a record";
        return false;
    }
    const std::string after = scene_text();
    const std::string edges = run("get_selected_edges");
    expect_sound_scene();
    run("undo");
    EXPECT_TRUE(scene_text() == before) << words.front() << ": undo is not exact";
    run("redo");
    EXPECT_TRUE(scene_text() == after) << words.front() << ": redo is not exact";
    EXPECT_EQ(run("get_selected_edges"), edges) << words.front() << ": edges after the redo";
    return true;
}

void select_random_surfaces(random_source &random, const object_t *object, double share)
{
    select_surfaces_at(object, random_places(random, object->num_surfaces, share));
}

void select_random_vertices(random_source &random, const object_t *object, double share)
{
    select_vertices_at(object, random_places(random, object->num_vertices, share));
}
