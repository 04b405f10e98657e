#ifndef VESK_MODEL_FREED_INTERNAL_H
#define VESK_MODEL_FREED_INTERNAL_H

#include "model/freed.h"

// Notifies the holders that these trees have left the scene, though they are not freed.
void freed_announce_left(const std::vector<object_t *> &tops);

// Notifies the holders that the object's own vertices and surfaces are gone: their records are
// about to be used for others.
void freed_announce_geometry(const object_t *object);

// Whether any holder points at a vertex; at a vertex or a surface.
bool freed_vertices_are_held();
bool freed_elements_are_held();

// A fault skipped the ends of the batches that were open.
void freed_reset_after_fault();

#endif
