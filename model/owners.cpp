#include "model/owners.h"

#include "model/each.h"
#include "model/world.h"

#include <unordered_set>

namespace {

// Walks the elements of all objects in tree order; `wanted(element)` says which are taken.
template <class ListOf, class Wanted>
std::vector<owned_elements> gather(ListOf list_of, const Wanted &wanted)
{
    std::vector<owned_elements> owners;
    for_each_object(vesk_get_world(), [&](object_t *object) {
        std::vector<int> indices;
        int i = 0;
        for (const void *element : each<void>(list_of(object))) {
            if (wanted(element))
                indices.push_back(i);
            ++i;
        }
        if (!indices.empty())
            owners.push_back({object, std::move(indices)});
    });
    return owners;
}

template <class ListOf>
std::vector<owned_elements> elements_by_owner(const listitem *elements, ListOf list_of)
{
    if (!elements)
        return {};
    // Most lists are in the order of the model ("select all"): then no table is needed.
    const listitem *next = elements;
    std::vector<owned_elements> owners = gather(list_of, [&](const void *element) {
        if (!next || item_of<void>(next) != element)
            return false;
        next = next->next;
        return true;
    });
    if (!next)
        return owners;
    std::unordered_set<const void *> wanted;
    for (const void *element : each<void>(elements))
        wanted.insert(element);
    return gather(list_of, [&](const void *element) { return wanted.count(element) != 0; });
}

} // namespace

std::vector<owned_elements> vertices_by_owner(const listitem *vertices)
{
    return elements_by_owner(vertices, [](const object_t *object) { return object->vertices; });
}

std::vector<owned_elements> surfaces_by_owner(const listitem *surfaces)
{
    return elements_by_owner(surfaces, [](const object_t *object) { return object->surfaces; });
}
