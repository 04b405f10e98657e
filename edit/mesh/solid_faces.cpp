#include "edit/mesh/solid_faces.h"

#include "edit/mesh/edge_order.h"
#include "edit/mesh/planar_sides.h"
#include "edit/mesh/union_find.h"

#include <algorithm>
#include <limits>
#include <map>
#include <numeric>
#include <set>

solid_faces::solid_faces(solid_meshes &solids, progress_t &progress)
    : solids_(solids), progress_(progress)
{
}

bool solid_faces::compute()
{
    const double all = static_cast<double>(solids_.triangles().size());
    crossings_ = find_crossings(solids_.points(), solids_.triangles(), solids_.tree(),
                                [&](double share) { return progress_.step(share * all); });
    if (progress_.cancelled() || !find_faces())
        return false;
    find_twins();
    join_patches();
    return find_windings();
}

// ---- faces ----

bool solid_faces::find_faces()
{
    const std::vector<solid_triangle> &triangles = solids_.triangles();
    const std::vector<solid_meshes::unit_t> &units = solids_.units();
    touched_.assign(units.size(), false);
    covered_.assign(triangles.size(), false);
    for (const meeting_t &meeting : crossings_.meetings)
        touched_[triangles[meeting.triangle].unit] = true;
    for (const auto &[a, b] : crossings_.overlapping) {
        covered_[a] = covered_[b] = true;
        touched_[triangles[a].unit] = touched_[triangles[b].unit] = true;
    }
    std::vector<meeting_t> &meetings = crossings_.meetings;
    std::sort(meetings.begin(), meetings.end(),
              [](const meeting_t &a, const meeting_t &b) { return a.triangle < b.triangle; });
    auto next = meetings.begin();
    for (int u = 0; u < static_cast<int>(units.size()); ++u) {
        if (!progress_.step(static_cast<double>(triangles.size() + units[u].first_triangle)))
            return false;
        if (!touched_[u]) {
            add_whole(u);
            continue;
        }
        for (int t = units[u].first_triangle; t < units[u].end_triangle; ++t) {
            const auto begin = next;
            while (next != meetings.end() && next->triangle == t)
                ++next;
            cut_triangle(t, {begin, next});
        }
    }
    return true;
}

void solid_faces::add_whole(int unit)
{
    if (solids_.units()[unit].first_triangle == solids_.units()[unit].end_triangle)
        return; // without an area
    const auto corners = solids_.outline(unit);
    const int first = static_cast<int>(outlines_.size());
    outlines_.insert(outlines_.end(), corners.begin(), corners.end());
    faces_.push_back({unit, -1, first, static_cast<int>(outlines_.size())});
}

// Puts the points where two lines of a triangle meet between the ends of each.
void solid_faces::meet_lines(const solid_triangle &t, const line_t &a, const line_t &b,
                             std::vector<int> &a_splits, std::vector<int> &b_splits)
{
    exact_points &points = solids_.points();
    const auto turn = [&](const line_t &line, int p) {
        return points.turn(t.axis, line.from, line.to, p);
    };
    const auto touch = [&](const line_t &line, int side, int p, std::vector<int> &splits) {
        if (side == 0 && p != line.from && p != line.to &&
            exact_before(points, line.from, p) != exact_before(points, line.to, p))
            splits.push_back(p);
    };
    int on_a[2] = {0, 0}, on_b[2] = {0, 0};
    if (a.from != a.to) {
        on_a[0] = turn(a, b.from);
        on_a[1] = b.from == b.to ? on_a[0] : turn(a, b.to);
        touch(a, on_a[0], b.from, a_splits);
        if (b.from != b.to)
            touch(a, on_a[1], b.to, a_splits);
    }
    if (b.from != b.to) {
        on_b[0] = turn(b, a.from);
        on_b[1] = a.from == a.to ? on_b[0] : turn(b, a.to);
        touch(b, on_b[0], a.from, b_splits);
        if (a.from != a.to)
            touch(b, on_b[1], a.to, b_splits);
    }
    if (a.side || b.side || on_a[0] * on_a[1] >= 0 || on_b[0] * on_b[1] >= 0)
        return;
    const int p = points.cross_planes(points.plane(t.v[0], t.v[1], t.v[2]), a.plane, b.plane);
    if (p >= 0) {
        a_splits.push_back(p);
        b_splits.push_back(p);
    }
}

void solid_faces::split_lines(const solid_triangle &t, std::vector<line_t> &lines,
                              std::vector<std::vector<int>> &splits)
{
    splits.assign(lines.size(), {});
    const auto meet = [&](int i, int j) {
        meet_lines(t, lines[i], lines[j], splits[i], splits[j]);
        return true;
    };
    constexpr std::size_t few = 16;
    const int n = static_cast<int>(lines.size());
    if (lines.size() <= few) {
        for (int i = 0; i < n; ++i) {
            for (int j = i + 1; j < n; ++j)
                meet(i, j);
        }
        return;
    }
    const exact_points &points = solids_.points();
    std::vector<box_t> boxes;
    for (const line_t &line : lines) {
        box_t box = box_t::none();
        for (const int p : {line.from, line.to})
            box.add(points.rounded(p));
        // Rounded points may lie a little aside.
        for (int i = 0; i < 3; ++i) {
            const float slack = 1e-6f * (std::max(-box.low[i], box.high[i]) + 1e-30f);
            box.low[i] -= std::max(slack, 0.0f);
            box.high[i] += std::max(slack, 0.0f);
        }
        boxes.push_back(box);
    }
    box_tree(std::move(boxes)).pairs(meet);
}

void solid_faces::cut_triangle(int number, std::span<const meeting_t> meetings)
{
    const solid_triangle &t = solids_.triangles()[number];
    exact_points &points = solids_.points();
    std::vector<line_t> lines;
    for (int i = 0; i < 3; ++i)
        lines.push_back({t.v[i], t.v[(i + 1) % 3], {}, true});
    for (const meeting_t &meeting : meetings)
        lines.push_back({meeting.from, meeting.to, meeting.plane, false});
    std::vector<std::vector<int>> splits;
    split_lines(t, lines, splits);

    planar_sides sides(points, t.axis, t.facing < 0);
    std::set<std::pair<int, int>> known;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const line_t &line = lines[i];
        if (line.from == line.to)
            continue;
        std::vector<int> &on = splits[i];
        on.push_back(line.from);
        on.push_back(line.to);
        const bool forward = exact_before(points, line.from, line.to);
        std::sort(on.begin(), on.end(), [&](int a, int b) {
            return forward ? exact_before(points, a, b) : exact_before(points, b, a);
        });
        on.erase(std::unique(on.begin(), on.end()), on.end());
        for (std::size_t k = 0; k + 1 < on.size(); ++k) {
            if (!known.insert(std::minmax(on[k], on[k + 1])).second)
                continue;
            sides.add(on[k], on[k + 1]);
            if (!line.side)
                sides.add(on[k + 1], on[k]);
        }
    }
    sides.connect();
    for (const std::vector<int> &loop : sides.trace()) {
        const int first = static_cast<int>(outlines_.size());
        for (const int side : loop)
            outlines_.push_back(sides.sides()[side].from);
        faces_.push_back({t.unit, number, first, static_cast<int>(outlines_.size())});
    }
}

// ---- which faces belong together ----

namespace {

// The sides of an outline without bridges, which it has in both directions; in order.
std::vector<std::pair<int, int>> border_of(std::span<const int> outline)
{
    std::vector<std::pair<int, int>> sides;
    for (std::size_t i = 0; i < outline.size(); ++i)
        sides.emplace_back(outline[i], outline[i + 1 < outline.size() ? i + 1 : 0]);
    std::sort(sides.begin(), sides.end());
    std::vector<std::pair<int, int>> border;
    for (const auto &[a, b] : sides) {
        if (!std::binary_search(sides.begin(), sides.end(), std::pair(b, a)))
            border.emplace_back(a, b);
    }
    return border;
}

} // namespace

// Faces over the same area: those of the same border, whichever way round.
void solid_faces::find_twins()
{
    std::map<std::vector<std::pair<int, int>>, int> by_border;
    group_of_.assign(faces_.size(), -1);
    for (int f = 0; f < static_cast<int>(faces_.size()); ++f) {
        face_t &face = faces_[f];
        if (face.triangle < 0 || !covered_[face.triangle])
            continue;
        std::vector<std::pair<int, int>> border = border_of(outline(face)), undirected = border;
        for (auto &[a, b] : undirected) {
            if (a > b)
                std::swap(a, b);
        }
        std::sort(undirected.begin(), undirected.end());
        const auto [entry, fresh] = by_border.try_emplace(std::move(undirected), f);
        if (fresh)
            continue;
        const int first = entry->second;
        face.twin = first;
        const auto other = border_of(outline(faces_[first]));
        face.opposite = !std::binary_search(other.begin(), other.end(), border.front());
        if (group_of_[first] < 0) {
            group_of_[first] = static_cast<int>(twins_.size());
            twins_.emplace_back();
        }
        twins_[group_of_[first]].push_back(f);
    }
}

// The faces of the polygons that are whole; -1 for the others.
std::vector<int> solid_faces::whole_faces() const
{
    std::vector<int> whole(solids_.units().size(), -1);
    for (int f = 0; f < static_cast<int>(faces_.size()); ++f) {
        if (faces_[f].triangle < 0)
            whole[faces_[f].unit] = f;
    }
    return whole;
}

// Which input points the pieces of polygons have.
std::vector<bool> solid_faces::points_of_cuts() const
{
    std::vector<bool> near_cuts(solids_.points().num_input(), false);
    for (const face_t &face : faces_) {
        if (face.triangle < 0)
            continue;
        for (const int p : outline(face)) {
            if (!solids_.points().is_made(p))
                near_cuts[p] = true;
        }
    }
    return near_cuts;
}

// Faces next to each other have the same solids around them, when no other face meets at the side
// between them.
void solid_faces::join_patches()
{
    struct use_t {
        int low, high, face;
        bool forward;
    };
    std::vector<use_t> uses;
    union_find patches(static_cast<int>(faces_.size()));
    const std::vector<int> whole = whole_faces();
    const std::vector<bool> near_cuts = points_of_cuts();
    for (int f = 0; f < static_cast<int>(faces_.size()); ++f) {
        const face_t &face = faces_[f];
        const int first = face.twin >= 0 ? face.twin : f;
        const auto points = outline(face);
        for (int i = 0; i < static_cast<int>(points.size()); ++i) {
            const int a = points[i],
                      b = points[i + 1 < static_cast<int>(points.size()) ? i + 1 : 0];
            // A side that no piece can have needs no search.
            if (face.triangle < 0 && !(near_cuts[a] && near_cuts[b])) {
                const int mate = solids_.mate(face.unit, i);
                if (mate >= 0 && whole[mate] >= 0) {
                    patches.join(f, whole[mate]);
                    continue;
                }
            }
            uses.push_back({std::min(a, b), std::max(a, b), first, (a < b) != face.opposite});
        }
    }
    sort_edge_uses(uses, solids_.points().size(), [](const use_t &a, const use_t &b) {
        if (a.high != b.high)
            return a.high < b.high;
        return a.face != b.face ? a.face < b.face : a.forward < b.forward;
    });
    std::vector<use_t> here;
    for (std::size_t i = 0; i < uses.size();) {
        const std::size_t begin = i;
        here.clear();
        for (;
             i < uses.size() && uses[i].low == uses[begin].low && uses[i].high == uses[begin].high;
             ++i) {
            if (here.empty() || here.back().face != uses[i].face)
                here.push_back(uses[i]);
            else if (here.back().forward != uses[i].forward)
                here.pop_back(); // a bridge
        }
        if (here.size() == 2 && here[0].forward != here[1].forward)
            patches.join(here[0].face, here[1].face);
    }
    std::vector<int> number;
    patches_.resize(patches.number(&number));
    for (std::size_t f = 0; f < faces_.size(); ++f)
        faces_[f].patch = number[f];
}

// ---- what is around them ----

int solid_faces::triangle_of(const face_t &face) const
{
    return face.triangle >= 0 ? face.triangle : solids_.units()[face.unit].first_triangle;
}

// A point inside the face, another one at each attempt.
int solid_faces::point_inside(int number, int attempt)
{
    const face_t &face = faces_[number];
    const solid_triangle &t = solids_.triangles()[triangle_of(face)];
    exact_points &points = solids_.points();
    const std::int64_t one = 7 + 31 * attempt, two = 11 + 17 * attempt;
    if (face.triangle < 0) { // any of its triangles
        const exact_points::share_t shares[] = {{t.v[0], 13}, {t.v[1], one}, {t.v[2], two}};
        return points.mix(shares);
    }
    // In the corner at the first point from the left, which turns left.
    const auto loop = outline(face);
    const std::size_t n = loop.size();
    const auto turn = [&](int a, int b, int c) { return points.turn(t.axis, a, b, c) * t.facing; };
    std::size_t tip = n;
    for (std::size_t i = 0; i < n; ++i) {
        if (tip < n && !exact_before(points, loop[i], loop[tip]))
            continue;
        const int a = loop[(i + n - 1) % n], b = loop[(i + 1) % n];
        if (turn(a, loop[i], b) > 0)
            tip = i;
    }
    if (tip == n)
        return -1;
    const int v = loop[tip], a = loop[(tip + n - 1) % n], b = loop[(tip + 1) % n];
    // So far into the corner that no other point is there.
    for (int bits = 0; bits < 50; bits += 3) {
        const std::int64_t weight = static_cast<std::int64_t>(1) << bits;
        const exact_points::share_t to_a[] = {{v, weight - 1}, {a, 1}};
        const exact_points::share_t to_b[] = {{v, weight - 1}, {b, 1}};
        const int near_a = bits == 0 ? a : points.mix(to_a);
        const int near_b = bits == 0 ? b : points.mix(to_b);
        const bool free = std::none_of(loop.begin(), loop.end(), [&](int p) {
            return p != v && p != a && p != b && turn(near_a, v, p) >= 0 &&
                   turn(v, near_b, p) >= 0 && turn(near_b, near_a, p) >= 0;
        });
        if (!free)
            continue;
        const exact_points::share_t shares[] = {{v, 2 * weight * (one + two)}, {a, one}, {b, two}};
        return points.mix(shares);
    }
    return -1;
}

// A ray from inside the face to its front counts the layers of each solid that it leaves. False when
// it meets a side or a corner, so that another one must be tried.
bool solid_faces::wind(int number, int attempt, windings_t *out)
{
    const solid_triangle &own = solids_.triangles()[triangle_of(faces_[number])];
    exact_points &points = solids_.points();
    const int axis = own.axis;
    const int start = point_inside(number, attempt);
    if (start < 0)
        return attempt > 0;
    const point3_t at = points.rounded(start);
    constexpr float most = std::numeric_limits<float>::infinity();
    box_t ray = box_t::none();
    ray.add(at);
    for (int i = 0; i < 3; ++i) {
        const float slack = 1e-6f * std::max(-ray.low[i], ray.high[i]) + 1e-37f;
        ray.low[i] -= slack;
        ray.high[i] += slack;
    }
    (own.facing > 0 ? ray.high : ray.low)[axis] = own.facing > 0 ? most : -most;
    bool sure = true;
    std::map<int, int> layers;
    solids_.tree().query(ray, [&](int which) {
        const solid_triangle &t = solids_.triangles()[which];
        const int facing = t.axis == axis ? t.facing : points.turn(axis, t.v[0], t.v[1], t.v[2]);
        int inside = 0, on = 0, outside = 0;
        for (int i = 0; i < 3 && sure; ++i) {
            const int side = points.turn(axis, t.v[i], t.v[(i + 1) % 3], start);
            ++(side == 0 ? on : side * (facing == 0 ? 1 : facing) > 0 ? inside : outside);
        }
        if (outside > 0 && (facing != 0 || inside > 0))
            return;
        if (facing == 0 && on < 3)
            return;
        const int side = points.side(points.plane(t.v[0], t.v[1], t.v[2]), start);
        if (facing != 0 && side == 0)
            return; // the face's own plane
        if (facing != 0 && side * facing * own.facing > 0)
            return; // behind
        if (on > 0)
            sure = false;
        else
            layers[t.part] += facing * own.facing;
    });
    if (!sure)
        return false;
    out->assign(layers.begin(), layers.end());
    return true;
}

bool solid_faces::find_windings()
{
    // The face of each patch with the fewest corners.
    std::vector<int> chosen(patches_.size(), -1);
    for (int f = 0; f < static_cast<int>(faces_.size()); ++f) {
        const face_t &face = faces_[f];
        if (face.twin >= 0)
            continue;
        int &best = chosen[face.patch];
        const auto corners = [&](int which) { return outline(faces_[which]).size(); };
        if (best < 0 || corners(f) < corners(best))
            best = f;
    }
    const double before = 2 * static_cast<double>(solids_.triangles().size());
    for (std::size_t p = 0; p < patches_.size(); ++p) {
        if (!progress_.step(before + static_cast<double>(p)))
            return false;
        constexpr int attempts = 60;
        for (int i = 0; chosen[p] >= 0 && i < attempts; ++i) {
            if (wind(chosen[p], i, &patches_[p]))
                break;
        }
    }
    return true;
}

const windings_t &solid_faces::in_front(int face) const { return patches_[faces_[face].patch]; }

void solid_faces::behind(int number, windings_t *out) const
{
    *out = in_front(number);
    const auto add = [&](int unit, int layers) {
        const int part = solids_.units()[unit].part;
        const auto found = std::find_if(out->begin(), out->end(),
                                        [&](const auto &entry) { return entry.first == part; });
        if (found != out->end())
            found->second += layers;
        else
            out->emplace_back(part, layers);
    };
    add(faces_[number].unit, 1);
    if (group_of_[number] >= 0) {
        for (const int twin : twins_[group_of_[number]])
            add(faces_[twin].unit, faces_[twin].opposite ? -1 : 1);
    }
}
