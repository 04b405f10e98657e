#ifndef VESK_MODEL_FLAT_ARRAY_H
#define VESK_MODEL_FLAT_ARRAY_H

#include "model/flat_mesh.h"

#include <cstring>
#include <utility>

// An array of a flat mesh, of values that nobody changes any more.
template <class T>
flat_array<T> flat_shared(std::vector<T> &&elements)
{
    return std::make_shared<const flat_vector<T>>(std::move(elements));
}

// Whether they have the same values.
template <class T>
bool flat_equal(const flat_array<T> &a, const flat_array<T> &b)
{
    return a == b || (a && b && *a == *b);
}

// The same to the bit.
template <class T>
bool flat_identical(const flat_array<T> &a, const flat_array<T> &b)
{
    return a == b ||
           (a && b && a->size() == b->size() &&
            (a->empty() || std::memcmp(a->data(), b->data(), a->size() * sizeof(T)) == 0));
}

#endif
