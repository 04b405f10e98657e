#include "draw/mesh_layout.h"

#include "model/ear_cut.h"
#include "model/outline_normal.h"
#include "model/vector.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

point3_t facing_of(const flat_mesh &flat, std::span<const std::int32_t> corners)
{
    return to_point(outline_normal(flat, corners));
}

} // namespace

bool polygon_is_convex(const flat_mesh &flat, std::span<const std::int32_t> corners)
{
    const size_t n = corners.size();
    if (n <= 3)
        return true;
    const point3_t facing = facing_of(flat, corners);
    const auto at = [&](size_t i) { return flat.position(corners[i % n]); };
    const double tolerance = 1e-5 * point_dot(facing, facing);
    for (size_t i = 0; i < n; ++i) {
        const point3_t turn =
            point_cross(point_sub(at(i + 1), at(i)), point_sub(at(i + 2), at(i + 1)));
        if (point_dot(turn, facing) < -tolerance)
            return false;
    }
    return true;
}

namespace {

// Groups in the order of their first surface.
class group_table {
public:
    explicit group_table(std::vector<layout_group_t> &groups) : groups_(groups) {}

    std::uint32_t find(const flat_surface &surface)
    {
        const bool smooth = surface.smooth != 0;
        const bool twosided = surface.twosided != 0;
        if (last_ < groups_.size() && matches(groups_[last_], surface.material, smooth, twosided))
            return last_;
        for (last_ = 0; last_ < groups_.size(); ++last_)
            if (matches(groups_[last_], surface.material, smooth, twosided))
                return last_;
        groups_.push_back({surface.material, smooth, twosided, 0, 0});
        return last_;
    }

private:
    static bool matches(const layout_group_t &group, std::int32_t material, bool smooth,
                        bool twosided)
    {
        return group.material == material && group.smooth == smooth && group.twosided == twosided;
    }

    std::vector<layout_group_t> &groups_;
    std::uint32_t last_ = 0;
};

// The layout while it is being made.
class builder {
public:
    builder(const flat_mesh &flat, const layout_options_t &options, mesh_layout_t &out)
        : flat_(flat), options_(options), out_(out),
          claimed_(static_cast<size_t>(flat.num_vertices()), 0)
    {
        out_.num_vertices = static_cast<std::uint32_t>(flat.num_vertices());
        out_.slot_face.assign(out_.num_vertices, -1);
        if (options_.texture_coords)
            out_.corner_of_slot.assign(out_.num_vertices, -1);
    }

    void run()
    {
        sort_into_groups();
        if (!options_.texture_coords)
            claim_for_smooth_surfaces();
        for (std::uint32_t group = 0; group < out_.groups.size(); ++group) {
            out_.groups[group].first = static_cast<std::uint32_t>(out_.triangles.size());
            for (const int surface : members_[group])
                add_polygon(surface);
            out_.groups[group].count =
                static_cast<std::uint32_t>(out_.triangles.size()) - out_.groups[group].first;
        }
        std::sort(out_.concave.begin(), out_.concave.end());
        std::sort(out_.odd_faces.begin(), out_.odd_faces.end());
        add_lines();
        out_.edges = unique_edges(flat_, nullptr);
    }

private:
    void sort_into_groups()
    {
        group_table table(out_.groups);
        for (int surface = 0; surface < flat_.num_surfaces(); ++surface) {
            if (flat_.surface(surface).is_line() || flat_.surface_corners(surface).size() < 3)
                continue;
            const std::uint32_t group = table.find(flat_.surface(surface));
            if (group == members_.size())
                members_.emplace_back();
            members_[group].push_back(surface);
        }
    }

    void claim_for_smooth_surfaces()
    {
        for (std::uint32_t group = 0; group < out_.groups.size(); ++group) {
            if (!out_.groups[group].smooth)
                continue;
            for (const int surface : members_[group])
                for (const std::int32_t vertex : flat_.surface_corners(surface))
                    claimed_[vertex] = 1;
        }
    }

    std::uint32_t new_slot(std::int32_t vertex, std::int32_t face, std::int32_t corner)
    {
        out_.extra_vertices.push_back(vertex);
        out_.slot_face.push_back(face);
        if (options_.texture_coords)
            out_.corner_of_slot.push_back(corner);
        return static_cast<std::uint32_t>(out_.num_slots()) - 1;
    }

    // A corner (its place in the outline) that carries the face's normal.
    size_t provoking_corner(int surface, std::span<const std::int32_t> corners)
    {
        for (size_t i = 0; i < corners.size(); ++i) {
            const auto vertex = static_cast<size_t>(corners[i]);
            if (claimed_[vertex] == 0) {
                claimed_[vertex] = 1;
                out_.slot_face[vertex] = surface;
                slots_[i] = static_cast<std::uint32_t>(vertex);
                return i;
            }
        }
        slots_[0] = new_slot(corners[0], surface, -1);
        return 0;
    }

    void add_polygon(int surface)
    {
        const std::span<const std::int32_t> corners = flat_.surface_corners(surface);
        const bool smooth = flat_.surface(surface).smooth != 0;
        const bool ears = options_.cut_concave && !polygon_is_convex(flat_, corners);
        if (ears)
            out_.concave.push_back(surface);
        if (!smooth && corners.size() > 3)
            note_odd_normal(surface, corners);
        slots_.assign(corners.begin(), corners.end());
        if (options_.texture_coords) {
            const std::int32_t first = flat_.first_corner(surface);
            for (size_t i = 0; i < corners.size(); ++i)
                slots_[i] = new_slot(corners[i], smooth ? -1 : surface,
                                     first + static_cast<std::int32_t>(i));
        } else if (!smooth && ears) {
            for (size_t i = 0; i < corners.size(); ++i)
                slots_[i] = new_slot(corners[i], surface, -1);
        }
        if (ears) {
            for (const int corner : surface_ears(flat_, surface))
                out_.triangles.push_back(slots_[corner]);
            return;
        }
        const bool own_normals = options_.texture_coords || smooth;
        add_fan(own_normals ? fan_start(corners) : provoking_corner(surface, corners));
    }

    // Where a fan starts when any corner will do.
    size_t fan_start(std::span<const std::int32_t> corners) const
    {
        if (!options_.quads_by_diagonal || corners.size() != 4)
            return 0;
        const double first =
            point_length(point_sub(flat_.position(corners[0]), flat_.position(corners[2])));
        const double second =
            point_length(point_sub(flat_.position(corners[1]), flat_.position(corners[3])));
        return second < first ? 1 : 0;
    }

    // Triangles (next, next but one, start): the start is the corner that flat shading reads.
    void add_fan(size_t start)
    {
        const size_t n = slots_.size();
        for (size_t i = 1; i + 1 < n; ++i) {
            out_.triangles.push_back(slots_[(start + i) % n]);
            out_.triangles.push_back(slots_[(start + i + 1) % n]);
            out_.triangles.push_back(slots_[start]);
        }
    }

    // The stored normal comes from the first three corners, which may turn against the outline or
    // lie on one line.
    void note_odd_normal(int surface, std::span<const std::int32_t> corners)
    {
        const point3_t &stored = flat_.face_normal(surface);
        if (point_dot(stored, facing_of(flat_, corners)) <= 0)
            out_.odd_faces.push_back(surface);
    }

    void add_lines()
    {
        std::vector<std::vector<int>> members;
        group_table table(out_.line_groups);
        for (int surface = 0; surface < flat_.num_surfaces(); ++surface) {
            if (!flat_.surface(surface).is_line())
                continue;
            const std::uint32_t group = table.find(flat_.surface(surface));
            if (group == members.size())
                members.emplace_back();
            members[group].push_back(surface);
        }
        for (size_t group = 0; group < members.size(); ++group) {
            out_.line_groups[group].first = static_cast<std::uint32_t>(out_.lines.size());
            for (const int surface : members[group])
                add_line(surface);
            out_.line_groups[group].count =
                static_cast<std::uint32_t>(out_.lines.size()) - out_.line_groups[group].first;
        }
    }

    void add_line(int surface)
    {
        const std::span<const std::int32_t> corners = flat_.surface_corners(surface);
        const auto segment = [&](size_t from, size_t to) {
            out_.lines.push_back(static_cast<std::uint32_t>(corners[from]));
            out_.lines.push_back(static_cast<std::uint32_t>(corners[to]));
        };
        for (size_t i = 0; i + 1 < corners.size(); ++i)
            segment(i, i + 1);
        if (flat_.surface(surface).type == SURFACE_CLOSED_LINE && corners.size() > 2)
            segment(corners.size() - 1, 0);
    }

    const flat_mesh &flat_;
    const layout_options_t &options_;
    mesh_layout_t &out_;
    std::vector<std::vector<int>> members_; // surfaces of each group
    std::vector<std::uint8_t> claimed_; // vertices whose own slot carries a normal that is needed
    std::vector<std::uint32_t> slots_;  // of the corners of the polygon in hand
};

std::int16_t packed(float component)
{
    const float scaled = component * 32767.0f;
    return scaled >= -32767.0f && scaled <= 32767.0f ? static_cast<std::int16_t>(scaled)
           : scaled > 0                              ? std::int16_t{32767}
                                                     : std::int16_t{-32767};
}

} // namespace

mesh_layout_t layout_mesh(const flat_mesh &flat, const layout_options_t &options)
{
    mesh_layout_t layout;
    builder(flat, options, layout).run();
    return layout;
}

void layout_positions(const mesh_layout_t &layout, const flat_mesh &flat, const slot_run_t &run,
                      float *out)
{
    static_assert(sizeof(point3_t) == 3 * sizeof(float));
    auto *points = reinterpret_cast<point3_t *>(out);
    const std::size_t end = run.first + run.count;
    const std::size_t end_own = std::min<std::size_t>(end, layout.num_vertices);
    if (run.first < end_own)
        points =
            std::copy(flat.positions->data() + run.first, flat.positions->data() + end_own, points);
    for (std::size_t slot = std::max(run.first, end_own); slot < end; ++slot)
        *points++ = flat.position(layout.vertex_of(slot));
}

void layout_normals(const mesh_layout_t &layout, const flat_mesh &flat, const slot_run_t &run,
                    std::int16_t *out)
{
    std::int32_t odd_face = -1; // the last one
    point3_t odd_normal = {};
    for (std::size_t slot = run.first; slot < run.first + run.count; ++slot) {
        const std::int32_t face = layout.slot_face[slot];
        point3_t normal = face >= 0 ? flat.face_normal(face) : flat.normal(layout.vertex_of(slot));
        if (face >= 0 &&
            std::binary_search(layout.odd_faces.begin(), layout.odd_faces.end(), face)) {
            if (face != odd_face) {
                odd_face = face;
                odd_normal = facing_of(flat, flat.surface_corners(face));
                const double length = point_length(odd_normal);
                if (length > 0)
                    odd_normal = point_scale(odd_normal, static_cast<float>(1.0 / length));
            }
            normal = odd_normal;
        }
        *out++ = packed(normal.x);
        *out++ = packed(normal.y);
        *out++ = packed(normal.z);
        *out++ = 0;
    }
}

void layout_texture_coords(const mesh_layout_t &layout, const flat_mesh &flat,
                           const slot_run_t &run, float *out)
{
    for (std::size_t slot = run.first; slot < run.first + run.count; ++slot) {
        const std::int32_t corner = layout.corner_of_slot[slot];
        const flat_uv at = corner >= 0 ? flat.uv(corner) : flat_uv{0, 0};
        *out++ = at.u;
        *out++ = at.v;
    }
}

// By buckets of the lower vertex, without hashing.
std::vector<std::uint32_t> unique_edges(const flat_mesh &flat, const std::vector<int> *surfaces)
{
    const auto num_vertices = static_cast<size_t>(flat.num_vertices());
    std::vector<std::uint32_t> starts(num_vertices + 1, 0);
    const auto for_each_edge = [&](auto &&visit) {
        const auto one = [&](int surface) {
            if (flat.surface(surface).is_line())
                return;
            const std::span<const std::int32_t> corners = flat.surface_corners(surface);
            const size_t n = corners.size();
            for (size_t i = 0; n >= 2 && i < n; ++i) {
                const auto a = static_cast<std::uint32_t>(corners[i]);
                const auto b = static_cast<std::uint32_t>(corners[i + 1 == n ? 0 : i + 1]);
                if (a != b)
                    visit(std::min(a, b), std::max(a, b));
            }
        };
        if (surfaces == nullptr)
            for (int surface = 0; surface < flat.num_surfaces(); ++surface)
                one(surface);
        else
            for (const int surface : *surfaces)
                one(surface);
    };
    for_each_edge([&](std::uint32_t low, std::uint32_t) { ++starts[low + 1]; });
    std::partial_sum(starts.begin(), starts.end(), starts.begin());
    std::vector<std::uint32_t> bucket(starts[num_vertices]);
    std::vector<std::uint32_t> next(starts.begin(), starts.end() - 1);
    for_each_edge([&](std::uint32_t low, std::uint32_t high) { bucket[next[low]++] = high; });
    std::vector<std::uint32_t> edges;
    edges.reserve(bucket.size());
    for (size_t low = 0; low < num_vertices; ++low) {
        const auto begin = bucket.begin() + starts[low];
        const auto end = bucket.begin() + starts[low + 1];
        std::sort(begin, end);
        std::for_each(begin, std::unique(begin, end), [&](std::uint32_t high) {
            edges.push_back(static_cast<std::uint32_t>(low));
            edges.push_back(high);
        });
    }
    return edges;
}
