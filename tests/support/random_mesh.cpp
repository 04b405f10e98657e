#include "tests/support/random_mesh.h"

#include "model/normals.h"
#include "model/world.h"

#include <cmath>
#include <map>
#include <tuple>
#include <vector>

std::uint32_t random_source::next()
{
    state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<std::uint32_t>(state_ >> 33) ^ static_cast<std::uint32_t>(state_ >> 11);
}

int random_source::below(int n) { return static_cast<int>(next() % static_cast<std::uint32_t>(n)); }

float random_source::between(float low, float high)
{
    return low + (high - low) * (static_cast<float>(next() >> 8) / static_cast<float>(1 << 24));
}

namespace {

struct builder {
    object_t *object = new_object(OBJECT_POLY);
    std::vector<vertex *> vertices;

    int add(float x, float y, float z)
    {
        vertices.push_back(object_add_new_vertex(object, x, y, z));
        return static_cast<int>(vertices.size()) - 1;
    }
    surface_t *add_surface(random_source &random, const std::vector<int> &corners)
    {
        surface_t *surface = new_surface();
        surface_set_col(surface, random.below(6));
        surface_set_shading(surface, random.below(2));
        surface_set_twosided(surface, random.below(2));
        for (const int at : corners) {
            surface_add_vertex(surface, vertices.at(static_cast<std::size_t>(at)),
                               random.between(0, 1), random.between(0, 1));
        }
        object_add_surface(object, surface);
        return surface;
    }
    object_t *finish()
    {
        object_calc_normals_force(object);
        object_add_child(vesk_get_world(), object);
        return object;
    }
};

} // namespace

object_t *add_random_soup(random_source &random, int vertices, int surfaces)
{
    builder mesh;
    int lattice = 2;
    while (lattice * lattice * lattice < vertices / 2)
        ++lattice;
    for (int i = 0; i < vertices; ++i) {
        const auto x = static_cast<float>(random.below(lattice));
        const auto y = static_cast<float>(random.below(lattice));
        const auto z = static_cast<float>(random.below(lattice));
        mesh.add(random.below(8) == 0 ? -x : x, y, z); // -0 too
    }
    constexpr int sizes[] = {1, 2, 3, 3, 3, 3, 4, 4, 4, 4, 5, 6};
    for (int i = 0; i < surfaces; ++i) {
        std::vector<int> corners;
        for (int n = sizes[random.below(12)]; n > 0; --n)
            corners.push_back(random.below(vertices));
        surface_t *surface = mesh.add_surface(random, corners);
        if (random.below(6) == 0)
            surface_set_type(surface, 1 + random.below(2));
        if (random.below(5) == 0) { // the same again, turned or reversed
            std::vector<int> again(corners.rbegin(), corners.rend());
            mesh.add_surface(random, random.below(2) == 0 ? corners : again);
        }
    }
    return mesh.finish();
}

object_t *add_random_sheet(random_source &random, int side)
{
    builder mesh;
    for (int y = 0; y <= side; ++y) {
        for (int x = 0; x <= side; ++x)
            mesh.add(static_cast<float>(x), static_cast<float>(y), random.between(0, 2));
    }
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const int a = y * (side + 1) + x, b = a + side + 1;
            if (random.below(3) != 0) {
                mesh.add_surface(random, {a, a + 1, b + 1, b});
            } else {
                mesh.add_surface(random, {a, a + 1, b + 1});
                mesh.add_surface(random, {a, b + 1, b});
            }
        }
    }
    return mesh.finish();
}

object_t *add_random_shell(random_source &random, int per_side)
{
    builder mesh;
    std::map<std::tuple<int, int, int>, int> at;
    const auto corner = [&](int axis, int side, int u, int v) {
        int p[3];
        p[axis] = side * per_side;
        p[(axis + 1) % 3] = u;
        p[(axis + 2) % 3] = v;
        const auto [found, added] = at.try_emplace({p[0], p[1], p[2]}, 0);
        if (added) {
            double q[3], length = 0;
            for (int i = 0; i < 3; ++i) {
                q[i] = 2.0 * p[i] / per_side - 1;
                length += q[i] * q[i];
            }
            const double scale =
                static_cast<double>(random.between(0.9f, 1.1f)) / std::sqrt(length);
            found->second =
                mesh.add(static_cast<float>(q[0] * scale), static_cast<float>(q[1] * scale),
                         static_cast<float>(q[2] * scale));
        }
        return found->second;
    };
    for (int axis = 0; axis < 3; ++axis) {
        for (int side = 0; side < 2; ++side) {
            for (int u = 0; u < per_side; ++u) {
                for (int v = 0; v < per_side; ++v) {
                    const int a = corner(axis, side, u, v), b = corner(axis, side, u + 1, v);
                    const int c = corner(axis, side, u + 1, v + 1),
                              d = corner(axis, side, u, v + 1);
                    if (side == 1)
                        mesh.add_surface(random, {a, b, c, d});
                    else
                        mesh.add_surface(random, {a, d, c, b});
                }
            }
        }
    }
    return mesh.finish();
}

object_t *add_random_polygon(random_source &random, int corners)
{
    builder mesh;
    std::vector<int> outline;
    for (int i = 0; i < corners; ++i) {
        const double angle = 2 * 3.14159265358979 * i / corners;
        const auto radius = static_cast<double>(random.between(0.2f, 1));
        outline.push_back(mesh.add(static_cast<float>(radius * std::cos(angle)),
                                   static_cast<float>(radius * std::sin(angle)), 0));
    }
    mesh.add_surface(random, outline);
    return mesh.finish();
}
