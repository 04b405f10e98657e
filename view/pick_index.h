#ifndef VESK_VIEW_PICK_INDEX_H
#define VESK_VIEW_PICK_INDEX_H

// The elements of large objects in blocks that lie close together, each with its box, so that a
// search round a place of the screen looks at a few of them only. Kept with the flat mesh: made of the
// kind of elements that is asked for, when it first is, and refitted when only positions changed.

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

enum class pick_elements { surfaces, vertices }; // surfaces: those with corners

// Of the object's present mesh. Null: everything is looked at, of a small one always, of a large one
// until a worker has made what was asked for.
const pick_order_t *pick_order(const object_t *object, const flat_mesh &mesh, pick_elements kind);

// Of fewer elements it is made at once.
constexpr int least_prepared = 100000;

// Until the worker has nothing to do, for tests.
void pick_orders_wait();

#endif
