// The selection as runs of places: elements that follow each other in their owner's list, as those
// of "select all" and most rubber bands do, cost one run however many they are.

#include "edit/document/selection_image.h"

#include "edit/document/selection_scan.h"
#include "model/identity.h"

#include <algorithm>

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
    for (const T *element : each<T>(selected)) {
        if (expected && item_of<T>(expected) == element) {
            ++runs.back().count;
            expected = expected->next;
            continue;
        }
        // Selected whole objects begin with an object's first element.
        place at = {nullptr, 0};
        for (std::size_t i = 0; i < objects.size() && objects.size() <= few_objects; ++i) {
            const listitem *head = objects[i].object->*list;
            if (head && item_of<T>(head) == element)
                at.owner = &objects[i];
        }
        if (!at.owner && !known.find(element, &at))
            continue;
        const int identity = object_identity(at.owner->object);
        if (!runs.empty() && runs.back().identity == identity &&
            runs.back().first + runs.back().count == at.index) {
            ++runs.back().count;
        } else {
            runs.push_back({identity, at.index, 1});
        }
        expected = at.index == 0 ? (at.owner->object->*list)->next : nullptr;
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

template <class T>
void append_runs(const std::vector<selection_run> &runs, const objects_by_identity &objects,
                 listitem *object_t::*list, owned_list *out)
{
    // Elements by their places, for the objects that runs name.
    std::unordered_map<int, std::vector<T *>> elements;
    for (const selection_run &run : runs) {
        const auto object = objects.find(run.identity);
        if (object == objects.end())
            continue;
        std::vector<T *> &known = elements[run.identity];
        if (known.empty()) {
            for (T *element : each<T>(object->second->*list))
                known.push_back(element);
        }
        const auto size = static_cast<int>(known.size());
        for (int i = run.first; i < std::min(run.first + run.count, size); ++i)
            out->add(known[i]);
    }
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
    owned_list vertices, surfaces, chosen;
    append_runs<vertex>(image.vertices, objects, &object_t::vertices, &vertices);
    append_runs<surface_t>(image.surfaces, objects, &object_t::surfaces, &surfaces);
    for (const int identity : image.objects) {
        const auto object = objects.find(identity);
        if (object != objects.end())
            chosen.add(object->second);
    }
    saved_selection_t saved = {vertices.release(), surfaces.release(), chosen.release(),
                               image.mode};
    if (image.edges)
        saved.edges = edges_at(*image.edges, objects);
    selection_restore(&saved);
}
