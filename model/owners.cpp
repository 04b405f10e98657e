#include "model/owners.h"

#include "model/deferred_records.h"
#include "model/each.h"
#include "model/world.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>

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

// By their addresses, in any order; false where some of them do not tell.
template <class T>
bool gather_deferred(const listitem *elements, std::vector<owned_elements> *owners)
{
    const deferred_elements deferred(vesk_get_world());
    std::unordered_map<const object_t *, std::vector<int>> found;
    std::vector<int> *indices = nullptr; // of the last one's object
    const object_t *last = nullptr;
    for (const T *element : each<T>(elements)) {
        const auto at = deferred.find(element);
        if (at.object == nullptr)
            return false;
        if (std::exchange(last, at.object) != at.object)
            indices = &found[at.object];
        indices->push_back(at.index);
    }
    for_each_object(vesk_get_world(), [&](object_t *object) {
        const auto own = found.find(object);
        if (own == found.end())
            return;
        if (!std::is_sorted(own->second.begin(), own->second.end()))
            std::sort(own->second.begin(), own->second.end());
        own->second.erase(std::unique(own->second.begin(), own->second.end()), own->second.end());
        owners->push_back({object, std::move(own->second)});
    });
    return true;
}

template <class T, class ListOf>
std::vector<owned_elements> elements_by_owner(const listitem *elements, ListOf list_of)
{
    std::vector<owned_elements> of_deferred;
    if (!elements || gather_deferred<T>(elements, &of_deferred))
        return of_deferred;
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
    return elements_by_owner<vertex>(vertices,
                                     [](const object_t *object) { return object->vertices; });
}

std::vector<owned_elements> surfaces_by_owner(const listitem *surfaces)
{
    return elements_by_owner<surface_t>(surfaces,
                                        [](const object_t *object) { return object->surfaces; });
}
