// A session with one large terrain, at sizes up to ten million vertices: whole commands with undo and
// history, what each takes a vertex, how that grows from size to size (more than n log n is marked),
// the memory that the process holds then, and how much more it was at most on the way.
//   large_bench [largest side [folder]]    default 3163, .

#include "bench/terrain.h"
#include "model/each.h"
#include "model/flat_mesh.h"
#include "model/normals.h"
#include "plugin/importers.h"
#include "program/command_table.h"

#include <cstdlib>
#include <fstream>
#include <initializer_list>
#include <string>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int most_rows = 32;

// Nanoseconds a vertex of each row at the size before; shared, for each size is a process of its own.
struct rows_t {
    double before[most_rows];
    int vertices_before;
};

void command(std::initializer_list<const char *> words)
{
    do_command(static_cast<int>(words.size()), words.begin());
}

// A line of /proc/self/status, in bytes.
double memory(const char *name)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(name))
            return 1024 * std::atof(line.c_str() + line.find(':') + 1);
    }
    return 0;
}

class session {
public:
    session(rows_t *rows, int vertices) : rows_(rows), vertices_(vertices) {}

    template <class Work>
    void measure(const char *what, Work work)
    {
        std::ofstream("/proc/self/clear_refs") << 5; // the most memory counts from here
        const double held = memory("VmRSS");
        const timing took = best_of(1, work);
        const double each = took.cpu * 1e9 / vertices_;
        std::printf("%-22s %8.3f s %8.3f s cpu %6.0f ns a vertex, %4.0f bytes then, needs %4.0f",
                    what, took.wall, took.cpu, each, memory("VmRSS") / vertices_,
                    (memory("VmHWM") - held) / vertices_);
        double &before = rows_->before[next_++];
        if (rows_->vertices_before > 0 && before > 0) {
            const double growth = each / before;
            const double allowed = std::log(vertices_) / std::log(rows_->vertices_before);
            std::printf("  growth %.2f%s", growth, growth > 1.25 * allowed ? " (!)" : "");
        }
        std::printf("\n");
        before = each;
    }
    void end() { rows_->vertices_before = vertices_; }

private:
    rows_t *rows_;
    int vertices_;
    int next_ = 0;
};

void run(rows_t *rows, int side, const std::string &file)
{
    session all(rows, side * side);
    all.measure("load", [&] { command({"load_file", file.c_str()}); });
    object_t *object = item_of<object_t>(vesk_get_world()->children);
    all.measure("flat mesh", [&] { object_flat(object); });
    command({"set_select_mode", "object"});
    all.measure("select all", [] { command({"select_all"}); });
    all.measure("move", [] { command({"move", "1", "0", "0.5"}); });
    all.measure("undo", [] { command({"step_back"}); });
    all.measure("redo", [] { command({"redo"}); });
    all.measure("to vertex mode", [] { command({"set_select_mode", "vertex"}); });
    all.measure("clear the selection", [] { command({"clear_selection"}); });
    all.measure("select all vertices", [] { command({"select_all"}); });
    all.measure("move them", [] { command({"move", "1", "0", "0.5"}); });
    all.measure("to edge mode", [] { command({"set_select_mode", "edge"}); });
    all.measure("to object mode", [] { command({"set_select_mode", "object"}); });
    all.measure("save", [&] { command({"save_vesk", file.c_str()}); });
    all.measure("check_model", [] { command({"check_model"}); });
    all.measure("delete", [] { command({"select_all"}), command({"delete"}); });
    all.measure("undo it", [] { command({"step_back"}); });
    // What stands behind the window of texture coordinates.
    command({"select_all"});
    all.measure("texture window", [] { command({"uv_info"}); });
    all.measure("choose all corners", [] { command({"uv_select", "all"}); });
    all.measure("move them", [] { command({"uv_move", "0.1", "0"}); });
    all.measure("undo that", [] { command({"step_back"}); });
    all.end();
}

} // namespace

int main(int argc, char **argv)
{
    const int largest = argc > 1 ? std::atoi(argv[1]) : 3163;
    const std::string file = std::string(argc > 2 ? argv[2] : ".") + "/large_bench.vesk";
    void *shared =
        mmap(nullptr, sizeof(rows_t), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    auto *rows = static_cast<rows_t *>(shared);
    // Makes the file, or works with it.
    const auto in_process = [&](int side, bool makes) {
        const pid_t child = fork();
        if (child == 0) {
            bench_begin();
            register_commands();
            vesk_register_internal_file_importers();
            if (makes) {
                object_calc_normals_force(terrain_arrays(side).build());
                command({"save_vesk", file.c_str()});
            } else {
                run(rows, side, file);
            }
            std::fflush(stdout);
            std::_Exit(0);
        }
        waitpid(child, nullptr, 0);
    };
    for (const int side : {316, 1000, 3163}) {
        if (side > largest)
            break;
        std::printf("%d vertices, %d quads\n", side * side, (side - 1) * (side - 1));
        std::fflush(stdout);
        in_process(side, true);
        in_process(side, false);
    }
    std::remove(file.c_str());
    return 0;
}
