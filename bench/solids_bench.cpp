// The cutting operations: times of booleans of two spheres of n triangles each, and of slices of one.
//   solids_bench [most triangles [part of a name]]

#include "bench/terrain.h"
#include "edit/document/selection_internal.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/normals.h"
#include "model/object.h"
#include "model/world.h"
#include "program/command_table.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <vector>

namespace {

void command(std::initializer_list<const char *> words)
{
    do_command(static_cast<int>(words.size()), words.begin());
}

// A sphere of about n triangles, turned a little so that nothing lies on a lattice.
object_t *sphere(int n, float x)
{
    const int rings = static_cast<int>(std::lround(std::sqrt(n / 4.0)));
    const int around = 2 * rings;
    std::vector<float> xyz;
    const auto add = [&](double polar, double angle) {
        const double a = std::sin(polar) * std::cos(angle), b = std::sin(polar) * std::sin(angle);
        const double c = std::cos(polar), s = 0.3 + x;
        xyz.push_back(static_cast<float>(a) + x);
        xyz.push_back(static_cast<float>(b * std::cos(s) - c * std::sin(s)));
        xyz.push_back(static_cast<float>(b * std::sin(s) + c * std::cos(s)));
    };
    add(0, 0);
    for (int r = 1; r < rings; ++r) {
        for (int i = 0; i < around; ++i)
            add(3.14159265358979 * r / rings, 3.14159265358979 * 2 * i / around);
    }
    add(3.14159265358979, 0);
    const int last = static_cast<int>(xyz.size() / 3) - 1;
    std::vector<int> offsets = {0}, indices;
    const auto triangle = [&](int a, int b, int c) {
        indices.insert(indices.end(), {a, b, c});
        offsets.push_back(static_cast<int>(indices.size()));
    };
    for (int i = 0; i < around; ++i) {
        const int j = (i + 1) % around;
        triangle(0, 1 + i, 1 + j);
        for (int r = 0; r + 2 < rings; ++r) {
            const int a = 1 + r * around;
            triangle(a + i, a + around + i, a + around + j);
            triangle(a + i, a + around + j, a + j);
        }
        const int a = 1 + (rings - 2) * around;
        triangle(a + i, last, a + j);
    }
    object_t *object = new_object(OBJECT_POLY);
    vesk_object_add_vertices_from_float_array(object, xyz.data(), last + 1);
    vesk_object_add_surfaces_from_arrays(object, static_cast<int>(offsets.size()) - 1,
                                         offsets.data(), indices.data(), nullptr, 3);
    object_calc_normals_force(object);
    object_add_child(vesk_get_world(), object);
    return object;
}

const char *wanted = "";

void bench(const char *name, int n, int spheres, std::initializer_list<const char *> words)
{
    if (std::strstr(name, wanted) == nullptr)
        return;
    command({"clear_all"});
    for (int i = 0; i < spheres; ++i)
        sphere(n, 0.7f * static_cast<float>(i));
    command({"set_select_mode", "object"});
    command({"select_all"});
    const auto taken = best_of(1, [&] { command(words); });
    int surfaces = 0;
    for_each_object(vesk_get_world(), [&](object_t *object) { surfaces += object->num_surfaces; });
    std::printf("%-14s %9d triangles  %8.3f s  %8.3f s cpu  %6.0f ns a triangle  -> %d surfaces\n",
                name, n * spheres, taken.wall, taken.cpu, taken.cpu * 1e9 / n / spheres, surfaces);
}

} // namespace

int main(int argc, char **argv)
{
    const int most = argc > 1 ? std::atoi(argv[1]) : 100000;
    wanted = argc > 2 ? argv[2] : "";
    bench_begin();
    register_commands();
    for (int n = most / 100; n <= most; n *= 10) {
        bench("union", n, 2, {"boolean", "union"});
        bench("difference", n, 2, {"boolean", "difference"});
        bench("intersection", n, 2, {"boolean", "intersection"});
        bench("slice", n, 1, {"slice", "0", "0.01", "0", "0.1", "1", "0.2", "both", "0"});
        bench("slice, capped", n, 1, {"slice", "0", "0.01", "0", "0.1", "1", "0.2", "both", "1"});
    }
    return 0;
}
