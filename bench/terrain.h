#ifndef VESK_BENCH_TERRAIN_H
#define VESK_BENCH_TERRAIN_H

// The benchmarks' model: a terrain of quads in one object.

#include "base/crash_guard.h"
#include "base/prefs.h"
#include "base/ui_port.h"
#include "model/alloc_internal.h"
#include "model/object_tree.h"
#include "model/palette.h"
#include "model/record_pages.h"
#include "model/world.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <sys/resource.h>
#include <vector>

struct terrain_arrays {
    int side;
    std::vector<float> xyz;
    std::vector<int> offsets;
    std::vector<int> indices;
    std::vector<float> uv;

    explicit terrain_arrays(int vertices_a_side) : side(vertices_a_side), offsets{0}
    {
        const auto n = static_cast<std::size_t>(side) * static_cast<std::size_t>(side);
        xyz.reserve(3 * n);
        indices.reserve(4 * n);
        offsets.reserve(n + 1);
        uv.reserve(8 * n);
        for (int i = 0; i < side * side; ++i) {
            const auto x = static_cast<float>(i % side), z = static_cast<float>(i / side);
            xyz.insert(xyz.end(), {x * 0.1f, 10 * std::sin(x / 90) * std::cos(z / 70), z * 0.1f});
        }
        for (int i = 0; i + side < side * side; ++i) {
            if ((i + 1) % side == 0)
                continue;
            // Texture coordinates repeat from cell to cell.
            indices.insert(indices.end(), {i, i + side, i + side + 1, i + 1});
            uv.insert(uv.end(), {0, 0, 0, 1, 1, 1, 1, 0});
            offsets.push_back(static_cast<int>(indices.size()));
        }
    }
    [[nodiscard]] int num_vertices() const { return side * side; }
    [[nodiscard]] int num_surfaces() const { return static_cast<int>(offsets.size()) - 1; }

    // The object, under the world.
    [[nodiscard]] object_t *build() const
    {
        object_t *object = new_object(OBJECT_POLY);
        vesk_object_add_vertices_from_float_array(object, xyz.data(), num_vertices());
        vesk_object_add_surfaces_from_arrays(object, num_surfaces(), offsets.data(), indices.data(),
                                             uv.data(), 3);
        object_add_child(vesk_get_world(), object);
        return object;
    }
};

inline void bench_begin()
{
    crash_guard::install();
    alloc_use_big_pages();
    record_pages_reserve();
    prefs_set_defaults();
    new_world();
    create_palette();
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
}

inline double seconds()
{
    using clock = std::chrono::steady_clock;
    return std::chrono::duration<double>(clock::now().time_since_epoch()).count();
}

// Time that all threads of the process spent, the system's part included: on a shared machine a
// better figure than the time on the clock.
inline double cpu_seconds()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    const auto in_seconds = [](const timeval &time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return in_seconds(usage.ru_utime) + in_seconds(usage.ru_stime);
}

struct timing {
    double wall = 1e9;
    double cpu = 1e9;
};

// The shortest of some runs.
template <class Work>
timing best_of(int runs, Work work)
{
    timing best;
    for (int i = 0; i < runs; ++i) {
        const double wall = seconds();
        const double cpu = cpu_seconds();
        work();
        best.wall = std::min(best.wall, seconds() - wall);
        best.cpu = std::min(best.cpu, cpu_seconds() - cpu);
    }
    return best;
}

#endif
