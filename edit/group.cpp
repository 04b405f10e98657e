#include "edit/group.h"

#include "base/messages.h"
#include "edit/document/edit_support.h"
#include "model/bounds.h"
#include "model/child_changes.h"
#include "model/freed.h"

#include <algorithm>
#include <unordered_set>

namespace {

bool in_object_mode() { return !mode_has_elements(select_mode()); }

bool can_dissolve(const object_t *object)
{
    return object->parent != nullptr && object->children != nullptr &&
           object->vertices == nullptr && object->surfaces == nullptr;
}

using object_set = std::unordered_set<const object_t *>;

// The objects that replace a group: its children, those of the groups among them that are dissolved
// instead of these.
std::vector<object_t *> contents(const object_t *group, const object_set &going)
{
    std::vector<object_t *> found, stack;
    const auto push_children = [&stack](const object_t *parent) {
        const auto first = static_cast<std::ptrdiff_t>(stack.size());
        for (object_t *child : each<object_t>(parent->children))
            stack.push_back(child);
        std::reverse(stack.begin() + first, stack.end());
    };
    push_children(group);
    while (!stack.empty()) {
        object_t *child = stack.back();
        stack.pop_back();
        if (going.contains(child)) {
            push_children(child);
        } else {
            found.push_back(child);
        }
    }
    return found;
}

void drop_children(object_t *group)
{
    list_free(&group->children);
    group->num_children = 0;
}

// Sets a centre of every selected object to the point that `place` makes of its box.
template <class Place>
void set_centres(const char *what, Place &&place)
{
    struct found_t {
        object_t *object;
        point3_t centre;
    };
    std::vector<found_t> found;
    if (in_object_mode()) {
        for (object_t *object : selected_objects()) {
            point3_t min, max;
            if (object_bounds(object, &min, &max) != 0)
                found.push_back({object, place(min, max)});
        }
    }
    if (found.empty()) {
        display_message("%s - nothing selected", what);
        return;
    }
    display_message("%s...", what);
    open_world_undo(what);
    for (const auto &[object, centre] : found)
        vesk_object_set_centre(object, centre.x, centre.y, centre.z);
    finish_edit();
    display_message("%s - %d objects", what, static_cast<int>(found.size()));
}

} // namespace

// ---- commands ----

void group_selected_objects(void)
{
    if (!in_object_mode()) {
        display_message("group - select objects first");
        return;
    }
    const std::vector<object_t *> objects = selected_top_objects();
    if (objects.empty()) {
        display_message("group - nothing selected");
        return;
    }
    display_message("group...");
    open_world_undo("group");
    object_t *group = new_group();
    object_set_name(group, "group");
    child_changes changes;
    for (object_t *object : objects)
        changes.replace(object,
                        object == objects.front() ? std::vector{group} : std::vector<object_t *>());
    changes.commit();
    for (object_t *object : objects)
        object_add_child(group, object);
    select_results({group});
    finish_edit();
    display_message("group - %d objects", static_cast<int>(objects.size()));
}

void command_ungroup()
{
    std::vector<object_t *> groups;
    if (in_object_mode()) {
        for (object_t *object : selected_objects()) {
            if (can_dissolve(object))
                groups.push_back(object);
        }
    }
    if (groups.empty()) {
        display_message("ungroup - nothing selected");
        return;
    }
    display_message("ungroup...");
    open_world_undo("ungroup");
    const object_set going(groups.begin(), groups.end());
    child_changes changes;
    std::vector<object_t *> released;
    for (object_t *group : groups) {
        if (going.contains(group->parent))
            continue;
        const std::vector<object_t *> children = contents(group, going);
        released.insert(released.end(), children.begin(), children.end());
        changes.replace(group, children);
    }
    changes.commit();
    {
        freed_batch batch;
        for (object_t *group : groups) {
            drop_children(group);
            group->parent = nullptr;
            batch.add(group);
        }
    }
    select_results(released);
    finish_edit();
    display_message("ungroup - %d groups", static_cast<int>(groups.size()));
}

void command_object_recentre()
{
    set_centres("recentre", [](const point3_t &min, const point3_t &max) {
        return point3_t{min.x + (max.x - min.x) / 2, min.y + (max.y - min.y) / 2,
                        min.z + (max.z - min.z) / 2};
    });
}

void command_object_mincentre()
{
    set_centres("mincentre", [](const point3_t &min, const point3_t &) { return min; });
}
