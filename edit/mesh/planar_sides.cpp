#include "edit/mesh/planar_sides.h"

#include "edit/mesh/union_find.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <set>

namespace {

std::uint64_t pair_key(int a, int b)
{
    return (static_cast<std::uint64_t>(a) << 32) | static_cast<std::uint32_t>(b);
}

} // namespace

planar_sides::planar_sides(const exact_points &points, int axis, bool mirrored)
    : points_(points), axis_(axis), across_((axis + 1) % 3), up_((axis + 2) % 3),
      mirrored_(mirrored)
{
    if (mirrored)
        std::swap(across_, up_);
}

int planar_sides::turn(int a, int b, int c) const
{
    const int sign = points_.turn(axis_, nodes_[a], nodes_[b], nodes_[c]);
    return mirrored_ ? -sign : sign;
}

int planar_sides::order(int a, int b) const
{
    const int sign = points_.order(across_, nodes_[a], nodes_[b]);
    return sign != 0 ? sign : points_.order(up_, nodes_[a], nodes_[b]);
}

int planar_sides::node_of(int point)
{
    const auto [entry, fresh] = node_numbers_.try_emplace(point, static_cast<int>(nodes_.size()));
    if (fresh)
        nodes_.push_back(point);
    return entry->second;
}

int planar_sides::add(int from, int to)
{
    sides_.push_back({from, to});
    from_node_.push_back(node_of(from));
    to_node_.push_back(node_of(to));
    return static_cast<int>(sides_.size()) - 1;
}

// The sides at each node, counter-clockwise from just right of straight down; a side that is there
// in both directions once.
std::vector<std::vector<planar_sides::spoke_t>> planar_sides::spokes() const
{
    std::vector<std::vector<spoke_t>> all(nodes_.size());
    for (int s = 0; s < static_cast<int>(sides_.size()); ++s) {
        const int from = from_node_[s], to = to_node_[s];
        const bool after = order(to, from) > 0;
        all[from].push_back({to, s, after});
        all[to].push_back({from, -1, !after});
    }
    for (int at = 0; at < static_cast<int>(nodes_.size()); ++at) {
        std::vector<spoke_t> &own = all[at];
        std::sort(own.begin(), own.end(), [&](const spoke_t &a, const spoke_t &b) {
            if (a.node == b.node)
                return a.out > b.out;
            if (a.after != b.after)
                return a.after;
            const int sign = turn(at, a.node, b.node);
            return sign != 0 ? sign > 0 : a.node < b.node;
        });
        own.erase(std::unique(own.begin(), own.end(),
                              [](const spoke_t &a, const spoke_t &b) { return a.node == b.node; }),
                  own.end());
    }
    return all;
}

// ---- bridges ----

// A line sweeps over the sides from left to right and keeps those it meets in order. Right above
// each one it remembers the last node that it met there: nothing lies between that and the next.
class planar_sides::sweep_t {
public:
    explicit sweep_t(const planar_sides &graph)
        : graph_(graph), met_(lower{this}), where_(graph.sides_.size(), met_.end()),
          seen_above_(graph.sides_.size(), -1)
    {
    }

    // Goes on to the node; returns what it sees when it looks back between the sides above and
    // below it, or -1.
    int advance(int node, const std::vector<spoke_t> &spokes, const std::vector<int> &side_of)
    {
        for (std::size_t i = 0; i < spokes.size(); ++i) {
            if (!spokes[i].after && where_[side_of[i]] != met_.end()) {
                met_.erase(where_[side_of[i]]);
                where_[side_of[i]] = met_.end();
            }
        }
        probe_ = node;
        const auto above = met_.lower_bound(probe);
        int seen = -1;
        if (above != met_.begin()) {
            int &last = seen_above_[*std::prev(above)];
            seen = last;
            last = node;
        }
        for (std::size_t i = 0; i < spokes.size(); ++i) {
            if (!spokes[i].after)
                continue;
            seen_above_[side_of[i]] = node;
            where_[side_of[i]] = met_.insert(side_of[i]).first;
        }
        return seen;
    }

private:
    static constexpr int probe = -1; // stands for the node in hand

    struct lower {
        sweep_t *sweep;
        bool operator()(int a, int b) const { return a != b && sweep->is_lower(a, b); }
    };

    [[nodiscard]] std::pair<int, int> ends(int side) const
    {
        const int from = graph_.from_node_[side], to = graph_.to_node_[side];
        return graph_.order(from, to) < 0 ? std::pair(from, to) : std::pair(to, from);
    }
    [[nodiscard]] bool is_lower(int a, int b) const
    {
        if (a == probe) {
            const auto [left, right] = ends(b);
            return graph_.turn(left, right, probe_) < 0;
        }
        const auto [a_left, a_right] = ends(a);
        if (b == probe)
            return graph_.turn(a_left, a_right, probe_) > 0;
        const auto [b_left, b_right] = ends(b);
        const bool a_first = graph_.order(a_left, b_left) <= 0;
        int at =
            a_first ? graph_.turn(a_left, a_right, b_left) : -graph_.turn(b_left, b_right, a_left);
        if (at == 0)
            at = a_first ? graph_.turn(a_left, a_right, b_right)
                         : -graph_.turn(b_left, b_right, a_right);
        return at != 0 ? at > 0 : a < b;
    }

    const planar_sides &graph_;
    std::set<int, lower> met_;
    std::vector<std::set<int, lower>::iterator> where_;
    std::vector<int> seen_above_;
    int probe_ = -1;
};

// The leftmost node of each connected part, if there are several.
std::vector<int> planar_sides::component_starts() const
{
    union_find parts(static_cast<int>(nodes_.size()));
    for (std::size_t s = 0; s < sides_.size(); ++s)
        parts.join(from_node_[s], to_node_[s]);
    std::vector<int> number;
    const int count = parts.number(&number);
    std::vector<int> first(count, -1);
    if (count < 2)
        return {};
    for (int node = 0; node < static_cast<int>(nodes_.size()); ++node) {
        int &start = first[number[node]];
        if (start < 0 || order(node, start) < 0)
            start = node;
    }
    return first;
}

void planar_sides::connect()
{
    const std::vector<int> starts = component_starts();
    if (starts.empty())
        return;
    std::vector<bool> is_start(nodes_.size());
    for (const int node : starts)
        is_start[node] = true;
    const std::vector<std::vector<spoke_t>> spokes_at = spokes();
    // One number for a side and its opposite.
    std::unordered_map<std::uint64_t, int> numbers;
    const auto number_of = [&](int a, int b) -> int & {
        const auto [low, high] = std::minmax(a, b);
        return numbers[pair_key(low, high)];
    };
    for (int s = 0; s < static_cast<int>(sides_.size()); ++s)
        number_of(from_node_[s], to_node_[s]) = s;
    std::vector<int> line(nodes_.size());
    std::iota(line.begin(), line.end(), 0);
    std::sort(line.begin(), line.end(), [&](int a, int b) { return order(a, b) < 0; });

    sweep_t sweep(*this);
    std::vector<side_t> bridges;
    std::vector<int> side_of;
    for (const int node : line) {
        const std::vector<spoke_t> &own = spokes_at[node];
        side_of.clear();
        for (const spoke_t &spoke : own)
            side_of.push_back(number_of(node, spoke.node));
        const int seen = sweep.advance(node, own, side_of);
        // All sides of a part's first node go to the right; what is left of it is inside when the
        // highest one has the inside above it.
        if (is_start[node] && seen >= 0 && !own.empty() && own.back().out >= 0)
            bridges.push_back({nodes_[node], nodes_[seen]});
    }
    for (const side_t &bridge : bridges) {
        add(bridge.from, bridge.to);
        add(bridge.to, bridge.from);
    }
}

// ---- outlines ----

std::vector<std::vector<int>> planar_sides::trace() const
{
    const std::vector<std::vector<spoke_t>> spokes_at = spokes();
    // By which side one goes on that came by a spoke: the first that leaves, clockwise from it.
    std::unordered_map<std::uint64_t, int> leaving;
    for (int at = 0; at < static_cast<int>(nodes_.size()); ++at) {
        const std::vector<spoke_t> &own = spokes_at[at];
        int last = -1;
        for (std::size_t i = 0; i < 2 * own.size(); ++i) {
            const spoke_t &spoke = own[i % own.size()];
            if (i >= own.size())
                leaving[pair_key(at, spoke.node)] = last;
            if (spoke.out >= 0)
                last = spoke.out;
        }
    }
    std::vector<int> next(sides_.size(), -1);
    for (std::size_t s = 0; s < sides_.size(); ++s)
        next[s] = leaving[pair_key(to_node_[s], from_node_[s])];
    std::vector<std::vector<int>> loops;
    std::vector<int> visit(sides_.size(), -1);
    for (int s = 0; s < static_cast<int>(sides_.size()); ++s) {
        std::vector<int> loop;
        int at = s;
        for (; at >= 0 && visit[at] < 0; at = next[at]) {
            visit[at] = s;
            loop.push_back(at);
        }
        if (at == s && !loop.empty())
            loops.push_back(std::move(loop));
    }
    return loops;
}
