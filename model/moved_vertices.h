#ifndef VESK_MODEL_MOVED_VERTICES_H
#define VESK_MODEL_MOVED_VERTICES_H

// Some vertices of an object that move again and again, as in a drag. Whoever names them when it marks
// the object has the flat mesh read these alone, and all that is made from it look at these alone.

#include "model/flat_mesh.h"

struct moved_vertices {
    flat_array<vertex *> records;      // of the flat mesh that the numbers were taken from
    std::vector<std::int32_t> numbers; // places in it, ascending
};
using moved_ptr = std::shared_ptr<const moved_vertices>;

// Those of `vertices` that each of the objects has, in the order of the objects. Each object once.
std::vector<moved_ptr> find_moved(const std::vector<object_t *> &objects,
                                  const std::vector<vertex *> &vertices);

// As object_mark(object, CHANGED_POSITIONS), where no vertices but these moved.
void object_mark_moved(object_t *object, const moved_ptr &moved);

// The vertices in which the positions of two flat meshes of one object may differ; null when nothing
// is known of that.
const std::vector<std::int32_t> *moved_between(const flat_array<point3_t> &before,
                                               const flat_array<point3_t> &now);

#endif
