#ifndef VESK_MODEL_CHANGE_MARKS_H
#define VESK_MODEL_CHANGE_MARKS_H

// Every object has a stamp and marks for what changed since its flat mesh was built. Whoever
// changes an object through anything but the functions that say they do it, marks it. Foreign code
// (base/foreign.h) cannot be trusted to: when it returns, every object is suspect, and a suspect
// object is compared once with its flat mesh and then marked exactly. While foreign code runs, every
// object is suspect at each look and the counts below grow at each look.

#include "model/object.h"

#include <cstdint>

enum change_aspect : unsigned {
    CHANGED_POSITIONS = 1,
    CHANGED_TOPOLOGY = 2, // vertices, surfaces or corners were added, removed or redirected
    CHANGED_TEXTURE_COORDS = 4,
    CHANGED_ATTRIBUTES = 8, // material, type, shading, sides of surfaces
    CHANGED_NORMALS = 16,   // of vertices and surfaces
    CHANGED_RECORD = 32,    // name, texts, texture, frame, flags, properties of the object itself
    CHANGED_GEOMETRY = 31,
    CHANGED_ALL = 63
};

// The object differs from its flat mesh in these aspects. Cheap: may be called for every vertex.
void object_mark(object_t *object, unsigned aspects);
// The tree's links changed (objects were added, removed or moved).
void tree_mark();
// Material values changed in place.
void palette_mark();

// Grows with every mark of the object; equal stamps mean an unchanged object. Compares a suspect
// object first. 0 for an object that was never marked or built.
std::uint64_t object_stamp(object_t *object);

// Grow with every change: of anything in the model; of the tree, names and flags; of the palette.
std::uint64_t model_change_count();
std::uint64_t tree_change_count();
std::uint64_t palette_change_count();

// After foreign code that ran outside a scope.
void mark_all_suspect();

// Compares every object of the world with its flat mesh and prints those that changed without a
// mark ("unmarked change in object '%s': %s, after %s"). Returns how many there are; they are
// marked then. Builds with VESK_CHECK_MARKS run it after every command.
int marks_check(const char *after);

// How many marks_check found since this was asked last; tests fail when there are any.
int marks_take_unmarked();

#endif
