#ifndef VESK_BASE_BIG_VECTOR_H
#define VESK_BASE_BIG_VECTOR_H

// Room for millions of values. The first touch of a page costs as much as the work on it: the system
// is asked for the pages of a large vector on all cores, before they are used.

#include <cstddef>
#include <vector>

// Has the system bring the memory, where it is large and not there yet. What it holds stays.
void bring_memory(void *begin, std::size_t bytes);

// The same on this thread, however little it is; others may write there meanwhile.
void touch_memory(void *begin, std::size_t bytes);

template <class T>
void reserve_big(std::vector<T> &values, std::size_t n)
{
    values.reserve(n);
    bring_memory(values.data(), n * sizeof(T));
}

// Values of zero.
template <class T>
std::vector<T> big_vector(std::size_t n)
{
    std::vector<T> values;
    reserve_big(values, n);
    values.resize(n);
    return values;
}

#endif
