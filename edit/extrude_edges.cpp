#include "edit/extrude_edges.h"

#include "edit/edge_operation.h"
#include "edit/mesh/mesh_edges.h"
#include "edit/symmetry_scope.h"
#include "model/vector.h"

void command_extrude_edges(float x, float y, float z)
{
    run_edge_operation("extrude edges", "edges", [&](edge_work &work) {
        const flat_mesh &mesh = work.mesh();
        std::vector<int> copies(mesh.num_vertices(), -1);
        const auto copy_of = [&](int v) {
            if (copies[v] < 0)
                copies[v] = work.change.add_vertex(
                    point_add(mesh.position(v), symmetry_offset(mesh.position(v), {x, y, z})), v);
            return copies[v];
        };
        for (const int e : work.edges) {
            const edge_use &use = work.topology.uses(e)[0];
            const int end = next_corner(mesh, use.surface, use.corner);
            const int a = mesh.corner(use.corner), b = mesh.corner(end);
            // Against the surface beside it, so that both face the same way.
            work.change.add_surface(use.surface);
            work.change.add_corner(b, mesh.uv(end));
            work.change.add_corner(a, mesh.uv(use.corner));
            work.change.add_corner(copy_of(a), mesh.uv(use.corner));
            work.change.add_corner(copy_of(b), mesh.uv(end));
            work.made_edges.push_back({copy_of(a), copy_of(b)});
            ++work.changed;
        }
    });
}
