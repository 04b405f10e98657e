#include "edit/object_place.h"

#include "base/command_result.h"
#include "base/messages.h"
#include "base/numbers.h"
#include "base/redraw.h"
#include "edit/document/edit_support.h"
#include "edit/document/undo_internal.h"
#include "model/each.h"
#include "model/identity.h"
#include "model/object_tree.h"
#include "model/world.h"

#include <cstring>
#include <string>
#include <unordered_set>
#include <vector>

namespace {

bool lies_in(const object_t *object, const object_t *top)
{
    for (; object != nullptr; object = object->parent) {
        if (object == top) {
            return true;
        }
    }
    return false;
}

// The child after an object; null at the end.
object_t *child_after(const object_t *object)
{
    bool found = false;
    for (object_t *child : each<object_t>(object->parent->children)) {
        if (found) {
            return child;
        }
        found = child == object;
    }
    return nullptr;
}

} // namespace

void command_objects_place(int, const char *const *words)
{
    const char *ids = words[0];
    const int before_id = int_of(words[2]);
    object_t *parent = object_by_identity(int_of(words[1]));
    if (parent == nullptr) {
        return;
    }
    std::vector<object_t *> objects;
    const char *end = ids + std::strlen(ids);
    int id = 0;
    while ((ids = scan_int(ids, end, &id)) != nullptr) {
        object_t *object = object_by_identity(id);
        if (object != nullptr && object->parent != nullptr && !lies_in(parent, object) &&
            object != vesk_get_world()) {
            objects.push_back(object);
        }
    }
    objects = without_descendants(objects); // these go with the others
    const std::unordered_set<const object_t *> moving(objects.begin(), objects.end());
    // An object cannot stand in front of itself: the next one that stays is meant.
    object_t *before = before_id == 0 ? nullptr : object_by_identity(before_id);
    while (before != nullptr && moving.contains(before)) {
        before = child_after(before);
    }
    if (!objects.empty()) {
        new_undo_state("move in the tree");
        for (object_t *object : objects) {
            object_reparent_before(
                object, parent, before != nullptr && before->parent == parent ? before : nullptr);
        }
        redraw_all();
        display_status();
    }
    command_result_set(std::to_string(objects.size()).c_str());
}
