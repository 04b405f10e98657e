#include "edit/mesh/plane_cut.h"

#include "edit/mesh/planar_sides.h"
#include "edit/mesh/position_index.h"
#include "model/vec3d.h"
#include "model/vector.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <unordered_map>
#include <utility>

namespace {

struct corner_t {
    int point; // of the exact points
    flat_uv uv;
    int side; // 1 in front, 0 on the plane, -1 behind
};
using ring_t = std::vector<corner_t>;

std::uint64_t edge_key(int a, int b)
{
    const auto [low, high] = std::minmax(a, b);
    return (static_cast<std::uint64_t>(low) << 32) | static_cast<std::uint32_t>(high);
}

float mixed(float from, float to, double share)
{
    return static_cast<float>(from + (static_cast<double>(to) - from) * share);
}

vec3d newell_normal(const exact_points &points, const ring_t &ring)
{
    vec3d normal;
    const auto at = [&](std::size_t i) {
        const auto &p = points.at(ring[i].point), &base = points.at(ring[0].point);
        return vec3d{p[0] - base[0], p[1] - base[1], p[2] - base[2]};
    };
    for (std::size_t i = 1; i + 1 < ring.size(); ++i)
        normal += cross(at(i), at(i + 1));
    return normal;
}

} // namespace

class plane_cut::work_t {
public:
    work_t(mesh_change &change, std::span<const int> surfaces, const plane_cut_t &how);
    bool apply(progress_t &progress, double &done);

    mesh_change &change;
    const flat_mesh &mesh;
    std::span<const int> surfaces;
    plane_cut_t how;
    int num_cut = 0, num_gone = 0;
    bool any_front = false, any_back = false;
    std::vector<int> kept;

private:
    static std::vector<point3_t> input_points(const flat_mesh &mesh, const point3_t &at);
    void find_sides();
    void make_points();
    [[nodiscard]] double share_of(int made, int a, int b) const;
    int place_of(int point, int like);
    template <class Visit>
    void for_each_crossing(int surface, Visit &&visit) const;

    ring_t ring_of(int surface);
    void cut_polygon(int surface);
    void cut_line(int surface);
    void keep_whole(int surface, int side, const ring_t &ring);
    void order_along_cut(const ring_t &ring);
    void pieces(const ring_t &ring, int side, int surface);
    void emit(const ring_t &piece, int surface, bool is_line = false);
    void note_border(const ring_t &loop, int surface);
    void insert_into_neighbours();
    void make_caps();

    exact_points points_;
    std::optional<exact_plane> plane_;
    std::vector<signed char> sides_;                 // of the vertices
    std::unordered_map<std::uint64_t, int> crossed_; // edges and their made points
    std::unordered_map<int, int> places_;            // of made points
    position_index at_place_{0};                     // those that rounding brings together are one
    // of the polygon in hand: the places in its ring on the plane, in order along the cut, and the
    // rank of each; places at one point have one rank
    std::vector<int> on_plane_, rank_, first_of_rank_;
    // sides of kept pieces that lie on the plane
    struct border_t {
        int surface;
        int count;
    };
    std::unordered_map<std::uint64_t, border_t> border_; // by "from, to"
    std::vector<std::uint64_t> border_order_;
    std::unordered_map<int, flat_uv> border_uvs_;
};

std::vector<point3_t> plane_cut::work_t::input_points(const flat_mesh &mesh, const point3_t &at)
{
    std::vector<point3_t> points = *mesh.positions;
    points.push_back(at);
    return points;
}

plane_cut::work_t::work_t(mesh_change &the_change, std::span<const int> the_surfaces,
                          const plane_cut_t &the_way)
    : change(the_change), mesh(the_change.before()), surfaces(the_surfaces), how(the_way),
      points_(input_points(mesh, how.at))
{
    plane_ = points_.plane_given(mesh.num_vertices(), how.normal);
    find_sides();
    make_points();
}

void plane_cut::work_t::find_sides()
{
    constexpr signed char unknown = 2;
    sides_.assign(mesh.num_vertices(), unknown);
    for (const int s : surfaces) {
        for (const int v : mesh.surface_corners(s)) {
            if (sides_[v] != unknown)
                continue;
            sides_[v] = static_cast<signed char>(points_.side(*plane_, v));
            any_front = any_front || sides_[v] > 0;
            any_back = any_back || sides_[v] < 0;
        }
    }
}

// Calls visit(corner, a, b) for the edges of the surface whose ends the plane parts.
template <class Visit>
void plane_cut::work_t::for_each_crossing(int surface, Visit &&visit) const
{
    const auto corners = mesh.surface_corners(surface);
    const std::size_t n = corners.size();
    const std::size_t edges = mesh.surface(surface).type == SURFACE_LINE && n > 0 ? n - 1 : n;
    for (std::size_t i = 0; i < edges; ++i) {
        const int a = corners[i], b = corners[i + 1 < n ? i + 1 : 0];
        if (sides_[a] * sides_[b] == -1)
            visit(mesh.first_corner(surface) + static_cast<int>(i), a, b);
    }
}

// Makes the new points. Where one would be rounded to the place of an end of its edge, that end
// counts as lying on the plane.
void plane_cut::work_t::make_points()
{
    std::vector<int> snapped;
    for (const int s : surfaces) {
        for_each_crossing(s, [&](int, int a, int b) {
            const auto [entry, fresh] = crossed_.try_emplace(edge_key(a, b), -1);
            if (!fresh)
                return;
            const auto [low, high] = std::minmax(a, b);
            entry->second = points_.cross_edge(low, high, *plane_);
            const point3_t at = points_.rounded(entry->second);
            if (point_equal(at, mesh.position(a)))
                snapped.push_back(a);
            else if (point_equal(at, mesh.position(b)))
                snapped.push_back(b);
        });
    }
    for (const int v : snapped)
        sides_[v] = 0;
}

double plane_cut::work_t::share_of(int made, int a, int b) const
{
    const auto &p = points_.at(made), &from = points_.at(a), &to = points_.at(b);
    std::size_t best = 0;
    for (std::size_t i = 1; i < 3; ++i)
        best = std::fabs(to[i] - from[i]) > std::fabs(to[best] - from[best]) ? i : best;
    return (p[best] - from[best]) / (to[best] - from[best]);
}

int plane_cut::work_t::place_of(int point, int like)
{
    if (!points_.is_made(point))
        return point;
    const auto [entry, fresh] = places_.try_emplace(point, -1);
    if (fresh) {
        const point3_t at = points_.rounded(point);
        entry->second = at_place_.find_or_add(at, change.num_vertices());
        if (entry->second == change.num_vertices())
            change.add_vertex(at, like);
    }
    return entry->second;
}

// ---- polygons ----

// The corners, and the new points between them.
ring_t plane_cut::work_t::ring_of(int surface)
{
    ring_t ring;
    const auto corners = mesh.surface_corners(surface);
    const bool open = mesh.surface(surface).type == SURFACE_LINE;
    const int first = mesh.first_corner(surface);
    const int n = static_cast<int>(corners.size());
    for (int i = 0; i < n; ++i) {
        const int a = corners[i], b = corners[i + 1 < n ? i + 1 : 0];
        const flat_uv &p = mesh.uv(first + i), &q = mesh.uv(first + (i + 1 < n ? i + 1 : 0));
        ring.push_back({a, p, sides_[a]});
        if (sides_[a] * sides_[b] != -1 || (open && i + 1 == n))
            continue;
        const int made = crossed_.at(edge_key(a, b));
        const double share = share_of(made, a, b);
        ring.push_back({made, {mixed(p.u, q.u, share), mixed(p.v, q.v, share)}, 0});
        place_of(made, a);
    }
    return ring;
}

void plane_cut::work_t::emit(const ring_t &piece, int surface, bool is_line)
{
    std::vector<std::pair<int, flat_uv>> corners;
    for (const corner_t &corner : piece) {
        const int place = place_of(corner.point, -1);
        if (corners.empty() || corners.back().first != place)
            corners.emplace_back(place, corner.uv);
    }
    while (!is_line && corners.size() > 1 && corners.back().first == corners.front().first)
        corners.pop_back();
    if (corners.size() < (is_line ? 2U : 3U))
        return;
    change.add_surface(surface);
    if (is_line)
        change.set_type(SURFACE_LINE);
    for (const auto &[place, uv] : corners)
        change.add_corner(place, uv);
}

void plane_cut::work_t::note_border(const ring_t &loop, int surface)
{
    if (!how.cap || how.front == how.back)
        return;
    for (std::size_t i = 0; i < loop.size(); ++i) {
        const corner_t &from = loop[i], &to = loop[i + 1 < loop.size() ? i + 1 : 0];
        if (from.side != 0 || to.side != 0 || from.point == to.point)
            continue;
        const auto key = [](int a, int b) {
            return (static_cast<std::uint64_t>(a) << 32) | static_cast<std::uint32_t>(b);
        };
        border_uvs_.try_emplace(from.point, from.uv);
        border_uvs_.try_emplace(to.point, to.uv);
        const auto opposite = border_.find(key(to.point, from.point));
        if (opposite != border_.end() && opposite->second.count > 0) {
            --opposite->second.count;
            continue;
        }
        const auto [entry, fresh] =
            border_.try_emplace(key(from.point, to.point), border_t{surface, 0});
        ++entry->second.count;
        if (fresh)
            border_order_.push_back(entry->first);
    }
}

void plane_cut::work_t::keep_whole(int surface, int side, const ring_t &ring)
{
    if (side > 0 ? how.front : how.back) {
        kept.push_back(surface);
        note_border(ring, surface);
        return;
    }
    change.remove_surface(surface);
    ++num_gone;
}

void plane_cut::work_t::order_along_cut(const ring_t &ring)
{
    const vec3d along = cross(to_vec3d(how.normal), newell_normal(points_, ring));
    const double parts[3] = {std::fabs(along.x), std::fabs(along.y), std::fabs(along.z)};
    const int axis = static_cast<int>(std::max_element(parts, parts + 3) - parts);
    on_plane_.clear();
    for (int i = 0; i < static_cast<int>(ring.size()); ++i) {
        if (ring[i].side == 0)
            on_plane_.push_back(i);
    }
    const auto order = [&](int i, int j) {
        for (int k = 0; k < 3; ++k) {
            const int sign = points_.order((axis + k) % 3, ring[i].point, ring[j].point);
            if (sign != 0)
                return sign;
        }
        return ring[i].point < ring[j].point ? -1 : ring[i].point > ring[j].point ? 1 : 0;
    };
    std::sort(on_plane_.begin(), on_plane_.end(),
              [&](int i, int j) { return order(i, j) < 0 || (order(i, j) == 0 && i < j); });
    rank_.assign(ring.size(), -1);
    first_of_rank_.clear();
    for (std::size_t i = 0; i < on_plane_.size(); ++i) {
        if (i == 0 || ring[on_plane_[i]].point != ring[on_plane_[i - 1]].point)
            first_of_rank_.push_back(on_plane_[i]);
        rank_[on_plane_[i]] = static_cast<int>(first_of_rank_.size()) - 1;
    }
}

// The parts of the polygon on one side. Each run of corners on that side begins and ends on the
// plane; along the cut ends and beginnings follow each other in turn, and the sides between them lie
// inside the polygon.
void plane_cut::work_t::pieces(const ring_t &ring, int side, int surface)
{
    const int n = static_cast<int>(ring.size());
    const auto after = [n](int i) { return i + 1 < n ? i + 1 : 0; };
    std::vector<int> begins, ends;
    std::vector<int> end_of(n, -1); // of the run that begins there
    for (int i = 0; i < n; ++i) {
        if (ring[i].side == side || ring[after(i)].side != side)
            continue;
        int end = after(i);
        while (ring[end].side == side)
            end = after(end);
        begins.push_back(i);
        ends.push_back(end);
        end_of[i] = end;
    }
    const auto earlier = [&](int i, int j) { return rank_[i] < rank_[j]; };
    std::stable_sort(begins.begin(), begins.end(), earlier);
    std::stable_sort(ends.begin(), ends.end(), earlier);
    std::vector<int> goes_on(n, -1); // from the end of a run to the beginning of the next one
    for (std::size_t i = 0; i < ends.size(); ++i)
        goes_on[ends[i]] = begins[i];
    std::vector<bool> done(n);
    for (const int start : begins) {
        ring_t piece;
        const auto append = [&](int i) {
            if (piece.empty() || piece.back().point != ring[i].point)
                piece.push_back(ring[i]);
        };
        for (int begin = start; !done[begin];) {
            done[begin] = true;
            const int end = end_of[begin];
            for (int i = begin; i != end || i == begin; i = after(i)) {
                append(i);
                if (after(i) == end)
                    break;
            }
            append(end);
            begin = goes_on[end];
            const int step = rank_[begin] > rank_[end] ? 1 : -1;
            for (int r = rank_[end]; r != rank_[begin]; r += step)
                append(first_of_rank_[r]);
        }
        emit(piece, surface);
        note_border(piece, surface);
    }
}

void plane_cut::work_t::cut_polygon(int surface)
{
    bool front = false, back = false, on = false;
    for (const int v : mesh.surface_corners(surface)) {
        front = front || sides_[v] > 0;
        back = back || sides_[v] < 0;
        on = on || sides_[v] == 0;
    }
    const ring_t ring = on || (front && back) ? ring_of(surface) : ring_t();
    if (!front && !back) {
        const double facing = dot(newell_normal(points_, ring), to_vec3d(how.normal));
        keep_whole(surface, facing > 0 ? -1 : 1, ring);
        return;
    }
    if (!front || !back) {
        keep_whole(surface, front ? 1 : -1, ring);
        return;
    }
    order_along_cut(ring);
    change.remove_surface(surface);
    ++num_cut;
    if (how.back)
        pieces(ring, -1, surface);
    if (how.front)
        pieces(ring, 1, surface);
}

// A line falls into open lines where it crosses the plane.
void plane_cut::work_t::cut_line(int surface)
{
    ring_t ring = ring_of(surface);
    const auto first_on =
        std::find_if(ring.begin(), ring.end(), [](const corner_t &c) { return c.side == 0; });
    const auto wrong = [&](const corner_t &c) {
        return (c.side > 0 && !how.front) || (c.side < 0 && !how.back);
    };
    const bool cut = std::any_of(ring.begin(), ring.end(),
                                 [&](const corner_t &c) { return points_.is_made(c.point); });
    if (!cut && std::none_of(ring.begin(), ring.end(), wrong)) {
        kept.push_back(surface);
        return;
    }
    change.remove_surface(surface);
    ++(cut ? num_cut : num_gone);
    if (mesh.surface(surface).type == SURFACE_CLOSED_LINE && first_on != ring.end()) {
        std::rotate(ring.begin(), first_on, ring.end());
        ring.push_back(ring.front());
    }
    ring_t piece;
    const auto finish = [&] {
        if (std::none_of(piece.begin(), piece.end(), wrong))
            emit(piece, surface, true);
    };
    for (const corner_t &corner : ring) {
        piece.push_back(corner);
        if (corner.side != 0)
            continue;
        finish();
        piece = {corner};
    }
    finish();
}

// ---- the whole ----

void plane_cut::work_t::insert_into_neighbours()
{
    if (places_.empty() || std::cmp_equal(surfaces.size(), mesh.num_surfaces()))
        return;
    std::vector<bool> named(mesh.num_surfaces());
    for (const int s : surfaces)
        named[s] = true;
    for (int s = 0; s < mesh.num_surfaces(); ++s) {
        if (named[s])
            continue;
        for_each_crossing(s, [&](int corner, int a, int b) {
            const auto made = crossed_.find(edge_key(a, b));
            if (made == crossed_.end())
                return;
            const int next = corner + 1 < mesh.end_corner(s) ? corner + 1 : mesh.first_corner(s);
            const double share = share_of(made->second, a, b);
            const flat_uv &p = mesh.uv(corner), &q = mesh.uv(next);
            change.insert_corner_after(corner, place_of(made->second, a),
                                       {mixed(p.u, q.u, share), mixed(p.v, q.v, share)});
        });
    }
}

void plane_cut::work_t::make_caps()
{
    if (border_order_.empty())
        return;
    const double parts[3] = {std::fabs(how.normal.x), std::fabs(how.normal.y),
                             std::fabs(how.normal.z)};
    const int axis = static_cast<int>(std::max_element(parts, parts + 3) - parts);
    const bool normal_up = plane_->normal[axis] > 0;
    // The cap of the front faces backwards.
    planar_sides sides(points_, axis, how.front == normal_up);
    std::vector<int> surface_of;
    for (const std::uint64_t key : border_order_) {
        const border_t &border = border_[key];
        if (border.count <= 0)
            continue;
        sides.add(static_cast<int>(key & 0xFFFFFFFFU), static_cast<int>(key >> 32));
        surface_of.push_back(border.surface);
    }
    sides.connect();
    for (const std::vector<int> &loop : sides.trace()) {
        const auto bordering = std::find_if(loop.begin(), loop.end(), [&](int side) {
            return std::cmp_less(side, surface_of.size());
        });
        ring_t cap;
        for (const int side : loop) {
            const int point = sides.sides()[side].from;
            cap.push_back({point, border_uvs_[point], 0});
        }
        if (bordering != loop.end())
            emit(cap, surface_of[*bordering]);
    }
}

bool plane_cut::work_t::apply(progress_t &progress, double &done)
{
    for (const int s : surfaces) {
        if (!progress.step(done++))
            return false;
        if (mesh.surface(s).is_line())
            cut_line(s);
        else
            cut_polygon(s);
    }
    insert_into_neighbours();
    make_caps();
    change.remove_unused();
    return true;
}

plane_cut::plane_cut(mesh_change &change, std::span<const int> surfaces, const plane_cut_t &how)
    : work_(std::make_unique<work_t>(change, surfaces, how))
{
}

plane_cut::~plane_cut() = default;

bool plane_cut::parts() const { return work_->any_front && work_->any_back; }
bool plane_cut::apply(progress_t &progress, double &done) { return work_->apply(progress, done); }
int plane_cut::num_cut() const { return work_->num_cut; }
int plane_cut::num_gone() const { return work_->num_gone; }
const std::vector<int> &plane_cut::kept() const { return work_->kept; }
