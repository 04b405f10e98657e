#include "edit/smooth_subdivide.h"

#include "base/big_vector.h"
#include "base/messages.h"
#include "base/progress.h"
#include "base/worker.h"
#include "edit/document/edit_support.h"
#include "edit/edge_mesh_internal.h"
#include "model/angle.h"
#include "model/freed.h"
#include "model/vec3d.h"
#include "model/vector.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <functional>

namespace {

constexpr int faces_between_looks = 16;

// True to go on. `faces` more are done.
bool step(progress_t *progress, int faces)
{
    return progress == nullptr || faces % faces_between_looks != 0 || progress->step(faces);
}

// ---- Loop ----

// The neighbourhood of a vertex.
struct surroundings {
    vec3d neighbours; // sum of all
    vec3d along;      // sum of those at the other end of a border edge
    std::int32_t count = 0, borders = 0;

    void meet(const point3_t &other, bool border)
    {
        neighbours += to_vec3d(other);
        ++count;
        if (border) {
            along += to_vec3d(other);
            ++borders;
        }
    }
};

// What each of n neighbours counts for a vertex inside.
double weight_inside(int n)
{
    const double middle = 3.0 / 8 + std::cos(2 * pi / n) / 4;
    return (5.0 / 8 - middle * middle) / n;
}

// Not inline: g++ 12 leaves out the rounding to float then, where two coordinates go side by side.
[[gnu::noinline]] point3_t smooth_vertex(const point3_t &p, const surroundings &round,
                                         const std::vector<double> &weights)
{
    const int borders = round.borders;
    const int n = round.count;
    if (n == 0 || (borders != 0 && borders != 2))
        return p; // a corner of borders stays
    vec3d sum = borders == 2 ? round.along : round.neighbours;
    double weight = 1.0 / 8;
    if (borders == 0)
        weight = n < static_cast<int>(weights.size()) ? weights[n] : weight_inside(n);
    sum = sum * weight + to_vec3d(p) * (1 - weight * (borders == 2 ? 2 : n));
    return to_point(sum);
}

// The vertices of the mesh as they move: the first points of `fine`. Each thread has vertices of its own,
// which meet all edges in their order: the sums depend on the order.
void move_vertices(const vesk_mesh_t &mesh, const edge_table &edges, float factor,
                   std::vector<point3_t> &fine)
{
    std::vector<double> weights(1); // of small numbers of neighbours
    for (int n = 1; n < 64; ++n)
        weights.push_back(weight_inside(n));
    in_two_parts(static_cast<int>(mesh.points.size()), [&](int first, int end) {
        std::vector<surroundings> round(end - first);
        const auto is_own = [&](int v) { return v >= first && v < end; };
        for (int e = 0; e < edges.size(); ++e) {
            const auto [a, b, use] = edges.edge(e);
            const bool border = edges.uses(e).size() != 2;
            if (is_own(a))
                round[a - first].meet(mesh.points[b], border);
            if (is_own(b))
                round[b - first].meet(mesh.points[a], border);
        }
        for (int v = first; v < end; ++v) {
            const point3_t &p = mesh.points[v];
            vec3d blended;
            blended += to_vec3d(p) * (1.0 - factor);
            blended += to_vec3d(smooth_vertex(p, round[v - first], weights)) * factor;
            fine[v] = factor > 0 ? to_point(blended) : p;
        }
    });
}

// The corner of a triangle that an edge does not touch.
int opposite(const vesk_mesh_t &mesh, const edge_use &use)
{
    const int first = mesh.offsets[use.surface];
    return mesh.corners[first + (use.corner - first + 2) % 3];
}

point3_t smooth_middle(const vesk_mesh_t &mesh, const edge_table &edges, int e, double factor)
{
    const mesh_edge &edge = edges.edge(e);
    const auto uses = edges.uses(e);
    const bool inside = uses.size() == 2;
    const double ends = inside ? 0.5 - factor / 8 : 0.5;
    vec3d sum;
    sum += to_vec3d(mesh.points[edge.a]) * ends;
    sum += to_vec3d(mesh.points[edge.b]) * ends;
    if (inside) {
        for (const edge_use &use : uses)
            sum += to_vec3d(mesh.points[opposite(mesh, use)]) * (factor / 8);
    }
    return to_point(sum);
}

flat_uv middle(const flat_uv &a, const flat_uv &b) { return {(a.u + b.u) / 2, (a.v + b.v) / 2}; }

// Divides a triangle into four, from face 4 * face and corner 12 * face of the fine mesh on. Vertices in
// the middle of edges follow the `old` ones.
void divide_triangle(const vesk_mesh_t &mesh, const std::vector<int> &edge_of, int face,
                     vesk_mesh_t *fine)
{
    const int first = 3 * face, old = static_cast<int>(mesh.points.size());
    std::array<int, 3> v = {}, m = {};
    std::array<flat_uv, 3> uv = {}, muv = {};
    for (std::size_t i = 0; i < 3; ++i) {
        v[i] = mesh.corners[first + i];
        uv[i] = mesh.uv[first + i];
        muv[i] = middle(uv[i], mesh.uv[first + (i + 1) % 3]);
        // A side from a vertex to itself has no edge: its middle is the vertex.
        m[i] = edge_of[first + i] < 0 ? v[i] : old + edge_of[first + i];
    }
    int at = 12 * face;
    const auto add = [&](int vertex, const flat_uv &coordinates) {
        fine->corners[at] = vertex;
        fine->uv[at++] = coordinates;
    };
    for (std::size_t i = 0; i < 3; ++i) {
        const std::size_t before = (i + 2) % 3;
        add(v[i], uv[i]);
        add(m[i], muv[i]);
        add(m[before], muv[before]);
    }
    for (std::size_t i = 0; i < 3; ++i)
        add(m[i], muv[i]);
    for (int part = 4 * face; part < 4 * face + 4; ++part) {
        fine->sources[part] = mesh.sources[face];
        fine->offsets[part + 1] = 3 * part + 3;
    }
}

// False when the user cancelled.
bool divide_triangles(const vesk_mesh_t &mesh, const edge_table &edges, vesk_mesh_t *fine,
                      progress_t *progress)
{
    constexpr int piece = 16384;
    const std::vector<int> edge_of = edges.edges_of_corners(mesh.num_corners());
    const int n = mesh.num_faces();
    fine->corners = big_vector<int>(12 * static_cast<std::size_t>(n));
    fine->uv = big_vector<flat_uv>(12 * static_cast<std::size_t>(n));
    fine->sources = big_vector<int>(4 * static_cast<std::size_t>(n));
    fine->offsets = big_vector<int>(4 * static_cast<std::size_t>(n) + 1);
    std::atomic<int> done = 0;
    return in_parallel((n + piece - 1) / piece,
                       [&](int i) {
                           const int begin = i * piece, end = std::min(begin + piece, n);
                           for (int face = begin; face < end; ++face)
                               divide_triangle(mesh, edge_of, face, fine);
                           done += end - begin;
                       },
                       [&] { return progress == nullptr || progress->step(done); });
}

// One step of Loop's scheme; false when the user cancelled (the mesh is then of no use).
bool loop_step(vesk_mesh_t *mesh, float factor, progress_t *progress)
{
    mesh_triangulate(mesh);
    const edge_table &edges = mesh->edge_list();
    const auto old = static_cast<int>(mesh->points.size());
    vesk_mesh_t fine;
    fine.points =
        big_vector<point3_t>(mesh->points.size() + static_cast<std::size_t>(edges.size()));
    move_vertices(*mesh, edges, factor, fine.points);
    in_parallel_ranges(edges.size(), [&](int begin, int end) {
        for (int e = begin; e < end; ++e)
            fine.points[old + e] = smooth_middle(*mesh, edges, e, factor);
    });
    if (!divide_triangles(*mesh, edges, &fine, progress))
        return false;
    *mesh = std::move(fine);
    return true;
}

// ---- Doo and Sabin ----

// Each corner's new vertex, for a face of n corners: weight (n + 5) / 4n of the corner itself and
// (3 + 2 cos(2 pi k / n)) / 4n of the one k further. By cos(a - b) = cos a cos b + sin a sin b the
// sums over k are three for all corners.
void shrink_face(const vesk_mesh_t &mesh, int face, vesk_mesh_t *fine)
{
    using values = std::array<double, 5>; // x, y, z, u, v
    const auto corners = mesh.face(face);
    const auto n = corners.size();
    const auto first = mesh.offsets[face];
    const double step = 2 * pi / static_cast<double>(n);
    const auto values_at = [&](std::size_t i) -> values {
        const point3_t &p = mesh.points[corners[i]];
        const flat_uv &uv = mesh.uv[first + i];
        return {p.x, p.y, p.z, uv.u, uv.v};
    };
    values sums = {}, by_cosine = {}, by_sine = {};
    for (std::size_t i = 0; i < n; ++i) {
        const double angle = step * static_cast<double>(i);
        const double cosine = std::cos(angle), sine = std::sin(angle);
        const values at = values_at(i);
        for (std::size_t d = 0; d < at.size(); ++d) {
            sums[d] += at[d];
            by_cosine[d] += cosine * at[d];
            by_sine[d] += sine * at[d];
        }
    }
    for (std::size_t i = 0; i < n; ++i) {
        const double angle = step * static_cast<double>(i);
        const double cosine = std::cos(angle), sine = std::sin(angle);
        values made = values_at(i);
        for (std::size_t d = 0; d < made.size(); ++d) {
            const double turned = cosine * by_cosine[d] + sine * by_sine[d];
            made[d] = made[d] / 4 + (3 * sums[d] + 2 * turned) / (4 * static_cast<double>(n));
        }
        fine->points.push_back({static_cast<float>(made[0]), static_cast<float>(made[1]),
                                static_cast<float>(made[2])});
        fine->add_corner(static_cast<int>(fine->points.size()) - 1,
                         {static_cast<float>(made[3]), static_cast<float>(made[4])});
    }
    fine->end_face(mesh.sources[face]);
}

// The walk from face to face about a vertex, by corners of the old mesh.
class corner_walk {
public:
    corner_walk(const vesk_mesh_t &mesh, const edge_table &edges)
        : mesh_(mesh), edges_(edges), edge_of_(edges.edges_of_corners(mesh.num_corners())),
          face_of_(mesh.corners.size())
    {
        for (int face = 0; face < mesh.num_faces(); ++face) {
            for (int c = mesh.offsets[face]; c < mesh.offsets[face + 1]; ++c)
                face_of_[c] = face;
        }
    }
    [[nodiscard]] int after(int corner) const
    {
        const int face = face_of_[corner];
        return corner + 1 < mesh_.offsets[face + 1] ? corner + 1 : mesh_.offsets[face];
    }
    [[nodiscard]] int before(int corner) const
    {
        const int face = face_of_[corner];
        return corner > mesh_.offsets[face] ? corner - 1 : mesh_.offsets[face + 1] - 1;
    }
    // True for an edge between two faces that agree about their front.
    [[nodiscard]] bool joins(int e) const
    {
        const auto uses = edges_.uses(e);
        return uses.size() == 2 && uses[0].forward != uses[1].forward &&
               uses[0].surface != uses[1].surface;
    }
    // The same vertex's corner in the face across the side that ends in this corner, or -1.
    [[nodiscard]] int next_about(int corner) const
    {
        const int side = before(corner);
        const int e = edge_of_[side];
        if (e < 0 || !joins(e))
            return -1;
        const auto uses = edges_.uses(e);
        return uses[0].corner == side ? uses[1].corner : uses[0].corner;
    }
    [[nodiscard]] int face_of(int corner) const { return face_of_[corner]; }

private:
    const vesk_mesh_t &mesh_;
    const edge_table &edges_;
    std::vector<int> edge_of_, face_of_;
};

// One step of Doo's and Sabin's scheme; false as above.
bool doosabin_step(vesk_mesh_t *mesh, progress_t *progress)
{
    const edge_table &edges = mesh->edge_list();
    const auto old = static_cast<int>(mesh->points.size());
    vesk_mesh_t fine;
    fine.points = mesh->points;
    // The new vertex of old corner c is old + c, its coordinates those of new corner c.
    for (int face = 0; face < mesh->num_faces(); ++face) {
        if (!step(progress, face))
            return false;
        shrink_face(*mesh, face, &fine);
    }
    const auto add = [&](int corner) { fine.add_corner(old + corner, fine.uv[corner]); };
    const corner_walk walk(*mesh, edges);
    for (int e = 0; e < edges.size(); ++e) {
        if (!walk.joins(e))
            continue;
        const int c = edges.uses(e)[0].corner, d = edges.uses(e)[1].corner;
        add(walk.after(c));
        add(c);
        add(walk.after(d));
        add(d);
        fine.end_face(mesh->sources[edges.uses(e)[0].surface]);
    }
    std::vector<bool> seen(mesh->corners.size());
    std::vector<int> ring;
    for (int start = 0; start < static_cast<int>(mesh->corners.size()); ++start) {
        ring.clear();
        int corner = start;
        while (corner >= 0 && !seen[corner]) {
            seen[corner] = true;
            ring.push_back(corner);
            corner = walk.next_about(corner);
        }
        if (corner != start || ring.size() < 3)
            continue; // an open fan has no polygon
        for (const int c : ring)
            add(c);
        fine.end_face(mesh->sources[walk.face_of(start)]);
    }
    *mesh = std::move(fine);
    return true;
}

} // namespace

void loop_subdivide(vesk_mesh_t *mesh, float factor) { loop_step(mesh, factor, nullptr); }

void doosabin_subdivide(vesk_mesh_t *mesh) { doosabin_step(mesh, nullptr); }

// ---- commands ----

namespace {

struct mesh_freer {
    void operator()(vesk_mesh_t *mesh) const { vesk_mesh_free(mesh); }
};
using mesh_ptr = std::unique_ptr<vesk_mesh_t, mesh_freer>;

// Computes a new mesh of every selected object, then writes them all back.
void subdivide_selected(const char *what,
                        const std::function<bool(vesk_mesh_t *, progress_t *)> &step)
{
    struct result_t {
        object_t *object;
        mesh_ptr mesh;
    };
    std::vector<object_t *> parts;
    double work = 0;
    for (object_t *top : selected_top_objects()) {
        for_each_object(top, [&](object_t *object) {
            if (object->surfaces == nullptr)
                return;
            parts.push_back(object);
            work += object->num_surfaces;
        });
    }
    if (parts.empty()) {
        display_message("%s - nothing selected", what);
        return;
    }
    display_message("%s...", what);
    progress_t progress(work);
    std::vector<result_t> results;
    int count = 0;
    for (object_t *object : parts) {
        mesh_ptr mesh(vesk_object_to_mesh(object));
        if (!step(mesh.get(), &progress)) {
            display_message("%s - cancelled", what);
            return;
        }
        count += mesh->num_faces();
        results.push_back({object, std::move(mesh)});
    }
    open_world_undo(what);
    {
        freed_batch at_once;
        for (result_t &result : results) {
            mesh_into_object(std::move(*result.mesh), result.object);
            result.mesh.reset();
        }
    }
    calc_normals_of(parts);
    finish_edit();
    display_message("%s - %d surfaces", what, count);
}

} // namespace

void surface_loop_subdivision(float factor)
{
    const float blend = std::clamp(factor, 0.0f, 1.0f);
    subdivide_selected("loop subdivision", [blend](vesk_mesh_t *mesh, progress_t *progress) {
        return loop_step(mesh, blend, progress);
    });
}

void command_surface_doosabin() { subdivide_selected("doo-sabin subdivision", doosabin_step); }
