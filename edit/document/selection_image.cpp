// The selection as runs of places: elements that follow each other in their owner's list, as those
// of "select all" and most rubber bands do, cost one run however many they are.

#include "edit/document/selection_image.h"

#include "edit/document/selection_scan.h"
#include "model/deferred_records.h"
#include "model/identity.h"
#include "model/world.h"

#include <algorithm>
#include <utility>

namespace {

using tracked_objects = std::vector<tracked_model::tracked_object>;

struct place {
    const tracked_model::tracked_object *owner;
    int index;
};

// Finds elements through numbers in their scratch words: made in one walk, at the first question
// that the order of the list does not answer.
template <class T>
class element_places {
public:
    element_places(const tracked_objects &objects, listitem *object_t::*list)
        : objects_(objects), list_(list)
    {
    }

    // By its address, where its object is deferred.
    bool find_deferred(const T *element, place *out)
    {
        const auto known = deferred_.find(element);
        if (known.object == nullptr)
            return false;
        if (known.object != last_object_) {
            const int place = tracked().place_of(known.object); // they are its objects
            last_object_ = known.object;
            last_owner_ = place < 0 ? nullptr : &objects_[place];
        }
        *out = {last_owner_, known.index};
        return last_owner_ != nullptr;
    }

    bool find(const T *element, place *out)
    {
        if (records_.empty())
            number_all();
        const std::uint32_t number = scratch(element);
        if (number >= records_.size() || records_[number] != element)
            return false;
        const auto after = std::upper_bound(starts_.begin(), starts_.end(), number);
        const auto owner = static_cast<std::size_t>(after - starts_.begin()) - 1;
        *out = {&objects_[owner], static_cast<int>(number - starts_[owner])};
        return true;
    }

private:
    void number_all()
    {
        for (const auto &tracked_object : objects_) {
            starts_.push_back(static_cast<std::uint32_t>(records_.size()));
            for (T *element : each<T>(tracked_object.object->*list_)) {
                set_scratch(element, static_cast<std::uint32_t>(records_.size()));
                records_.push_back(element);
            }
        }
    }

    const tracked_objects &objects_;
    listitem *object_t::*list_;
    std::vector<const T *> records_;
    std::vector<std::uint32_t> starts_; // of each object's elements
    deferred_elements deferred_{vesk_get_world()};
    const object_t *last_object_ = nullptr; // of the deferred ones
    const tracked_model::tracked_object *last_owner_ = nullptr;
};

constexpr std::size_t few_objects = 16; // whose first elements are looked at

// `list` is the one of an object that the elements stand in.
template <class T>
std::vector<selection_run> runs_of(const listitem *selected, const tracked_objects &objects,
                                   listitem *object_t::*list)
{
    std::vector<selection_run> runs;
    element_places<T> known(objects, list);
    const listitem *expected = nullptr; // the node after the last element in its owner's list
    const tracked_model::tracked_object *last = nullptr;
    int identity = 0; // its own
    for (const T *element : each<T>(selected)) {
        place at = {nullptr, 0};
        const bool is_deferred = known.find_deferred(element, &at);
        if (!is_deferred && expected && item_of<T>(expected) == element) {
            ++runs.back().count;
            expected = expected->next;
            continue;
        }
        // Selected whole objects begin with an object's first element.
        for (std::size_t i = 0; !is_deferred && i < objects.size() && objects.size() <= few_objects;
             ++i) {
            const listitem *head = objects[i].object->*list;
            if (head && item_of<T>(head) == element)
                at.owner = &objects[i];
        }
        if (!at.owner && !known.find(element, &at))
            continue;
        if (std::exchange(last, at.owner) != at.owner)
            identity = object_identity(at.owner->object);
        if (!runs.empty() && runs.back().identity == identity &&
            runs.back().first + runs.back().count == at.index) {
            ++runs.back().count;
        } else {
            runs.push_back({identity, at.index, 1});
        }
        expected = !is_deferred && at.index == 0 ? (at.owner->object->*list)->next : nullptr;
    }
    return runs;
}

std::vector<selected_edge> places_of_edges(const std::vector<edge_ends> &edges,
                                           const tracked_objects &objects)
{
    std::vector<selected_edge> found;
    element_places<vertex> known(objects, &object_t::vertices);
    place a, b;
    for (const edge_ends &ends : edges) {
        if (known.find(ends.a, &a) && known.find(ends.b, &b) && a.owner == b.owner)
            found.push_back({object_identity(a.owner->object), a.index, b.index});
    }
    return found;
}

std::vector<edge_ends> edges_at(const std::vector<selected_edge> &places,
                                const objects_by_identity &objects)
{
    std::vector<edge_ends> edges;
    std::unordered_map<int, std::vector<vertex *>> vertices;
    for (const selected_edge &edge : places) {
        const auto object = objects.find(edge.identity);
        if (object == objects.end())
            continue;
        std::vector<vertex *> &known = vertices[edge.identity];
        if (known.empty())
            append_elements(object->second->vertices, &known);
        const auto size = static_cast<int>(known.size());
        if (edge.a < size && edge.b < size)
            edges.push_back({known[edge.a], known[edge.b]});
    }
    return edges;
}

const std::vector<vertex *> &records_of(const flat_mesh &flat, const vertex *)
{
    return *flat.vertex_records;
}
const std::vector<surface_t *> &records_of(const flat_mesh &flat, const surface_t *)
{
    return *flat.surface_records;
}

// The list of the elements that the runs name.
template <class T>
listitem *list_of_runs(const std::vector<selection_run> &runs, const objects_by_identity &objects)
{
    std::vector<T *> elements;
    int identity = 0;
    flat_ptr flat; // of the object of that identity
    for (const selection_run &run : runs) {
        const auto object = objects.find(run.identity);
        if (object == objects.end())
            continue;
        if (flat == nullptr || identity != run.identity)
            flat = object_flat(object->second);
        identity = run.identity;
        const std::vector<T *> &known = records_of(*flat, static_cast<T *>(nullptr));
        const auto size = static_cast<int>(known.size());
        elements.insert(elements.end(), known.begin() + std::min(run.first, size),
                        known.begin() + std::min(run.first + run.count, size));
    }
    return make_nodes(elements).first;
}

} // namespace

std::shared_ptr<const selection_image> selection_image_take(const tracked_objects &objects)
{
    auto image = std::make_shared<selection_image>();
    const selection_t &live = selection();
    image->mode = select_mode();
    image->vertices = runs_of<vertex>(live.vertices, objects, &object_t::vertices);
    image->surfaces = runs_of<surface_t>(live.surfaces, objects, &object_t::surfaces);
    for (const object_t *object : each<object_t>(live.objects))
        image->objects.push_back(object_identity(object));
    if (chosen_edges_now())
        image->edges = places_of_edges(*chosen_edges_now(), objects);
    return image;
}

void selection_image_restore(const selection_image &image, const objects_by_identity &objects)
{
    owned_list chosen;
    for (const int identity : image.objects) {
        const auto object = objects.find(identity);
        if (object != objects.end())
            chosen.add(object->second);
    }
    saved_selection_t saved = {list_of_runs<vertex>(image.vertices, objects),
                               list_of_runs<surface_t>(image.surfaces, objects), chosen.release(),
                               image.mode};
    if (image.edges)
        saved.edges = edges_at(*image.edges, objects);
    selection_restore(&saved);
}
