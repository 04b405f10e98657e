#include "model/object_tree.h"

#include "model/alloc_internal.h"
#include "model/change_marks_internal.h"
#include "model/deferred_records.h"
#include "model/each.h"
#include "model/freed_internal.h"
#include "model/property.h"
#include "model/world.h"

namespace {

bool is_below(const object_t *object, const object_t *top)
{
    for (; object; object = object->parent) {
        if (object == top)
            return true;
    }
    return false;
}

// The object whose list `list_of` holds the element, below `top`.
template <class ListOf>
object_t *find_owner(object_t *top, const void *element, ListOf list_of)
{
    return find_object_where(top ? top : vesk_get_world(), [&](object_t *object) {
        for (const void *own : each<void>(list_of(object))) {
            if (own == element)
                return true;
        }
        return false;
    });
}

// A copy of the record and its geometry, without parent and children.
object_t *clone_alone(object_t *source)
{
    object_t *copy = new_object(source->type);
    text_set(&copy->name, source->name);
    const object_t made = *copy;
    *copy = *source;
    copy->name = made.name;
    copy->data = text_copy(source->data);
    copy->url = text_copy(source->url);
    copy->properties = vesk_proplist_duplicate(source->properties);
    copy->parent = nullptr;
    copy->vertices = copy->surfaces = copy->children = nullptr;
    copy->num_vertices = copy->num_surfaces = copy->num_children = 0;

    // The arrays are shared.
    object_set_whole(copy, std::make_shared<flat_mesh>(object_flat(source)->without_records()));
    return copy;
}

} // namespace

int object_remove_child_nocleanup(object_t *parent, object_t *child)
{
    if (list_remove_item(&parent->children, child) == 0)
        return 0;
    --parent->num_children;
    child->parent = nullptr;
    tree_mark();
    return 1;
}

int object_remove_child(object_t *parent, object_t *child)
{
    if (object_remove_child_nocleanup(parent, child) == 0)
        return 0;
    freed_announce_left({child});
    return 1;
}

int object_reparent_before(object_t *object, object_t *parent, object_t *before)
{
    if (is_below(parent, object) || before == object)
        return 0;
    if (object->parent)
        object_remove_child_nocleanup(object->parent, object);
    if (!before || list_insert_item(&parent->children, before, object) == 0) {
        object_add_child(parent, object);
        return 1;
    }
    ++parent->num_children;
    object->parent = parent;
    tree_mark();
    return 1;
}

int object_reparent(object_t *object, object_t *parent)
{
    return object_reparent_before(object, parent, nullptr);
}

void object_move_to_head(object_t *object)
{
    object_t *parent = object->parent;
    if (parent && list_remove_item(&parent->children, object) == 1) {
        list_add_item_head(&parent->children, object);
        tree_mark();
    }
}

void object_free(object_t *object)
{
    if (!object)
        return;
    freed_batch batch;
    batch.add(object);
    tree_mark();
}

void object_delete_nocleanup(object_t *object)
{
    if (object->parent)
        object_remove_child_nocleanup(object->parent, object);
    object_free(object);
}

void object_delete(object_t *object)
{
    if (object->parent)
        object_remove_child(object->parent, object);
    object_free(object);
}

object_t *object_top_ancestor(object_t *object)
{
    while (object->parent && object->parent->type != OBJECT_WORLD)
        object = object->parent;
    return object;
}

object_t *object_of_vertex(object_t *top, const vertex *point)
{
    return find_owner(top, point, [](const object_t *object) { return object->vertices; });
}

object_t *object_of_surface(object_t *top, const surface_t *surface)
{
    return find_owner(top, surface, [](const object_t *object) { return object->surfaces; });
}

int object_exists(const object_t *object)
{
    const object_t *world = vesk_get_world();
    // Bounded: foreign code may have tied the parents into a ring.
    for (int depth = 0; object && state_is_alive(object) && depth < 10000000; ++depth) {
        if (object == world)
            return 1;
        object = object->parent;
    }
    return 0;
}

object_t *object_clone(object_t *object)
{
    struct step {
        object_t *source;
        object_t *parent; // the copy of the parent
    };
    object_t *top = nullptr;
    std::vector<step> steps{{object, nullptr}};
    // Depth first, the last child first: copies are put in front of their brothers.
    while (!steps.empty()) {
        const step at = steps.back();
        steps.pop_back();
        object_t *copy = clone_alone(at.source);
        if (at.parent) {
            list_add_item_head(&at.parent->children, copy);
            ++at.parent->num_children;
            copy->parent = at.parent;
        } else {
            top = copy;
        }
        for (object_t *child : each<object_t>(at.source->children))
            steps.push_back({child, copy});
    }
    return top;
}

int object_ungroup(object_t *object)
{
    object_t *parent = object->parent;
    if (!parent || !object->children || object->vertices || object->surfaces)
        return 0;
    const owned_list children(list_clone(object->children));
    for (object_t *child : each<object_t>(children.get()))
        object_reparent_before(child, parent, object);
    object_delete(object);
    return 1;
}
