#include "edit/catmull_clark.h"

#include "base/big_vector.h"
#include "base/messages.h"
#include "base/numbers.h"
#include "base/worker.h"
#include "edit/document/edit_support.h"
#include "edit/edge_mesh_internal.h"
#include "edit/edge_select.h"
#include "model/angle.h"
#include "model/freed.h"
#include "model/vec3d.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <numeric>

namespace {

constexpr int most_steps = 8;
constexpr double most_surfaces = 16e6;

// All polygons of one object; those that are not active only follow.
struct smooth_mesh {
    object_t *object;
    vesk_mesh_t mesh;
    std::vector<char> active;                     // of each face
    std::vector<std::array<int, 2>> creases = {}; // edges that are to stay sharp
};

// Which edges stay sharp beside borders.
struct crease_rule {
    double cosine = -2;    // those that are folded more: less than this between the normals
    bool selected = false; // the selected ones, of objects that are smoothed as wholes
};

smooth_mesh mesh_of(const owned_elements &owned)
{
    smooth_mesh result = {owned.object, {}, {}, {}};
    const flat_ptr flat = object_flat(owned.object);
    std::vector<char> chosen(flat->num_surfaces());
    for (const int surface : owned.indices)
        chosen[surface] = 1;
    vesk_mesh_t &mesh = result.mesh;
    mesh.points = *flat->positions;
    mesh.corners.reserve(flat->num_corners());
    mesh.uv.reserve(flat->num_corners());
    for (int s = 0; s < flat->num_surfaces(); ++s) {
        if (flat->surface(s).is_line())
            continue;
        for (int c = flat->first_corner(s); c < flat->end_corner(s); ++c)
            mesh.add_corner(flat->corner(c), flat->uv(c));
        mesh.end_face(s);
        result.active.push_back(chosen[s] != 0 && flat->surface_corners(s).size() >= 3 ? 1 : 0);
    }
    return result;
}

void add_creases(smooth_mesh &mesh, const edge_topology &topology, const std::vector<int> &edges)
{
    for (const int e : edges)
        mesh.creases.push_back({topology.edge(e).a, topology.edge(e).b});
}

std::vector<int> folded_edges(const edge_topology &topology, double cosine)
{
    std::vector<int> folded;
    for (int e = 0; e < topology.size(); ++e) {
        if (is_folded(topology, e, cosine))
            folded.push_back(e);
    }
    return folded;
}

std::vector<smooth_mesh> meshes_of_selection(const crease_rule &rule)
{
    std::vector<smooth_mesh> meshes;
    if (rule.selected) {
        for (const owned_edges &owned : selected_edges()) {
            std::vector<int> all(owned.topology->mesh().num_surfaces());
            std::iota(all.begin(), all.end(), 0);
            meshes.push_back(mesh_of({owned.object, std::move(all)}));
            add_creases(meshes.back(), *owned.topology, owned.edges);
        }
        return meshes;
    }
    for (const owned_elements &owned : target_surfaces()) {
        meshes.push_back(mesh_of(owned));
        if (rule.cosine >= -1) {
            const topology_ptr topology = object_topology(owned.object);
            add_creases(meshes.back(), *topology, folded_edges(*topology, rule.cosine));
        }
    }
    return meshes;
}

// Polygons that the steps start from, and quads that they end with.
double count_active(const smooth_mesh &mesh)
{
    return static_cast<double>(std::count(mesh.active.begin(), mesh.active.end(), 1));
}
double count_results(const smooth_mesh &mesh, int steps)
{
    double quads = 0;
    for (int face = 0; face < mesh.mesh.num_faces(); ++face)
        quads += mesh.active[face] != 0 ? static_cast<double>(mesh.mesh.face(face).size()) : 0;
    for (int i = 1; i < steps; ++i)
        quads *= 4;
    return quads;
}

// One step of one mesh: new points first, then the faces that use them.
class smooth_step {
public:
    smooth_step(const smooth_mesh &from, progress_t &progress, double &done)
        : from_(from), mesh_(from.mesh),
          edges_(static_cast<int>(mesh_.points.size()), mesh_.offsets, mesh_.corners),
          edge_of_(edges_.edges_of_corners(mesh_.num_corners())), progress_(progress), done_(done)
    {
    }

    // False when the user cancelled.
    bool run(smooth_mesh &to)
    {
        fine_ = &to.mesh;
        to.object = from_.object;
        is_crease_.assign(edges_.size(), 0);
        for (const auto &[a, b] : from_.creases) {
            if (const int e = edges_.find(a, b); e >= 0)
                is_crease_[e] = 1;
        }
        find_face_points();
        sort_edges(to.creases);
        fine_->points = big_vector<point3_t>(num_points_ + static_cast<int>(count_active(from_)));
        find_edge_points();
        move_vertices();
        return add_faces(to);
    }

private:
    // Sharp are borders and edges of more than two polygons.
    enum class edge_kind : char { outside, smooth, sharp, crease };

    [[nodiscard]] bool is_active(int face) const { return from_.active[face] != 0; }
    [[nodiscard]] vec3d point(int v) const { return to_vec3d(mesh_.points[v]); }

    void find_face_points()
    {
        face_points_.resize(mesh_.num_faces());
        in_parallel_ranges(mesh_.num_faces(), [this](int begin, int end) {
            for (int face = begin; face < end; ++face) {
                if (!is_active(face))
                    continue;
                vec3d sum;
                const auto corners = mesh_.face(face);
                for (const int v : corners)
                    sum += point(v);
                face_points_[face] = sum / static_cast<double>(corners.size());
            }
        });
    }

    [[nodiscard]] edge_kind kind_of(int e) const
    {
        const auto uses = edges_.uses(e);
        const auto active = std::count_if(
            uses.begin(), uses.end(), [&](const edge_use &use) { return is_active(use.surface); });
        if (active == 0)
            return edge_kind::outside;
        if (uses.size() != 2 || active != 2 || uses[0].surface == uses[1].surface)
            return edge_kind::sharp;
        return is_crease_[e] != 0 ? edge_kind::crease : edge_kind::smooth;
    }

    // What each edge is, and the numbers of the vertices in the middle of those that are divided.
    void sort_edges(std::vector<std::array<int, 2>> &creases)
    {
        kinds_ = big_vector<edge_kind>(edges_.size());
        in_parallel_ranges(edges_.size(), [this](int begin, int end) {
            for (int e = begin; e < end; ++e)
                kinds_[e] = kind_of(e);
        });
        middle_ = big_vector<int>(edges_.size());
        num_points_ = static_cast<int>(mesh_.points.size());
        for (int e = 0; e < edges_.size(); ++e) {
            middle_[e] = kinds_[e] != edge_kind::outside ? num_points_++ : -1;
            if (kinds_[e] == edge_kind::crease) {
                creases.push_back({edges_.edge(e).a, middle_[e]});
                creases.push_back({middle_[e], edges_.edge(e).b});
            }
        }
    }

    void find_edge_points()
    {
        in_parallel_ranges(edges_.size(), [this](int begin, int end) {
            for (int e = begin; e < end; ++e) {
                if (kinds_[e] == edge_kind::outside)
                    continue;
                vec3d p = (point(edges_.edge(e).a) + point(edges_.edge(e).b)) / 2;
                if (kinds_[e] == edge_kind::smooth) {
                    const auto uses = edges_.uses(e);
                    p = p / 2 + (face_points_[uses[0].surface] + face_points_[uses[1].surface]) / 4;
                }
                fine_->points[middle_[e]] = to_point(p);
            }
        });
    }

    struct vertex_rule {
        vec3d faces, ends;        // sums of face points; of the other ends of edges
        vec3d sharp_ends;         // of sharp edges
        std::int32_t corners = 0; // active ones
        std::int32_t edges = 0, sharp = 0;
        std::int32_t creases = 0; // of the sharp ones
        bool held = false;        // by a face that only follows
    };
    void meet(vertex_rule &rule, int other, edge_kind kind) const
    {
        ++rule.edges;
        rule.ends += point(other);
        if (kind != edge_kind::smooth) {
            ++rule.sharp;
            rule.sharp_ends += point(other);
        }
        rule.creases += kind == edge_kind::crease ? 1 : 0;
    }

    // Each thread has vertices of its own, which meet all edges and faces in their order: the sums
    // depend on the order.
    void move_vertices()
    {
        in_two_parts(static_cast<int>(mesh_.points.size()), [this](int first, int end) {
            std::vector<vertex_rule> rules(end - first);
            const auto is_own = [&](int v) { return v >= first && v < end; };
            for (int e = 0; e < edges_.size(); ++e) {
                const auto [a, b, use] = edges_.edge(e);
                if (kinds_[e] == edge_kind::outside)
                    continue;
                if (is_own(a))
                    meet(rules[a - first], b, kinds_[e]);
                if (is_own(b))
                    meet(rules[b - first], a, kinds_[e]);
            }
            for (int face = 0; face < mesh_.num_faces(); ++face) {
                for (const int v : mesh_.face(face)) {
                    if (!is_own(v))
                        continue;
                    vertex_rule &rule = rules[v - first];
                    rule.held = rule.held || !is_active(face);
                    rule.faces += face_points_[face];
                    ++rule.corners;
                }
            }
            for (int v = first; v < end; ++v) {
                fine_->points[v] = mesh_.points[v];
                move_vertex(v, rules[v - first]);
            }
        });
    }

    void move_vertex(int v, const vertex_rule &rule)
    {
        if (rule.held || rule.edges == 0)
            return;
        const vec3d p = point(v);
        if (rule.sharp == 2) {
            fine_->points[v] = to_point(p * 0.75 + rule.sharp_ends / 8);
        } else if (rule.sharp == 0 || (rule.sharp == 1 && rule.creases == 1)) {
            // (F + 2R + (n - 3)P) / n, with 2R the mean of P and of the other ends
            const double n = rule.edges;
            const vec3d faces = rule.faces / rule.corners;
            fine_->points[v] = to_point((faces + rule.ends / n + p * (n - 2)) / n);
        }
    }

    // What the results of a face begin with in the fine mesh.
    struct place_t {
        int face, corner, point;
    };

    // Makes room for the results of all faces.
    std::vector<place_t> place_faces()
    {
        std::vector<place_t> places;
        places.reserve(mesh_.num_faces());
        place_t at = {0, 0, num_points_};
        for (int face = 0; face < mesh_.num_faces(); ++face) {
            places.push_back(at);
            const auto sides = static_cast<int>(mesh_.face(face).size());
            at.face += is_active(face) ? sides : 1;
            at.corner += is_active(face) ? 4 * sides : sides + num_divided(face);
            at.point += is_active(face) ? 1 : 0;
        }
        fine_->corners = big_vector<int>(at.corner);
        fine_->uv = big_vector<flat_uv>(at.corner);
        fine_->sources = big_vector<int>(at.face);
        fine_->offsets = big_vector<int>(static_cast<std::size_t>(at.face) + 1);
        return places;
    }

    bool add_faces(smooth_mesh &to)
    {
        constexpr int range = 16384;
        const std::vector<place_t> places = place_faces();
        to.active = big_vector<char>(fine_->sources.size());
        const int n = mesh_.num_faces();
        std::atomic<int> added = 0;
        const bool finished = in_parallel((n + range - 1) / range,
                                          [&](int piece) {
                                              const int begin = piece * range,
                                                        end = std::min(begin + range, n);
                                              for (int face = begin; face < end; ++face) {
                                                  if (is_active(face))
                                                      divide(face, places[face], to.active);
                                                  else
                                                      follow(face, places[face]);
                                              }
                                              added += end - begin;
                                          },
                                          [&] { return progress_.step(done_ + added); });
        done_ += n;
        return finished;
    }

    [[nodiscard]] flat_uv middle_uv(int corner, int next) const
    {
        const flat_uv &a = mesh_.uv[corner], &b = mesh_.uv[next];
        return {(a.u + b.u) / 2, (a.v + b.v) / 2};
    }
    // A side from a vertex to itself has no edge: its middle is the vertex.
    [[nodiscard]] int middle_of(int corner) const
    {
        return edge_of_[corner] < 0 ? mesh_.corners[corner] : middle_[edge_of_[corner]];
    }

    [[nodiscard]] bool is_divided(int corner) const
    {
        return edge_of_[corner] >= 0 && middle_[edge_of_[corner]] >= 0;
    }
    [[nodiscard]] int num_divided(int face) const
    {
        int n = 0;
        for (int c = mesh_.offsets[face]; c < mesh_.offsets[face + 1]; ++c)
            n += is_divided(c) ? 1 : 0;
        return n;
    }

    void set_corner(int &at, int v, const flat_uv &uv)
    {
        fine_->corners[at] = v;
        fine_->uv[at++] = uv;
    }
    // Ends a face of the fine mesh, whose corners end here.
    void set_face(int &at, int source, int end)
    {
        fine_->sources[at++] = source;
        fine_->offsets[at] = end;
    }

    void divide(int face, place_t to, std::vector<char> &active)
    {
        const int first = mesh_.offsets[face], end = mesh_.offsets[face + 1];
        fine_->points[to.point] = to_point(face_points_[face]);
        double u = 0, v = 0;
        for (int c = first; c < end; ++c) {
            u += static_cast<double>(mesh_.uv[c].u);
            v += static_cast<double>(mesh_.uv[c].v);
        }
        const flat_uv uv = {static_cast<float>(u / (end - first)),
                            static_cast<float>(v / (end - first))};
        for (int c = first, before = end - 1; c < end; before = c++) {
            set_corner(to.corner, mesh_.corners[c], mesh_.uv[c]);
            set_corner(to.corner, middle_of(c), middle_uv(c, c + 1 < end ? c + 1 : first));
            set_corner(to.corner, to.point, uv);
            set_corner(to.corner, middle_of(before), middle_uv(before, c));
            active[to.face] = 1;
            set_face(to.face, mesh_.sources[face], to.corner);
        }
    }

    void follow(int face, place_t to)
    {
        const int first = mesh_.offsets[face], end = mesh_.offsets[face + 1];
        for (int c = first; c < end; ++c) {
            set_corner(to.corner, mesh_.corners[c], mesh_.uv[c]);
            if (is_divided(c))
                set_corner(to.corner, middle_[edge_of_[c]],
                           middle_uv(c, c + 1 < end ? c + 1 : first));
        }
        set_face(to.face, mesh_.sources[face], to.corner);
    }

    const smooth_mesh &from_;
    const vesk_mesh_t &mesh_;
    edge_table edges_;
    std::vector<int> edge_of_;
    std::vector<char> is_crease_;
    progress_t &progress_;
    double &done_;
    vesk_mesh_t *fine_ = nullptr;
    std::vector<vec3d> face_points_;
    std::vector<edge_kind> kinds_; // of each edge
    std::vector<int> middle_;      // the vertex of each edge that is divided, or -1
    int num_points_ = 0;           // before those of the faces
};

// False when the user cancelled.
bool smooth_all(std::vector<smooth_mesh> &meshes, int steps)
{
    double work = 0, done = 0;
    for (const smooth_mesh &mesh : meshes) {
        work += mesh.mesh.num_faces() * static_cast<double>(steps) + count_results(mesh, steps) / 3;
    }
    progress_t progress(work);
    for (smooth_mesh &mesh : meshes) {
        for (int i = 0; i < steps; ++i) {
            smooth_mesh fine = {};
            if (!smooth_step(mesh, progress, done).run(fine))
                return false;
            mesh = std::move(fine);
        }
    }
    return true;
}

// Writes the meshes into their objects; returns the new surfaces.
owned_list commit(std::vector<smooth_mesh> &meshes, bool collect)
{
    owned_list made;
    freed_batch at_once;
    for (smooth_mesh &mesh : meshes) {
        mesh_into_object(std::move(mesh.mesh), mesh.object);
        mesh.mesh = {};
        if (!collect)
            continue;
        // The polygons stand behind the lines, in their order.
        const std::size_t lines = mesh.object->num_surfaces - mesh.active.size();
        std::size_t i = 0;
        for (surface_t *surface : each<surface_t>(mesh.object->surfaces)) {
            if (i >= lines && mesh.active[i - lines] != 0)
                made.add(surface);
            ++i;
        }
    }
    return made;
}

} // namespace

void object_catmull_clark(object_t *object, int steps)
{
    std::vector<int> all(object_flat(object)->num_surfaces());
    std::iota(all.begin(), all.end(), 0);
    std::vector<smooth_mesh> meshes;
    meshes.push_back(mesh_of({object, std::move(all)}));
    if (smooth_all(meshes, steps))
        commit(meshes, false);
}

// ---- commands ----

void command_catmull_clark(int count, const char *const *words)
{
    const int steps = int_of(words[0]);
    if (steps < 1 || steps > most_steps) {
        display_message("catmull-clark - give 1 to %d steps", most_steps);
        return;
    }
    crease_rule rule;
    rule.selected = count > 1 && std::strcmp(words[1], "selected") == 0;
    if (count > 1 && !rule.selected && finite_float_of(words[1]) < 180)
        rule.cosine = std::cos(static_cast<double>(radians(finite_float_of(words[1]))));
    std::vector<smooth_mesh> meshes = meshes_of_selection(rule);
    std::erase_if(meshes, [](const smooth_mesh &mesh) { return count_active(mesh) == 0; });
    double polygons = 0, results = 0;
    for (const smooth_mesh &mesh : meshes) {
        polygons += count_active(mesh);
        results += count_results(mesh, steps);
    }
    if (polygons == 0) {
        display_message("catmull-clark - nothing selected");
        return;
    }
    if (results > most_surfaces) {
        display_message("catmull-clark - %.0f surfaces would be too many", results);
        return;
    }
    display_message("catmull-clark...");
    if (!smooth_all(meshes, steps)) {
        display_message("catmull-clark - cancelled");
        return;
    }
    open_world_undo("catmull-clark");
    const bool by_surfaces = selection().num_objects == 0;
    if (by_surfaces)
        clear_selection(); // before: unselected elements need no search among those that are freed
    const owned_list made = commit(meshes, by_surfaces);
    std::vector<object_t *> touched;
    for (const smooth_mesh &mesh : meshes)
        touched.push_back(mesh.object);
    calc_normals_of(touched);
    if (by_surfaces)
        select_surfacelist(made.get());
    finish_edit();
    display_message("catmull-clark - %.0f surfaces", results);
}
