#include "model/child_changes.h"

#include "model/change_marks.h"
#include "model/each.h"
#include "model/freed.h"

#include <unordered_set>
#include <utility>

void child_changes::replace(object_t *child, std::vector<object_t *> by)
{
    if (child->parent == nullptr)
        return;
    parents_.push_back(child->parent);
    changes_.insert_or_assign(child, std::move(by));
}

void child_changes::commit()
{
    std::unordered_set<const object_t *> done;
    for (object_t *parent : parents_) {
        if (!done.insert(parent).second)
            continue;
        owned_list children;
        int count = 0;
        for (object_t *child : each<object_t>(parent->children)) {
            const auto change = changes_.find(child);
            if (change == changes_.end()) {
                children.add(child);
                ++count;
                continue;
            }
            child->parent = nullptr;
            for (object_t *object : change->second) {
                object->parent = parent;
                children.add(object);
                ++count;
            }
        }
        list_free(&parent->children);
        parent->children = children.release();
        parent->num_children = count;
    }
    tree_mark();
}

void objects_delete(const std::vector<object_t *> &objects)
{
    if (objects.empty())
        return;
    child_changes changes;
    for (object_t *object : objects)
        changes.unlink(object);
    changes.commit();
    freed_batch batch;
    for (object_t *object : objects)
        batch.add(object);
}
