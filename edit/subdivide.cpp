#include "edit/subdivide.h"

#include "base/messages.h"
#include "base/prefs.h"
#include "edit/document/edit_support.h"
#include "edit/mesh/mesh_edges.h"
#include "model/matrix.h"
#include "model/outline_normal.h"
#include "model/vector.h"

#include <array>

namespace {

bool is_polygon(const flat_mesh &mesh, int surface)
{
    return mesh.surface(surface).type == SURFACE_POLYGON &&
           mesh.surface_corners(surface).size() >= 3;
}

flat_uv between(const flat_uv &a, const flat_uv &b) { return {(a.u + b.u) / 2, (a.v + b.v) / 2}; }

struct centre_t {
    point3_t at;
    flat_uv uv;
};

centre_t centre_of(const flat_mesh &mesh, int surface)
{
    double x = 0, y = 0, z = 0, u = 0, v = 0;
    const auto corners = mesh.surface_corners(surface);
    const auto n = static_cast<double>(corners.size());
    std::size_t c = mesh.first_corner(surface);
    for (const int at : corners) {
        const point3_t &p = mesh.position(at);
        x += p.x;
        y += p.y;
        z += p.z;
        u += mesh.uv(c).u;
        v += mesh.uv(c++).v;
    }
    return {{static_cast<float>(x / n), static_cast<float>(y / n), static_cast<float>(z / n)},
            {static_cast<float>(u / n), static_cast<float>(v / n)}};
}

// ---- middles of edges ----

class edge_middles {
public:
    explicit edge_middles(mesh_change &change)
        : change_(change), mesh_(change.before()), edges_(edges_of(mesh_)),
          middle_(edges_.count, -1)
    {
    }
    // The edge from this corner gets a middle; a corner without an edge none.
    void split(int surface, int corner)
    {
        const int edge = edges_.of_corner[corner];
        if (edge < 0 || middle_[edge] >= 0)
            return;
        const int a = vertex_of(corner), b = vertex_of(next_corner(mesh_, surface, corner));
        const point3_t p = point_scale(point_add(change_.position(a), change_.position(b)), 0.5f);
        middle_[edge] = change_.add_vertex(p, a);
    }
    void split_all(int surface)
    {
        for (int c = mesh_.first_corner(surface); c < mesh_.end_corner(surface); ++c)
            split(surface, c);
    }
    // The middle of the edge from this corner, or -1.
    [[nodiscard]] int of(int corner) const
    {
        const int edge = edges_.of_corner[corner];
        return edge < 0 ? -1 : middle_[edge];
    }
    [[nodiscard]] flat_uv uv_of(int surface, int corner) const
    {
        return between(mesh_.uv(corner), mesh_.uv(next_corner(mesh_, surface, corner)));
    }
    [[nodiscard]] int vertex_of(int corner) const { return mesh_.corner(corner); }

    // Puts the middles into the surface; returns whether it has any.
    bool insert_into(int surface)
    {
        bool any = false;
        for (int c = mesh_.first_corner(surface); c < mesh_.end_corner(surface); ++c) {
            if (of(c) < 0)
                continue;
            change_.insert_corner_after(c, of(c), uv_of(surface, c));
            any = true;
        }
        return any;
    }

private:
    mesh_change &change_;
    const flat_mesh &mesh_;
    mesh_edges edges_;
    std::vector<int> middle_;
};

// ---- subdivision ----

void split_triangle(mesh_change &change, const edge_middles &middles, int surface)
{
    const flat_mesh &mesh = change.before();
    const int first = mesh.first_corner(surface);
    for (int i = 0; i < 3; ++i) {
        const int corner = first + i, before = first + (i + 2) % 3;
        change.add_surface(surface);
        change.add_corner(middles.vertex_of(corner), mesh.uv(corner));
        change.add_corner(middles.of(corner), middles.uv_of(surface, corner));
        change.add_corner(middles.of(before), middles.uv_of(surface, before));
    }
    change.add_surface(surface);
    for (int i = 0; i < 3; ++i)
        change.add_corner(middles.of(first + i), middles.uv_of(surface, first + i));
}

void split_polygon(mesh_change &change, const edge_middles &middles, int surface)
{
    const flat_mesh &mesh = change.before();
    const int first = mesh.first_corner(surface);
    const auto n = static_cast<int>(mesh.surface_corners(surface).size());
    const centre_t centre = centre_of(mesh, surface);
    const int middle = change.add_vertex(centre.at, middles.vertex_of(first));
    for (int i = 0; i < n; ++i) {
        const int corner = first + i, before = first + (i + n - 1) % n;
        change.add_surface(surface);
        change.add_corner(middles.vertex_of(corner), mesh.uv(corner));
        change.add_corner(middles.of(corner), middles.uv_of(surface, corner));
        change.add_corner(middle, centre.uv);
        change.add_corner(middles.of(before), middles.uv_of(surface, before));
    }
}

bool subdivide(surface_work &work)
{
    mesh_change &change = work.change;
    const flat_mesh &mesh = change.before();
    edge_middles middles(change);
    std::vector<bool> replaced(mesh.num_surfaces());
    const std::size_t corners = mesh.corners->size();
    change.reserve(corners / 2 + work.surfaces.size(), corners, 4 * corners);
    for (const int surface : work.surfaces) {
        middles.split_all(surface);
        if (!work.progress.step(++work.done))
            return false;
        if (is_polygon(mesh, surface)) {
            if (mesh.surface_corners(surface).size() == 3)
                split_triangle(change, middles, surface);
            else
                split_polygon(change, middles, surface);
            change.remove_surface(surface);
            replaced[surface] = true;
        } else {
            work.kept.push_back(mesh.surface_record(surface));
        }
        ++work.changed;
    }
    for (int surface = 0; surface < mesh.num_surfaces(); ++surface) {
        if (!replaced[surface])
            middles.insert_into(surface);
    }
    return true;
}

// ---- spikes ----

bool spike(surface_work &work)
{
    mesh_change &change = work.change;
    const flat_mesh &mesh = change.before();
    change.reserve(work.surfaces.size(), mesh.corners->size(), 3 * mesh.corners->size());
    for (const int surface : work.surfaces) {
        if (!work.progress.step(++work.done))
            return false;
        if (!is_polygon(mesh, surface))
            continue;
        const centre_t centre = centre_of(mesh, surface);
        const auto corners = mesh.surface_corners(surface);
        const int first = mesh.first_corner(surface);
        double distance = 0;
        for (const int at : corners)
            distance += static_cast<double>(points_dist(&mesh.position(at), &centre.at));
        const double height = prefs.spike_factor * distance / static_cast<double>(corners.size());
        // The outline's: the first three corners, which give the stored one, may lie on a line.
        const vec3d facing = outline_normal(mesh, corners);
        const double size = length(facing);
        const point3_t up = to_point(size > 0 ? facing * (height / size) : vec3d{});
        const int apex = change.add_vertex(point_add(centre.at, up), corners.front());
        for (int c = first; c < mesh.end_corner(surface); ++c) {
            const int next = next_corner(mesh, surface, c);
            change.add_surface(surface);
            change.add_corner(mesh.corner(c), mesh.uv(c));
            change.add_corner(mesh.corner(next), mesh.uv(next));
            change.add_corner(apex, centre.uv);
        }
        change.remove_surface(surface);
        ++work.changed;
    }
    return true;
}

// ---- curves ----

// The curve through p[1] and p[2], which it leaves and reaches in the directions that their
// neighbours have from each other.
point3_t catmull_rom(const std::array<point3_t, 4> &p, double t)
{
    const auto at = [t](double a, double b, double c, double d) {
        return static_cast<float>(
            0.5 *
            (2 * b + t * (c - a + t * (2 * a - 5 * b + 4 * c - d + t * (3 * (b - c) + d - a)))));
    };
    return {at(p[0].x, p[1].x, p[2].x, p[3].x), at(p[0].y, p[1].y, p[2].y, p[3].y),
            at(p[0].z, p[1].z, p[2].z, p[3].z)};
}

// A line's points, wrapping when it is closed, else going straight on beyond the ends.
class line_points {
public:
    line_points(const flat_mesh &mesh, int surface)
        : positions_(*mesh.positions), corners_(mesh.surface_corners(surface)),
          closed_(mesh.surface(surface).type != SURFACE_LINE)
    {
    }
    [[nodiscard]] int segments() const { return closed_ ? count() : count() - 1; }
    [[nodiscard]] point3_t at(int i) const
    {
        if (closed_)
            return corner((i + count()) % count());
        if (i < 0)
            return point_sub(point_scale(corner(0), 2), corner(1));
        if (i >= count())
            return point_sub(point_scale(corner(count() - 1), 2), corner(count() - 2));
        return corner(i);
    }

private:
    [[nodiscard]] int count() const { return static_cast<int>(corners_.size()); }
    [[nodiscard]] point3_t corner(int i) const { return positions_[corners_[i]]; }

    const std::vector<point3_t> &positions_;
    std::span<const std::int32_t> corners_;
    bool closed_;
};

bool spline(surface_work &work)
{
    mesh_change &change = work.change;
    const flat_mesh &mesh = change.before();
    const int steps = prefs.spline_steps;
    for (const int surface : work.surfaces) {
        if (!work.progress.step(++work.done))
            return false;
        const bool line = mesh.surface(surface).type != SURFACE_POLYGON;
        if (!line || mesh.surface_corners(surface).size() < 2)
            continue;
        const line_points points(mesh, surface);
        for (int i = 0; i < points.segments(); ++i) {
            const int corner = mesh.first_corner(surface) + i;
            const flat_uv from = mesh.uv(corner);
            const flat_uv to = mesh.uv(next_corner(mesh, surface, corner));
            for (int k = 1; k < steps; ++k) {
                const double t = static_cast<double>(k) / steps;
                const auto part = static_cast<float>(t);
                const int added = change.add_vertex(
                    catmull_rom(
                        {points.at(i - 1), points.at(i), points.at(i + 1), points.at(i + 2)}, t),
                    mesh.corner(corner));
                change.insert_corner_after(
                    corner, added,
                    {from.u + (to.u - from.u) * part, from.v + (to.v - from.v) * part});
            }
        }
        work.kept.push_back(mesh.surface_record(surface));
        ++work.changed;
    }
    return true;
}

// ---- single edges ----

// Splits the edges between the vertices.
void split_between(const flat_mesh &mesh, const std::vector<int> &vertices, edge_middles &middles)
{
    std::vector<bool> chosen(mesh.num_vertices());
    for (const int v : vertices)
        chosen[v] = true;
    for (int surface = 0; surface < mesh.num_surfaces(); ++surface) {
        for (int c = mesh.first_corner(surface); c < mesh.end_corner(surface); ++c) {
            const int next = next_corner(mesh, surface, c);
            if (chosen[middles.vertex_of(c)] && chosen[middles.vertex_of(next)])
                middles.split(surface, c);
        }
    }
}

// False when the user cancelled.
bool insert_middles(const owned_elements &owned, bool by_vertices, mesh_change &change,
                    progress_t &progress, double &done)
{
    const flat_mesh &mesh = change.before();
    edge_middles middles(change);
    if (by_vertices)
        split_between(mesh, owned.indices, middles);
    else
        for (const int surface : owned.indices)
            middles.split_all(surface);
    for (int surface = 0; surface < mesh.num_surfaces(); ++surface) {
        middles.insert_into(surface);
        if (!progress.step(++done))
            return false;
    }
    return true;
}

} // namespace

// ---- commands ----

void command_surface_subdivide() { run_surface_operation("subdivide", subdivide); }

void command_surface_spike() { run_surface_operation("spike", spike); }

void command_surface_spline()
{
    if (prefs.spline_steps < 2) {
        display_message("spline - set at least 2 spline steps");
        return;
    }
    run_surface_operation("spline", spline);
}

void command_insert_vertex()
{
    const bool by_vertices = mode_has_vertices(select_mode());
    const std::vector<owned_elements> owners =
        by_vertices ? vertices_by_owner(selection().vertices) : target_surfaces();
    double total = 0, done = 0;
    for (const owned_elements &owned : owners)
        total += owned.object->num_surfaces;
    progress_t progress(total);
    std::vector<mesh_change> changes;
    int count = 0;
    for (const owned_elements &owned : owners) {
        mesh_change &change = changes.emplace_back(owned.object);
        if (!insert_middles(owned, by_vertices, change, progress, done)) {
            display_message("insert vertex - cancelled");
            return;
        }
        count += change.num_vertices() - change.before().num_vertices();
    }
    if (count == 0) {
        display_message("insert vertex - nothing selected");
        return;
    }
    display_message("insert vertex...");
    open_world_undo("insert vertex");
    owned_list added;
    std::vector<object_t *> touched;
    for (std::size_t i = 0; i < changes.size(); ++i) {
        for (vertex *point : changes[i].commit().vertices)
            added.add(point);
        touched.push_back(owners[i].object);
    }
    calc_normals_of(touched);
    if (by_vertices) {
        clear_selection();
        select_vertices(added.get());
    }
    finish_edit();
    display_message("insert vertex - %d vertices", count);
}
