#ifndef VESK_VIEW_PICK_INDEX_H
#define VESK_VIEW_PICK_INDEX_H

// The elements of large objects in blocks that lie close together, each with its box, so that a
// search round a place of the screen looks at a few of them only. Kept with the flat mesh: made
// when it is first asked for, and refitted when only positions changed.

#include "model/flat_mesh.h"

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

struct pick_block_t {
    std::uint32_t first, count; // into the order
    point3_t min, max;
};

struct pick_order_t {
    std::vector<std::int32_t> order; // element numbers, those of a block side by side
    std::vector<pick_block_t> blocks;

    [[nodiscard]] std::span<const std::int32_t> members(const pick_block_t &block) const
    {
        return {order.data() + block.first, block.count};
    }
};

struct pick_index_t {
    pick_order_t surfaces; // those with corners
    pick_order_t vertices;
};

// Of the object's present mesh; null for a small one, of which everything is looked at.
const pick_index_t *pick_index(const object_t *object, const flat_mesh &mesh);

#endif
