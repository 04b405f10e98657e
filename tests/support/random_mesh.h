#ifndef VESK_TESTS_SUPPORT_RANDOM_MESH_H
#define VESK_TESTS_SUPPORT_RANDOM_MESH_H

// Random objects under the world, the same for the same seed everywhere. Every corner has texture
// coordinates of its own.

#include "model/object.h"

#include <cstdint>

// Uniform numbers from a seed, without the standard library's distributions, which differ.
class random_source {
public:
    explicit random_source(std::uint32_t seed) : state_(seed * 2654435761u + 1) {}
    std::uint32_t next();
    int below(int n); // 0 .. n - 1
    float between(float low, float high);

private:
    std::uint64_t state_;
};

// Polygons and lines of 1 to 6 corners (mostly 3 and 4) between vertices on a small lattice: many
// vertices at one place, repeated corners, surfaces over the same vertices, vertices without a
// surface. Any operation must survive it.
object_t *add_random_soup(random_source &random, int vertices, int surfaces);

// An open sheet of side * side cells, quads and pairs of triangles, over a rough height field.
object_t *add_random_sheet(random_source &random, int side);

// A closed shell of quads facing outwards: a cube of per_side * per_side cells a side, blown up to
// a bumpy ball. Euler characteristic 2.
object_t *add_random_shell(random_source &random, int per_side);

// One planar polygon in z = 0 whose outline does not cross itself, mostly concave, facing +z.
object_t *add_random_polygon(random_source &random, int corners);

#endif
