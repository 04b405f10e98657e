#include "edit/edge_operation.h"

#include "base/messages.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_scan.h"
#include "edit/edge_select.h"
#include "model/freed.h"

#include <deque>

namespace {

struct job_t {
    owned_edges owned;
    mesh_change change;
    std::vector<std::array<int, 2>> made_edges;
    std::vector<int> made_vertices;
};

struct results_t {
    std::vector<edge_ends> edges;
    std::vector<vertex *> vertices;
    std::vector<surface_t *> surfaces;
};

void show_refusal(const char *what, const edge_work &work, const owned_edges &owned)
{
    if (!work.faulty.empty())
        take_edges({{owned.object, owned.topology, work.faulty}}, edge_change::replace);
    finish_edit();
    display_message("%s - %s", what, work.refusal.c_str());
}

void commit(job_t &job, results_t *results)
{
    const flat_ptr before = object_flat(job.owned.object);
    const mesh_result made = job.change.commit();
    const auto record = [&](int at) {
        const int old = before->num_vertices();
        return at < old ? before->vertex_record(at) : made.vertices[at - old];
    };
    for (const auto &[a, b] : job.made_edges)
        results->edges.push_back({record(a), record(b)});
    for (const int v : job.made_vertices)
        results->vertices.push_back(record(v));
    results->surfaces.insert(results->surfaces.end(), made.surfaces.begin(), made.surfaces.end());
}

void select(results_t &results)
{
    owned_list list;
    if (select_mode() == SELECT_EDGE) {
        select_edges_by_ends(std::move(results.edges));
    } else if (select_mode() == SELECT_VERTEX) {
        for (const edge_ends &ends : results.edges) {
            list.add(ends.a);
            list.add(ends.b);
        }
        for (vertex *v : results.vertices)
            list.add(v);
        select_vertices(list.get());
    } else {
        for (surface_t *surface : results.surfaces)
            list.add(surface);
        select_surfacelist(list.get());
    }
}

} // namespace

void run_edge_operation(const char *what, const char *counted,
                        const std::function<void(edge_work &)> &compute)
{
    run_edge_operation(what, counted, selected_edges(), compute);
}

void run_edge_operation(const char *what, const char *counted, std::vector<owned_edges> targets,
                        const std::function<void(edge_work &)> &compute)
{
    std::deque<job_t> jobs;
    int changed = 0;
    for (owned_edges &owned : targets) {
        job_t &job = jobs.emplace_back(job_t{std::move(owned), mesh_change(owned.object), {}, {}});
        edge_work work = {job.change, *job.owned.topology, job.owned.edges, job.owned.object};
        compute(work);
        if (!work.refusal.empty()) {
            show_refusal(what, work, job.owned);
            return;
        }
        changed += work.changed;
        job.made_edges = std::move(work.made_edges);
        job.made_vertices = std::move(work.made_vertices);
        if (work.changed == 0)
            jobs.pop_back();
    }
    if (changed == 0) {
        display_message("%s - nothing selected", what);
        return;
    }
    open_world_undo(what);
    clear_selection();
    results_t results;
    std::vector<object_t *> touched;
    {
        freed_batch at_once;
        for (job_t &job : jobs) {
            commit(job, &results);
            touched.push_back(job.owned.object);
        }
    }
    calc_normals_of(touched);
    select(results);
    finish_edit();
    display_message("%s - %d %s", what, changed, counted);
}

std::vector<owned_edges> owners_of_selected_vertices()
{
    std::vector<owned_edges> owners;
    for (const owned_elements &owned : vertices_by_owner(selection().vertices))
        owners.push_back({owned.object, object_topology(owned.object), {}});
    return owners;
}

std::vector<bool> selected_vertex_marks(const flat_mesh &mesh)
{
    std::vector<bool> marks(mesh.num_vertices());
    for (int v = 0; v < mesh.num_vertices(); ++v)
        set_scratch(mesh.vertex_record(v), static_cast<std::uint32_t>(v));
    for (const vertex *point : each<vertex>(selection().vertices)) {
        const std::uint32_t v = scratch(point);
        if (v < marks.size() && mesh.vertex_record(v) == point)
            marks[v] = true;
    }
    return marks;
}
