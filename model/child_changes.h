#ifndef VESK_MODEL_CHILD_CHANGES_H
#define VESK_MODEL_CHILD_CHANGES_H

// Changes of the lists of children that cost one pass of each list, however many children change.

#include "model/object.h"

#include <unordered_map>
#include <vector>

class child_changes {
public:
    // In its parent's list these objects take the child's place, which it keeps only when it is
    // one of them. Objects from another parent must have been unlinked: see unlink.
    void replace(object_t *child, std::vector<object_t *> by);
    // The child leaves its parent.
    void unlink(object_t *child) { replace(child, {}); }
    // Writes all changes back; nobody is notified. To be called once.
    void commit();

private:
    std::vector<object_t *> parents_; // in order of their first child here
    std::unordered_map<const object_t *, std::vector<object_t *>> changes_;
};

// Unlinks the objects, none of which may lie below another, and frees them with all they own; every
// holder of a reference is notified once.
void objects_delete(const std::vector<object_t *> &objects);

#endif
