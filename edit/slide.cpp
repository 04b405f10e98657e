#include "edit/slide.h"

#include "base/messages.h"
#include "edit/document/edit_support.h"
#include "edit/edge_operation.h"
#include "edit/mesh/vertex_fan.h"
#include "model/change_marks.h"
#include "model/vec3d.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr float furthest = 0.999f; // a slide leaves the vertices apart

// The neighbours that a vertex slides to, on the two sides of the chain; -1: none.
struct slide_ways {
    int left = -1, right = -1;
};

// Finds the ways of the vertices of chains of marked edges.
class side_finder {
public:
    explicit side_finder(const edge_topology &topology, const std::vector<int> &edges)
        : topology_(topology), mesh_(topology.mesh()), marked_(topology.size()),
          left_(topology.size(), -1), ways_(mesh_.num_vertices())
    {
        for (const int e : edges)
            marked_[e] = true;
    }

    std::vector<slide_ways> find(const std::vector<int> &edges)
    {
        for (const int start : edges) {
            if (left_[start] >= 0 || topology_.uses(start).size() > 2)
                continue;
            left_[start] = 0;
            std::vector<int> open = {start};
            while (!open.empty()) {
                const int e = open.back();
                open.pop_back();
                take(e, open);
            }
        }
        return std::move(ways_);
    }

private:
    // Turns round both ends on both sides of an edge; edges met there continue the side.
    void take(int e, std::vector<int> &open)
    {
        const auto uses = topology_.uses(e);
        for (int i = 0; i < static_cast<int>(uses.size()); ++i) {
            const bool is_left = i == left_[e];
            for (const int v : {topology_.edge(e).a, topology_.edge(e).b}) {
                int &way = is_left ? ways_[v].left : ways_[v].right;
                const auto [next, use] = turn(e, uses[i], v, way);
                if (next < 0 || left_[next] >= 0 || topology_.uses(next).size() > 2)
                    continue;
                const bool first = topology_.uses(next)[0].surface == use.surface;
                left_[next] = is_left == first ? 0 : 1;
                open.push_back(next);
            }
        }
    }

    // From edge `e`, through the surface of `use`, round `v` up to the next marked edge: that and its
    // use. The first edge passed is the way, unless one is known.
    std::pair<int, edge_use> turn(int e, edge_use use, int v, int &way) const
    {
        for (std::size_t turns = topology_.edges_at(v).size(); turns > 0; --turns) {
            const bool begins = mesh_.corner(use.corner) == v;
            const int c = begins ? corner_before(mesh_, use.surface, use.corner)
                                 : corner_after(mesh_, use.surface, use.corner);
            const int other = topology_.edge_of_corner(c);
            if (other < 0 || other == e)
                return {-1, use};
            if (marked_[other])
                return {other, {use.surface, c, false}};
            if (way < 0)
                way = topology_.other_end(other, v);
            const edge_use *next = topology_.beyond(other, use.surface);
            if (next == nullptr)
                return {-1, use};
            use = *next;
        }
        return {-1, use};
    }

    const edge_topology &topology_;
    const flat_mesh &mesh_;
    std::vector<bool> marked_;
    std::vector<int> left_; // of each edge: which use is on the left; -1: not reached
    std::vector<slide_ways> ways_;
};

struct moved_vertex {
    int v;
    vec3d to;
};

struct slide_job {
    object_t *object;
    flat_ptr mesh;
    std::vector<moved_vertex> moved;
};

slide_job job_for(const owned_edges &owned, float share)
{
    const flat_mesh &mesh = owned.topology->mesh();
    slide_job job = {owned.object, object_flat(owned.object), {}};
    std::vector<slide_ways> ways(mesh.num_vertices());
    if (select_mode() == SELECT_VERTEX) {
        const std::vector<bool> marks = selected_vertex_marks(mesh);
        for (int v = 0; v < mesh.num_vertices(); ++v) {
            for (const int e : owned.topology->edges_at(v)) {
                if (marks[v] && ways[v].left < 0 && !marks[owned.topology->other_end(e, v)])
                    ways[v].left = owned.topology->other_end(e, v);
            }
        }
    } else {
        ways = side_finder(*owned.topology, owned.edges).find(owned.edges);
    }
    for (int v = 0; v < mesh.num_vertices(); ++v) {
        const int to = share >= 0 ? ways[v].left : ways[v].right;
        if (to < 0)
            continue;
        const vec3d way = between(mesh.position(v), mesh.position(to));
        job.moved.push_back({v, to_vec3d(mesh.position(v)) + way * std::abs(share)});
    }
    return job;
}

void commit(const slide_job &job)
{
    const flat_mesh &mesh = *job.mesh;
    object_mark(job.object, CHANGED_POSITIONS | CHANGED_TEXTURE_COORDS);
    const vertex_corners corners(mesh);
    std::vector<flat_uv> coords = *mesh.texture_coords;
    std::vector<bool> touched(mesh.num_surfaces());
    for (const moved_vertex &moved : job.moved) {
        for (const std::int32_t c : corners.of(moved.v)) {
            const int s = corners.surface_of(c);
            coords[c] = corner_uv_at(mesh, s, c, to_point(moved.to));
            touched[s] = true;
        }
        mesh.vertex_record(moved.v)->position = to_point(moved.to);
    }
    for (int s = 0; s < mesh.num_surfaces(); ++s) {
        if (!touched[s])
            continue;
        int c = mesh.first_corner(s);
        for (svertex *corner : each<svertex>(mesh.surface_record(s)->refs)) {
            if (corner->vertex == nullptr || c >= mesh.end_corner(s) ||
                corner->vertex != mesh.vertex_record(mesh.corner(c)))
                continue;
            corner->u = coords[c].u;
            corner->v = coords[c].v;
            ++c;
        }
    }
}

} // namespace

// ---- commands ----

void command_slide(float share)
{
    share = std::clamp(share, -furthest, furthest);
    std::vector<slide_job> jobs;
    std::size_t count = 0;
    for (const owned_edges &owned :
         select_mode() == SELECT_VERTEX ? owners_of_selected_vertices() : selected_edges()) {
        jobs.push_back(job_for(owned, share));
        count += jobs.back().moved.size();
    }
    if (count == 0 || share == 0) {
        display_message("slide - nothing selected");
        return;
    }
    open_world_undo("slide");
    std::vector<object_t *> touched;
    for (const slide_job &job : jobs) {
        commit(job);
        touched.push_back(job.object);
    }
    calc_normals_of(touched);
    finish_edit();
    display_message("slide - %d vertices", static_cast<int>(count));
}
