// Load, save, normals and memory of one object of 10k, 100k and 1M vertices with as many quads,
// beside what the machine gives in the same run: reading the file's bytes, scanning its numbers
// with strtod in one loop, printing them with snprintf, normals of plain arrays. Then the same on
// an aged heap: lists whose order has nothing to do with the order in memory.
//   files_bench [folder]    where the files go (default: the current folder)

#include "base/atomic_file.h"
#include "base/file_text.h"
#include "bench/terrain.h"
#include "fileio/vesk_reader.h"
#include "fileio/vesk_writer.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/flat_mesh.h"
#include "model/normals.h"
#include "model/vector.h"

#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

void row(const char *what, const timing &time, double bytes, int vertices,
         const timing &limit = {0, 0}, const char *limit_name = "")
{
    std::printf("  %-26s %7.1f ms (cpu %7.1f) %6.0f ns/vertex", what, time.wall * 1e3,
                time.cpu * 1e3, time.wall * 1e9 / vertices);
    if (bytes > 0)
        std::printf(" %5.0f MB/s", bytes / time.wall / 1e6);
    if (limit.wall > 0)
        std::printf("   %.2f of %s (%.1f ms)", time.wall / limit.wall, limit_name,
                    limit.wall * 1e3);
    std::printf("\n");
}

double scan_with_strtod(const std::string &bytes)
{
    double sum = 0;
    const char *p = bytes.c_str();
    const char *end = p + bytes.size();
    while (p < end) {
        char *after = nullptr;
        const double value = std::strtod(p, &after);
        sum += value;
        p = after > p ? after : p + 1;
    }
    return sum;
}

std::size_t print_with_snprintf(const terrain_arrays &terrain)
{
    char line[128];
    std::size_t bytes = 0;
    const auto wide = [](float value) { return static_cast<double>(value); };
    for (std::size_t i = 0; i < terrain.xyz.size(); i += 3) {
        bytes += static_cast<std::size_t>(
            std::snprintf(line, sizeof line, "%g %g %g\n", wide(terrain.xyz[i]),
                          wide(terrain.xyz[i + 1]), wide(terrain.xyz[i + 2])));
    }
    for (std::size_t i = 0; i < terrain.indices.size(); ++i) {
        bytes += static_cast<std::size_t>(std::snprintf(line, sizeof line, "%d %g %g\n",
                                                        terrain.indices[i], wide(terrain.uv[2 * i]),
                                                        wide(terrain.uv[2 * i + 1])));
    }
    return bytes;
}

// The same sums on plain arrays.
void array_normals(const terrain_arrays &terrain, std::vector<point3_t> *normals)
{
    std::fill(normals->begin(), normals->end(), point3_t{0, 0, 0});
    const auto at = [&](int i) {
        const float *p = &terrain.xyz[3 * static_cast<std::size_t>(i)];
        return point3_t{p[0], p[1], p[2]};
    };
    for (std::size_t s = 0; s + 1 < terrain.offsets.size(); ++s) {
        const int *corner = &terrain.indices[terrain.offsets[s]];
        const point3_t p = at(corner[0]);
        const point3_t n = point_cross(point_sub(at(corner[1]), p), point_sub(at(corner[2]), p));
        const auto length = static_cast<float>(point_length(n));
        for (int k = terrain.offsets[s]; k < terrain.offsets[s + 1]; ++k) {
            point3_t &sum = (*normals)[terrain.indices[k]];
            sum = point_add(sum, point_scale(n, 1 / length));
        }
    }
    for (point3_t &n : *normals)
        n = point_scale(n, static_cast<float>(1 / point_length(n)));
}

// Elements change places between the nodes.
void shuffle(listitem *list, std::mt19937 *random)
{
    std::vector<listitem *> nodes;
    for (; list; list = list->next)
        nodes.push_back(list);
    for (std::size_t i = nodes.size(); i > 1; --i)
        std::swap(nodes[i - 1]->data, nodes[(*random)() % i]->data);
}

// What the lists, the flat mesh and a save add to the memory in use, and the most that was in use.
void measure_memory(int side, const std::string &file)
{
    const terrain_arrays terrain(side);
    const auto in_use = [] {
        std::string text;
        read_whole_file("/proc/self/statm", &text);
        const char *resident = std::strchr(text.c_str(), ' ');
        return resident ? std::atof(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) : 0;
    };
    const auto n = static_cast<double>(terrain.num_vertices());
    const double empty = in_use();
    object_t *object = terrain.build();
    object_calc_normals_force(object);
    const double lists = in_use();
    object_flat(object);
    const double flat = in_use();
    write_vesk(file.c_str());
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    const double most = static_cast<double>(usage.ru_maxrss) * 1024;
    std::printf("  memory a vertex with its quad: lists %.0f bytes, with the flat mesh %.0f, at "
                "most %.0f while saving\n",
                (lists - empty) / n, (flat - empty) / n, (most - empty) / n);
}

// The same in a process of its own, whose heap is fresh.
void measure_memory_apart(int side, const std::string &file)
{
    const pid_t child = fork();
    if (child == 0) {
        execl("/proc/self/exe", "files_bench", "-memory", std::to_string(side).c_str(),
              file.c_str(), static_cast<char *>(nullptr));
        _exit(1);
    }
    waitpid(child, nullptr, 0);
}

void measure(int side, const std::string &folder)
{
    const terrain_arrays terrain(side);
    const int n = terrain.num_vertices();
    const int runs = n >= 1000000 ? 6 : 10;
    const std::string file = folder + "/files_bench.vesk";
    std::printf("%d vertices, %d quads\n", n, terrain.num_surfaces());

    measure_memory_apart(side, file);
    object_t *object = terrain.build();
    object_calc_normals_force(object);

    std::vector<point3_t> normals(static_cast<std::size_t>(n));
    const timing plain = best_of(runs, [&] { array_normals(terrain, &normals); });
    row("normals", best_of(runs, [&] { object_calc_normals_force(object); }), 0, n, plain,
        "plain arrays");

    const timing save = best_of(runs, [&] { write_vesk(file.c_str()); });
    std::string bytes;
    read_whole_file(file.c_str(), &bytes);
    const auto size = static_cast<double>(bytes.size());
    const timing printed = best_of(1, [&] { print_with_snprintf(terrain); });
    const timing written =
        best_of(runs, [&] { atomic_file_write((file + ".copy").c_str(), bytes); });
    row("save", save, size, n, printed, "snprintf of the numbers alone");
    row("the bytes to disk alone", written, size, n);

    const timing read = best_of(runs, [&] {
        file_text text;
        file_text_read(file.c_str(), &text);
    });
    const timing scanned = best_of(1, [&] { scan_with_strtod(bytes); });
    object_t *top = nullptr;
    timing load;
    for (int i = 0; i < runs; ++i) {
        const timing one = best_of(1, [&] { top = readfile_vesk2(file.c_str()); });
        load = {std::min(load.wall, one.wall), std::min(load.cpu, one.cpu)};
        object_free(top);
    }
    row("load with normals", load, size, n, scanned, "strtod of the numbers alone");
    row("the bytes from the cache", read, size, n);

    std::mt19937 random(1);
    shuffle(object->vertices, &random);
    shuffle(object->surfaces, &random);
    object_mark(object, CHANGED_ALL);
    row("aged heap: normals", best_of(runs, [&] { object_calc_normals_force(object); }), 0, n,
        plain, "plain arrays");
    row("aged heap: save",
        best_of(runs,
                [&] {
                    object_mark(object, CHANGED_TOPOLOGY);
                    write_vesk(file.c_str());
                }),
        size, n, printed, "snprintf of the numbers alone");
    object_delete(object);
    std::remove(file.c_str());
    std::remove((file + ".copy").c_str());
}

// As many vertices in many objects.
void measure_many(int objects, int side, const std::string &folder)
{
    const terrain_arrays terrain(side);
    const int n = objects * terrain.num_vertices();
    const std::string file = folder + "/files_bench.vesk";
    std::printf("%d objects of %d vertices\n", objects, terrain.num_vertices());
    object_t *group = new_group();
    object_add_child(vesk_get_world(), group);
    for (int i = 0; i < objects; ++i)
        object_reparent(terrain.build(), group);
    row("save", best_of(6, [&] { write_vesk(file.c_str()); }), 0, n);
    timing load;
    for (int i = 0; i < 6; ++i) {
        object_t *top = nullptr;
        const timing one = best_of(1, [&] { top = readfile_vesk2(file.c_str()); });
        load = {std::min(load.wall, one.wall), std::min(load.cpu, one.cpu)};
        object_free(top);
    }
    row("load with normals", load, 0, n);
    object_delete(group);
    std::remove(file.c_str());
}

} // namespace

int main(int argc, char **argv)
{
    bench_begin();
    if (argc == 4 && std::strcmp(argv[1], "-memory") == 0) {
        measure_memory(std::atoi(argv[2]), argv[3]);
        return 0;
    }
    for (const int side : {100, 316, 1000})
        measure(side, argc > 1 ? argv[1] : ".");
    measure_many(2000, 22, argc > 1 ? argv[1] : ".");
    return 0;
}
