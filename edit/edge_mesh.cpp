#include "edit/edge_mesh.h"

#include "base/big_vector.h"
#include "base/prefs.h"
#include "base/session_state.h"
#include "edit/edge_mesh_internal.h"
#include "edit/mesh/kept_colours.h"
#include "edit/triangulate.h"
#include "model/alloc.h"
#include "model/change_marks_internal.h"
#include "model/deferred_records.h"
#include "model/each.h"
#include "model/flat_array.h"
#include "model/freed_internal.h"
#include "model/object_internal.h"
#include "model/record_maker.h"
#include "model/vector.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace {

// ---- triangles ----

class triangle_cutter {
public:
    triangle_cutter(const vesk_mesh_t &from, vesk_mesh_t *to) : from_(from), to_(to) {}

    void cut(int face)
    {
        face_ = face;
        first_ = from_.offsets[face];
        const auto n = from_.face(face).size();
        if (n == 3) {
            add(0, 1, 2);
        } else if (n == 4) {
            cut_quad();
        } else if (n > 4) {
            find_normal();
            if (is_convex())
                fan();
            else
                tessellate();
        }
    }

private:
    [[nodiscard]] const point3_t &at(std::size_t i) const
    {
        return from_.points[from_.corners[first_ + i]];
    }

    void add(std::size_t a, std::size_t b, std::size_t c)
    {
        for (const std::size_t i : {a, b, c}) {
            const std::size_t corner = first_ + i;
            to_->add_corner(from_.corners[corner], from_.uv[corner]);
        }
        to_->end_face(from_.sources[face_]);
    }

    void fan()
    {
        for (std::size_t i = 1; i + 1 < from_.face(face_).size(); ++i)
            add(0, i, i + 1);
    }

    // A diagonal lies inside when both triangles turn the same way.
    [[nodiscard]] bool diagonal_fits(std::size_t a) const
    {
        const point3_t along = point_sub(at((a + 2) % 4), at(a));
        const point3_t one = point_cross(point_sub(at(a + 1), at(a)), along);
        const point3_t two = point_cross(along, point_sub(at((a + 3) % 4), at(a)));
        return point_dot(one, two) > 0;
    }

    void cut_quad()
    {
        const bool first = diagonal_fits(0), second = diagonal_fits(1);
        const bool shorter =
            point_length(point_sub(at(2), at(0))) <= point_length(point_sub(at(3), at(1)));
        if (first == second ? shorter : first) {
            add(0, 1, 2);
            add(0, 2, 3);
        } else {
            add(1, 2, 3);
            add(1, 3, 0);
        }
    }

    void find_normal()
    {
        normal_ = {};
        for (std::size_t i = 1; i + 1 < from_.face(face_).size(); ++i) {
            const point3_t turn = point_cross(point_sub(at(i), at(0)), point_sub(at(i + 1), at(0)));
            normal_ = point_add(normal_, turn);
        }
    }

    // Every corner turns left, and once round in all.
    [[nodiscard]] bool is_convex() const
    {
        const std::size_t n = from_.face(face_).size();
        double round = 0;
        for (std::size_t i = 0; i < n; ++i) {
            const point3_t in = point_sub(at((i + 1) % n), at(i));
            const point3_t out = point_sub(at((i + 2) % n), at((i + 1) % n));
            const double turn = point_dot(point_cross(in, out), normal_);
            if (turn < 0)
                return false;
            round += std::atan2(turn / std::max(point_length(normal_), 1e-30), point_dot(in, out));
        }
        return round < 7; // 2 pi, not 4 pi
    }

    // By a surface of its own for as long as this takes.
    void tessellate()
    {
        const std::size_t n = from_.face(face_).size();
        surface_t *surface = new_surface();
        std::vector<vertex *> points;
        for (std::size_t i = 0; i < n; ++i) {
            points.push_back(new_vertex_set(at(i).x, at(i).y, at(i).z));
            set_vertex_number(points.back(), static_cast<std::uint32_t>(i));
            surface_add_vertex(surface, points.back(), 0, 0);
        }
        listitem *triangles = surface_get_triangulations(surface);
        if (triangles == nullptr)
            fan();
        for (surface_t *triangle : each<surface_t>(triangles)) {
            std::array<std::size_t, 3> corners = {};
            std::size_t i = 0;
            for (const svertex *corner : each<svertex>(triangle->refs))
                corners[i++ % 3] = vertex_number(corner->vertex);
            add(corners[0], corners[1], corners[2]);
            surface_free_record(triangle);
        }
        list_free(&triangles);
        surface_free_record(surface);
        for (vertex *point : points)
            vertex_free_record(point);
    }

    const vesk_mesh_t &from_;
    vesk_mesh_t *to_;
    int face_ = 0, first_ = 0;
    point3_t normal_ = {};
};

} // namespace

const edge_table &vesk_mesh::edge_list()
{
    if (!edges)
        edges = std::make_unique<edge_table>(static_cast<int>(points.size()), offsets, corners);
    return *edges;
}

void mesh_triangulate(vesk_mesh_t *mesh)
{
    const bool done =
        std::all_of(mesh->offsets.begin() + 1, mesh->offsets.end(), [before = 0](int end) mutable {
            return end - std::exchange(before, end) == 3;
        });
    if (done)
        return;
    vesk_mesh_t cut;
    const std::size_t triangles = mesh->corners.size() - 2 * mesh->sources.size();
    cut.corners.reserve(3 * triangles);
    cut.uv.reserve(3 * triangles);
    cut.sources.reserve(triangles);
    cut.offsets.reserve(triangles + 1);
    triangle_cutter cutter(*mesh, &cut);
    for (int face = 0; face < mesh->num_faces(); ++face)
        cutter.cut(face);
    cut.points = std::move(mesh->points);
    *mesh = std::move(cut);
}

vesk_mesh_t *vesk_object_to_mesh(object_t *object)
{
    auto mesh = std::make_unique<vesk_mesh_t>();
    const flat_ptr flat = object_flat(object);
    mesh->points = *flat->positions;
    mesh->corners.reserve(flat->num_corners());
    mesh->uv.reserve(flat->num_corners());
    mesh->sources.reserve(flat->num_surfaces());
    mesh->offsets.reserve(flat->num_surfaces() + 1);
    for (int s = 0; s < flat->num_surfaces(); ++s) {
        const auto corners = flat->surface_corners(s);
        if (flat->surface(s).is_line() || corners.size() < 3)
            continue;
        auto corner = flat->first_corner(s);
        for (const int v : corners)
            mesh->add_corner(v, flat->uv(corner++));
        mesh->end_face(s);
    }
    return mesh.release();
}

void vesk_mesh_free(vesk_mesh_t *mesh) { std::unique_ptr<vesk_mesh_t>(mesh).reset(); }

namespace {

// Writes a mesh into the object that it was made of, record by record: a mesh_change would keep
// everything a second time, which for millions of triangles costs as much as the records.
class mesh_commit {
public:
    mesh_commit(const vesk_mesh_t &mesh, object_t *object)
        : mesh_(mesh), object_(object), before_(object_flat(object)),
          points_(*before_->vertex_records)
    {
    }

    void run()
    {
        session().committing = true;
        move_vertices();
        add_vertices();
        const record_chain made =
            make_surfaces(); // before the old ones, whose properties they take, are freed
        find_unused();
        freed_batch batch;
        drop_polygons(batch);
        drop_unused(batch);
        list_append_chain(&object_->surfaces, &object_->num_surfaces, made);
        object_mark(object_, CHANGED_TOPOLOGY);
        session().committing = false;
    }

    // Makes the arrays of the mesh, which is `mesh_`, the object's flat mesh; not where the object has
    // lines, or lost vertices.
    void hand_over(vesk_mesh_t &&mesh)
    {
        if (object_->num_surfaces != mesh.num_faces() || points_.size() != mesh.points.size() ||
            object_->num_vertices != static_cast<int>(points_.size()))
            return;
        const std::shared_ptr<flat_mesh> flat = flat_of(std::move(mesh));
        flat->vertex_records = flat_shared(std::move(points_));
        flat->surface_records = flat_shared(std::move(surfaces_));
        flat->whole = true;
        state_set_flat(object_, flat, CHANGED_NORMALS);
    }

    // Makes the mesh, which is `mesh_`, all that the object has, without writing records, where it is large
    // and takes the place of everything: all vertices are anew, and none is held from outside.
    bool defer(vesk_mesh_t &&mesh)
    {
        if (!records_can_be_renewed(static_cast<int>(mesh.points.size()), mesh.num_faces()) ||
            mesh.points.size() < points_.size() || freed_elements_are_held())
            return false;
        find_unused();
        const bool are_computed = prefs.recalc_normals != 0; // by the caller, from the flat mesh
        const bool loses = std::find(use_.begin(), use_.end(), LOST) != use_.end();
        const auto is_line = [](const flat_surface &surface) { return surface.is_line(); };
        if ((loses && !are_computed) ||
            std::any_of(before_->surfaces->begin(), before_->surfaces->end(), is_line))
            return false;
        if (loses)
            close_up(mesh);
        auto normals = are_computed ? nullptr : normals_as_made();
        auto face_normals = are_computed ? nullptr : face_normals_as_made();
        const std::shared_ptr<flat_mesh> flat = flat_of(std::move(mesh));
        flat->normals = std::move(normals);
        flat->face_normals = std::move(face_normals);
        object_set_whole(object_, flat);
        return true;
    }

private:
    // Without normals and records.
    [[nodiscard]] std::shared_ptr<flat_mesh> flat_of(vesk_mesh_t &&mesh) const
    {
        auto surfaces = big_vector<flat_surface>(mesh.num_faces());
        in_parallel_ranges(mesh.num_faces(), [&](int begin, int end) {
            const surface_t plain = plain_surface();
            for (int face = begin; face < end; ++face) {
                const int source = mesh.sources[face];
                surfaces[face] = source >= 0 ? before_->surface(source) : flat_attributes(plain);
            }
        });
        auto flat = std::make_shared<flat_mesh>();
        flat->positions = flat_shared(std::move(mesh.points));
        flat->surfaces = flat_shared(std::move(surfaces));
        flat->corner_offsets = flat_shared(std::move(mesh.offsets));
        flat->corners = flat_shared(std::move(mesh.corners));
        flat->texture_coords = flat_shared(std::move(mesh.uv));
        return flat;
    }

    // Without the vertices that are lost.
    void close_up(vesk_mesh_t &mesh) const
    {
        std::vector<int> places(mesh.points.size());
        int kept = 0;
        for (std::size_t v = 0; v < places.size(); ++v) {
            places[v] = kept;
            mesh.points[kept] = mesh.points[v];
            kept += v < use_.size() && use_[v] == LOST ? 0 : 1;
        }
        mesh.points.resize(kept);
        for (int &v : mesh.corners)
            v = places[v];
    }

    // Of vertices and surfaces before anything computes them.
    [[nodiscard]] flat_array<point3_t> normals_as_made() const
    {
        const auto known = static_cast<int>(points_.size());
        auto normals = big_vector<point3_t>(mesh_.points.size());
        in_parallel_ranges(static_cast<int>(normals.size()), [&](int begin, int end) {
            const point3_t plain = plain_vertex({0, 0, 0}).normal;
            for (int v = begin; v < end; ++v)
                normals[v] = v < known ? before_->normal(v) : plain;
        });
        return flat_shared(std::move(normals));
    }
    [[nodiscard]] flat_array<point3_t> face_normals_as_made() const
    {
        auto normals = big_vector<point3_t>(mesh_.num_faces());
        in_parallel_ranges(mesh_.num_faces(), [&](int begin, int end) {
            const point3_t plain = plain_surface().normal;
            for (int face = begin; face < end; ++face) {
                const int source = mesh_.sources[face];
                normals[face] = source >= 0 ? before_->face_normal(source) : plain;
            }
        });
        return flat_shared(std::move(normals));
    }

    enum use_t : char { UNTOUCHED, LOST, KEPT };

    void move_vertices()
    {
        const std::size_t n = std::min(points_.size(), mesh_.points.size());
        for (std::size_t v = 0; v < n; ++v) {
            points_[v]->position = mesh_.points[v];
            set_vertex_number(points_[v], static_cast<std::uint32_t>(v));
        }
    }

    void add_vertices()
    {
        const auto first = static_cast<int>(points_.size());
        const auto count = static_cast<int>(mesh_.points.size());
        if (count <= first)
            return;
        points_.resize(count);
        const record_chain made = make_records(count - first, [&](int i, record_maker &maker) {
            vertex *point = maker.make(plain_vertex(mesh_.points[first + i]));
            set_vertex_number(point, static_cast<std::uint32_t>(first + i));
            return points_[first + i] = point;
        });
        list_append_chain(&object_->vertices, &object_->num_vertices, made);
    }

    [[nodiscard]] record_chain make_surfaces()
    {
        const surface_t plain = plain_surface();
        surfaces_ = big_vector<surface_t *>(mesh_.num_faces());
        return make_records(mesh_.num_faces(), [&](int face, record_maker &maker) {
            const int source = mesh_.sources[face];
            surface_t *surface = maker.make(source >= 0 ? *before_->surface_record(source) : plain);
            auto corner = mesh_.offsets[face];
            listitem *last = nullptr;
            for (const int v : mesh_.face(face)) {
                const flat_uv &uv = mesh_.uv[corner++];
                last = maker.add_corner(surface, last, {points_[v], uv.u, uv.v});
            }
            surfaces_[face] = surface;
            return surface;
        });
    }

    // Vertices that polygons had and nothing has any more.
    void find_unused()
    {
        use_.resize(before_->num_vertices(), UNTOUCHED);
        for (int s = 0; s < before_->num_surfaces(); ++s) {
            const bool goes = !before_->surface(s).is_line();
            for (const int v : before_->surface_corners(s)) {
                if (use_[v] != KEPT)
                    use_[v] = goes ? LOST : KEPT;
            }
        }
        for (const int v : mesh_.corners) {
            if (v < before_->num_vertices())
                use_[v] = KEPT;
        }
    }

    void drop_polygons(freed_batch &batch)
    {
        const std::vector<flat_surface> &surfaces = *before_->surfaces;
        object_->num_surfaces -= list_unlink_if<surface_t>(
            &object_->surfaces, batch, [&](const surface_t * /*surface*/, std::size_t i) {
                return i < surfaces.size() && !surfaces[i].is_line();
            });
    }

    void drop_unused(freed_batch &batch)
    {
        object_->num_vertices -= list_unlink_if<vertex>(
            &object_->vertices, batch, [&](const vertex * /*point*/, std::size_t i) {
                return i < use_.size() && use_[i] == LOST;
            });
    }

    const vesk_mesh_t &mesh_;
    object_t *object_;
    flat_ptr before_;
    std::vector<vertex *> points_;
    std::vector<surface_t *> surfaces_; // those of the faces
    std::vector<use_t> use_;
};

} // namespace

void vesk_mesh_to_object(const vesk_mesh_t *mesh, object_t *object)
{
    const kept_colours colours(object);
    mesh_commit(*mesh, object).run();
    colours.give_back();
}

void mesh_into_object(vesk_mesh_t &&mesh, object_t *object)
{
    const kept_colours colours(object);
    mesh_commit commit(mesh, object);
    if (!commit.defer(std::move(mesh))) {
        commit.run();
        commit.hand_over(std::move(mesh));
    }
    colours.give_back();
}

int vesk_mesh_add_vertices(vesk_mesh_t *mesh, const float *xyz, int n)
{
    const auto first = static_cast<int>(mesh->points.size());
    for (int i = 0; i < n; ++i, xyz += 3)
        mesh->points.push_back({xyz[0], xyz[1], xyz[2]});
    mesh->edges.reset();
    return first;
}

int vesk_mesh_add_face(vesk_mesh_t *mesh, const int *vertices, int n, const float *uv, int like)
{
    const auto known = static_cast<int>(mesh->points.size());
    if (n < 3 || like >= mesh->num_faces() ||
        std::any_of(vertices, vertices + n, [&](int v) { return v < 0 || v >= known; }))
        return -1;
    for (int i = 0; i < n; ++i) {
        mesh->add_corner(vertices[i],
                         uv == nullptr ? flat_uv{0, 0} : flat_uv{uv[2 * i], uv[2 * i + 1]});
    }
    mesh->end_face(like < 0 ? -1 : mesh->sources[like]);
    mesh->edges.reset();
    return mesh->num_faces() - 1;
}

int vesk_mesh_num_vertices(const vesk_mesh_t *mesh)
{
    return static_cast<int>(mesh->points.size());
}

int vesk_mesh_num_faces(const vesk_mesh_t *mesh) { return mesh->num_faces(); }

int vesk_mesh_num_edges(vesk_mesh_t *mesh) { return mesh->edge_list().size(); }

const float *vesk_mesh_positions(const vesk_mesh_t *mesh)
{
    static_assert(sizeof(point3_t) == 3 * sizeof(float));
    return mesh->points.empty() ? nullptr : &mesh->points[0].x;
}

const int *vesk_mesh_face(const vesk_mesh_t *mesh, int face, int *n)
{
    const std::span<const int> corners =
        face >= 0 && face < mesh->num_faces() ? mesh->face(face) : std::span<const int>();
    *n = static_cast<int>(corners.size());
    return corners.data();
}

int vesk_mesh_edge(vesk_mesh_t *mesh, int edge, int out_vertices[2], int out_faces[2])
{
    const edge_table &edges = mesh->edge_list();
    if (edge < 0 || edge >= edges.size())
        return 0;
    const auto uses = edges.uses(edge);
    out_vertices[0] = edges.edge(edge).a;
    out_vertices[1] = edges.edge(edge).b;
    for (std::size_t i = 0; i < 2; ++i)
        out_faces[i] = i < uses.size() ? uses[i].surface : -1;
    return static_cast<int>(uses.size());
}
