#include "edit/reduce.h"

#include "base/aside.h"
#include "base/messages.h"
#include "base/prefs.h"
#include "edit/document/edit_support.h"
#include "edit/edge_mesh_internal.h"
#include "model/child_changes.h"
#include "model/freed.h"
#include "model/object_tree.h"
#include "model/vector.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <meshoptimizer.h>
#include <unordered_map>

namespace {

// A vertex as one side of a seam has it: the simplifier sees a seam where a place has two of them,
// and keeps its line.
struct wedge_t {
    int vertex;
    flat_uv uv;
    int look; // of the surface: material, shading, sides
    int next; // of the same vertex, or -1
};

// One object's triangles, as the worker has them.
struct reduce_work {
    object_t *object = nullptr; // not the worker's business
    vesk_mesh_t mesh;           // triangles
    std::vector<int> looks;     // of each triangle
    std::vector<int> like;      // a surface of each look
    int percent = 0;

    std::vector<wedge_t> wedges;
    std::vector<unsigned> indices;
};

void number_looks(const flat_mesh &flat, reduce_work *work)
{
    std::unordered_map<long long, int> known;
    for (const int source : work->mesh.sources) {
        const flat_surface &surface = flat.surface(source);
        const long long key =
            static_cast<long long>(surface.material) * 4 + surface.smooth * 2 + surface.twosided;
        const auto [look, is_new] = known.emplace(key, static_cast<int>(work->like.size()));
        if (is_new)
            work->like.push_back(source);
        work->looks.push_back(look->second);
    }
}

void find_wedges(reduce_work *work)
{
    const vesk_mesh_t &mesh = work->mesh;
    std::vector<int> first(mesh.points.size(), -1);
    work->indices.reserve(mesh.corners.size());
    for (std::size_t c = 0; c < mesh.corners.size(); ++c) {
        const int v = mesh.corners[c];
        const int look = work->looks[c / 3];
        int w = first[v];
        while (w >= 0 && (work->wedges[w].look != look || !(work->wedges[w].uv == mesh.uv[c])))
            w = work->wedges[w].next;
        if (w < 0) {
            w = static_cast<int>(work->wedges.size());
            work->wedges.push_back({v, mesh.uv[c], look, first[v]});
            first[v] = w;
        }
        work->indices.push_back(static_cast<unsigned>(w));
    }
}

int count_vertices(const reduce_work &work, const std::vector<unsigned> &indices)
{
    std::vector<bool> used(work.mesh.points.size());
    int count = 0;
    for (const unsigned w : indices) {
        const auto v = work.wedges[w].vertex;
        count += used[v] ? 0 : 1;
        used[v] = true;
    }
    return count;
}

std::vector<unsigned> simplified(const reduce_work &work, const std::vector<point3_t> &positions,
                                 int triangles)
{
    constexpr float any_error = 1e10f;
    std::vector<unsigned> result(work.indices.size());
    // The library does not take a wish for more than there is.
    const std::size_t wanted = std::min<std::size_t>(3 * std::max(triangles, 1), result.size());
    const std::size_t n =
        meshopt_simplify(result.data(), work.indices.data(), work.indices.size(), &positions[0].x,
                         positions.size(), sizeof(point3_t), wanted, any_error, 0, nullptr);
    result.resize(n);
    return result;
}

// A triangle has about half as many vertices of its own as corners; how many exactly shows
// afterwards. Small meshes are tried again with the result of the first try.
void reduce(reduce_work *work)
{
    find_wedges(work);
    std::vector<point3_t> positions;
    positions.reserve(work->wedges.size());
    for (const wedge_t &wedge : work->wedges)
        positions.push_back(work->mesh.points[wedge.vertex]);

    const int before = count_vertices(*work, work->indices);
    const auto lost = static_cast<int>(std::lround(before * (work->percent / 100.0)));
    const int wanted = std::max(3, before - lost); // something stays
    const int allowed = std::max(1, before / 100);
    int triangles = work->mesh.num_faces() - 2 * (before - wanted);
    constexpr int few_triangles = 200'000;
    int tries = work->mesh.num_faces() < few_triangles ? 4 : 1;
    std::vector<unsigned> best;
    int best_miss = -1;
    while (tries-- > 0) {
        std::vector<unsigned> result = simplified(*work, positions, triangles);
        const int miss = count_vertices(*work, result) - wanted;
        const bool same = best_miss >= 0 && std::abs(miss) >= best_miss;
        if (!same) {
            best = std::move(result);
            best_miss = std::abs(miss);
        }
        if (same || best_miss <= allowed)
            break;
        triangles -= 2 * miss;
    }
    work->indices = std::move(best);
}

// The triangles that are left, over the same vertices.
void take_result(reduce_work *work)
{
    vesk_mesh_t result;
    result.points = std::move(work->mesh.points);
    for (std::size_t i = 0; i + 2 < work->indices.size(); i += 3) {
        for (std::size_t corner = i; corner < i + 3; ++corner) {
            const wedge_t &wedge = work->wedges[work->indices[corner]];
            result.add_corner(wedge.vertex, wedge.uv);
        }
        result.end_face(work->like[work->wedges[work->indices[i]].look]);
    }
    work->mesh = std::move(result);
}

using work_list = std::vector<reduce_work>;

void add_work(object_t *object, int percent, work_list *list)
{
    reduce_work work;
    work.object = object;
    work.percent = percent;
    vesk_mesh_t *mesh = vesk_object_to_mesh(object);
    work.mesh = std::move(*mesh);
    vesk_mesh_free(mesh);
    mesh_triangulate(&work.mesh);
    const bool is_sound =
        std::all_of(work.mesh.points.begin(), work.mesh.points.end(), point_is_finite);
    if (work.mesh.sources.empty() || !is_sound)
        return;
    number_looks(*object_flat(object), &work);
    list->push_back(std::move(work));
}

// Clones of the objects, beside them. `works` are made to name the parts of the clones.
std::vector<object_t *> clones_beside(const std::vector<object_t *> &tops, work_list *works)
{
    std::unordered_map<const object_t *, object_t *> twins;
    std::vector<object_t *> clones;
    child_changes changes;
    for (object_t *top : tops) {
        object_t *clone = object_clone(top);
        std::vector<object_t *> parts;
        for_each_object(clone, [&](object_t *part) { parts.push_back(part); });
        auto part = parts.begin();
        for_each_object(top, [&](const object_t *original) { twins[original] = *part++; });
        changes.replace(top, {top, clone});
        clones.push_back(clone);
    }
    changes.commit();
    for (reduce_work &work : *works)
        work.object = twins[work.object];
    return clones;
}

} // namespace

// ---- commands ----

void selected_objects_reduce(int percent)
{
    if (percent < 1 || percent > 99) {
        display_message("reduce - give a percentage from 1 to 99");
        return;
    }
    const auto works = std::make_shared<work_list>();
    const std::vector<object_t *> tops = selected_top_objects();
    for (object_t *top : tops)
        for_each_object(top, [&](object_t *object) { add_work(object, percent, works.get()); });
    if (works->empty()) {
        display_message("reduce - nothing selected");
        return;
    }
    display_message("reduce...");
    const bool done = run_aside([works] {
        for (reduce_work &work : *works) {
            reduce(&work);
            take_result(&work);
        }
    });
    if (!done) {
        display_message("reduce - cancelled");
        return;
    }
    open_world_undo("reduce");
    if (prefs.reduce_keep_original != 0)
        select_results(clones_beside(tops, works.get()));
    int before = 0, after = 0;
    std::vector<object_t *> touched;
    {
        freed_batch at_once;
        for (reduce_work &work : *works) {
            before += work.object->num_vertices;
            mesh_into_object(std::move(work.mesh), work.object);
            after += work.object->num_vertices;
            touched.push_back(work.object);
        }
    }
    calc_normals_of(touched);
    finish_edit();
    display_message("reduced %d to %d vertices", before, after);
}
