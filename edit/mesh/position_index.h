#ifndef VESK_EDIT_MESH_POSITION_INDEX_H
#define VESK_EDIT_MESH_POSITION_INDEX_H

// Vertices by their exact position: 0 and -0 are equal, a position that is not a number equals
// nothing. Of several vertices at one place the first is the one that is found.

#include "base/types.h"

#include <cstdint>
#include <span>
#include <vector>

class position_index {
public:
    // For about this many positions; grows.
    explicit position_index(std::size_t expected);
    // Holds all of these, under their places, with room for about so many more.
    explicit position_index(const std::vector<point3_t> &positions, std::size_t more = 0);

    // The position will be asked for soon: memory begins to bring what that takes.
    void bring(const point3_t &at) const;
    // The number of the first one that was added at this place, or -1.
    [[nodiscard]] int find(const point3_t &at) const;
    // The same; when there was none, `number` is it from now on. Numbers are below 2^31.
    int find_or_add(const point3_t &at, int number);

    // The same for many, one after the other: `numbers` are replaced by what is found. Several times as
    // fast, for the memory is asked for ahead.
    void find_or_add_all(std::span<const point3_t> positions, std::span<int> numbers);

private:
    struct entry {
        point3_t at;
        int number;
    };

    [[nodiscard]] std::size_t slot_of(const point3_t &at, std::uint32_t hash) const;
    void grow();

    // Open addressing. A slot is empty (0) or the hash's upper half and the entry's place plus one.
    std::vector<std::uint64_t> slots_;
    std::vector<entry> entries_;
};

#endif
