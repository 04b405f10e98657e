#include "edit/mesh/sliver_tidy.h"

#include "model/vec3d.h"

#include <algorithm>
#include <map>
#include <unordered_map>

namespace {

// As the model check has it, and a little more.
constexpr double no_area = 1.5e-7;

class tidier {
public:
    tidier(std::vector<solid_result::polygon_t> &polygons,
           const std::function<point3_t(int)> &position,
           const std::function<bool(int, int)> &take_whole)
        : polygons_(polygons), position_(position), take_whole_(take_whole)
    {
        for (int i = 0; i < static_cast<int>(polygons.size()); ++i)
            link(i);
    }
    void join_slivers();
    void write_back();

private:
    struct node_t {
        int vertex, polygon;
        int previous, next;
        flat_uv uv;
    };
    static std::uint64_t key(int a, int b)
    {
        return (static_cast<std::uint64_t>(a) << 32) | static_cast<std::uint32_t>(b);
    }
    [[nodiscard]] vec3d at(int node) const { return to_vec3d(position_(nodes_[node].vertex)); }
    void link(int polygon);
    void enter(int node);
    void forget(int node);
    [[nodiscard]] int longest_side_of_sliver(int polygon) const;
    int beyond(int side);
    bool join(int side);
    void drop_spikes(int node);

    std::vector<solid_result::polygon_t> &polygons_;
    const std::function<point3_t(int)> &position_;
    const std::function<bool(int, int)> &take_whole_;
    std::vector<node_t> nodes_;
    std::vector<int> first_;                    // of each polygon; -1: gone
    std::unordered_map<std::uint64_t, int> at_; // sides, by the node where they begin
};

void tidier::link(int number)
{
    const auto &corners = polygons_[number].corners;
    const int first = static_cast<int>(nodes_.size()), n = static_cast<int>(corners.size());
    first_.push_back(n == 0 ? -1 : first);
    for (int i = 0; i < n; ++i) {
        nodes_.push_back({corners[i].vertex, number, first + (i + n - 1) % n, first + (i + 1) % n,
                          corners[i].uv});
    }
    for (int i = first; i < first + n; ++i)
        enter(i);
}

void tidier::enter(int node)
{
    at_[key(nodes_[node].vertex, nodes_[nodes_[node].next].vertex)] = node;
}

void tidier::forget(int node)
{
    const auto found = at_.find(key(nodes_[node].vertex, nodes_[nodes_[node].next].vertex));
    if (found != at_.end() && found->second == node)
        at_.erase(found);
}

// The node where it begins; -1 when the polygon has an area.
int tidier::longest_side_of_sliver(int polygon) const
{
    const int first = first_[polygon];
    if (first < 0)
        return -1;
    vec3d normal;
    double longest = -1;
    int best = -1, node = first;
    do {
        const vec3d p = at(node) - at(first), q = at(nodes_[node].next) - at(first);
        normal += cross(p, q);
        if (const double side = dot(q - p, q - p); side > longest) {
            longest = side;
            best = node;
        }
        node = nodes_[node].next;
    } while (node != first);
    return length(normal) <= no_area * longest ? best : -1;
}

// Takes corners away between whose neighbours the outline goes there and back.
void tidier::drop_spikes(int node)
{
    while (nodes_[node].previous != node &&
           nodes_[nodes_[node].previous].vertex == nodes_[nodes_[node].next].vertex) {
        const int before = nodes_[node].previous, after = nodes_[node].next;
        const int polygon = nodes_[node].polygon;
        forget(before);
        forget(node);
        if (before == after || nodes_[after].next == before) {
            if (before != after)
                forget(after);
            first_[polygon] = -1; // nothing is left between
            return;
        }
        // `after` goes too: it is at the place of `before`.
        forget(after);
        const int beyond = nodes_[after].next;
        nodes_[before].next = beyond;
        nodes_[beyond].previous = before;
        first_[polygon] = before;
        enter(before);
        node = before;
    }
}

// Where the same side begins in the polygon beyond it, or -1.
int tidier::beyond(int side)
{
    const int from = nodes_[nodes_[side].next].vertex, to = nodes_[side].vertex;
    auto found = at_.find(key(from, to));
    if (found == at_.end() && take_whole_(from, to)) {
        link(static_cast<int>(polygons_.size()) - 1);
        found = at_.find(key(from, to));
    }
    return found == at_.end() ? -1 : found->second;
}

// The polygon of this side goes into the one beyond it.
bool tidier::join(int side)
{
    const int end = nodes_[side].next, sliver = nodes_[side].polygon;
    const int from = beyond(side);
    if (from < 0 || nodes_[from].polygon == sliver)
        return false;
    const int to = nodes_[from].next, into = nodes_[from].polygon;
    const vec3d start = at(from), along = at(to) - start;
    const double size = dot(along, along);
    forget(from);
    std::vector<int> moved;
    for (int node = side;; node = nodes_[node].next) {
        forget(node);
        if (node != side && node != end)
            moved.push_back(node);
        if (nodes_[node].next == side)
            break;
    }
    int last = from;
    const flat_uv p = nodes_[from].uv, q = nodes_[to].uv;
    for (const int node : moved) {
        const auto share = static_cast<float>(dot(at(node) - start, along) / size);
        nodes_[node].uv = {p.u + (q.u - p.u) * share, p.v + (q.v - p.v) * share};
        nodes_[node].polygon = into;
        nodes_[node].previous = last;
        nodes_[last].next = node;
        last = node;
    }
    nodes_[last].next = to;
    nodes_[to].previous = last;
    for (int node = from; node != to; node = nodes_[node].next)
        enter(node);
    first_[sliver] = -1;
    first_[into] = from;
    drop_spikes(from);
    if (first_[into] >= 0 && nodes_[nodes_[to].previous].next == to)
        drop_spikes(to);
    return true;
}

void tidier::join_slivers()
{
    for (int i = 0; i < static_cast<int>(first_.size()); ++i) {
        // The one that it goes into may have no area itself and come later, or have come before.
        int polygon = i;
        for (int tries = 0; tries < 8; ++tries) {
            const int side = longest_side_of_sliver(polygon);
            if (side < 0)
                break;
            const int there = beyond(side);
            const int into = there < 0 ? -1 : nodes_[there].polygon;
            if (!join(side))
                break;
            polygon = into;
        }
    }
}

void tidier::write_back()
{
    std::map<std::vector<int>, std::vector<int>> by_corners; // those alive
    for (int i = 0; i < static_cast<int>(first_.size()); ++i) {
        auto &corners = polygons_[i].corners;
        corners.clear();
        if (first_[i] < 0)
            continue;
        int node = first_[i];
        do {
            corners.push_back({nodes_[node].vertex, nodes_[node].uv});
            node = nodes_[node].next;
        } while (node != first_[i]);
        if (corners.size() < 3) {
            corners.clear();
            continue;
        }
        if (corners.size() > 4)
            continue;
        // Back to back with one before?
        std::vector<int> loop;
        for (const auto &corner : corners)
            loop.push_back(corner.vertex);
        std::rotate(loop.begin(), std::min_element(loop.begin(), loop.end()), loop.end());
        std::vector<int> back = loop;
        std::reverse(back.begin() + 1, back.end());
        if (const auto other = by_corners.find(back);
            other != by_corners.end() && !other->second.empty()) {
            polygons_[other->second.back()].corners.clear();
            other->second.pop_back();
            corners.clear();
        } else {
            by_corners[loop].push_back(i);
        }
    }
}

} // namespace

void tidy_slivers(std::vector<solid_result::polygon_t> &polygons,
                  const std::function<point3_t(int)> &position,
                  const std::function<bool(int from, int to)> &take_whole)
{
    tidier tidy(polygons, position, take_whole);
    tidy.join_slivers();
    tidy.write_back();
}
