// Picking and rubber bands in one object of ten thousand, a hundred thousand and a million vertices,
// and in 10,000 small objects. Beside it, in the same run: reading all positions once.
//   pick_bench [largest side]    default 1000

#include "bench/terrain.h"
#include "edit/document/modes.h"
#include "edit/primitives.h"
#include "edit/transform.h"
#include "model/flat_mesh.h"
#include "model/normals.h"
#include "program/command_table.h"
#include "view/camera.h"
#include "view/fit.h"
#include "view/pick.h"
#include "view/tool_select.h"
#include "view/views_internal.h"

#include <cstdlib>
#include <initializer_list>

namespace {

constexpr int width = 436;
constexpr int height = 346;
constexpr int range = 4;

void command(std::initializer_list<const char *> words)
{
    do_command(static_cast<int>(words.size()), words.begin());
}

void show_all()
{
    for (int view = 0; view < num_views; ++view)
        handle_resize(view, width, height);
    fit_all();
}

double read_once(object_t *object)
{
    const auto mesh = object_flat(object);
    float most = 0;
    const double took = best_of(5, [&] {
                            for (const point3_t &p : *mesh->positions)
                                most = std::max(most, p.x + p.y + p.z);
                        }).wall;
    std::printf("%-44s %9.3f ms   (%g)\n", "reading the positions", took * 1e3, most);
    return took;
}

template <class Work>
void measure(const char *what, double peer, Work work)
{
    const double took = best_of(3, work).wall;
    std::printf("%-44s %9.3f ms   ratio %6.1f\n", what, took * 1e3, took / peer);
}

void bench_picks(double peer)
{
    static constexpr struct {
        const char *name;
        int view;
    } views[] = {{"front", VIEW_XY}, {"3D", VIEW_XYZ}};
    static constexpr struct {
        const char *one, *many;
        pick_kind kind;
    } kinds[] = {{"object", "objects", pick_kind::OBJECT},
                 {"surface", "surfaces", pick_kind::SURFACE},
                 {"vertex", "vertices", pick_kind::VERTEX}};
    for (const auto &view : views) {
        for (const auto &kind : kinds) {
            const std::string where = std::string(view.name) + ": ";
            measure((where + kind.one + " under the pointer").c_str(), peer,
                    [&] { pick_at(view.view, kind.kind, width / 2, height / 2, range); });
            measure((where + kind.many + " in a band").c_str(), peer, [&] {
                pick_band(view.view, kind.kind, {50, 50, width - 50, height - 50, true});
            });
        }
    }
}

void bench_selection(double peer)
{
    measure("band that selects the vertices", peer, [] {
        command({"set_select_mode", "vertex"});
        select_band(VIEW_XY, {0, 0, width, height, true}, 0);
        command({"clear_selection"});
    });
}

void bench_terrain(int side)
{
    object_t *terrain = terrain_arrays(side).build();
    object_calc_normals_force(terrain);
    show_all();
    std::printf("-- %d vertices, %d quads\n", terrain->num_vertices, terrain->num_surfaces);
    const double peer = read_once(terrain);
    bench_picks(peer);
    bench_selection(peer);
    command({"set_select_mode", "tree"});
    object_delete(terrain);
}

void bench_many(int n)
{
    object_t *last = nullptr;
    for (int i = 0; i < n; ++i) {
        const point3_t place = {static_cast<float>(i % 100), static_cast<float>(i / 100), 0};
        last = create_regular_cube(&place);
        object_add_child(vesk_get_world(), last);
    }
    show_all();
    std::printf("-- %d objects of 8 vertices\n", n);
    const double peer = read_once(last);
    bench_picks(peer * n);
}

} // namespace

int main(int argc, char **argv)
{
    const int largest = argc > 1 ? std::atoi(argv[1]) : 1000;
    bench_begin();
    register_commands();
    person_reset();
    for (const int side : {100, 316, 1000})
        if (side <= largest)
            bench_terrain(side);
    bench_many(10000);
    return 0;
}
