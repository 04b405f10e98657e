#ifndef VESK_TESTS_SUPPORT_MESH_TEST_H
#define VESK_TESTS_SUPPORT_MESH_TEST_H

// Small meshes for tests of the geometry operations, and what must hold for any mesh.

#include "model/object.h"
#include "tests/support/scene_test.h"

#include <string>
#include <vector>

using faces_t = std::vector<std::vector<int>>;

// An object under the world; every corner's texture coordinates are its vertex' x and y. Normals
// are computed.
object_t *add_mesh(const std::vector<point3_t> &points, const faces_t &faces,
                   int type = SURFACE_POLYGON);
// n times m unit squares in z = 0, facing +z, row by row from the origin; shared vertices.
object_t *add_squares(int n, int m);

// The whole model as a saved file has it.
std::string scene_text();

// Counts equal list lengths, no record twice, every corner on a vertex of the object.
void expect_sound(const object_t *object);
void expect_sound_scene();

// Twice the signed area in the xy plane; positive when it faces +z.
double doubled_area_xy(const surface_t *surface);
double area_xy(const object_t *object); // of all surfaces, signed
double volume(const object_t *object);  // signed, of a closed mesh that faces outwards

// The vertices of a surface, as their places in the object.
std::vector<int> corners_of(const object_t *object, const surface_t *surface);
faces_t faces_of(const object_t *object);
std::vector<point3_t> points_of(const object_t *object);

// How often the edges of the polygons occur: by number of uses, how many edges.
struct edge_counts {
    int once = 0, twice = 0, more = 0;
    [[nodiscard]] int all() const { return once + twice + more; }
};
edge_counts count_edges(const object_t *object);
// Vertices in use - edges + polygons.
int euler_characteristic(const object_t *object);

// Goes to surface (vertex) mode and selects these surfaces (vertices) of the object, in order.
void select_surfaces_at(const object_t *object, const std::vector<int> &places);
void select_vertices_at(const object_t *object, const std::vector<int> &places);
// Every surface of the object, in surface mode.
void select_all_surfaces(const object_t *object);

// The selected vertices (surfaces) as places in the object.
std::vector<int> selected_vertices_of(const object_t *object);
std::vector<int> selected_surfaces_of(const object_t *object);

// A command that faults after it changed the first object and opened a record.
[[noreturn]] void fault_half_way();

bool operator==(const point3_t &a, const point3_t &b);
void PrintTo(const point3_t &p, std::ostream *out);

#endif
