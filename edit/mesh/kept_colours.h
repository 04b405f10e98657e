#ifndef VESK_EDIT_MESH_KEPT_COLOURS_H
#define VESK_EDIT_MESH_KEPT_COLOURS_H

// Colours that are kept with an object's vertices, through a change that makes other vertices.

#include "model/object.h"

#include <vector>

class kept_colours {
public:
    // Remembers the colours that the object has now, if any.
    explicit kept_colours(object_t *object);
    // Gives each of its vertices the colour of the one that was nearest to its place.
    void give_back() const;

private:
    object_t *object_;
    std::vector<unsigned char> rgb_;
    std::vector<point3_t> places_;
};

#endif
