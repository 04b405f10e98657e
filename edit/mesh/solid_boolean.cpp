#include "edit/mesh/solid_boolean.h"

#include "edit/mesh/planar_sides.h"
#include "edit/mesh/position_index.h"
#include "edit/mesh/sliver_tidy.h"
#include "model/vec3d.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <unordered_map>

namespace {

bool is_inside(const windings_t &windings, int parts, solid_operation operation)
{
    bool in_first = false;
    int others = 0;
    for (const auto &[part, layers] : windings) {
        if (layers == 0)
            continue;
        in_first = in_first || part == 0;
        others += part != 0 ? 1 : 0;
    }
    switch (operation) {
    case solid_operation::unite:
        return in_first || others > 0;
    case solid_operation::subtract:
        return in_first && others == 0;
    default:
        return in_first && others == parts - 1;
    }
}

// A corner of a polygon that is being made, linked to those beside it.
struct node_t {
    int point;
    int previous, next;
    flat_uv uv;
};

class assembler {
public:
    assembler(solid_meshes &solids, const solid_faces &faces, int parts, solid_operation operation)
        : solids_(solids), points_(solids.points()), faces_(faces), parts_(parts),
          operation_(operation), places_(solids.take_places())
    {
    }
    solid_result make();

private:
    using sides_t = std::map<std::pair<int, int>, int>; // and the triangle of each

    void sort_faces();
    void join_pieces();
    void join(int unit, std::span<const int> faces, bool reversed);
    [[nodiscard]] flat_uv uv_at(int triangle, int point) const;
    void add_loop(int unit, const std::vector<std::pair<int, flat_uv>> &loop);
    void drop_needless();
    [[nodiscard]] bool lies_between(int p, int a, int b) const;
    void round();
    bool take_whole(int from, int to);
    void drop_unused();
    int rounded_point(int point);
    [[nodiscard]] bool is_outline(const solid_result::polygon_t &polygon) const;

    solid_meshes &solids_;
    const exact_points &points_;
    const solid_faces &faces_;
    int parts_;
    solid_operation operation_;
    solid_result result_;
    std::vector<int> kept_[2]; // faces as they are, and reversed, in the order of their units
    struct loop_t {
        int unit, first, count;
    };
    std::vector<loop_t> loops_;
    std::vector<node_t> nodes_;
    double blur_ = 0;
    std::unordered_map<int, int> new_number_;
    std::unordered_map<std::uint64_t, int> whole_sides_; // of units that stay whole; when asked for
    position_index places_; // of the input points, then of those that were made as well
};

void assembler::sort_faces()
{
    result_.fates.assign(solids_.units().size(), solid_result::GONE);
    windings_t behind;
    for (int f = 0; f < static_cast<int>(faces_.faces().size()); ++f) {
        const solid_faces::face_t &face = faces_.faces()[f];
        if (face.twin >= 0)
            continue;
        const bool front = is_inside(faces_.in_front(f), parts_, operation_);
        faces_.behind(f, &behind);
        const bool back = is_inside(behind, parts_, operation_);
        if (front == back)
            continue;
        if (face.triangle < 0)
            result_.fates[face.unit] = front ? solid_result::REVERSED : solid_result::KEPT;
        else
            kept_[front ? 1 : 0].push_back(f);
    }
}

void assembler::join_pieces()
{
    std::span<const int> rest[2] = {kept_[0], kept_[1]};
    const auto unit_of = [&](int face) { return faces_.faces()[face].unit; };
    while (!rest[0].empty() || !rest[1].empty()) {
        int unit = std::numeric_limits<int>::max();
        for (const auto &faces : rest)
            unit = faces.empty() ? unit : std::min(unit, unit_of(faces.front()));
        for (const bool reversed : {false, true}) {
            std::span<const int> &faces = rest[reversed ? 1 : 0];
            std::size_t n = 0;
            while (n < faces.size() && unit_of(faces[n]) == unit)
                ++n;
            if (n > 0)
                join(unit, faces.first(n), reversed);
            faces = faces.subspan(n);
        }
    }
}

// Texture coordinates of a point in a triangle, between those of its corners.
flat_uv assembler::uv_at(int triangle, int point) const
{
    const solid_triangle &t = solids_.triangles()[triangle];
    const flat_mesh &mesh = *solids_.meshes()[solids_.units()[t.unit].mesh];
    for (std::size_t k = 0; k < 3; ++k) {
        if (t.v[k] == point)
            return mesh.uv(t.corner[k]);
    }
    const int x = (t.axis + 1) % 3, y = (t.axis + 2) % 3;
    const auto area = [&](int a, int b, int c) {
        const auto &p = points_.at(a), &q = points_.at(b), &r = points_.at(c);
        return (q[x] - p[x]) * (r[y] - p[y]) - (q[y] - p[y]) * (r[x] - p[x]);
    };
    const double whole = area(t.v[0], t.v[1], t.v[2]);
    double u = 0, v = 0;
    for (std::size_t k = 0; k < 3; ++k) {
        const double share = area(t.v[(k + 1) % 3], t.v[(k + 2) % 3], point) / whole;
        u += share * mesh.uv(t.corner[k]).u;
        v += share * mesh.uv(t.corner[k]).v;
    }
    return {static_cast<float>(u), static_cast<float>(v)};
}

// The faces of one polygon, as few outlines as they make together.
void assembler::join(int unit, std::span<const int> faces, bool reversed)
{
    sides_t border;
    for (const int f : faces) {
        const solid_faces::face_t &face = faces_.faces()[f];
        const auto outline = faces_.outline(face);
        for (std::size_t i = 0; i < outline.size(); ++i) {
            const int a = outline[i], b = outline[i + 1 < outline.size() ? i + 1 : 0];
            if (const auto opposite = border.find({b, a}); opposite != border.end())
                border.erase(opposite);
            else
                border.emplace(std::pair(a, b), face.triangle);
        }
    }
    vec3d normal;
    const auto corners = solids_.outline(unit);
    const auto at = [&](std::size_t i) {
        const auto &p = points_.at(corners[i]), &base = points_.at(corners[0]);
        return vec3d{p[0] - base[0], p[1] - base[1], p[2] - base[2]};
    };
    for (std::size_t i = 1; i + 1 < corners.size(); ++i)
        normal += cross(at(i), at(i + 1));
    const double sizes[3] = {normal.x, normal.y, normal.z};
    int axis = 0;
    for (int i = 1; i < 3; ++i)
        axis = std::fabs(sizes[i]) > std::fabs(sizes[axis]) ? i : axis;

    planar_sides sides(points_, axis, sizes[axis] < 0);
    std::map<int, flat_uv> uvs;
    for (const auto &[ends, triangle] : border) {
        sides.add(ends.first, ends.second);
        uvs.try_emplace(ends.first, uv_at(triangle, ends.first));
    }
    sides.connect();
    for (const std::vector<int> &loop : sides.trace()) {
        std::vector<std::pair<int, flat_uv>> polygon;
        for (const int side : loop) {
            const int from = sides.sides()[side].from;
            polygon.emplace_back(from, uvs[from]);
        }
        if (reversed)
            std::reverse(polygon.begin(), polygon.end());
        add_loop(unit, polygon);
    }
}

void assembler::add_loop(int unit, const std::vector<std::pair<int, flat_uv>> &loop)
{
    const int first = static_cast<int>(nodes_.size()), n = static_cast<int>(loop.size());
    loops_.push_back({unit, first, n});
    for (int i = 0; i < n; ++i)
        nodes_.push_back(
            {loop[i].first, first + (i + n - 1) % n, first + (i + 1) % n, loop[i].second});
}

bool assembler::lies_between(int p, int a, int b) const
{
    const auto vector = [&](int to) {
        const auto &from = points_.at(a), &at = points_.at(to);
        return vec3d{at[0] - from[0], at[1] - from[1], at[2] - from[2]};
    };
    const vec3d along = vector(b), away = vector(p);
    const double size = length(along), share = dot(along, away);
    return size > 0 && share > 0 && share < size * size &&
           length(cross(along, away)) <= blur_ * size;
}

// Takes out made points in the middle of a side between the same two polygons: what a side inside
// one of the source polygons has left.
void assembler::drop_needless()
{
    double extent = 0;
    for (const node_t &node : nodes_) {
        for (const double x : points_.at(node.point))
            extent = std::max(extent, std::fabs(x));
    }
    blur_ = extent * 4e-7;
    std::map<int, std::vector<int>> uses;
    for (int i = 0; i < static_cast<int>(nodes_.size()); ++i) {
        if (points_.is_made(nodes_[i].point))
            uses[nodes_[i].point].push_back(i);
    }
    for (const auto &[point, here] : uses) {
        if (here.size() != 2)
            continue;
        node_t &one = nodes_[here[0]], &two = nodes_[here[1]];
        const int a = nodes_[one.previous].point, b = nodes_[one.next].point;
        if (nodes_[two.next].point != a || nodes_[two.previous].point != b || a == b ||
            !lies_between(point, a, b))
            continue;
        for (node_t *node : {&one, &two}) {
            nodes_[node->previous].next = node->next;
            nodes_[node->next].previous = node->previous;
            node->point = -1;
        }
    }
}

int assembler::rounded_point(int point)
{
    if (!points_.is_made(point))
        return point;
    const auto [entry, fresh] = new_number_.try_emplace(point, -1);
    if (fresh) {
        const point3_t at = points_.rounded(point);
        const int next = result_.num_points + static_cast<int>(result_.new_points.size());
        entry->second = places_.find_or_add(at, next);
        if (entry->second == next)
            result_.new_points.push_back(at);
    }
    return entry->second;
}

// Whether the polygon is the whole unit that it comes from.
bool assembler::is_outline(const solid_result::polygon_t &polygon) const
{
    const auto outline = solids_.outline(polygon.unit);
    const std::size_t n = outline.size();
    if (polygon.corners.size() != n)
        return false;
    const auto first = std::find(outline.begin(), outline.end(), polygon.corners[0].vertex);
    const auto shift = static_cast<std::size_t>(first - outline.begin());
    for (std::size_t i = 0; i < n; ++i) {
        if (polygon.corners[i].vertex != outline[(i + shift) % n])
            return false;
    }
    return true;
}

// Single precision brings points together: what has no extent any more goes.
void assembler::round()
{
    result_.num_points = points_.num_input();
    for (const loop_t &loop : loops_) {
        int start = loop.first;
        const int end = start + loop.count;
        while (start < end && nodes_[start].point < 0)
            ++start;
        if (start == end)
            continue;
        solid_result::polygon_t polygon = {loop.unit, {}};
        std::vector<solid_result::corner_t> &corners = polygon.corners;
        int at = start;
        do {
            const int vertex = rounded_point(nodes_[at].point);
            if (corners.size() > 1 && corners[corners.size() - 2].vertex == vertex)
                corners.pop_back(); // there and back again
            else if (corners.empty() || corners.back().vertex != vertex)
                corners.push_back({vertex, nodes_[at].uv});
            at = nodes_[at].next;
        } while (at != start);
        const auto first_again = [&] {
            return corners.size() > 1 && corners.back().vertex == corners.front().vertex;
        };
        for (bool again = true; again;) {
            again = false;
            if (first_again()) {
                corners.pop_back();
                again = true;
            }
            const std::size_t n = corners.size();
            if (n > 2 && corners[n - 1].vertex == corners[1].vertex) {
                corners.erase(corners.begin());
                again = true;
            } else if (n > 2 && corners[n - 2].vertex == corners[0].vertex) {
                corners.pop_back();
                again = true;
            }
        }
        if (corners.size() < 3)
            continue;
        if (is_outline(polygon))
            result_.fates[polygon.unit] = solid_result::KEPT;
        else
            result_.polygons.push_back(std::move(polygon));
    }
}

solid_result assembler::make()
{
    sort_faces();
    join_pieces();
    drop_needless();
    round();
    const auto position = [&](int vertex) {
        return vertex < result_.num_points ? points_.rounded(vertex)
                                           : result_.new_points[vertex - result_.num_points];
    };
    tidy_slivers(result_.polygons, position,
                 [&](int from, int to) { return take_whole(from, to); });
    drop_unused();
    return std::move(result_);
}

// The unit that stays whole and has this side becomes a polygon like the others.
bool assembler::take_whole(int from, int to)
{
    const auto side = [](int a, int b) {
        return (static_cast<std::uint64_t>(a) << 32) | static_cast<std::uint32_t>(b);
    };
    if (whole_sides_.empty()) {
        for (int unit = 0; unit < static_cast<int>(result_.fates.size()); ++unit) {
            if (result_.fates[unit] == solid_result::GONE)
                continue;
            const auto outline = solids_.outline(unit);
            const bool reversed = result_.fates[unit] == solid_result::REVERSED;
            for (std::size_t i = 0; i < outline.size(); ++i) {
                const int a = outline[i], b = outline[(i + 1) % outline.size()];
                whole_sides_.emplace(reversed ? side(b, a) : side(a, b), unit);
            }
        }
    }
    const auto found = whole_sides_.find(side(from, to));
    if (found == whole_sides_.end() || result_.fates[found->second] == solid_result::GONE)
        return false;
    const int unit = found->second;
    const solid_meshes::unit_t &of = solids_.units()[unit];
    const flat_mesh &mesh = *solids_.meshes()[of.mesh];
    solid_result::polygon_t polygon = {unit, {}};
    int corner = mesh.first_corner(of.surface);
    for (const int vertex : solids_.outline(unit))
        polygon.corners.push_back({vertex, mesh.uv(corner++)});
    if (result_.fates[unit] == solid_result::REVERSED)
        std::reverse(polygon.corners.begin(), polygon.corners.end());
    result_.fates[unit] = solid_result::GONE;
    result_.polygons.push_back(std::move(polygon));
    return true;
}

// Numbers the new points anew, without those that no polygon has any more.
void assembler::drop_unused()
{
    std::vector<int> number(result_.new_points.size(), -1);
    std::vector<point3_t> used;
    for (solid_result::polygon_t &polygon : result_.polygons) {
        for (solid_result::corner_t &corner : polygon.corners) {
            if (corner.vertex < result_.num_points)
                continue;
            int &now = number[corner.vertex - result_.num_points];
            if (now < 0) {
                now = static_cast<int>(used.size());
                used.push_back(result_.new_points[corner.vertex - result_.num_points]);
            }
            corner.vertex = result_.num_points + now;
        }
    }
    result_.new_points.swap(used);
}

} // namespace

solid_result solid_boolean(solid_meshes &solids, const solid_faces &faces, int parts,
                           solid_operation operation)
{
    return assembler(solids, faces, parts, operation).make();
}
