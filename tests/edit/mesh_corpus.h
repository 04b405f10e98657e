#ifndef VESK_TESTS_EDIT_MESH_CORPUS_H
#define VESK_TESTS_EDIT_MESH_CORPUS_H

// Generated meshes that the tests of the editing commands share, and what must hold of a mesh after
// an edit. Materials, shading and sides of the surfaces vary from surface to surface; texture
// coordinates are x and y of the corner's vertex, unless the mesh has seams.

#include "tests/support/mesh_test.h"
#include "tests/support/random_mesh.h"

#include <iosfwd>
#include <span>
#include <string>
#include <vector>

// What holds for a mesh; each bit for the whole of it.
enum mesh_traits : unsigned {
    MESH_CLOSED = 1,   // every edge has two polygons, which agree about their front
    MESH_ORIENTED = 2, // no edge has more than two polygons, and two agree about their front
    MESH_SOUND = 4,    // the model check finds open edges at most
    MESH_SEAMS = 8,    // texture coordinates differ between the polygons at a vertex
    MESH_LINES = 16,   // has lines, too
    MESH_FLAT = 32,    // lies in z = 0
};

constexpr int any_euler = -1000;

struct corpus_mesh {
    const char *name;
    object_t *(*add)(); // under the world
    int euler;          // see euler_of_polygons; any_euler where that says nothing
    double volume;      // of a closed one, else 0
    unsigned traits;
    [[nodiscard]] bool is(unsigned wanted) const { return (traits & wanted) == wanted; }
};
void PrintTo(const corpus_mesh &mesh, std::ostream *out);

// All of them; those with all of these traits.
std::span<const corpus_mesh> mesh_corpus();
std::vector<corpus_mesh> corpus_with(unsigned traits);

// ---- what must hold ----

// Vertices of polygons - their edges + polygons; lines do not count.
int euler_of_polygons(object_t *object);
void expect_closed(object_t *object);   // MESH_CLOSED
void expect_oriented(object_t *object); // MESH_ORIENTED
// The model check finds open edges, bent polygons and polygons that cross, at most.
void expect_no_problems(object_t *object);
// Every corner's texture coordinates are x and y of its vertex: nothing slid.
void expect_picture_in_place(const object_t *object, double tolerance = 1e-5);
// Runs a command. When it opened an undo record, undo brings the scene back to the byte and redo the
// result; else the scene is as it was. Leaves the result. True when it opened one.
bool run_and_expect_exact_undo(const std::vector<std::string> &words);

// ---- random selections ----

// About that share of the object's surfaces (vertices), one at least, in the mode they need.
void select_random_surfaces(random_source &random, const object_t *object, double share);
void select_random_vertices(random_source &random, const object_t *object, double share);

#endif
