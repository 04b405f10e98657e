// Operations that look at no plane of symmetry: of a model like its mirror image the result is, too.

#include "base/prefs.h"
#include "edit/document/edge_selection.h"
#include "edit/document/edit_support.h"
#include "edit/mesh/edge_topology.h"
#include "edit/symmetry.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/world.h"
#include "tests/edit/mesh_corpus.h"
#include "tests/support/mesh_test.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <tuple>

namespace {

// A half and its mirror image over x = 0, whose surfaces begin at other corners and whose vertices
// come in another order; every polygon has the material of its image.
object_t *add_mirrored(const std::vector<point3_t> &half, const faces_t &half_faces)
{
    std::vector<point3_t> points = half;
    std::vector<int> twin(half.size());
    for (std::size_t i = half.size(); i-- > 0;) {
        const bool on_plane = half[i].x == 0;
        twin[i] = on_plane ? static_cast<int>(i) : static_cast<int>(points.size());
        if (!on_plane)
            points.push_back({-half[i].x, half[i].y, half[i].z});
    }
    faces_t faces = half_faces;
    for (std::size_t f = half_faces.size(); f-- > 0;) {
        std::vector<int> face;
        for (auto v = half_faces[f].rbegin(); v != half_faces[f].rend(); ++v)
            face.push_back(twin[*v]);
        std::rotate(face.begin(), face.begin() + static_cast<std::ptrdiff_t>(f % face.size()),
                    face.end());
        faces.push_back(face);
    }
    object_t *object = add_mesh(points, faces);
    int place = 0;
    const int n = static_cast<int>(half_faces.size());
    for (surface_t *surface : each<surface_t>(object->surfaces)) {
        surface->material = place < n ? place % 3 : (2 * n - 1 - place) % 3;
        ++place;
    }
    object_mark_tree(object, CHANGED_ATTRIBUTES);
    return object;
}

// Half of a ball of `rings` by `steps` quads, and triangles at its poles, over x > 0.
object_t *add_ball(int rings, int steps)
{
    std::vector<point3_t> points = {{0, 1, 0}, {0, -1, 0}};
    faces_t faces;
    const auto at = [&](int ring, int step) { return 2 + (ring - 1) * (steps + 1) + step; };
    for (int ring = 1; ring < rings; ++ring) {
        for (int step = 0; step <= steps; ++step) {
            const double up = 3.14159265358979 * ring / rings,
                         round = 3.14159265358979 * step / steps;
            const bool on_plane = step == 0 || step == steps;
            points.push_back({on_plane ? 0 : static_cast<float>(std::sin(up) * std::sin(round)),
                              static_cast<float>(std::cos(up)),
                              static_cast<float>(std::sin(up) * std::cos(round)) * 1.3f});
        }
    }
    for (int step = 0; step < steps; ++step) {
        faces.push_back({0, at(1, step), at(1, step + 1)});
        faces.push_back({1, at(rings - 1, step + 1), at(rings - 1, step)});
        for (int ring = 1; ring + 1 < rings; ++ring)
            faces.push_back(
                {at(ring, step), at(ring + 1, step), at(ring + 1, step + 1), at(ring, step + 1)});
    }
    return add_mirrored(points, faces);
}

// The surfaces, each with its material, as sets of rounded points; x times `sign`.
std::multiset<std::pair<int, std::multiset<std::tuple<long, long, long>>>>
surfaces_in_mirror(const object_t *object, float sign)
{
    std::multiset<std::pair<int, std::multiset<std::tuple<long, long, long>>>> all;
    for (const surface_t *surface : each<surface_t>(object->surfaces)) {
        std::multiset<std::tuple<long, long, long>> places;
        for (const svertex *corner : each<svertex>(surface->refs)) {
            const point3_t &p = corner->vertex->position;
            places.emplace(std::lround(p.x * sign * 2e3f), std::lround(p.y * 2e3f),
                           std::lround(p.z * 2e3f));
        }
        all.emplace(surface->material, std::move(places));
    }
    return all;
}

class MirroredModel : public SceneTest {};

TEST_F(MirroredModel, ABevelIsAlikeOnBothSidesByItself)
{
    std::uint32_t state = 5;
    const auto chance = [&](std::uint32_t n) {
        state = state * 1664525u + 1013904223u;
        return (state >> 16) % n;
    };
    for (int round = 0; round < 60; ++round) {
        run("clear_all");
        object_t *ball = add_ball(3 + static_cast<int>(chance(4)), 2 + static_cast<int>(chance(4)));
        ASSERT_EQ(surfaces_in_mirror(ball, 1), surfaces_in_mirror(ball, -1));
        const std::string id = run("object_get_children", run("get_world"));
        run("set_select_mode", "edge");
        run("clear_selection");
        prefs.symmetry_axis = 1;
        const std::vector<int> twins = symmetric_places(ball);
        prefs.symmetry_axis = 0;
        const topology_ptr topology = object_topology(ball);
        for (int e = 0; e < topology->size(); ++e) {
            const mesh_edge &edge = topology->edge(e);
            const int other = topology->table().find(twins[edge.a], twins[edge.b]);
            ASSERT_GE(other, 0);
            if (other < e || chance(3) != 0)
                continue;
            run("edge_select", id, edge.a, edge.b);
            run("edge_select", id, twins[edge.a], twins[edge.b]);
        }
        const int segments = 1 + static_cast<int>(chance(4));
        run("edge_bevel", 0.05f, segments, 0.5f);
        EXPECT_EQ(surfaces_in_mirror(ball, 1), surfaces_in_mirror(ball, -1))
            << "round " << round << ", " << segments << " segments";
    }
}

} // namespace
