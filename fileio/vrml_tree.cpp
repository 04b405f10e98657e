#include "fileio/vrml_tree.h"

#include "model/each.h"
#include "model/normals.h"
#include "model/object_tree.h"

#include <algorithm>
#include <cstring>

namespace {

bool is_set(const char *text) { return text != nullptr && *text != '\0'; }

bool is_unnamed(const object_t *object) { return !is_set(object->name) && !is_set(object->url); }

// The shape that a group stands for: the only one without a name, or with that of the group. In a
// group without a name, and for a light, it is the only child.
object_t *only_shape(const object_t *group)
{
    object_t *found = nullptr;
    for (object_t *child : each<object_t>(group->children)) {
        const bool same = std::strcmp(child->name, group->name) == 0 && !is_set(child->url);
        if ((!is_unnamed(child) && !same) || child->type == OBJECT_GROUP)
            continue;
        const bool alone = child->type == OBJECT_LIGHT || is_unnamed(group);
        if (found != nullptr || (alone && group->num_children > 1))
            return nullptr;
        found = child;
    }
    return found;
}

// All children of `from`, in one pass.
void move_children(object_t *from, object_t *to)
{
    const owned_list children(list_clone(from->children));
    for (object_t *child : each<object_t>(children.get()))
        object_remove_child_nocleanup(from, child);
    for (object_t *child : each<object_t>(children.get()))
        object_add_child(to, child);
}

} // namespace

object_t *vrml_joined(object_t *group, bool has_frame)
{
    if (group->num_children == 0 && is_unnamed(group)) {
        object_free(group);
        return nullptr;
    }
    object_t *shape = only_shape(group);
    if (shape == nullptr) {
        if (group->num_children != 1 || !is_unnamed(group))
            return group;
        shape = item_of<object_t>(group->children); // which keeps its own name and frame
        object_remove_child_nocleanup(group, shape);
        object_free(group);
        return shape;
    }
    object_remove_child_nocleanup(group, shape);
    object_set_name(shape, group->name);
    object_set_url(shape, group->url);
    if (has_frame && shape->type != OBJECT_LIGHT) {
        shape->centre = group->centre;
        std::copy_n(group->rotation, 9, shape->rotation);
    }
    move_children(group, shape);
    object_free(group);
    return shape;
}

object_t *vrml_world(object_t *top, const char *name)
{
    for_each_object(top, [](object_t *object) {
        if (object->type == OBJECT_LIGHT && !is_set(object->name))
            object_set_name(object, "light");
    });
    // A group about everything is how such files begin.
    while (top->num_children == 1 && item_of<object_t>(top->children)->type == OBJECT_GROUP &&
           is_unnamed(item_of<object_t>(top->children))) {
        object_t *only = item_of<object_t>(top->children);
        object_remove_child_nocleanup(top, only);
        object_free(top);
        top = only;
    }
    if (top->num_children == 1) {
        object_t *only = item_of<object_t>(top->children);
        object_remove_child_nocleanup(top, only);
        object_free(top);
        if (!is_set(only->name))
            object_set_name(only, name);
        object_calc_normals_force(only);
        return only;
    }
    object_t *world = new_object(OBJECT_WORLD);
    move_children(top, world);
    object_free(top);
    object_calc_normals_force(world);
    return world;
}
