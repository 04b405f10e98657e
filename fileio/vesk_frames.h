#ifndef VESK_FILEIO_VESK_FRAMES_H
#define VESK_FILEIO_VESK_FRAMES_H

// The frames that objects are written in.

#include "model/object.h"

#include <functional>

// The orientation and centre that a reader will rebuild of an object. An object without a rot line
// takes its parent's orientation, not that of its own matrix.
struct rebuilt_t {
    float rotation[9];
    point3_t centre;
};

struct local_frame_t {
    point3_t location;
    float rotation[9];
    bool has_rotation; // writes a rot line
    bool top;          // its coordinates are written as they are
    rebuilt_t rebuilt;
    // A world point in the object's frame.
    [[nodiscard]] point3_t local(const point3_t &world) const;
};

// The frame that an object is written in; its parent's is null for the top object. Only centre and
// rotation of the record are read.
local_frame_t frame_of(const object_t *object, const rebuilt_t *parent);

// Visits `top` and its descendants in the order of the file, each with the frame it is written in.
// `top` has no frame of its own: when its matrix asks for a rot line, it is the identity's.
void for_each_written(object_t *top,
                      const std::function<void(object_t *, const local_frame_t &)> &visit);

#endif
