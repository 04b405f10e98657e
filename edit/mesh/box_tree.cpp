#include "edit/mesh/box_tree.h"

#include "base/worker.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>
#include <utility>

box_t box_t::none()
{
    constexpr float most = std::numeric_limits<float>::infinity();
    return {{most, most, most}, {-most, -most, -most}};
}

void box_t::add(const point3_t &p)
{
    const float at[3] = {p.x, p.y, p.z};
    for (int i = 0; i < 3; ++i) {
        low[i] = std::min(low[i], at[i]);
        high[i] = std::max(high[i], at[i]);
    }
}

void box_t::add(const box_t &box)
{
    for (int i = 0; i < 3; ++i) {
        low[i] = std::min(low[i], box.low[i]);
        high[i] = std::max(high[i], box.high[i]);
    }
}

namespace {

// Ten bits, with two zeros between each and the next.
std::uint32_t spread(std::uint32_t x)
{
    x = (x | (x << 16)) & 0x030000FFU;
    x = (x | (x << 8)) & 0x0300F00FU;
    x = (x | (x << 4)) & 0x030C30C3U;
    return (x | (x << 2)) & 0x09249249U;
}

using keyed_t = std::pair<std::uint32_t, int>;

// By their keys of 30 bits; those of one key stay in order.
void sort_by_key(std::vector<keyed_t> &keys)
{
    constexpr int bits = 10;
    constexpr std::uint32_t buckets = 1U << bits;
    std::vector<keyed_t> sorted(keys.size());
    for (int shift = 0; shift < 3 * bits; shift += bits) {
        const auto bucket_of = [&](const keyed_t &at) { return (at.first >> shift) % buckets; };
        std::array<std::size_t, buckets + 1> next = {};
        for (const keyed_t &at : keys)
            ++next[bucket_of(at) + 1];
        std::partial_sum(next.begin(), next.end(), next.begin());
        for (const keyed_t &at : keys)
            sorted[next[bucket_of(at)]++] = at;
        keys.swap(sorted);
    }
}

// The places of boxes along a curve that fills space.
std::vector<keyed_t> along_curve(const std::vector<box_t> &boxes)
{
    box_t all = box_t::none();
    for (const box_t &box : boxes)
        all.add(box);
    std::vector<keyed_t> keys(boxes.size());
    in_parallel_ranges(static_cast<int>(boxes.size()), [&](int begin, int end) {
        for (int b = begin; b < end; ++b) {
            std::uint32_t key = 0;
            for (int i = 0; i < 3; ++i) {
                const float size = all.high[i] - all.low[i];
                const float middle = (boxes[b].low[i] + boxes[b].high[i]) / 2;
                const float share = size > 0 ? (middle - all.low[i]) / size : 0;
                const auto cell =
                    static_cast<std::uint32_t>(std::clamp(share * 1024, 0.0f, 1023.0f));
                key |= spread(cell) << i;
            }
            keys[b] = {key, b};
        }
    });
    sort_by_key(keys);
    return keys;
}

} // namespace

box_tree::box_tree(std::vector<box_t> boxes) : boxes_(std::move(boxes))
{
    order_.reserve(boxes_.size());
    for (const auto &[key, box] : along_curve(boxes_))
        order_.push_back(box);
    put_in_order();
    nodes_.reserve(boxes_.size());
    if (!boxes_.empty())
        build(0, static_cast<int>(boxes_.size()));
}

// Where they stand: a second array of millions of boxes would be the most that a model check needs.
void box_tree::put_in_order()
{
    std::vector<bool> placed(boxes_.size());
    for (std::size_t first = 0; first < boxes_.size(); ++first) {
        const box_t kept = boxes_[first];
        for (std::size_t at = first; !placed[at];) {
            placed[at] = true;
            const auto from = static_cast<std::size_t>(order_[at]);
            boxes_[at] = from == first ? kept : boxes_[from];
            at = from;
        }
    }
}

int box_tree::build(int begin, int end)
{
    const int self = static_cast<int>(nodes_.size());
    nodes_.push_back({box_t::none(), begin, end, 0});
    if (end - begin <= leaf_size) {
        for (int i = begin; i < end; ++i)
            nodes_[self].box.add(boxes_[i]);
        return self;
    }
    const int middle = begin + (end - begin) / 2;
    build(begin, middle);
    const int right = build(middle, end);
    nodes_[self].right = right;
    nodes_[self].box = nodes_[self + 1].box;
    nodes_[self].box.add(nodes_[right].box);
    return self;
}

std::vector<box_tree::piece_t> box_tree::pieces(int wanted) const
{
    std::vector<piece_t> all;
    if (nodes_.empty())
        return all;
    const int most = static_cast<int>(boxes_.size()) / std::max(wanted, 1);
    std::vector<int> open = {0};
    while (!open.empty()) {
        const int at = open.back();
        open.pop_back();
        const node_t &node = nodes_[at];
        if (node.right == 0 || node.end - node.begin <= most) {
            all.push_back({at, at});
            continue;
        }
        all.push_back({at + 1, node.right});
        open.insert(open.end(), {node.right, at + 1});
    }
    return all;
}
