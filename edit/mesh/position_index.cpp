#include "edit/mesh/position_index.h"

#include "base/big_vector.h"
#include "model/vector.h"

#include <algorithm>
#include <bit>
#include <numeric>

namespace {

std::uint32_t hash_of(const point3_t &at)
{
    // Adding 0 makes -0 the same as 0.
    const auto bits = [](float value) {
        return static_cast<std::uint64_t>(std::bit_cast<std::uint32_t>(value + 0.0f));
    };
    std::uint64_t h = (bits(at.x) << 32 | bits(at.y)) * 0x9E3779B97F4A7C15ULL;
    h = (h ^ (h >> 29) ^ bits(at.z)) * 0xBF58476D1CE4E5B9ULL;
    return static_cast<std::uint32_t>(h >> 32);
}

std::size_t capacity_for(std::size_t expected)
{
    return std::bit_ceil(std::max<std::size_t>(2 * expected, 16));
}

} // namespace

position_index::position_index(std::size_t expected)
{
    slots_ = big_vector<std::uint64_t>(capacity_for(expected));
    entries_.reserve(expected);
}

position_index::position_index(const std::vector<point3_t> &positions, std::size_t more)
    : position_index(positions.size() + more)
{
    std::vector<int> numbers(positions.size());
    std::iota(numbers.begin(), numbers.end(), 0);
    find_or_add_all(positions, numbers);
}

// The slot that holds the position, or the empty one for it.
std::size_t position_index::slot_of(const point3_t &at, std::uint32_t hash) const
{
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
        const std::uint64_t slot = slots_[i];
        if (slot == 0)
            return i;
        if (slot >> 32 == hash && point_equal(entries_[(slot & 0xFFFFFFFF) - 1].at, at))
            return i;
    }
}

void position_index::bring(const point3_t &at) const
{
    __builtin_prefetch(&slots_[hash_of(at) & (slots_.size() - 1)]);
}

int position_index::find(const point3_t &at) const
{
    const std::uint64_t slot = slots_[slot_of(at, hash_of(at))];
    return slot == 0 ? -1 : entries_[(slot & 0xFFFFFFFF) - 1].number;
}

int position_index::find_or_add(const point3_t &at, int number)
{
    const std::uint32_t hash = hash_of(at);
    std::size_t i = slot_of(at, hash);
    if (slots_[i] != 0)
        return entries_[(slots_[i] & 0xFFFFFFFF) - 1].number;
    if (!point_equal(at, at))
        return number; // not a number: never found again
    if (2 * (entries_.size() + 1) > slots_.size()) {
        grow();
        i = slot_of(at, hash);
    }
    entries_.push_back({at, number});
    slots_[i] = static_cast<std::uint64_t>(hash) << 32 | entries_.size();
    return number;
}

void position_index::find_or_add_all(std::span<const point3_t> positions, std::span<int> numbers)
{
    constexpr std::size_t ahead = 16;
    for (std::size_t i = 0; i < positions.size(); ++i) {
        if (i + ahead < positions.size())
            bring(positions[i + ahead]);
        numbers[i] = find_or_add(positions[i], numbers[i]);
    }
}

void position_index::grow()
{
    std::vector<std::uint64_t> old(2 * slots_.size());
    old.swap(slots_);
    const std::size_t mask = slots_.size() - 1;
    for (const std::uint64_t slot : old) {
        std::size_t i = (slot >> 32) & mask;
        while (slot != 0 && slots_[i] != 0)
            i = (i + 1) & mask;
        if (slot != 0)
            slots_[i] = slot;
    }
}
