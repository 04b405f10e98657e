#ifndef VESK_MODEL_FREED_H
#define VESK_MODEL_FREED_H

// Who holds pointers into the scene from outside (selection, undo records, views, clipboard, path
// object, identities) is notified before records are freed: once for each batch, however many they
// are. After foreign code, which frees without notice, freed_filter_foreign finds the dead ones.

#include "model/alloc.h"
#include "model/each.h"

#include <algorithm>
#include <unordered_set>
#include <vector>

struct freed_things {
    std::vector<object_t *> objects; // each with all its descendants
    std::vector<surface_t *> surfaces;
    std::vector<vertex *> vertices;

    [[nodiscard]] bool empty() const
    {
        return objects.empty() && surfaces.empty() && vertices.empty();
    }
};

// Called with the records that are freed (still readable, except in freed_filter_foreign).
// The surfaces and vertices of a freed object are listed too.
using freed_listener = void (*)(const freed_things &freed);
void freed_add_listener(freed_listener listener);

// Adds everything the holder points at to `held`, repetitions allowed.
using freed_holder = void (*)(freed_things &held);
void freed_add_holder(freed_holder holder);

// After foreign code: finds which of the held things are no longer in the world (or in the
// trees the holders' objects head) and announces them. Costs a walk of the world, and nothing
// when nobody holds anything.
void freed_filter_foreign();

// Collects frees; the outermost batch announces them when it ends and then frees the records. So a
// record handed to a batch stays readable until the batch is closed.
class freed_batch {
public:
    freed_batch();
    ~freed_batch();
    freed_batch(const freed_batch &) = delete;
    freed_batch &operator=(const freed_batch &) = delete;

    void add(vertex *point);
    void add(surface_t *surface);
    void add(object_t *object); // with descendants and everything they own
};

// Frees nodes that are in no list any more.
void free_nodes(const std::vector<listitem *> &nodes);

// Takes the elements out of the scene's list for which goes(element, place in the list) is true and
// hands them to the batch. Returns how many went.
template <class T, class Goes>
int list_unlink_if(listitem **head, freed_batch &batch, const Goes &goes)
{
    std::vector<listitem *> nodes;
    std::size_t place = 0;
    for (listitem **at = head; *at != nullptr; ++place) {
        listitem *node = *at;
        T *element = item_of<T>(node);
        if (!goes(element, place)) {
            at = &node->next;
            continue;
        }
        *at = node->next;
        batch.add(element);
        nodes.push_back(node);
    }
    free_nodes(nodes);
    return static_cast<int>(nodes.size());
}

// Whether all elements of the list are among these, in the same order: when all of an object is selected
// and goes, no table is needed to find that out.
template <class T>
bool list_is_within(const listitem *head, const std::vector<T *> &elements)
{
    auto at = elements.begin();
    for (const T *element : each<T>(head)) {
        at = std::find(at, elements.end(), element);
        if (at == elements.end())
            return false;
        ++at;
    }
    return true;
}

// Takes freed elements out of a holder's list; returns the number of nodes removed. Linear in the
// list and in what was freed; nothing when the list is empty.
template <class T>
int list_drop_freed(listitem **head, const std::vector<T *> &freed)
{
    if (!*head || freed.empty())
        return 0;
    if (list_is_within(*head, freed)) {
        const int all = list_count(*head);
        list_free(head);
        return all;
    }
    std::unordered_set<const T *> held;
    for (const T *element : each<T>(*head))
        held.insert(element);
    std::unordered_set<const T *> gone;
    for (const T *element : freed) {
        if (held.count(element) != 0)
            gone.insert(element);
    }
    if (gone.empty())
        return 0;
    int dropped = 0;
    owned_list kept;
    for (T *element : each<T>(*head)) {
        if (gone.count(element) != 0)
            ++dropped;
        else
            kept.add(element);
    }
    list_free(head);
    *head = kept.release();
    return dropped;
}

#endif
