#ifndef VESK_MODEL_RECORD_MAKER_H
#define VESK_MODEL_RECORD_MAKER_H

// Makes and frees vertices and surfaces by the hundred thousand, on all cores: every operation that
// writes a whole mesh back goes this way. A few thousand are made on this thread from the heap.

#include "base/worker.h"
#include "model/object_internal.h"
#include "model/record_pages.h"

#include <algorithm>
#include <span>
#include <vector>

// Makes records on one thread.
class record_maker {
public:
    explicit record_maker(bool from_pages) : blocks_(from_pages) {}

    vertex *make(const vertex &value) { return blocks_.make(value); }
    // Without corners, whatever `value` has.
    surface_t *make(const surface_t &value)
    {
        surface_t *surface = blocks_.make(value);
        surface->refs = nullptr;
        surface->num_refs = 0;
        return surface;
    }
    // Appends after the surface's last corner `last` (null: there is none); returns the new node.
    listitem *add_corner(surface_t *surface, listitem *last, const svertex &corner)
    {
        listitem *node = make_node(blocks_.make(corner));
        (last != nullptr ? last->next : surface->refs) = node;
        ++surface->num_refs;
        return node;
    }
    listitem *make_node(void *element)
    {
        return blocks_.make(listitem{reinterpret_cast<std::intptr_t>(element), nullptr});
    }

private:
    block_maker blocks_;
};

struct record_chain {
    listitem *first = nullptr, *last = nullptr;
    int count = 0;

    void append(listitem *node) { append({node, node, 1}); }
    void append(const record_chain &other)
    {
        if (other.first == nullptr)
            return;
        (last != nullptr ? last->next : first) = other.first;
        last = other.last;
        count += other.count;
    }
};

// Joins what make_range(begin, end, maker) returns for ranges that are 0 .. count together; of many
// elements on several threads at once.
template <class MakeRange>
record_chain make_in_ranges(int count, const MakeRange &make_range)
{
    constexpr int few = 4096, range = 16384;
    if (count < few || !record_pages_in_use()) {
        record_maker maker(false);
        return make_range(0, count, maker);
    }
    std::vector<record_chain> parts((count + range - 1) / range);
    in_parallel(static_cast<int>(parts.size()), [&](int i) {
        record_maker maker(true);
        parts[i] = make_range(i * range, std::min((i + 1) * range, count), maker);
    });
    record_chain all;
    for (const record_chain &part : parts)
        all.append(part);
    return all;
}

// A chain of what make(i, maker) returns for each i below `count`, in this order, without those for
// which it returns null. `make` is called on several threads at once when there are many: it makes
// records by its maker alone, and changes nothing that belongs to another i.
template <class Make>
record_chain make_records(int count, const Make &make)
{
    return make_in_ranges(count, [&](int begin, int end, record_maker &maker) {
        std::vector<void *> elements;
        elements.reserve(std::max(end - begin, 0));
        for (int i = begin; i < end; ++i) {
            if (void *element = make(i, maker); element != nullptr)
                elements.push_back(element);
        }
        record_chain chain; // its nodes side by side: the list is walked often
        for (void *element : elements)
            chain.append(maker.make_node(element));
        return chain;
    });
}

// A chain of these elements, in their order.
template <class T>
record_chain make_nodes(const std::vector<T *> &elements)
{
    return make_in_ranges(static_cast<int>(elements.size()),
                          [&](int begin, int end, record_maker &maker) {
                              record_chain chain;
                              for (int i = begin; i < end; ++i)
                                  chain.append(maker.make_node(elements[i]));
                              return chain;
                          });
}

// Links the chain behind a list, and counts.
void list_append_chain(listitem **head, int *count, const record_chain &chain);

// surface_free_record and vertex_free_record for many.
void free_records(std::span<surface_t *const> surfaces, std::span<vertex *const> vertices);

#endif
