#ifndef VESK_MODEL_OWNERS_H
#define VESK_MODEL_OWNERS_H

// Owners of many vertices or surfaces, found in one walk of the world.

#include "model/object.h"

#include <vector>

struct owned_elements {
    object_t *object;
    std::vector<int> indices; // places in the object's list, ascending
};

// For a list of vertices (surfaces): each owning object, in tree order, with the places of those it
// owns. Elements that no object owns are left out, repeated ones are listed once.
std::vector<owned_elements> vertices_by_owner(const listitem *vertices);
std::vector<owned_elements> surfaces_by_owner(const listitem *surfaces);

#endif
