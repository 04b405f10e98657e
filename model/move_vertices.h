#ifndef VESK_MODEL_MOVE_VERTICES_H
#define VESK_MODEL_MOVE_VERTICES_H

#include "base/big_vector.h"
#include "base/worker.h"
#include "model/change_marks.h"
#include "model/deferred_records.h"
#include "model/each.h"
#include "model/flat_array.h"

// Puts each of the object's own vertices at move(its position), or where those of `from` come, in their order;
// marks the object. Records that are deferred stay so. `move` may be called on several threads at once.
template <class Move>
void object_move_vertices(object_t *object, const Move &move,
                          const flat_array<point3_t> &from = nullptr)
{
    const flat_ptr before = untouched_flat(object);
    if (!before) {
        std::size_t v = 0;
        for (vertex *point : each<vertex>(object->vertices))
            point->position = move(from != nullptr ? (*from)[v++] : point->position);
        object_mark(object, CHANGED_POSITIONS);
        return;
    }
    const std::vector<point3_t> &starts = from != nullptr ? *from : *before->positions;
    auto positions = big_vector<point3_t>(before->num_vertices());
    in_parallel_ranges(before->num_vertices(), [&](int begin, int end) {
        for (int v = begin; v < end; ++v)
            positions[v] = move(starts[v]);
    });
    auto flat = std::make_shared<flat_mesh>(*before);
    flat->positions = flat_shared(std::move(positions));
    object_defer_values(object, std::move(flat), CHANGED_POSITIONS);
}

#endif
