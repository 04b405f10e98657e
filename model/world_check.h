#ifndef VESK_MODEL_WORLD_CHECK_H
#define VESK_MODEL_WORLD_CHECK_H

// One walk of the world that repairs the damage that faults and foreign code may leave, and reports
// what it found: counts that differ from their lists, cycles, wrong parents, null and shared
// records, corners whose vertex belongs to no or another object. References held outside the scene
// (selection, undo records) are then filtered against the living records.

#include "model/object.h"

#include <string>
#include <vector>

struct world_fault {
    object_t *object;
    std::string text; // "vertex count 7, list has 5"
};

// Repairs the tree below `top`; marks and announces the changes. Empty when all is well.
std::vector<world_fault> world_check(object_t *top);

// Whether a list of the tree runs into itself, or an object stands in it twice: other walks of it would
// not end.
bool world_has_ring(const object_t *top);

// After foreign code: repairs a tree that has such a list, says who left it, and returns true. Nothing
// that walks the tree would end.
bool world_cut_rings(object_t *top, const char *who);

#endif
