#ifndef VESK_MODEL_CHANGE_MARKS_INTERNAL_H
#define VESK_MODEL_CHANGE_MARKS_INTERNAL_H

// The state of each live object beside its record: kept in a table of its own, because the
// record's layout is public and foreign code may copy it byte by byte.

#include "model/change_marks.h"
#include "model/moved_vertices_internal.h"

#include <functional>
#include <vector>

struct object_state {
    std::uint64_t stamp = 0;
    unsigned marks = CHANGED_ALL;
    std::uint64_t compared = 0; // foreign_count() when the object was compared last
    flat_ptr flat;   // null before the first request; lacks normals only while they are marked
    moved_ptr moved; // with CHANGED_POSITIONS: no other vertices moved; null: any may have
    std::shared_ptr<moved_positions> arrays; // of the motion that the flat mesh follows
    std::uint64_t record_sum = 0;            // of name, texts, frame, flags; when `record_summed`
    bool record_summed = false;
    int place = -1; // in the newest state of the history, which says whether it is still so
    std::uint64_t listed = 0; // the list of changed objects that it was put on last
};

void state_new(object_t *object);          // forgets what an earlier object of this address left
void state_forget(const object_t *object); // before the record is freed
bool state_is_alive(const object_t *object);
object_state &state_of(const object_t *object);
void for_each_state(const std::function<void(const object_t *, object_state &)> &visit);

// The objects that were made or marked since this was asked last; each once, in no order. False when only a
// look at all objects tells. One asks: the history.
bool changed_objects_take(std::vector<object_t *> *changed);
// Grows when the links of the tree may have changed.
std::uint64_t tree_link_count();

// Compares an object that is suspect and was not compared since; marks the differences.
void state_resolve(const object_t *object, object_state &state);

// The object's flat mesh as it is now, without normals, to be completed and given to state_set_flat.
std::shared_ptr<flat_mesh> state_flat_but_normals(object_t *object);
// This is what the lists hold, but for the aspects `marks`: normals, or nothing.
void state_set_flat(object_t *object, std::shared_ptr<flat_mesh> flat, unsigned marks);

// Which aspects of the raw lists differ from a flat mesh (geometry only).
unsigned flat_compare(const object_t *object, const flat_mesh &flat);

#endif
