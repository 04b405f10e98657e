#include "edit/document/selection_scan.h"

#include "base/messages.h"
#include "edit/document/selection_internal.h"
#include "model/deferred_records.h"
#include "model/object_tree.h"
#include "model/world.h"

#include <unordered_map>
#include <utility>

namespace {

// Numbers the elements from 0 by their place; is_in then tells membership whatever stands in the
// scratch words of others.
template <class T>
void number_all(const std::vector<T *> &elements)
{
    uint32_t number = 0;
    for (T *element : elements)
        set_scratch(element, number++);
}

template <class T>
bool is_in(const std::vector<T *> &elements, const T *element)
{
    const uint32_t number = scratch(element);
    return number < elements.size() && elements[number] == element;
}

template <class T, class Head>
std::vector<object_t *> owners_of(const std::vector<T *> &elements, Head head_of)
{
    std::vector<object_t *> owners(elements.size(), nullptr);
    const deferred_elements deferred(vesk_get_world());
    std::size_t known = 0;
    for (; deferred.any() && known < elements.size(); ++known) {
        owners[known] = deferred.find(elements[known]).object;
        if (owners[known] == nullptr)
            break;
    }
    if (known == elements.size())
        return owners;
    number_all(elements);
    for_each_object(vesk_get_world(), [&](object_t *object) {
        for (const T *element : each<T>(head_of(object))) {
            if (is_in(elements, element))
                owners[scratch(element)] = object;
        }
    });
    return owners;
}

// The surfaces of the world, in tree order, for which `wanted` is true of (how many corners lie in
// `vertices`, how many there are).
template <class Wanted>
std::vector<surface_t *> surfaces_where(const std::vector<vertex *> &vertices, Wanted &&wanted)
{
    std::vector<surface_t *> found;
    if (vertices.empty())
        return found;
    number_all(vertices);
    for_each_object(vesk_get_world(), [&](object_t *object) {
        for (surface_t *surface : each<surface_t>(object->surfaces)) {
            int inside = 0;
            int corners = 0;
            for (const svertex *corner : each<svertex>(surface->refs)) {
                ++corners;
                if (corner->vertex != nullptr && is_in(vertices, corner->vertex))
                    ++inside;
            }
            if (wanted(inside, corners))
                found.push_back(surface);
        }
    });
    return found;
}

listitem *list_of(const std::vector<object_t *> &objects)
{
    owned_list list;
    for (object_t *object : objects)
        list.add(object);
    return list.release();
}

std::vector<object_t *> part_selected_objects()
{
    const selection_t &all = selection();
    std::vector<object_t *> owners = owners_of_vertices(elements_of<vertex>(all.vertices));
    std::erase(owners, nullptr);
    for (object_t *owner : owners_of_surfaces(elements_of<surface_t>(all.surfaces))) {
        if (owner == nullptr) {
            console_printf("error in selection_get_part_selected_objects (selected surface has no "
                           "valid parent object) - report to Dovan\n");
        } else {
            owners.push_back(owner);
        }
    }
    return unique_objects(owners);
}

} // namespace

void append_surface_vertices(const surface_t *surface, std::vector<vertex *> *out)
{
    for (const svertex *corner : each<svertex>(surface->refs)) {
        if (corner->vertex != nullptr)
            out->push_back(corner->vertex);
    }
}

std::vector<vertex *> vertices_of_selected_surfaces()
{
    const deferred_elements untouched(vesk_get_world(), true);
    std::unordered_map<const object_t *, std::vector<bool>> seen;
    std::vector<bool> *marks = nullptr; // of the last object
    const object_t *last = nullptr;
    std::vector<vertex *> found;
    bool once = true;
    for (const surface_t *surface : each<surface_t>(selection().surfaces)) {
        const auto at = untouched.find(surface);
        if (at.object == nullptr) {
            append_surface_vertices(surface, &found);
            once = false;
            continue;
        }
        if (std::exchange(last, at.object) != at.object) {
            marks = &seen[at.object];
            marks->resize(at.flat->num_vertices());
        }
        for (const int v : at.flat->surface_corners(at.index)) {
            if (!(*marks)[v])
                found.push_back((*at.flat->vertex_records)[v]);
            (*marks)[v] = true;
        }
    }
    if (!once)
        make_unique(&found);
    return found;
}

std::vector<object_t *> unique_objects(const std::vector<object_t *> &objects)
{
    for (std::size_t i = objects.size(); i-- > 0;) // the first of those that are repeated stays
        set_scratch(objects[i], static_cast<uint32_t>(i));
    std::vector<object_t *> once;
    once.reserve(objects.size());
    for (std::size_t i = 0; i < objects.size(); ++i) {
        if (scratch(objects[i]) == i)
            once.push_back(objects[i]);
    }
    return once;
}

std::vector<object_t *> owners_of_vertices(const std::vector<vertex *> &vertices)
{
    return owners_of(vertices, [](const object_t *object) { return object->vertices; });
}

std::vector<object_t *> owners_of_surfaces(const std::vector<surface_t *> &surfaces)
{
    return owners_of(surfaces, [](const object_t *object) { return object->surfaces; });
}

std::vector<surface_t *> surfaces_touching(const std::vector<vertex *> &vertices)
{
    return surfaces_where(vertices, [](int inside, int) { return inside > 0; });
}

std::vector<surface_t *> surfaces_within(const std::vector<vertex *> &vertices)
{
    return surfaces_where(vertices,
                          [](int inside, int corners) { return inside > 0 && inside == corners; });
}

listitem *selection_get_selected_vertices(void)
{
    const selection_t &all = selection();
    std::vector<vertex *> vertices;
    if (mode_has_vertices(select_mode())) {
        append_elements(all.vertices, &vertices);
    } else if (select_mode() == SELECT_SURFACE) {
        for (const surface_t *surface : each<surface_t>(all.surfaces))
            append_surface_vertices(surface, &vertices);
    } else {
        console_printf("selection_get_selected_vertices works only in vertex and surface mode\n");
    }
    listitem *list = nullptr;
    add_unique(&list, vertices);
    return list;
}

listitem *selection_get_part_selected_objects(void) { return list_of(part_selected_objects()); }

listitem *selection_get_part_selected_toplevel_objects(void)
{
    std::vector<object_t *> tops;
    for (object_t *object : part_selected_objects())
        tops.push_back(object_top_ancestor(object));
    return list_of(unique_objects(tops));
}

listitem *find_selected_whole_surfaces(void)
{
    const selection_t &all = selection();
    if (select_mode() == SELECT_SURFACE)
        return list_clone(all.surfaces);
    if (!mode_has_vertices(select_mode()))
        return nullptr;
    owned_list list;
    for (surface_t *surface : surfaces_within(elements_of<vertex>(all.vertices)))
        list.add(surface);
    return list.release();
}
