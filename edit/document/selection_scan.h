#ifndef VESK_EDIT_DOCUMENT_SELECTION_SCAN_H
#define VESK_EDIT_DOCUMENT_SELECTION_SCAN_H

// Sets of vertices and surfaces without hashing: a record's scratch words carry a mark for the
// length of one call.

#include "model/each.h"
#include "model/object_internal.h"
#include "model/record_maker.h"

#include <vector>

template <class T>
void append_elements(const listitem *head, std::vector<T *> *out)
{
    for (T *element : each<T>(head))
        out->push_back(element);
}

template <class T>
std::vector<T *> elements_of(const listitem *head)
{
    std::vector<T *> elements;
    elements.reserve(static_cast<std::size_t>(list_count(head)));
    append_elements(head, &elements);
    return elements;
}

void append_surface_vertices(const surface_t *surface, std::vector<vertex *> *out);

// Each vertex of the selected surfaces once, in the order of their corners. Records on demand stay untouched.
std::vector<vertex *> vertices_of_selected_surfaces();

// The scratch word of each kind of record.
inline uint32_t scratch(const vertex *v) { return vertex_number(v); }
inline void set_scratch(vertex *v, uint32_t value) { set_vertex_number(v, value); }
inline uint32_t scratch(const surface_t *s) { return s->words[2]; }
inline void set_scratch(surface_t *s, uint32_t value) { s->words[2] = value; }
inline uint32_t scratch(const object_t *o) { return static_cast<uint32_t>(o->extra_word2); }
inline void set_scratch(object_t *o, uint32_t value) { o->extra_word2 = static_cast<int>(value); }

// The first of those that are there more than once stays.
template <class T>
void make_unique(std::vector<T *> *elements)
{
    for (T *element : *elements)
        set_scratch(element, 0);
    std::erase_if(*elements, [](T *element) {
        const bool repeated = scratch(element) != 0;
        set_scratch(element, 1);
        return repeated;
    });
}

// Appends those elements that the list does not hold yet, each once, in order. Linear. Returns how
// many were added.
template <class T>
int add_unique(listitem **head, const std::vector<T *> &elements)
{
    if (elements.empty())
        return 0;
    for (T *element : elements)
        set_scratch(element, 0);
    listitem *last = nullptr;
    for (listitem *node = *head; node != nullptr; node = node->next) {
        set_scratch(item_of<T>(node), 1);
        last = node;
    }
    std::vector<T *> fresh;
    fresh.reserve(elements.size());
    for (T *element : elements) {
        if (scratch(element) != 0)
            continue;
        set_scratch(element, 1);
        fresh.push_back(element);
    }
    const record_chain added = make_nodes(fresh);
    (*head != nullptr ? last->next : *head) = added.first;
    return added.count;
}

std::vector<object_t *> unique_objects(const std::vector<object_t *> &objects);

// The surfaces of the world with at least one vertex in `vertices`, in tree order.
std::vector<surface_t *> surfaces_touching(const std::vector<vertex *> &vertices);

#endif
