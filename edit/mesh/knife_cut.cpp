#include "edit/mesh/knife_cut.h"

#include "model/ear_cut.h"
#include "model/vec3d.h"

#include <algorithm>
#include <cmath>
#include <iterator>
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

} // namespace

knife_cut::knife_cut(flat_ptr mesh, std::span<const int> surfaces)
    : mesh_(std::move(mesh)), named_(mesh_->num_surfaces())
{
    for (const int s : surfaces)
        named_[s] = !mesh_->surface(s).is_line() && mesh_->surface_corners(s).size() >= 3;
    blocks_ = surface_blocks(*mesh_, named_);
    for (int i = 0; i < 3; ++i)
        size_ = std::max(size_, static_cast<double>(blocks_.all().high[i]) -
                                    static_cast<double>(blocks_.all().low[i]));
}

point3_t knife_cut::position(int node) const
{
    const int old = mesh_->num_vertices();
    return node < old ? mesh_->position(node) : nodes_[node - old].at;
}

// ---- places on the surface ----

knife_cut::spot_t knife_cut::nearest(const point3_t &point) const
{
    spot_t best = {std::numeric_limits<double>::infinity(), {-1, {}}, {}};
    const auto far = static_cast<float>(reach * size_);
    const box_t box = {{point.x - far, point.y - far, point.z - far},
                       {point.x + far, point.y + far, point.z + far}};
    blocks_.query(box, [&](int s) {
        if (!named_[s] || !surface_box(s).meets(box))
            return;
        const int first = mesh_->first_corner(s);
        const std::vector<int> ears = surface_ears(*mesh_, s);
        for (std::size_t i = 0; i + 2 < ears.size(); i += 3) {
            const triangle_t t = {s, {first + ears[i], first + ears[i + 1], first + ears[i + 2]}};
            vec3d p[3];
            for (int k = 0; k < 3; ++k)
                p[k] = to_vec3d(mesh_->position(mesh_->corner(t.corner[k])));
            const vec3d at = nearest_in_triangle(to_vec3d(point), p[0], p[1], p[2]);
            const double distance = length(at - to_vec3d(point));
            if (distance < best.distance && distance <= far)
                best = {distance, t, to_point(at)};
        }
    });
    return best;
}

box_t knife_cut::surface_box(int surface) const
{
    box_t box = box_t::none();
    for (const int v : mesh_->surface_corners(surface))
        box.add(mesh_->position(v));
    return box;
}

// The named surfaces that have a corner there.
std::vector<int> knife_cut::surfaces_of_vertex(int v) const
{
    const point3_t &p = mesh_->position(v);
    std::vector<int> found;
    blocks_.query({{p.x, p.y, p.z}, {p.x, p.y, p.z}}, [&](int s) {
        const auto corners = mesh_->surface_corners(s);
        if (named_[s] && std::find(corners.begin(), corners.end(), v) != corners.end())
            found.push_back(s);
    });
    return found;
}

double knife_cut::distance(const point3_t &point) const { return nearest(point).distance; }

std::vector<int> knife_cut::surfaces_of_side(int a, int b) const
{
    std::vector<int> found;
    for (const int s : surfaces_of_vertex(a)) {
        const auto corners = mesh_->surface_corners(s);
        for (std::size_t k = 0; k < corners.size(); ++k) {
            const int u = corners[k], v = corners[k + 1 < corners.size() ? k + 1 : 0];
            if ((u == a && v == b) || (u == b && v == a)) {
                found.push_back(s);
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
        return surfaces_of_vertex(node);
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
    std::vector<int> &here = inside_[surface];
    for (const int node : here) {
        if (length(between(position(node), at)) <= one_place * size_)
            return node;
    }
    nodes_.push_back({at, -1, -1, 0, surface, uv});
    here.push_back(mesh_->num_vertices() + static_cast<int>(nodes_.size()) - 1);
    return here.back();
}

// The corner, the place on a side or that inside a polygon that the point means; -1 for none.
int knife_cut::node_at(const point3_t &point)
{
    const spot_t spot = nearest(point);
    const triangle_t &t = spot.triangle;
    if (t.surface < 0)
        return -1;
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

// The next place on the way: where the plane leaves a polygon at `from`, none of those behind; towards
// the target when there are none yet.
bool knife_cut::step(int from, const point3_t &target, const double *plane,
                     const std::vector<int> &behind, int *next)
{
    const point3_t start = position(from);
    const vec3d way = between(start, target);
    const double slack = one_place * size_;
    const bool first = behind.empty();
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
        const double far = length(at - to_vec3d(start));
        if (far <= slack || far >= least || (first && dot(at - to_vec3d(start), way) <= 0))
            return;
        const bool corner = part == 0;
        const vec3d middle = (at + to_vec3d(start)) / 2;
        if (!(corner && beside(s, from, a)) && !inside(s, to_point(middle)))
            return;
        least = far;
        surface = s;
        low = a;
        high = b;
        share = part;
    };
    for (const int s : surfaces_of(from)) {
        if (std::find(behind.begin(), behind.end(), s) != behind.end())
            continue;
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
        way_.push_back({surface, {from, *next}});
    return true;
}

vec3d knife_cut::normal_at(int node) const
{
    vec3d sum;
    for (const int s : surfaces_of(node)) {
        const auto corners = mesh_->surface_corners(s);
        const point3_t &base = mesh_->position(corners[0]);
        vec3d normal;
        for (std::size_t i = 1; i + 1 < corners.size(); ++i)
            normal += cross(between(base, mesh_->position(corners[i])),
                            between(base, mesh_->position(corners[i + 1])));
        if (const double size = length(normal); size > 0)
            sum += normal / size;
    }
    return sum;
}

// From one node to the other in a plane that stands upright on the surface; in that of both normals,
// else of one of them.
bool knife_cut::walk(int from, int to)
{
    const vec3d one = normal_at(from), other = normal_at(to);
    const std::size_t before = nodes_.size();
    for (const vec3d &up : {one + other, one, other}) {
        way_.clear();
        const vec3d across = cross(between(position(from), position(to)), up);
        if (length(across) > 0 && walk_in_plane(from, to, across / length(across))) {
            for (const auto &[surface, chord] : way_)
                add_chord(surface, chord.first, chord.second);
            return true;
        }
        // What this attempt made goes again.
        while (nodes_.size() > before) {
            const node_t &last = nodes_.back();
            std::erase(on_sides_[{last.low, last.high}],
                       mesh_->num_vertices() + static_cast<int>(nodes_.size()) - 1);
            nodes_.pop_back();
        }
    }
    return false;
}

bool knife_cut::walk_in_plane(int from, int to, const vec3d &n)
{
    const point3_t target = position(to);
    const double plane[4] = {n.x, n.y, n.z, dot(n, to_vec3d(target))};
    std::set<int> seen;
    std::vector<int> behind;
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
            way_.push_back({common, {from, to}});
            return true;
        }
        int next = from;
        if (!seen.insert(from).second || !step(from, target, plane, behind, &next))
            return false;
        behind.clear();
        const std::vector<int> ahead = surfaces_of(next);
        std::copy_if(here.begin(), here.end(), std::back_inserter(behind), [&](int s) {
            return std::find(ahead.begin(), ahead.end(), s) != ahead.end();
        });
        from = next;
    }
    return true;
}

// ---- the whole ----

bool knife_cut::draw(std::span<const point3_t> line, std::string *why)
{
    nodes_.clear();
    on_sides_.clear();
    inside_.clear();
    chords_.clear();
    drawn_ = false;
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
    drawn_ = true;
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
