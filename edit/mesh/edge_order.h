#ifndef VESK_EDIT_MESH_EDGE_ORDER_H
#define VESK_EDIT_MESH_EDGE_ORDER_H

#include "base/worker.h"

#include <algorithm>
#include <vector>

// Sorts uses of edges by their `low` end, which is below `num_points`, and those at one end as
// `before`, which several threads ask at once, says. Linear where few edges meet at a point.
template <class Use, class Before>
void sort_edge_uses(std::vector<Use> &uses, int num_points, Before &&before)
{
    std::vector<int> starts(static_cast<std::size_t>(num_points) + 1, 0);
    for (const Use &use : uses)
        ++starts[static_cast<std::size_t>(use.low) + 1];
    for (std::size_t i = 1; i < starts.size(); ++i)
        starts[i] += starts[i - 1];
    std::vector<int> next(starts.begin(), starts.end() - 1);
    std::vector<Use> sorted(uses.size());
    for (const Use &use : uses)
        sorted[next[use.low]++] = use;
    in_parallel_ranges(num_points, [&](int begin, int end) {
        for (int i = begin; i < end; ++i)
            std::sort(sorted.begin() + starts[i], sorted.begin() + starts[i + 1], before);
    });
    uses.swap(sorted);
}

#endif
