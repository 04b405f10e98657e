#ifndef VESK_EDIT_CREATE_H
#define VESK_EDIT_CREATE_H

#include "model/object.h"

#include <vector>

// The shapes that the create tools and the command "create" make from the corners of a box: one
// table for both. The plane is a view's (0 front, 1 side, 2 plan).

struct create_kind_t {
    const char *name;  // also the draw mode's, where there is one
    const char *label; // of the undo record
    bool solid;        // takes a third extent
    object_t *(*make)(int plane, const point3_t &c1, const point3_t &c2);
};

// Null for an unknown name.
const create_kind_t *create_kind(const char *name);

// Links a new object under the world, numbers its name where another object has it ("cube 2"), opens
// its undo record, selects it and redraws. Null: nothing.
void link_created(object_t *object, const char *label, bool as_operation = false);

// An object of one surface: a polygon, or a line through the points. `kind` is one of "polygon",
// "polyline" and "line". Null for another kind, and when there are too few points.
struct outline_kind_t {
    const char *name;  // also the draw mode's
    const char *label; // of the undo record
    int type;          // of the surface
    std::size_t fewest, most;
};
const outline_kind_t *outline_kind(const char *name);
object_t *new_outline(const outline_kind_t &kind, const std::vector<point3_t> &points);

// A light of its own at a point, linked under the world, with an undo record.
void add_light_at(const point3_t &at);

// Handlers of "create_outline" (kind, then all coordinates in one text) and "create_light".
void command_create_outline(const char *kind, const char *coordinates);
void command_create_light(float x, float y, float z);

// Handler of "create": KIND PLANE x1 y1 z1 x2 y2 z2; equal corners make the regular one where there
// is one. The result is the object's identity.
void command_create(int count, const char *const *words);

#endif
