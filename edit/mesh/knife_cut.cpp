#include "edit/mesh/knife_cut.h"

#include "edit/mesh/planar_sides.h"
#include "edit/mesh/union_find.h"
#include "model/ear_cut.h"
#include "model/vec3d.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

namespace {

// Shares of the mesh's size: how far from the surface a point may be, what is one place.
constexpr double reach = 1e-3, one_place = 1e-5;

vec3d nearest_on_side(const vec3d &p, const vec3d &a, const vec3d &b, double *share)
{
    const vec3d along = b - a;
    const double size = dot(along, along);
    *share = size > 0 ? std::clamp(dot(p - a, along) / size, 0.0, 1.0) : 0;
    return a + along * *share;
}

vec3d nearest_in_triangle(const vec3d &p, const vec3d &a, const vec3d &b, const vec3d &c)
{
    const vec3d normal = cross(b - a, c - a);
    const double size = dot(normal, normal);
    if (size > 0) {
        const vec3d foot = p - normal * (dot(p - a, normal) / size);
        if (dot(cross(b - a, foot - a), normal) >= 0 && dot(cross(c - b, foot - b), normal) >= 0 &&
            dot(cross(a - c, foot - c), normal) >= 0)
            return foot;
    }
    vec3d best;
    double least = std::numeric_limits<double>::infinity(), share = 0;
    for (const auto &[from, to] : {std::pair(a, b), std::pair(b, c), std::pair(c, a)}) {
        const vec3d at = nearest_on_side(p, from, to, &share);
        if (const double far = length(p - at); far < least) {
            least = far;
            best = at;
        }
    }
    return best;
}

float mixed(float from, float to, double share)
{
    return static_cast<float>(from + (static_cast<double>(to) - from) * share);
}

} // namespace

knife_cut::knife_cut(flat_ptr mesh, std::span<const int> surfaces)
    : mesh_(std::move(mesh)), named_(mesh_->num_surfaces())
{
    box_t all = box_t::none();
    std::vector<box_t> boxes;
    first_use_.assign(static_cast<std::size_t>(mesh_->num_vertices()) + 1, 0);
    for (const int s : surfaces) {
        if (mesh_->surface(s).is_line() || mesh_->surface_corners(s).size() < 3)
            continue;
        named_[s] = true;
        for (const int v : mesh_->surface_corners(s))
            ++first_use_[v + 1];
        const std::vector<int> ears = surface_ears(*mesh_, s);
        const int first = mesh_->first_corner(s);
        for (std::size_t i = 0; i + 2 < ears.size(); i += 3) {
            triangles_.push_back({s, {first + ears[i], first + ears[i + 1], first + ears[i + 2]}});
            box_t box = box_t::none();
            for (const int c : triangles_.back().corner)
                box.add(mesh_->position(mesh_->corner(c)));
            all.add(box);
            boxes.push_back(box);
        }
    }
    for (std::size_t i = 1; i < first_use_.size(); ++i)
        first_use_[i] += first_use_[i - 1];
    uses_.resize(first_use_.back());
    std::vector<int> next(first_use_.begin(), first_use_.end() - 1);
    for (const int s : surfaces) {
        if (!named_[s])
            continue;
        for (const int v : mesh_->surface_corners(s))
            uses_[next[v]++] = s;
    }
    for (int i = 0; i < 3 && !boxes.empty(); ++i)
        size_ = std::max(size_, static_cast<double>(all.high[i]) - static_cast<double>(all.low[i]));
    tree_ = box_tree(std::move(boxes));
}

point3_t knife_cut::position(int node) const
{
    const int old = mesh_->num_vertices();
    return node < old ? mesh_->position(node) : nodes_[node - old].at;
}

// ---- places on the surface ----

knife_cut::spot_t knife_cut::nearest(const point3_t &point) const
{
    spot_t best = {std::numeric_limits<double>::infinity(), -1, {}};
    const auto far = static_cast<float>(reach * size_);
    const box_t box = {{point.x - far, point.y - far, point.z - far},
                       {point.x + far, point.y + far, point.z + far}};
    tree_.query(box, [&](int t) {
        vec3d p[3];
        for (int k = 0; k < 3; ++k)
            p[k] = to_vec3d(mesh_->position(mesh_->corner(triangles_[t].corner[k])));
        const vec3d at = nearest_in_triangle(to_vec3d(point), p[0], p[1], p[2]);
        const double distance = length(at - to_vec3d(point));
        if (distance < best.distance && distance <= far)
            best = {distance, t, to_point(at)};
    });
    return best;
}

double knife_cut::distance(const point3_t &point) const { return nearest(point).distance; }

std::vector<int> knife_cut::surfaces_of_side(int a, int b) const
{
    std::vector<int> found;
    for (int i = first_use_[a]; i < first_use_[a + 1]; ++i) {
        const auto corners = mesh_->surface_corners(uses_[i]);
        for (std::size_t k = 0; k < corners.size(); ++k) {
            const int u = corners[k], v = corners[k + 1 < corners.size() ? k + 1 : 0];
            if ((u == a && v == b) || (u == b && v == a)) {
                found.push_back(uses_[i]);
                break;
            }
        }
    }
    return found;
}

std::vector<int> knife_cut::surfaces_of(int node) const
{
    const int old = mesh_->num_vertices();
    if (node < old)
        return {uses_.begin() + first_use_[node], uses_.begin() + first_use_[node + 1]};
    const node_t &made = nodes_[node - old];
    return made.low < 0 ? std::vector<int>{made.surface} : surfaces_of_side(made.low, made.high);
}

int knife_cut::node_on_side(int a, int b, double share)
{
    if (a > b) {
        std::swap(a, b);
        share = 1 - share;
    }
    const vec3d p = to_vec3d(mesh_->position(a)), q = to_vec3d(mesh_->position(b));
    const point3_t at = to_point(p + (q - p) * share);
    std::vector<int> &here = on_sides_[{a, b}];
    for (const int node : here) {
        if (length(between(position(node), at)) <= one_place * size_)
            return node;
    }
    nodes_.push_back({at, a, b, share, -1, {}});
    const int made = mesh_->num_vertices() + static_cast<int>(nodes_.size()) - 1;
    const auto after = std::find_if(here.begin(), here.end(), [&](int node) {
        return nodes_[node - mesh_->num_vertices()].share > share;
    });
    here.insert(after, made);
    return made;
}

int knife_cut::node_inside(int surface, const point3_t &at, flat_uv uv)
{
    for (std::size_t i = 0; i < nodes_.size(); ++i) {
        if (nodes_[i].surface == surface && length(between(nodes_[i].at, at)) <= one_place * size_)
            return mesh_->num_vertices() + static_cast<int>(i);
    }
    nodes_.push_back({at, -1, -1, 0, surface, uv});
    return mesh_->num_vertices() + static_cast<int>(nodes_.size()) - 1;
}

// The corner, the place on a side or that inside a polygon that the point means; -1 for none.
int knife_cut::node_at(const point3_t &point)
{
    const spot_t spot = nearest(point);
    if (spot.triangle < 0)
        return -1;
    const triangle_t &t = triangles_[spot.triangle];
    const auto corners = mesh_->surface_corners(t.surface);
    const double near = 2 * one_place * size_;
    const vec3d at = to_vec3d(spot.at);
    for (const int v : corners) {
        if (length(to_vec3d(mesh_->position(v)) - at) <= near)
            return v;
    }
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const int a = corners[i], b = corners[i + 1 < corners.size() ? i + 1 : 0];
        double share = 0;
        const vec3d on =
            nearest_on_side(at, to_vec3d(mesh_->position(a)), to_vec3d(mesh_->position(b)), &share);
        if (length(on - at) <= near)
            return node_on_side(a, b, share);
    }
    // Between the corners of its triangle.
    vec3d p[3];
    for (int k = 0; k < 3; ++k)
        p[k] = to_vec3d(mesh_->position(mesh_->corner(t.corner[k])));
    const vec3d normal = cross(p[1] - p[0], p[2] - p[0]);
    flat_uv uv = {0, 0};
    for (int k = 0; k < 3; ++k) {
        const vec3d part = cross(p[(k + 1) % 3] - at, p[(k + 2) % 3] - at);
        const auto share = static_cast<float>(dot(part, normal) / dot(normal, normal));
        uv.u += share * mesh_->uv(t.corner[k]).u;
        uv.v += share * mesh_->uv(t.corner[k]).v;
    }
    return node_inside(t.surface, spot.at, uv);
}

// ---- the way from one point to the next ----

int knife_cut::axis_of(int surface, bool *mirrored) const
{
    const auto corners = mesh_->surface_corners(surface);
    vec3d normal;
    const point3_t base = mesh_->position(corners[0]);
    for (std::size_t i = 1; i + 1 < corners.size(); ++i)
        normal += cross(between(base, mesh_->position(corners[i])),
                        between(base, mesh_->position(corners[i + 1])));
    const double parts[3] = {normal.x, normal.y, normal.z};
    int axis = 0;
    for (int i = 1; i < 3; ++i)
        axis = std::fabs(parts[i]) > std::fabs(parts[axis]) ? i : axis;
    *mirrored = parts[axis] < 0;
    return axis;
}

// Whether the point, in its plane, lies inside the polygon.
bool knife_cut::inside(int surface, const point3_t &at) const
{
    bool mirrored = false;
    const int axis = axis_of(surface, &mirrored);
    const auto flat = [&](const point3_t &p) {
        const double parts[3] = {p.x, p.y, p.z};
        return std::pair(parts[(axis + 1) % 3], parts[(axis + 2) % 3]);
    };
    const auto [x, y] = flat(at);
    const auto corners = mesh_->surface_corners(surface);
    bool in = false;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const auto [px, py] = flat(mesh_->position(corners[i]));
        const auto [qx, qy] = flat(mesh_->position(corners[i + 1 < corners.size() ? i + 1 : 0]));
        if ((py > y) != (qy > y) && x < px + (qx - px) * (y - py) / (qy - py))
            in = !in;
    }
    return in;
}

// Whether both lie on one side of the polygon, so that nothing between them is to be cut.
bool knife_cut::beside(int surface, int a, int b) const
{
    const auto corners = mesh_->surface_corners(surface);
    const int old = mesh_->num_vertices();
    const auto on = [&](int node, int u, int v) {
        if (node < old)
            return node == u || node == v;
        const node_t &made = nodes_[node - old];
        return made.low == std::min(u, v) && made.high == std::max(u, v);
    };
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const int u = corners[i], v = corners[i + 1 < corners.size() ? i + 1 : 0];
        if (on(a, u, v) && on(b, u, v))
            return true;
    }
    return false;
}

// The next place on the way: where the plane leaves a polygon at `from` towards the target.
bool knife_cut::step(int from, const point3_t &target, const double *plane, int *next)
{
    const point3_t start = position(from);
    const vec3d way = between(start, target);
    const double total = length(way), slack = one_place * size_;
    const auto height = [&](int v) {
        const point3_t p = mesh_->position(v);
        return plane[0] * p.x + plane[1] * p.y + plane[2] * p.z - plane[3];
    };
    double least = std::numeric_limits<double>::infinity();
    int surface = -1, low = -1, high = -1;
    double share = 0;
    const auto consider = [&](int s, int a, int b, double part) {
        const vec3d p = to_vec3d(mesh_->position(a)), q = to_vec3d(mesh_->position(b));
        const vec3d at = p + (q - p) * part;
        const double ahead = dot(at - to_vec3d(start), way) / total;
        if (ahead <= slack || ahead >= least)
            return;
        const bool corner = part == 0;
        const vec3d middle = (at + to_vec3d(start)) / 2;
        if (!(corner && beside(s, from, a)) && !inside(s, to_point(middle)))
            return;
        least = ahead;
        surface = s;
        low = a;
        high = b;
        share = part;
    };
    for (const int s : surfaces_of(from)) {
        const auto corners = mesh_->surface_corners(s);
        for (std::size_t i = 0; i < corners.size(); ++i) {
            const int a = corners[i], b = corners[i + 1 < corners.size() ? i + 1 : 0];
            const double p = height(a), q = height(b);
            if (std::fabs(p) <= slack)
                consider(s, a, b, 0);
            else if (std::fabs(q) > slack && (p < 0) != (q < 0) &&
                     !(from >= mesh_->num_vertices() &&
                       nodes_[from - mesh_->num_vertices()].low == std::min(a, b) &&
                       nodes_[from - mesh_->num_vertices()].high == std::max(a, b)))
                consider(s, a, b, p / (p - q));
        }
    }
    if (surface < 0)
        return false;
    *next = share == 0 ? low : node_on_side(low, high, share);
    if (!beside(surface, from, *next))
        add_chord(surface, from, *next);
    return true;
}

bool knife_cut::walk(int from, int to)
{
    const auto normal_at = [&](int node) {
        vec3d sum;
        for (const int s : surfaces_of(node)) {
            const auto corners = mesh_->surface_corners(s);
            vec3d normal;
            for (std::size_t i = 1; i + 1 < corners.size(); ++i)
                normal +=
                    cross(between(mesh_->position(corners[0]), mesh_->position(corners[i])),
                          between(mesh_->position(corners[0]), mesh_->position(corners[i + 1])));
            if (const double size = length(normal); size > 0)
                sum += normal / size;
        }
        return sum;
    };
    const point3_t target = position(to);
    const vec3d across = cross(between(position(from), target), normal_at(from) + normal_at(to));
    const double size = length(across);
    if (!(size > 0))
        return false;
    const vec3d n = across / size;
    const double plane[4] = {n.x, n.y, n.z, dot(n, to_vec3d(target))};
    std::set<int> seen;
    while (from != to) {
        const std::vector<int> here = surfaces_of(from), there = surfaces_of(to);
        int common = -1;
        for (const int s : here) {
            if (std::find(there.begin(), there.end(), s) == there.end())
                continue;
            if (beside(s, from, to))
                return true;
            const vec3d middle = (to_vec3d(position(from)) + to_vec3d(target)) / 2;
            if (common < 0 && inside(s, to_point(middle)))
                common = s;
        }
        if (common >= 0) {
            add_chord(common, from, to);
            return true;
        }
        if (!seen.insert(from).second || !step(from, target, plane, &from))
            return false;
    }
    return true;
}

// ---- chords of one polygon ----

void knife_cut::add_chord(int surface, int from, int to)
{
    if (from == to)
        return;
    for (const auto &[a, b] : chords_[surface]) {
        if ((a == from && b == to) || (a == to && b == from))
            return;
    }
    cross_chords(surface, from, to);
}

// Adds the chord, in parts where it crosses older ones.
void knife_cut::cross_chords(int surface, int from, int to)
{
    std::vector<chord_t> &chords = chords_[surface];
    bool mirrored = false;
    const int axis = axis_of(surface, &mirrored);
    for (std::size_t i = 0; i < chords.size(); ++i) {
        const auto [a, b] = chords[i];
        const exact_points points({position(from), position(to), position(a), position(b)});
        if (points.turn(axis, 0, 1, 2) * points.turn(axis, 0, 1, 3) >= 0 ||
            points.turn(axis, 2, 3, 0) * points.turn(axis, 2, 3, 1) >= 0)
            continue;
        const int j = (axis + 1) % 3, k = (axis + 2) % 3;
        const auto area = [&](int p, int q, int r) {
            const auto &o = points.at(p), &x = points.at(q), &y = points.at(r);
            return (x[j] - o[j]) * (y[k] - o[k]) - (x[k] - o[k]) * (y[j] - o[j]);
        };
        const double p = area(2, 3, 0), q = area(2, 3, 1), share = p / (p - q);
        const vec3d start = to_vec3d(position(from)), end = to_vec3d(position(to));
        const flat_uv u = uv_of(surface, from), v = uv_of(surface, to);
        const int made = node_inside(surface, to_point(start + (end - start) * share),
                                     {mixed(u.u, v.u, share), mixed(u.v, v.v, share)});
        if (made == from || made == to || made == a || made == b)
            continue;
        chords[i] = {a, made};
        chords.emplace_back(made, b);
        cross_chords(surface, from, made);
        cross_chords(surface, made, to);
        return;
    }
    chords.emplace_back(from, to);
}

std::vector<knife_cut::ring_corner_t> knife_cut::ring_of(int surface) const
{
    std::vector<ring_corner_t> ring;
    const auto corners = mesh_->surface_corners(surface);
    const int first = mesh_->first_corner(surface), n = static_cast<int>(corners.size());
    for (int i = 0; i < n; ++i) {
        const int a = corners[i], b = corners[i + 1 < n ? i + 1 : 0];
        ring.push_back({a, first + i, mesh_->uv(first + i)});
        const auto here = on_sides_.find(std::minmax(a, b));
        if (here == on_sides_.end())
            continue;
        std::vector<int> nodes = here->second;
        if (a > b)
            std::reverse(nodes.begin(), nodes.end());
        const flat_uv &p = mesh_->uv(first + i), &q = mesh_->uv(first + (i + 1 < n ? i + 1 : 0));
        for (const int node : nodes) {
            const double share = nodes_[node - mesh_->num_vertices()].share;
            const double way = a < b ? share : 1 - share;
            ring.push_back({node, -1, {mixed(p.u, q.u, way), mixed(p.v, q.v, way)}});
        }
    }
    return ring;
}

flat_uv knife_cut::uv_of(int surface, int node) const
{
    const int old = mesh_->num_vertices();
    if (node >= old && nodes_[node - old].low < 0)
        return nodes_[node - old].uv;
    for (const ring_corner_t &corner : ring_of(surface)) {
        if (corner.node == node)
            return corner.uv;
    }
    return {0, 0};
}

// Whether nothing of the polygon, its sides and chords, comes between the two.
bool knife_cut::sees(int surface, int a, int b) const
{
    bool mirrored = false;
    const int axis = axis_of(surface, &mirrored);
    const auto free_of = [&](int p, int q) {
        const exact_points points({position(a), position(b), position(p), position(q)});
        const int at_p = points.turn(axis, 0, 1, 2), at_q = points.turn(axis, 0, 1, 3);
        const bool shares = p == a || p == b || q == a || q == b;
        if (shares) // along it
            return at_p != 0 || at_q != 0;
        return at_p * at_q > 0 || points.turn(axis, 2, 3, 0) * points.turn(axis, 2, 3, 1) > 0;
    };
    const std::vector<ring_corner_t> ring = ring_of(surface);
    for (std::size_t i = 0; i < ring.size(); ++i) {
        if (!free_of(ring[i].node, ring[i + 1 < ring.size() ? i + 1 : 0].node))
            return false;
    }
    const std::vector<chord_t> &chords = chords_.at(surface);
    return std::all_of(chords.begin(), chords.end(),
                       [&](const chord_t &chord) { return free_of(chord.first, chord.second); });
}

// Joins up to `wanted` of the nodes to the nearest corners that they see, no node or corner twice.
void knife_cut::join_to_corners(int surface, const std::vector<int> &from, int wanted)
{
    struct way_t {
        double length;
        int node, corner;
    };
    std::vector<way_t> ways;
    for (const int node : from) {
        for (const int corner : mesh_->surface_corners(surface))
            ways.push_back({length(between(position(node), position(corner))), node, corner});
    }
    std::sort(ways.begin(), ways.end(),
              [](const way_t &a, const way_t &b) { return a.length < b.length; });
    std::set<int> taken;
    for (const way_t &way : ways) {
        if (wanted == 0)
            return;
        if (taken.contains(way.node) || taken.contains(way.corner) ||
            !sees(surface, way.node, way.corner))
            continue;
        chords_[surface].emplace_back(way.node, way.corner);
        taken.insert({way.node, way.corner});
        --wanted;
    }
}

void knife_cut::join_loose_ends(int surface)
{
    std::map<int, int> sides;
    for (const auto &[a, b] : chords_[surface]) {
        ++sides[a];
        ++sides[b];
    }
    const int old = mesh_->num_vertices();
    for (const auto &[node, count] : sides) {
        if (count == 1 && node >= old && nodes_[node - old].low < 0)
            join_to_corners(surface, {node}, 1);
    }
}

void knife_cut::join_rings(int surface)
{
    // What hangs together, and what of it hangs on the polygon's sides.
    std::map<int, int> numbers;
    const auto number = [&](int node) {
        return numbers.try_emplace(node, static_cast<int>(numbers.size()) + 1).first->second;
    };
    const std::vector<chord_t> chords = chords_[surface];
    union_find parts(2 * static_cast<int>(chords.size()) + 1);
    const int old = mesh_->num_vertices();
    for (const auto &[a, b] : chords) {
        parts.join(number(a), number(b));
        for (const int node : {a, b}) {
            if (node < old || nodes_[node - old].low >= 0)
                parts.join(number(node), 0);
        }
    }
    std::map<int, std::vector<int>> loose;
    for (const auto &[node, place] : numbers) {
        if (parts.find(place) != parts.find(0))
            loose[parts.find(place)].push_back(node);
    }
    for (const auto &[part, nodes] : loose)
        join_to_corners(surface, nodes, 2);
}

// ---- the whole ----

bool knife_cut::draw(std::span<const point3_t> line, std::string *why)
{
    nodes_.clear();
    on_sides_.clear();
    chords_.clear();
    int last = -1;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const int node = node_at(line[i]);
        if (node < 0) {
            *why = "point " + std::to_string(i + 1) + " lies on no surface";
            return false;
        }
        if (last >= 0 && node != last && !walk(last, node)) {
            *why = "no way over the surface to point " + std::to_string(i + 1);
            return false;
        }
        last = node;
    }
    for (auto &[surface, chords] : chords_) {
        join_loose_ends(surface);
        join_rings(surface);
    }
    if (!chords_.empty())
        return true;
    *why = "the line cuts nothing";
    return false;
}

std::vector<point3_t> knife_cut::edges() const
{
    std::vector<point3_t> all;
    for (const auto &[surface, chords] : chords_) {
        for (const auto &[a, b] : chords) {
            all.push_back(position(a));
            all.push_back(position(b));
        }
    }
    return all;
}

void knife_cut::apply(mesh_change &change) const
{
    const int old = mesh_->num_vertices();
    std::vector<int> places; // of the new nodes
    for (const node_t &node : nodes_)
        places.push_back(change.add_vertex(node.at, node.low));
    const auto place_of = [&](int node) { return node < old ? node : places[node - old]; };
    for (const auto &[surface, chords] : chords_) {
        std::map<int, int> numbers;
        std::vector<point3_t> at;
        std::vector<int> nodes;
        const auto number = [&](int node) {
            const auto [entry, fresh] = numbers.try_emplace(node, static_cast<int>(nodes.size()));
            if (fresh) {
                nodes.push_back(node);
                at.push_back(position(node));
            }
            return entry->second;
        };
        const std::vector<ring_corner_t> ring = ring_of(surface);
        std::map<int, flat_uv> uvs;
        for (const ring_corner_t &corner : ring)
            uvs.try_emplace(number(corner.node), corner.uv);
        for (const auto &[a, b] : chords) {
            for (const int node : {a, b})
                uvs.try_emplace(number(node), node < old ? flat_uv{0, 0} : nodes_[node - old].uv);
        }
        const exact_points points(at);
        bool mirrored = false;
        const int axis = axis_of(surface, &mirrored);
        planar_sides sides(points, axis, mirrored);
        for (std::size_t i = 0; i < ring.size(); ++i)
            sides.add(number(ring[i].node), number(ring[i + 1 < ring.size() ? i + 1 : 0].node));
        for (const auto &[a, b] : chords) {
            sides.add(number(a), number(b));
            sides.add(number(b), number(a));
        }
        sides.connect();
        change.remove_surface(surface);
        for (const std::vector<int> &loop : sides.trace()) {
            change.add_surface(surface);
            for (const int side : loop) {
                const int from = sides.sides()[side].from;
                change.add_corner(place_of(nodes[from]), uvs[from]);
            }
        }
    }
    if (on_sides_.empty())
        return;
    std::vector<bool> touched(old);
    for (const auto &[side, nodes] : on_sides_)
        touched[side.first] = touched[side.second] = true;
    for (int s = 0; s < mesh_->num_surfaces(); ++s) {
        const auto corners = mesh_->surface_corners(s);
        if (chords_.contains(s) || mesh_->surface(s).is_line() ||
            std::none_of(corners.begin(), corners.end(), [&](int v) { return touched[v]; }))
            continue;
        int corner = -1;
        for (const ring_corner_t &at : ring_of(s)) {
            if (at.corner >= 0)
                corner = at.corner;
            else
                change.insert_corner_after(corner, place_of(at.node), at.uv);
        }
    }
}
