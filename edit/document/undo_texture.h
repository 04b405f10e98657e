#ifndef VESK_EDIT_DOCUMENT_UNDO_TEXTURE_H
#define VESK_EDIT_DOCUMENT_UNDO_TEXTURE_H

// Texture coordinates as an undo record has them: a surface at a time, or in the arrays of an object most
// of whose surfaces change.

#include "edit/document/undo.h"
#include "model/flat_mesh.h"
#include "model/freed.h"

#include <functional>
#include <span>
#include <unordered_set>
#include <vector>

struct saved_corner {
    svertex *reference; // only compared: it is freed with its surface
    float u, v;
};
struct saved_texture_coords {
    surface_t *surface; // null when it was freed
    std::vector<saved_corner> corners;
};

// Its arrays are shared with the flat mesh, and with the history as long as that has them.
struct saved_object_coords {
    object_t *object;          // null when it left the world, or all its surfaces were freed
    flat_mesh lists;           // records, corners and coordinates: nothing else
    std::vector<int> surfaces; // those that changed, ascending; empty for all
    std::unordered_set<const surface_t *> freed;
};

struct undo_texture_coords {
    std::vector<saved_texture_coords> surfaces;
    std::vector<saved_object_coords> objects;

    [[nodiscard]] bool empty() const { return surfaces.empty() && objects.empty(); }
    void save(surface_t *surface);
    // These (ascending, by their places in the object).
    void save(object_t *object, std::span<const int> places);
    void restore() const;
    // Lets go of what is freed, as `is_freed` tells surfaces. Returns whether there was any.
    bool drop(const freed_things &freed, const std::function<bool(surface_t *)> &is_freed);
    void hold(freed_things &held) const;
};

// Saves them in the newest record.
void set_undo_object_texture_coords(object_t *object, std::span<const int> places);

#endif
