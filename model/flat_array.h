#ifndef VESK_MODEL_FLAT_ARRAY_H
#define VESK_MODEL_FLAT_ARRAY_H

#include "model/flat_mesh.h"

#include <utility>

// An array of a flat mesh, of values that nobody changes any more.
template <class T>
flat_array<T> flat_shared(std::vector<T> &&elements)
{
    return std::make_shared<const flat_vector<T>>(std::move(elements));
}

#endif
